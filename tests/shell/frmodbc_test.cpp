// The connection dialog: data sources of the machine, the input checks, the profile it
// builds, test and save.
#include "shelltest.h"

#include "data/globals.h"
#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "shell/frmODBC.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

using testsupport::boxes;

using namespace Qt::StringLiterals;

namespace {

// Records, with each box, the dialog's pointer and frame caption at that moment.
class WatchingBoxes : public vb::MsgBoxProvider {
public:
    int show(const vb::MsgBoxCall& call) override {
        auto& f = vb::form<frmODBC>();
        calls.push_back(call);
        cursors.push_back(f.window()->cursor().shape());
        captions.push_back(f.ctl<QGroupBox>(u"fraStep3"_s)->title());
        return vb::vbOK;
    }
    std::vector<vb::MsgBoxCall> calls;
    std::vector<Qt::CursorShape> cursors;
    QStringList captions;
};

class FrmOdbcTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        dlg().Show(0);
    }
    frmODBC& dlg() { return vb::form<frmODBC>(); }
    QComboBox* dsn() { return dlg().ctl<QComboBox>(u"cboDSNList"_s); }
    QComboBox* drivers() { return dlg().ctl<QComboBox>(u"cboDrivers"_s); }
    QLineEdit* text(const char* n) { return dlg().ctl<QLineEdit>(QString::fromLatin1(n)); }
    void fill(const QString& driver, const QString& server, const QString& uid, const QString& pwd,
              const QString& db) {
        drivers()->setEditText(driver);
        text("txtServer")->setText(server);
        text("txtUID")->setText(uid);
        text("txtPWD")->setText(pwd);
        text("txtDatabase")->setText(db);
    }
    void chooseDsn(int index) {
        dsn()->setCurrentIndex(index);
        Q_EMIT dsn()->activated(index);
    }
    QPushButton* button(const char* n) { return dlg().ctl<QPushButton>(QString::fromLatin1(n)); }
};

// "(None)" first, then the data sources (here one of this run's own user settings); the
// two fixed drivers, whatever the machine has.
TEST_F(FrmOdbcTest, ListsOfDataSourcesAndDrivers) {
    const QString ini = tempPath() + u"/odbc.ini"_s;
    {
        QFile f(ini);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("[OrvaneShellTestDSN]\nDriver=SQLite3\nDatabase=/nonexistent.db\n");
    }
    const QByteArray previous = qgetenv("ODBCINI");
    qputenv("ODBCINI", ini.toLocal8Bit());
    dlg().Unload();
    const int found = dsn()->findText(u"OrvaneShellTestDSN"_s);
    if (previous.isNull())
        qunsetenv("ODBCINI");
    else
        qputenv("ODBCINI", previous);
    EXPECT_GT(found, 0);
    EXPECT_EQ(dsn()->itemText(0), u"(None)"_s);
    EXPECT_EQ(dsn()->currentIndex(), 0);
    EXPECT_EQ(drivers()->count(), 2);
    EXPECT_EQ(drivers()->itemText(1), u"Microsoft Access Driver (*.mdb)"_s);
    EXPECT_EQ(drivers()->currentText(), u"SQL Server"_s);
    EXPECT_EQ(text("txtPWD")->echoMode(), QLineEdit::Password);
}

