#include "shell/BMLoginFrm.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "shell/Mainfrm.h"
#include "shell/centre.h"
#include "shell/frmLook.h"
#include "shell/frmODBC.h"
#include "shell/icons.h"

#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>

namespace {

// Image3 is a picture: it clicks on the release of the left button, as a picture box does.
class ClickFilter : public QObject {
public:
    ClickFilter(QObject* parent, std::function<void()> f) : QObject(parent), m_f(std::move(f)) {}

protected:
    bool eventFilter(QObject* o, QEvent* e) override {
        if (e->type() == QEvent::MouseButtonRelease &&
            static_cast<QMouseEvent*>(e)->button() == Qt::LeftButton) {
            m_f();
            return true;
        }
        return QObject::eventFilter(o, e);
    }

private:
    std::function<void()> m_f;
};

// A LibUse.cgk that means yes: a true bit, whatever type the driver hands it over as.
bool isTrue(const QVariant& v) {
    if (v.isNull() || !v.isValid()) return false;
    if (v.typeId() == QMetaType::Bool) return v.toBool();
    if (v.typeId() == QMetaType::QString) {
        const QString s = vb::Trim(v.toString());
        if (s.compare(QStringLiteral("true"), Qt::CaseInsensitive) == 0) return true;
        return vb::IsNumeric(s) && vb::Val(s) != 0;
    }
    bool ok = false;
    const double d = v.toDouble(&ok);
    return ok && d != 0;
}

} // namespace

BMLoginFrm::BMLoginFrm() : vb::Form(QStringLiteral("BMLoginFrm")) {}

QLineEdit* BMLoginFrm::txtInName() {
    return ctl<QLineEdit>(QStringLiteral("txtInName"));
}
QLineEdit* BMLoginFrm::txtInPassword() {
    return ctl<QLineEdit>(QStringLiteral("txtInPassword"));
}

void BMLoginFrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("Orvane图书馆管理系统-------采购子系统"));
    w->setWindowIcon(shellicons::icon(QStringLiteral("app")));
    w->setFixedSize(vb::twips(6600), vb::twips(4380));
    shellwin::centreOnScreen(w);

    auto* banner = vb::label(w, QStringLiteral("Image1"), QString(), 0, 0, 6600, 1500);
    banner->setPixmap(shellicons::banner(vb::twips(6600), vb::twips(1500)));

    vb::label(w, QStringLiteral("lblInfo_0"), QStringLiteral("用户名:"), 1320, 1920, 1080, 300);
    vb::label(w, QStringLiteral("lblInfo_1"), QStringLiteral("密     码:"), 1320, 2520, 1080, 300);
    auto* name = vb::control<QLineEdit>(w, QStringLiteral("txtInName"), 2460, 1860, 2700, 375);
    auto* pass = vb::control<QLineEdit>(w, QStringLiteral("txtInPassword"), 2460, 2460, 2700, 375);
    pass->setEchoMode(QLineEdit::Password);
    pass->setStyleSheet(QStringLiteral("lineedit-password-character: 42;")); // "*"

    auto* login = vb::commandButton(w, QStringLiteral("cmdLogin"), QStringLiteral("登 陆（&G）"),
                                    2460, 3240, 1260, 420, this, [this] { cmdLogin_Click(); });
    auto* exit = vb::commandButton(w, QStringLiteral("cmdExit"), QStringLiteral("退出（&Q）"), 3900,
                                   3240, 1260, 420, this, [this] { cmdExit_Click(); });

    auto* img = vb::label(w, QStringLiteral("Image3"), QString(), 300, 3180, 540, 540);
    img->setPixmap(shellicons::pixmap(QStringLiteral("datasource"), vb::twips(540)));
    img->setToolTip(QStringLiteral("单击此处重定向数据源"));
    img->setCursor(Qt::PointingHandCursor);
    img->installEventFilter(new ClickFilter(img, [this] { Image3_Click(); }));

    QWidget::setTabOrder(name, pass);
    QWidget::setTabOrder(pass, login);
    QWidget::setTabOrder(login, exit);

    vb::selectAllOnFocus(name);
    vb::selectAllOnFocus(pass);
    vb::enterAsTab(name);
    vb::onKeyPress(pass, [this](int& ascii) {
        if (ascii == vb::vbKeyReturn) {
            ascii = 0;
            cmdLogin_Click();
        }
    });
}

