// The connection dialog: data sources of the machine, the input checks, the profile it
// builds, test and save.
#include "shelltest.h"

#include "shell/frmODBC.h"

#include <QComboBox>
#include <QFile>
#include <QGroupBox>

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
    bool serverBoxesOn() {
        return text("txtServer")->isEnabled() && drivers()->isEnabled() &&
               text("txtDatabase")->isEnabled();
    }
    void click(const char* n) { shelltest::click(dlg().ctl<QPushButton>(QString::fromLatin1(n))); }
    QString stored() {
        return vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile);
    }
};

// "(None)" first, then the data sources (here one of this run's own user settings); the
// two fixed drivers, whatever the machine has. Enter walks the boxes as Tab does.
TEST_F(FrmOdbcTest, ListsOfDataSourcesAndDriversAndEnterMovesOn) {
    QApplication::setActiveWindow(dlg().window());
    drivers()->setFocus(Qt::OtherFocusReason);
    for (const char* next : {"txtServer", "txtUID", "txtPWD", "txtDatabase", "cmdCeshi"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCoreApplication::processEvents();
        ASSERT_EQ(QApplication::focusWidget(), dlg().ctl<QWidget>(QString::fromLatin1(next)));
    }
    const QString ini = tempPath() + u"/odbc.ini"_s;
    QFile f(ini);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("[OrvaneShellTestDSN]\nDriver=SQLite3\nDatabase=/nonexistent.db\n");
    f.close();
    const QByteArray previous = qgetenv("ODBCINI");
    qputenv("ODBCINI", ini.toLocal8Bit());
    dlg().Unload();
    const int found = dsn()->findText(u"OrvaneShellTestDSN"_s);
    previous.isNull() ? qunsetenv("ODBCINI") : qputenv("ODBCINI", previous);
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
    const char* incomplete = "填写的信息不完整!请重新输入!";
    const struct {
        bool named;
        const char *driver, *server, *uid, *pwd, *db, *result; // the message or the profile
    } cases[] = {
        {false, "SQL Server", "h", "", "", "d", incomplete},
        {false, "SQL Server", "", "u", "", "d", incomplete},
        {false, "SQL Server", "h", "u", "", "", incomplete},
        {false, "", "h", "u", "", "d", incomplete},
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
    for (const auto& c : cases) {
        const QString result = QString::fromUtf8(c.result);
        SCOPED_TRACE(c.result);
        shelltest::resetGlobals();
        boxes().clear();
        vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
        dlg().Unload();
        fill(c.driver, c.server, c.uid, c.pwd, c.db);
        if (c.named) {
            dsn()->addItem(u"SomeDSN"_s);
            chooseDsn(dsn()->count() - 1);
            EXPECT_FALSE(text("txtServer")->isEnabled() || drivers()->isEnabled() ||
                         text("txtDatabase")->isEnabled());
            EXPECT_TRUE(text("txtUID")->isEnabled());
        }
        click("CmdOk");
        if (!result.startsWith(u"PROVIDER")) {
            ASSERT_EQ(boxes().calls().size(), 1u);
            EXPECT_EQ(shelltest::lastBox(), std::tuple(result, 64, u"管理系统操作提示"_s));
            EXPECT_TRUE(dlg().isLoaded());
            EXPECT_EQ(dlg().window()->focusWidget(), text("txtUID"));
            EXPECT_EQ(stored(), kNoProfile);
            if (c.named) chooseDsn(0); // "(None)" brings the boxes back
            EXPECT_TRUE(!c.named || serverBoxesOn());
            continue;
        }
        EXPECT_TRUE(boxes().calls().empty());
        EXPECT_FALSE(dlg().isLoaded());
        EXPECT_EQ(stored(), result);
        EXPECT_EQ(gConnStr, result);
        EXPECT_EQ(gServer, QString::fromUtf8(c.server));
        EXPECT_EQ(gDatabase, QString::fromUtf8(c.db));
    }
    // Cancel changes nothing.
    vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, u"before"_s);
    shelltest::resetGlobals();
    fill("SQL Server", "h", "u", "", "d");
    click("CmdCancel");
    EXPECT_FALSE(dlg().isLoaded());
    EXPECT_EQ(stored(), u"before"_s);
    EXPECT_TRUE(gConnStr.isEmpty());
}

// A test through the real driver manager: a good SQLite file passes, an unknown driver
// fails into the last class; pointer and caption are back when the box shows.
TEST_F(FrmOdbcTest, TestConnectionPassesAndFails) {
    makeEmptyDatabase();
    auto watch = std::make_shared<WatchingBoxes>();
    auto previous = vb::setMsgBoxProvider(watch);
    fill("SQLite3", "local", "u", "", dbPath());
    click("cmdCeshi");
    fill("OrvaneNoSuchDriver", "h", "u", "", "d");
    click("cmdCeshi");
    vb::setMsgBoxProvider(previous);
    const auto& c = watch->calls;
    ASSERT_EQ(c.size(), 2u);
    EXPECT_EQ(std::tuple(c[0].prompt, c[0].title, c[0].flags),
              std::tuple(u"测试通过！\r\n请保存连接参数！"_s, u"系统提示"_s, 64));
    EXPECT_EQ(watch->cursors[0], Qt::WaitCursor); // put back only after the box
    EXPECT_TRUE(c[1].prompt.startsWith(u"连接失败，请重试！！详细信息如下：\r\n"_s));
    EXPECT_GT(c[1].prompt.size(), 20);
    EXPECT_EQ(c[1].title, u"管理系统操作提示"_s);
    EXPECT_EQ(watch->cursors[1], Qt::ArrowCursor);
    EXPECT_EQ(watch->captions, (QStringList{u"连接值"_s, u"连接值"_s}));
    EXPECT_EQ(dlg().window()->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(dlg().isLoaded());
    EXPECT_EQ(vb::Err().Number, 0);
    EXPECT_EQ(stored(), kNoProfile);
}

TEST(FrmOdbcClassify, FailureClassesGoByTheEnglishText) {
    const char* failed = "连接失败，请重试！！详细信息如下：";
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"[Microsoft][ODBC SQL Server Driver][SQL Server]Login failed for user 'sa'.",
         "用户密码不正确，请再试一次！详细信息如下：", "操作提示"},
        {"[Microsoft][ODBC SQL Server Driver]Timeout expired (QueryTimeout property)",
         "连接数据源超时，请重试！！详细信息如下：", "管理系统操作提示"},
        // Another language, or another case, is just a failure.
        {"[Microsoft][ODBC SQL Server Driver][SQL Server]用户 'sa' 登录失败。", failed,
         "管理系统操作提示"},
        {"login failed", failed, "管理系统操作提示"},
    };
    for (auto [description, head, title] : cases) {
        const auto f = frmODBC::classifyFailure(QString::fromUtf8(description));
        EXPECT_EQ(f.text, QString::fromUtf8(head) + u"\r\n"_s + QString::fromUtf8(description));
        EXPECT_EQ(f.title, QString::fromUtf8(title));
    }
}

} // namespace
