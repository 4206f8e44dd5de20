#include "shell/frmODBC.h"

#include "data/globals.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "shell/centre.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

const QString kNone = QStringLiteral("(None)");
const QString kCaption = QStringLiteral("连接值");
const QString kAdminTitle = QStringLiteral("管理系统操作提示");

QString dq(const QString& s) {
    return vb::Replace(s, QStringLiteral("'"), QStringLiteral("''"));
}

} // namespace

frmODBC::frmODBC() : vb::Form(QStringLiteral("frmODBC")) {}

QComboBox* frmODBC::combo(const char* name) {
    return ctl<QComboBox>(QString::fromLatin1(name));
}
QLineEdit* frmODBC::text(const char* name) {
    return ctl<QLineEdit>(QString::fromLatin1(name));
}
QGroupBox* frmODBC::frame() {
    return ctl<QGroupBox>(QStringLiteral("fraStep3"));
}

void frmODBC::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("请设置要连接的数据库信息"));
    w->setFixedSize(vb::twips(5520), vb::twips(4560));
    shellwin::centreOnScreen(w);

    auto* fra =
        vb::place(new QGroupBox(kCaption, w), QStringLiteral("fraStep3"), 120, 60, 5280, 3720);

    struct Row {
        const char16_t* label;
        const char* name;
        bool isCombo;
    };
    const Row rows[] = {
        {u"数据源(&D):", "cboDSNList", true}, {u"驱动(&V):", "cboDrivers", true},
        {u"服务器(&S):", "txtServer", false}, {u"用户名(&U):", "txtUID", false},
        {u"密码(&P):", "txtPWD", false},      {u"数据库(&B):", "txtDatabase", false},
    };
    QWidget* previous = nullptr;
    int top = 360;
    int i = 0;
    for (const Row& r : rows) {
        auto* l = vb::label(fra, vb::ctlName(QStringLiteral("lblStep3"), i++),
                            QString::fromUtf16(r.label), 240, top + 40, 1260, 300);
        QWidget* field;
        if (r.isCombo) {
            auto* c = new QComboBox(fra);
            // The drivers' box takes a typed name too (FreeTDS, "ODBC Driver 18 for SQL Server").
            c->setEditable(qstrcmp(r.name, "cboDrivers") == 0);
            field = c;
        } else {
            field = new QLineEdit(fra);
        }
        vb::place(field, QString::fromLatin1(r.name), 1560, top, 3480, 360);
        l->setBuddy(field);
        if (previous) QWidget::setTabOrder(previous, field);
        previous = field;
        top += 540;
    }
    auto* pwd = fra->findChild<QLineEdit*>(QStringLiteral("txtPWD"));
    pwd->setEchoMode(QLineEdit::Password);
    pwd->setStyleSheet(QStringLiteral("lineedit-password-character: 35;")); // "#"

    auto button = [&](const char* name, const char16_t* caption, int left, auto onClick) {
        auto* b = vb::commandButton(w, QString::fromLatin1(name), QString::fromUtf16(caption), left,
                                    3900, 1500, 420, this, onClick);
        QWidget::setTabOrder(previous, b);
        previous = b;
    };
    button("cmdCeshi", u"测试(&C)", 240, [this] { cmdCeshi_Click(); });
    button("CmdOk", u"保存(&D)", 1980, [this] { CmdOk_Click(); });
    button("CmdCancel", u"取消(&Q)", 3720, [this] { CmdCancel_Click(); });

    for (const char* n : {"txtServer", "txtUID", "txtPWD", "txtDatabase", "cboDrivers"})
        vb::enterAsTab(fra->findChild<QWidget*>(QString::fromLatin1(n)));
    // A choice of the user is the list's Click; filling the list at load is not.
    connect(fra->findChild<QComboBox*>(QStringLiteral("cboDSNList")), &QComboBox::activated, this,
            [this] { cboDSNList_Click(); });
}

void frmODBC::onLoad() {
    GetDSNsAndDrivers();
}

void frmODBC::GetDSNsAndDrivers() {
    QComboBox* dsn = combo("cboDSNList");
    QComboBox* drivers = combo("cboDrivers");
    vb::resume([&] {
        dsn->addItem(kNone);
        for (const adodb::DataSource& s : adodb::dataSources()) {
            // A name of blanks only is no name.
            if (vb::Trim(s.name).isEmpty()) continue;
            dsn->addItem(s.name);
        }
        // A fixed list: the drivers the system lists are not offered.
        drivers->insertItem(0, QStringLiteral("SQL Server"));
        drivers->insertItem(1, QStringLiteral("Microsoft Access Driver (*.mdb)"));
        dsn->setCurrentIndex(0);
        drivers->setCurrentIndex(0);
    });
}

