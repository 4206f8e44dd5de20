#include "shell/modMain.h"

#include "data/globals.h"
#include "platform/errors.h"
#include "platform/form.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "shell/BMLoginFrm.h"
#include "shell/frmODBC.h"

namespace {
QString& keyStore() {
    static QString key = QStringLiteral("OrvaneCG");
    return key;
}
} // namespace

void setInstanceKey(const QString& key) {
    keyStore() = key;
}
QString instanceKey() {
    return keyStore();
}

void readProfileNames(const QString& profile) {
    const QStringList items = vb::Split(profile, QStringLiteral(";"));
    for (const QString& item : items) {
        // Found anywhere in the item, but cut by length: "XServer=abc" gives "=abc".
        if (vb::InStr(1, item, QStringLiteral("Server=")) > 0)
            gServer = vb::Right(item, vb::Len(item) - 7);
        if (vb::InStr(1, item, QStringLiteral("Database=")) > 0)
            gDatabase = vb::Right(item, vb::Len(item) - 9);
    }
}

void Main() {
    if (vb::PrevInstance(instanceKey())) {
        vb::MsgBox(QStringLiteral("程序已经运行，不能再次装载。"), vb::vbInformation,
                   vb::kMsgTitle);
        App::end();
    }
    gConnStr = vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile);
    if (gConnStr == kNoProfile) {
        // A save in the dialog sets gServer and gDatabase itself; nothing to parse here.
        vb::form<frmODBC>().Show(1);
        vb::form<BMLoginFrm>().Show(1);
        return;
    }
    readProfileNames(gConnStr);
    vb::form<BMLoginFrm>().Show(1);
}