void BMLoginFrm::onLoad() {
    loginCount = 0;
    txtInName()->setFocus();
}

void BMLoginFrm::cmdExit_Click() {
    Unload();
}

void BMLoginFrm::Image3_Click() {
    vb::form<frmODBC>().Show(1);
}

void BMLoginFrm::cmdLogin_Click() {
    // The whole click runs with errors resuming at the next statement.
    vb::Err().Clear();
    vb::resume(
        [] { gConnStr = vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile); });
    if (gConnStr == kNoProfile) {
        if (vb::MsgBox(QStringLiteral("无法取得正确连接数据库的信息!现在输入吗?"), 68,
                       QStringLiteral("管理系统操作提示")) == vb::vbYes) {
            vb::form<frmODBC>().Show(1);
            cmdLogin_Click();
        }
        return;
    }

    const QString name = txtInName()->text();
    // The name is tested twice and the password not at all, whatever the message says:
    // a quote in the password reaches the database and comes back as a connection error.
    if (vb::InStr(name, QStringLiteral("'")) > 0 || vb::InStr(1, name, QStringLiteral("'")) > 0) {
        vb::MsgBox(QStringLiteral("用户名或者密码不能包含【'】符号！"), vb::vbInformation,
                   vb::kMsgTitle);
        return;
    }

    adodb::Connection conn;
    std::unique_ptr<adodb::Recordset> rs;
    vb::resume([&] { conn.Open(gConnStr, QString(), QString(), adodb::adOptionUnspecified); });
    vb::resume([&] {
        rs = conn.Execute(QStringLiteral("Select userid,cgk From LibUse Where username='") + name +
                          QStringLiteral("' AND password='") + txtInPassword()->text() +
                          QStringLiteral("'"));
    });
    if (vb::Err().Number != 0) {
        if (vb::MsgBox(QStringLiteral("[") + vb::Err().Description + QStringLiteral("]") +
                           QStringLiteral("\r\n") +
                           QStringLiteral("是否重新输入连接数据库的信息？"),
                       68, vb::kMsgTitle) == vb::vbYes)
            vb::form<frmODBC>().Show(1);
        return;
    }

    if (!rs || rs->EOF_()) {
        ++loginCount;
        if (loginCount != 3) {
            vb::MsgBox(QStringLiteral("用户名或用户密码输入错误，请核对后输入。"), vb::vbCritical,
                       vb::kMsgTitle);
            txtInName()->setFocus();
        } else {
            vb::MsgBox(QStringLiteral("对不起，已经三次输入错误，退出该系统。"), vb::vbCritical,
                       vb::kMsgTitle);
            rs.reset();
            App::end();
        }
        return;
    }

    QVariant right;
    vb::resume([&] { right = rs->value(QStringLiteral("cgk")); });
    if (!isTrue(right)) {
        vb::MsgBox(QStringLiteral("对不起，你没有使用“图书采购子系统”的权限。"), vb::vbCritical,
                   vb::kMsgTitle);
        rs.reset();
        App::end();
    }

    gUserName = name;
    gLoginName = gUserName;
    rs.reset();
    // The frame's load runs while the login is still up; then the login goes, which lets
    // Main finish, and the frame and the start screen come up.
    vb::resume([] { vb::form<Mainfrm>().Load(); });
    Unload();
    vb::resume([] { vb::form<Mainfrm>().Show(); });
    vb::resume([] { vb::form<frmLook>().Show(0); });
}
