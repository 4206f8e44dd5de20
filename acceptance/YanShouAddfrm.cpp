#include "acceptance/YanShouAddfrm.h"

#include "acceptance/YanShoufrm.h"
#include "platform/events.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

struct Field {
    const char16_t* label;
    int maxLength; // 0: none
};
constexpr Field kFields[5] = {
    {u"来  源：", 30}, {u"批  号：", 20}, {u"金  额：", 0}, {u"发票号：", 20}, {u"收据号：", 20},
};
} // namespace

YanShouAddfrm::YanShouAddfrm() : vb::Form(QStringLiteral("YanShouAddfrm")) {}

QLineEdit* YanShouAddfrm::Text1(int index) {
    return ctl<QLineEdit>(QStringLiteral("Text1"), index);
}

void YanShouAddfrm::build(QWidget* w) {
    w->resize(vb::twips(5400), vb::twips(3240));
    // Created in the order of the rows, so the tab order is theirs, then the buttons'.
    for (int i = 0; i < 5; ++i) {
        const int top = 240 + i * 435;
        vb::label(w, vb::ctlName(QStringLiteral("Label1"), i), QString::fromUtf16(kFields[i].label),
                  360, top + 45, 1080, 255);
        auto* t = vb::control<QLineEdit>(w, vb::ctlName(QStringLiteral("Text1"), i), 1440, top,
                                         3480, 315);
        if (kFields[i].maxLength > 0) t->setMaxLength(kFields[i].maxLength);
        if (i == 0) t->setReadOnly(true); // shown only: the source is not passed on
        vb::selectAllOnFocus(t);
        vb::enterAsTab(t);
        vb::onLostFocus(t, [this, i] { Text1_LostFocus(i); });
    }
    const char16_t* const captions[2] = {u"&A  确定", u"&X  取消"};
    vb::buttonRow(w, QStringLiteral("Command1"), captions, {1080, 1920, 2520, 1215, 375}, this,
                  [this](int i) { Command1_Click(i); });
}

void YanShouAddfrm::Text1_LostFocus(int index) {
    // The focus leaves the field also when the window goes at unload: nothing to check then.
    if (!isLoaded()) return;
    QLineEdit* t = Text1(index);
    const QString trimmed = vb::trimText(t);
    if (index != 2 || trimmed.isEmpty()) return;
    if (!vb::IsNumeric(trimmed)) {
        vb::MsgBox(QStringLiteral("无效数字格式，取消该操作。"), vb::vbCritical, vb::kMsgTitle);
        t->clear();
        t->setFocus();
        return;
    }
    t->setText(vb::Format(vb::CDbl(trimmed), QStringLiteral("0.00")));
}

void YanShouAddfrm::Command1_Click(int index) {
    if (index == 1) {
        Unload(); // the grid stays as it was
        return;
    }
    struct Check {
        bool failed;
        const char16_t* message;
        int focus;
    };
    const Check checks[] = {
        {Text1(1)->text().isEmpty(), u"验收'批号'不能为空，取消该操作。", 1},
        {Text1(2)->text().isEmpty(), u"验收'金额'不能为空，取消该操作。", 2},
        {Text1(3)->text().isEmpty() && Text1(4)->text().isEmpty(),
         u"验收'发票号'或'收据号'不能为空，取消该操作。", 3},
    };
    for (const Check& c : checks) {
        if (!c.failed) continue;
        vb::MsgBox(QString::fromUtf16(c.message), vb::vbCritical, vb::kMsgTitle);
        Text1(c.focus)->setFocus();
        return;
    }
    auto code = [](const QString& text) {
        return text.isEmpty() ? QStringLiteral("NULL") : u'\'' + text + u'\'';
    };
    vb::form<YanShoufrm>().addYS(Text1(1)->text(), vb::Val(Text1(2)->text()),
                                 code(Text1(3)->text()), code(Text1(4)->text()));
    Unload(); // whether the save went through or not
}