// Each row fills the dialog and saves: refused with its message and nothing stored, or
// the profile stored and taken at once, with the names as typed (also from boxes greyed
// out by a chosen data source, which "(None)" brings back).
TEST_F(FrmOdbcTest, SaveChecksTheInputAndBuildsTheProfile) {
    struct Case {
        bool named;
        const char* driver;
        const char* server;
        const char* uid;
        const char* pwd;
        const char* db;
        const char* result; // the message, or the profile saved
    };
    const Case cases[] = {
        {false, "SQL Server", "h", "", "", "d", "填写的信息不完整!请重新输入!"},
        {false, "SQL Server", "", "u", "", "d", "填写的信息不完整!请重新输入!"},
        {false, "SQL Server", "h", "u", "", "", "填写的信息不完整!请重新输入!"},
        {false, "", "h", "u", "", "d", "填写的信息不完整!请重新输入!"},
        {true, "", "", "", "", "", "用户名不能为空!请重新输入!"},
        {false, "SQL Server", "h", "u", "p", "d",
         "PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;"},
        // An empty password passes. Quotes are doubled though this is no SQL; a semicolon
        // is not treated at all.
        {false, "SQL Server", "o'host", "o'neil", "", "li'b",
         "PROVIDER=MSDASQL;Driver=SQL Server;Server=o''host;UID=o''neil;PWD=;Database=li''b;"},
        {false, "SQL Server", "h", "u", "a;b", "d",
         "PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=a;b;Database=d;"},
        // A data source: no Driver= nor Server=, Database= only when the box held text.
        {true, "", "", "sa", "", "", "PROVIDER=MSDASQL;DSN=SomeDSN;UID=sa;PWD=;"},
        {true, "SQL Server", "old", "sa", "x", "kept",
         "PROVIDER=MSDASQL;DSN=SomeDSN;UID=sa;PWD=x;Database=kept;"},
    };
    for (const Case& c : cases) {
        const QString result = QString::fromUtf8(c.result);
        SCOPED_TRACE(c.result);
        shelltest::resetGlobals();
        boxes().clear();
        vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
        dlg().Unload();
        fill(QString::fromUtf8(c.driver), QString::fromUtf8(c.server), QString::fromUtf8(c.uid),
             QString::fromUtf8(c.pwd), QString::fromUtf8(c.db));
        if (c.named) {
            dsn()->addItem(u"SomeDSN"_s);
            chooseDsn(dsn()->count() - 1);
            EXPECT_FALSE(text("txtServer")->isEnabled() || drivers()->isEnabled() ||
                         text("txtDatabase")->isEnabled());
            EXPECT_TRUE(text("txtUID")->isEnabled());
        }
        shelltest::click(button("CmdOk"));
        if (!result.startsWith(u"PROVIDER")) {
            ASSERT_EQ(boxes().calls().size(), 1u);
            EXPECT_EQ(boxes().last().prompt, result);
            EXPECT_EQ(boxes().last().flags, 64);
            EXPECT_EQ(boxes().last().title, u"管理系统操作提示"_s);
            EXPECT_TRUE(dlg().isLoaded());
            EXPECT_EQ(dlg().window()->focusWidget(), text("txtUID"));
            EXPECT_EQ(vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile),
                      kNoProfile);
            if (c.named) { // "(None)" brings the boxes back
                chooseDsn(0);
                EXPECT_TRUE(text("txtServer")->isEnabled() && drivers()->isEnabled() &&
                            text("txtDatabase")->isEnabled());
            }
            continue;
        }
        EXPECT_TRUE(boxes().calls().empty());
        EXPECT_FALSE(dlg().isLoaded());
        EXPECT_EQ(vb::GetSetting(kSettingApp, kSettingSection, kSettingKey), result);
        EXPECT_EQ(gConnStr, result);
        EXPECT_EQ(gServer, QString::fromUtf8(c.server));
        EXPECT_EQ(gDatabase, QString::fromUtf8(c.db));
    }
    // Cancel changes nothing.
    vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, u"before"_s);
    shelltest::resetGlobals();
    fill(u"SQL Server"_s, u"h"_s, u"u"_s, QString(), u"d"_s);
    shelltest::click(button("CmdCancel"));
    EXPECT_FALSE(dlg().isLoaded());
    EXPECT_EQ(vb::GetSetting(kSettingApp, kSettingSection, kSettingKey), u"before"_s);
    EXPECT_TRUE(gConnStr.isEmpty());
}

