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

namespace {

const QString kIncomplete = QStringLiteral("填写的信息不完整!请重新输入!");
const QString kNoUser = QStringLiteral("用户名不能为空!请重新输入!");

// Records, with each box, the dialog's pointer and frame caption at that moment.
class WatchingBoxes : public vb::MsgBoxProvider {
public:
    int show(const vb::MsgBoxCall& call) override {
        auto& f = vb::form<frmODBC>();
        calls.push_back(call);
        cursors.push_back(f.window()->cursor().shape());
        captions.push_back(f.ctl<QGroupBox>(QStringLiteral("fraStep3"))->title());
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
    QComboBox* dsn() { return dlg().ctl<QComboBox>(QStringLiteral("cboDSNList")); }
    QComboBox* drivers() { return dlg().ctl<QComboBox>(QStringLiteral("cboDrivers")); }
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

TEST_F(FrmOdbcTest, ListsAndLabels) {
    EXPECT_EQ(dlg().caption(), QStringLiteral("请设置要连接的数据库信息"));
    EXPECT_EQ(dsn()->itemText(0), QStringLiteral("(None)"));
    EXPECT_EQ(dsn()->currentIndex(), 0);
    ASSERT_EQ(drivers()->count(), 2);
    EXPECT_EQ(drivers()->itemText(0), QStringLiteral("SQL Server"));
    EXPECT_EQ(drivers()->itemText(1), QStringLiteral("Microsoft Access Driver (*.mdb)"));
    EXPECT_EQ(drivers()->currentText(), QStringLiteral("SQL Server"));
    // Every data source of the machine is offered, after "(None)".
    QStringList offered;
    for (int i = 1; i < dsn()->count(); ++i) offered << dsn()->itemText(i);
    QStringList machine;
    for (const auto& s : adodb::dataSources()) machine << s.name;
    EXPECT_EQ(offered, machine);
    EXPECT_EQ(text("txtPWD")->echoMode(), QLineEdit::Password);
    EXPECT_EQ(button("cmdCeshi")->text(), QStringLiteral("测试(&C)"));
    EXPECT_EQ(button("CmdOk")->text(), QStringLiteral("保存(&D)"));
    EXPECT_EQ(button("CmdCancel")->text(), QStringLiteral("取消(&Q)"));
    // The labels lead to their boxes (access keys).
    for (auto* l : dlg().window()->findChildren<QLabel*>())
        if (l->text() == QStringLiteral("服务器(&S):")) {
            EXPECT_EQ(l->buddy(), text("txtServer"));
        }
}

// A user data source of this run's own ODBC settings shows up in the list.
TEST_F(FrmOdbcTest, UserDataSourcesAreListed) {
    const QString ini = tempPath() + QStringLiteral("/odbc.ini");
    {
        QFile f(ini);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("[OrvaneShellTestDSN]\nDriver=SQLite3\nDatabase=/nonexistent.db\n");
    }
    const QByteArray previous = qgetenv("ODBCINI");
    qputenv("ODBCINI", ini.toLocal8Bit());
    dlg().Unload();
    const bool found = dlg()
                           .ctl<QComboBox>(QStringLiteral("cboDSNList"))
                           ->findText(QStringLiteral("OrvaneShellTestDSN")) > 0;
    if (previous.isNull())
        qunsetenv("ODBCINI");
    else
        qputenv("ODBCINI", previous);
    EXPECT_TRUE(found);
}

TEST_F(FrmOdbcTest, ChoosingADataSourceGreysOutServerDriverAndDatabase) {
    dsn()->addItem(QStringLiteral("SomeDSN")); // whatever the machine has
    const int i = dsn()->count() - 1;
    chooseDsn(i);
    EXPECT_FALSE(text("txtServer")->isEnabled());
    EXPECT_FALSE(drivers()->isEnabled());
    EXPECT_FALSE(text("txtDatabase")->isEnabled());
    EXPECT_TRUE(text("txtUID")->isEnabled());
    chooseDsn(0);
    EXPECT_TRUE(text("txtServer")->isEnabled());
    EXPECT_TRUE(drivers()->isEnabled());
    EXPECT_TRUE(text("txtDatabase")->isEnabled());
}

TEST_F(FrmOdbcTest, InputChecks) {
    struct Case {
        bool named;
        const char* driver;
        const char* server;
        const char* uid;
        const char* db;
        const char* message; // "" = passes (and is saved)
    };
    const Case cases[] = {
        {false, "SQL Server", "h", "", "d", "填写的信息不完整!请重新输入!"},
        {false, "SQL Server", "", "u", "d", "填写的信息不完整!请重新输入!"},
        {false, "SQL Server", "h", "u", "", "填写的信息不完整!请重新输入!"},
        {false, "", "h", "u", "d", "填写的信息不完整!请重新输入!"},
        {false, "SQL Server", "h", "u", "d", ""}, // an empty password passes
        {true, "", "", "", "", "用户名不能为空!请重新输入!"},
        {true, "", "", "u", "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.named ? "DSN " : "driver ") + c.driver + "/" + c.server + "/" +
                     c.uid + "/" + c.db);
        boxes().clear();
        vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
        dlg().Unload();
        if (c.named) {
            dsn()->addItem(QStringLiteral("SomeDSN"));
            chooseDsn(dsn()->count() - 1);
        }
        fill(QString::fromUtf8(c.driver), QString::fromUtf8(c.server), QString::fromUtf8(c.uid),
             QString(), QString::fromUtf8(c.db));
        shelltest::click(button("CmdOk"));
        if (*c.message) {
            ASSERT_EQ(boxes().calls().size(), 1u);
            EXPECT_EQ(boxes().last().prompt, QString::fromUtf8(c.message));
            EXPECT_EQ(boxes().last().flags, 64);
            EXPECT_EQ(boxes().last().title, QStringLiteral("管理系统操作提示"));
            EXPECT_TRUE(dlg().isLoaded());
            EXPECT_EQ(vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile),
                      kNoProfile);
        } else {
            EXPECT_TRUE(boxes().calls().empty());
            EXPECT_FALSE(dlg().isLoaded());
            EXPECT_NE(vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile),
                      kNoProfile);
        }
    }
}

TEST_F(FrmOdbcTest, SaveBuildsTheProfileAndSetsTheNames) {
    struct Case {
        bool named;
        const char* server;
        const char* uid;
        const char* pwd;
        const char* db;
        const char* profile;
    };
    const Case cases[] = {
        {false, "h", "u", "p", "d",
         "PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;"},
        // Quotes doubled in the typed values, though this is no SQL.
        {false, "o'host", "o'neil", "pa'ss", "li'b",
         "PROVIDER=MSDASQL;Driver=SQL "
         "Server;Server=o''host;UID=o''neil;PWD=pa''ss;Database=li''b;"},
        // A semicolon is not treated at all.
        {false, "h", "u", "a;b", "d",
         "PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=a;b;Database=d;"},
        // A data source: no Driver= nor Server=, Database= only when the box held text.
        {true, "", "sa", "", "", "PROVIDER=MSDASQL;DSN=SomeDSN;UID=sa;PWD=;"},
        {true, "old", "sa", "x", "kept",
         "PROVIDER=MSDASQL;DSN=SomeDSN;UID=sa;PWD=x;Database=kept;"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.profile);
        shelltest::resetGlobals();
        dlg().Unload();
        fill(QStringLiteral("SQL Server"), QString::fromUtf8(c.server), QString::fromUtf8(c.uid),
             QString::fromUtf8(c.pwd), QString::fromUtf8(c.db));
        if (c.named) {
            dsn()->addItem(QStringLiteral("SomeDSN"));
            chooseDsn(dsn()->count() - 1);
        }
        shelltest::click(button("CmdOk"));
        EXPECT_FALSE(dlg().isLoaded());
        EXPECT_EQ(vb::GetSetting(kSettingApp, kSettingSection, kSettingKey),
                  QString::fromUtf8(c.profile));
        EXPECT_EQ(gConnStr, QString::fromUtf8(c.profile));
        // The names as typed, from the boxes even when they are greyed out.
        EXPECT_EQ(gServer, QString::fromUtf8(c.server));
        EXPECT_EQ(gDatabase, QString::fromUtf8(c.db));
    }
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

TEST_F(FrmOdbcTest, CancelChangesNothing) {
    vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, QStringLiteral("before"));
    fill(QStringLiteral("SQL Server"), QStringLiteral("h"), QStringLiteral("u"), QString(),
         QStringLiteral("d"));
    shelltest::click(button("CmdCancel"));
    EXPECT_FALSE(dlg().isLoaded());
    EXPECT_EQ(vb::GetSetting(kSettingApp, kSettingSection, kSettingKey), QStringLiteral("before"));
    EXPECT_TRUE(gConnStr.isEmpty());
}

// A test through the real driver manager: a good SQLite file passes, an unknown driver
// fails into the last class; pointer and caption are back when the box shows.
TEST_F(FrmOdbcTest, TestConnectionPassesAndFails) {
    makeEmptyDatabase();
    auto watch = std::make_shared<WatchingBoxes>();
    auto previous = vb::setMsgBoxProvider(watch);
    fill(QStringLiteral("SQLite3"), QStringLiteral("local"), QStringLiteral("u"), QString(),
         dbPath());
    shelltest::click(button("cmdCeshi"));
    fill(QStringLiteral("OrvaneNoSuchDriver"), QStringLiteral("h"), QStringLiteral("u"), QString(),
         QStringLiteral("d"));
    shelltest::click(button("cmdCeshi"));
    vb::setMsgBoxProvider(previous);

    ASSERT_EQ(watch->calls.size(), 2u);
    EXPECT_EQ(watch->calls[0].prompt, QStringLiteral("测试通过！\r\n请保存连接参数！"));
    EXPECT_EQ(watch->calls[0].title, QStringLiteral("系统提示"));
    EXPECT_EQ(watch->calls[0].flags, 64);
    EXPECT_EQ(watch->captions[0], QStringLiteral("连接值"));
    EXPECT_EQ(watch->cursors[0], Qt::WaitCursor); // put back only after the box

    EXPECT_TRUE(watch->calls[1].prompt.startsWith(
        QStringLiteral("连接失败，请重试！！详细信息如下：\r\n")));
    EXPECT_GT(watch->calls[1].prompt.size(), 20);
    EXPECT_EQ(watch->calls[1].title, QStringLiteral("管理系统操作提示"));
    EXPECT_EQ(watch->captions[1], QStringLiteral("连接值"));
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
        {"[unixODBC][Driver Manager]Data source name not found",
         "连接失败，请重试！！详细信息如下：", "管理系统操作提示"},
    };
    for (const Case& c : cases) {
        const auto f = frmODBC::classifyFailure(QString::fromUtf8(c.description));
        EXPECT_EQ(f.text, QString::fromUtf8(c.head) + QStringLiteral("\r\n") +
                              QString::fromUtf8(c.description));
        EXPECT_EQ(f.title, QString::fromUtf8(c.title));
    }
}

} // namespace
