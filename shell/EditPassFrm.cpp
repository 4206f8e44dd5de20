#include "shell/EditPassFrm.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "shell/centre.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

const QString kHint = QStringLiteral("提示");

// The box's back colour by role: system colour 20 (3-D highlight) while it has the focus,
// 22 (3-D light) otherwise.
void setBack(QLineEdit* e, QPalette::ColorRole role) {
    QPalette p = e->palette();
    p.setColor(QPalette::Base, e->palette().color(role));
    e->setPalette(p);
}

} // namespace

EditPassFrm::EditPassFrm() : vb::Form(QStringLiteral("EditPassFrm")) {}

QLineEdit* EditPassFrm::Text1(int index) {
    return ctl<QLineEdit>(QStringLiteral("Text1"), index);
}

void EditPassFrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("修改口令"));
    w->setFixedSize(vb::twips(4800), vb::twips(2880));
    shellwin::centreOnScreen(w);
    const char16_t* labels[] = {u"请输入旧密码：", u"请输入新密码：", u"请确认新密码："};
    QWidget* previous = nullptr;
    for (int i = 0; i < 3; ++i) {
        auto* l = vb::label(w, vb::ctlName(QStringLiteral("Label1"), i),
                            QString::fromUtf16(labels[i]), 360, 360 + i * 540, 1560, 300);
        auto* e = vb::control<QLineEdit>(w, vb::ctlName(QStringLiteral("Text1"), i), 1980,
                                         300 + i * 540, 2400, 375);
        e->setEchoMode(QLineEdit::Password);
        e->setStyleSheet(QStringLiteral("lineedit-password-character: 42;")); // "*"
        e->setAutoFillBackground(true);
        setBack(e, QPalette::Midlight);
        l->setBuddy(e);
        vb::selectAllOnFocus(e);
        vb::onGotFocus(e, [e] { setBack(e, QPalette::Light); });
        vb::onLostFocus(e, [e] { setBack(e, QPalette::Midlight); });
        vb::enterAsTab(e);
        if (previous) QWidget::setTabOrder(previous, e);
        previous = e;
    }
    auto* ok = vb::commandButton(w, QStringLiteral("CmdOk"), QStringLiteral("&Y 确认"), 1020, 2100,
                                 1200, 420, this, [this] { CmdOk_Click(); });
    auto* cancel = vb::commandButton(w, QStringLiteral("CmdCancel"), QStringLiteral("&C 取消"),
                                     2580, 2100, 1200, 420, this, [this] { CmdCancel_Click(); });
    QWidget::setTabOrder(previous, ok);
    QWidget::setTabOrder(ok, cancel);
}

void EditPassFrm::CmdCancel_Click() {
    Unload();
}

void EditPassFrm::CmdOk_Click() {
    const QString oldPass = Text1(0)->text();
    const QString newPass = Text1(1)->text();
    // The confirmation needs no test: it has to equal the new one anyway.
    if (vb::InStr(oldPass, QStringLiteral("'")) > 0 ||
        vb::InStr(newPass, QStringLiteral("'")) > 0) {
        vb::MsgBox(QStringLiteral("用户名或者密码中不能包含【'】符号！"), vb::vbInformation,
                   vb::kMsgTitle);
        return;
    }
    try {
        adodb::Connection conn;
        conn.Open(gConnStr, QString(), QString(), adodb::adOptionUnspecified);
        adodb::Recordset rs;
        rs.Open(QStringLiteral("Select userid,username,password From LibUse Where username='") +
                    gLoginName + QStringLiteral("'"),
                conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        if (rs.EOF_()) {
            vb::MsgBox(QStringLiteral("当前用户已经被删除！"), vb::vbCritical, kHint);
            Unload();
            return;
        }
        // Compared here, exactly, not by the database's collation as at login. A NULL
        // password compares as unknown, which is not "different".
        const QVariant stored = rs.value(QStringLiteral("password"));
        if (!stored.isNull() && stored.toString() != oldPass) {
            vb::MsgBox(QStringLiteral("你输入的密码与登陆密码不符"), vb::vbCritical, kHint);
            Text1(0)->setFocus();
            return;
        }
        if (newPass != Text1(2)->text()) {
            vb::MsgBox(QStringLiteral("两次输入的密码不相符，请重新输入"), vb::vbInformation,
                       kHint);
            Text1(1)->setFocus();
            return;
        }
        if (newPass.isEmpty() &&
            vb::MsgBox(QStringLiteral("你输入的密码是空的，确定要把密码设为空吗？(Y/N)"),
                       vb::vbYesNo + vb::vbInformation + vb::vbDefaultButton2) != vb::vbYes)
            return;
        // The old password stands in the condition as well as in the check above.
        conn.Execute(QStringLiteral("Update libuse set password='") + newPass +
                     QStringLiteral("' where username='") + gLoginName +
                     QStringLiteral("' And password='") + oldPass + QStringLiteral("'"));
        vb::MsgBox(QStringLiteral("密码修改成功！请使用新密码！"), vb::vbInformation, kHint);
        Unload();
    } catch (const vb::VbError&) {
        vb::MsgBox(QStringLiteral("密码修改失败！请使用原密码！"), vb::vbCritical, kHint);
    }
}