// Enter in the driver box and in the text boxes moves on as Tab does.
TEST_F(FrmOdbcTest, EnterMovesOn) {
    QApplication::setActiveWindow(dlg().window());
    const std::pair<QWidget*, QWidget*> steps[] = {
        {drivers(), text("txtServer")},
        {text("txtServer"), text("txtUID")},
        {text("txtUID"), text("txtPWD")},
        {text("txtPWD"), text("txtDatabase")},
        {text("txtDatabase"), button("cmdCeshi")},
    };
    for (auto [from, to] : steps) {
        SCOPED_TRACE(from->objectName().toStdString());
        from->setFocus(Qt::OtherFocusReason);
        QTest::keyClick(from, Qt::Key_Return);
        QCoreApplication::processEvents();
        EXPECT_EQ(QApplication::focusWidget(), to);
    }
}

// A test through the real driver manager: a good SQLite file passes, an unknown driver
// fails into the last class; pointer and caption are back when the box shows.
TEST_F(FrmOdbcTest, TestConnectionPassesAndFails) {
    makeEmptyDatabase();
    auto watch = std::make_shared<WatchingBoxes>();
    auto previous = vb::setMsgBoxProvider(watch);
    fill(u"SQLite3"_s, u"local"_s, u"u"_s, QString(), dbPath());
    shelltest::click(button("cmdCeshi"));
    fill(u"OrvaneNoSuchDriver"_s, u"h"_s, u"u"_s, QString(), u"d"_s);
    shelltest::click(button("cmdCeshi"));
    vb::setMsgBoxProvider(previous);

    ASSERT_EQ(watch->calls.size(), 2u);
    EXPECT_EQ(watch->calls[0].prompt, u"测试通过！\r\n请保存连接参数！"_s);
    EXPECT_EQ(watch->calls[0].title, u"系统提示"_s);
    EXPECT_EQ(watch->calls[0].flags, 64);
    EXPECT_EQ(watch->captions[0], u"连接值"_s);
    EXPECT_EQ(watch->cursors[0], Qt::WaitCursor); // put back only after the box

    EXPECT_TRUE(watch->calls[1].prompt.startsWith(u"连接失败，请重试！！详细信息如下：\r\n"_s));
    EXPECT_GT(watch->calls[1].prompt.size(), 20);
    EXPECT_EQ(watch->calls[1].title, u"管理系统操作提示"_s);
    EXPECT_EQ(watch->captions[1], u"连接值"_s);
    EXPECT_EQ(watch->cursors[1], Qt::ArrowCursor);

    EXPECT_EQ(dlg().window()->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(dlg().isLoaded());
    EXPECT_EQ(vb::Err().Number, 0);
    EXPECT_EQ(vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile), kNoProfile);
}

TEST(FrmOdbcClassify, FailureClassesGoByTheEnglishText) {
    struct Case {
        const char* description;
        const char* head;
        const char* title;
    };
    const Case cases[] = {
        {"[Microsoft][ODBC SQL Server Driver][SQL Server]Login failed for user 'sa'.",
         "用户密码不正确，请再试一次！详细信息如下：", "操作提示"},
        {"[Microsoft][ODBC SQL Server Driver]Timeout expired (QueryTimeout property)",
         "连接数据源超时，请重试！！详细信息如下：", "管理系统操作提示"},
        // Another language, or another case, is just a failure.
        {"[Microsoft][ODBC SQL Server Driver][SQL Server]用户 'sa' 登录失败。",
         "连接失败，请重试！！详细信息如下：", "管理系统操作提示"},
        {"login failed", "连接失败，请重试！！详细信息如下：", "管理系统操作提示"},
    };
    for (const Case& c : cases) {
        const auto f = frmODBC::classifyFailure(QString::fromUtf8(c.description));
        EXPECT_EQ(f.text, QString::fromUtf8(c.head) + u"\r\n"_s + QString::fromUtf8(c.description));
        EXPECT_EQ(f.title, QString::fromUtf8(c.title));
    }
}

} // namespace