void frmODBC::cboDSNList_Click() {
    // A named data source brings its server, driver and database along.
    const bool none = combo("cboDSNList")->currentText() == kNone;
    text("txtServer")->setEnabled(none);
    combo("cboDrivers")->setEnabled(none);
    text("txtDatabase")->setEnabled(none);
    vb::sendTab();
}

QString frmODBC::checkOdbcInput() {
    const bool none = combo("cboDSNList")->currentText() == kNone;
    if (none) {
        if (text("txtUID")->text().isEmpty() || combo("cboDrivers")->currentText().isEmpty() ||
            text("txtDatabase")->text().isEmpty() || text("txtServer")->text().isEmpty()) {
            vb::MsgBox(QStringLiteral("填写的信息不完整!请重新输入!"), vb::vbInformation,
                       kAdminTitle);
            text("txtUID")->setFocus();
            return QString();
        }
    } else if (text("txtUID")->text().isEmpty()) {
        vb::MsgBox(QStringLiteral("用户名不能为空!请重新输入!"), vb::vbInformation, kAdminTitle);
        text("txtUID")->setFocus();
        return QString();
    }
    return QStringLiteral("yes");
}

QString frmODBC::buildConnectString() {
    // Quotes are doubled in the typed values though this is no SQL, and the doubled quote
    // goes into the profile as it is; names from the lists are taken unchanged.
    QString s = QStringLiteral("PROVIDER=MSDASQL;");
    QComboBox* dsn = combo("cboDSNList");
    if (dsn->currentIndex() >= 1)
        s += QStringLiteral("DSN=") + dsn->currentText() + QStringLiteral(";");
    else
        s += QStringLiteral("Driver=") + combo("cboDrivers")->currentText() + QStringLiteral(";") +
             QStringLiteral("Server=") + dq(text("txtServer")->text()) + QStringLiteral(";");
    s += QStringLiteral("UID=") + dq(text("txtUID")->text()) + QStringLiteral(";");
    s += QStringLiteral("PWD=") + dq(text("txtPWD")->text()) + QStringLiteral(";");
    if (!text("txtDatabase")->text().isEmpty())
        s += QStringLiteral("Database=") + dq(text("txtDatabase")->text()) + QStringLiteral(";");
    return s;
}

frmODBC::Failure frmODBC::classifyFailure(const QString& d) {
    // By the English text of the provider's message; other languages fall to the last row.
    if (vb::InStr(1, d, QStringLiteral("Login failed")) > 0)
        return {QStringLiteral("用户密码不正确，请再试一次！详细信息如下：") +
                    QStringLiteral("\r\n") + d,
                vb::kMsgTitle};
    if (vb::InStr(1, d, QStringLiteral("QueryTimeout property")) > 0)
        return {QStringLiteral("连接数据源超时，请重试！！详细信息如下：") +
                    QStringLiteral("\r\n") + d,
                kAdminTitle};
    return {QStringLiteral("连接失败，请重试！！详细信息如下：") + QStringLiteral("\r\n") + d,
            kAdminTitle};
}

void frmODBC::cmdCeshi_Click() {
    if (checkOdbcInput() != QStringLiteral("yes")) return;
    vb::Err().Clear();
    try {
        window()->setCursor(Qt::WaitCursor);
        const QString s = buildConnectString();
        frame()->setTitle(QStringLiteral("正在尝试连接数据库,请稍候......."));
        QApplication::processEvents();
        Con = std::make_unique<adodb::Connection>();
        Con->Open(s, QString(), QString(), adodb::adOptionUnspecified);
        frame()->setTitle(kCaption);
        vb::MsgBox(QStringLiteral("测试通过！") + QStringLiteral("\r\n") +
                       QStringLiteral("请保存连接参数！"),
                   vb::vbInformation, QStringLiteral("系统提示"));
        Con.reset();
    } catch (const vb::VbError& e) {
        vb::Err().Number = e.number();
        vb::Err().Description = e.description();
    }
    // Success comes this way too.
    frame()->setTitle(kCaption);
    window()->unsetCursor();
    if (vb::Err().Number != 0) {
        const Failure f = classifyFailure(vb::Err().Description);
        vb::MsgBox(f.text, vb::vbInformation, f.title);
    }
    vb::Err().Clear();
}

void frmODBC::CmdOk_Click() {
    // An error leaves the procedure without a word.
    try {
        if (checkOdbcInput() != QStringLiteral("yes")) return;
        const QString s = buildConnectString();
        vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, s);
        gConnStr = s;
        // With a data source chosen the boxes are disabled but keep what they hold.
        gServer = text("txtServer")->text();
        gDatabase = text("txtDatabase")->text();
        Unload();
    } catch (const vb::VbError&) {
    }
}

void frmODBC::CmdCancel_Click() {
    Unload();
}
