// Start-up (the single instance, the stored profile, the names cut out of it, the order
// of the first windows), the login against a database made by the database tool
// (admin/admin has the right, guest/guest has not), the connection dialog and the password
// change, through the real ODBC path.
#include "modalscript.h"
#include "shelltest.h"

#include "platform/adodb.h"
#include "platform/vb.h"
#include "shell/BMLoginFrm.h"
#include "shell/EditPassFrm.h"
#include "shell/Mainfrm.h"
#include "shell/frmLook.h"
#include "shell/frmODBC.h"
#include "shell/modMain.h"

#include <QComboBox>
#include <QLabel>
#include <QLockFile>
#include <QUuid>

namespace {

void store(const QString& v) {
    vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, v);
}

template <class F> void press(F& f, const QString& button) {
    QTest::mouseClick(f.template ctl<QPushButton>(button), Qt::LeftButton);
}

const QString kWrong = u"用户名或用户密码输入错误，请核对后输入。"_s;
const QString kAskDialog = u"]\r\n是否重新输入连接数据库的信息？"_s;

class ShellTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        // Our own instance name, so a client or another test run never gets in the way.
        vb::releaseInstanceLock();
        setInstanceKey(u"OrvaneCG-test-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces));
        makeDatabase(false);
    }
    void TearDown() override {
        vb::releaseInstanceLock();
        DbTest::TearDown();
    }
    BMLoginFrm& login() { return vb::form<BMLoginFrm>(); }
    QLineEdit* name() { return login().ctl<QLineEdit>(u"txtInName"_s); }
    QLineEdit* password() { return login().ctl<QLineEdit>(u"txtInPassword"_s); }
    void attempt(const QString& n, const QString& p) {
        name()->setText(n);
        password()->setText(p);
        press(login(), u"cmdLogin"_s);
    }
    static void cancel(frmODBC& f) { press(f, u"CmdCancel"_s); }
    EditPassFrm& editPass() { return vb::form<EditPassFrm>(); }
    void change(const QString& oldPw, const QString& newPw, const QString& again) {
        const QString typed[] = {oldPw, newPw, again};
        for (int i = 0; i < 3; ++i) editPass().ctl<QLineEdit>(u"Text1"_s, i)->setText(typed[i]);
        press(editPass(), u"CmdOk"_s);
    }
    frmODBC& dlg() { return vb::form<frmODBC>(); }
    QComboBox* dsn() { return dlg().ctl<QComboBox>(u"cboDSNList"_s); }
    // "driver|server|user|password|database" into the boxes.
    void fill(const QString& typed) {
        const QStringList v = typed.split(u'|');
        dlg().ctl<QComboBox>(u"cboDrivers"_s)->setEditText(v[0]);
        const char* names[] = {"txtServer", "txtUID", "txtPWD", "txtDatabase"};
        for (int i = 0; i < 4; ++i)
            dlg().ctl<QLineEdit>(QString::fromLatin1(names[i]))->setText(v[i + 1]);
    }
    void chooseDsn(int index) {
        dsn()->setCurrentIndex(index);
        Q_EMIT dsn()->activated(index);
    }
    // Which of server, driver, user and database take input, as "1101".
    QString enabled() {
        QString out;
        for (const char* n : {"txtServer", "cboDrivers", "txtUID", "txtDatabase"})
            out += dlg().ctl<QWidget>(QString::fromLatin1(n))->isEnabled() ? u'1' : u'0';
        return out;
    }
    QString stored() {
        return vb::GetSetting(kSettingApp, kSettingSection, kSettingKey, kNoProfile);
    }
};

TEST_F(ShellTest, SecondInstanceIsRefusedAndEnds) {
    QLockFile other(vb::instanceLockPath(instanceKey()));
    other.setStaleLockTime(0);
    ASSERT_TRUE(other.tryLock(0));
    store(u"PROVIDER=MSDASQL;DSN=x;"_s);
    EXPECT_THROW(Main(), vb::ProcessEnded);
    EXPECT_EQ(boxes().prompts(), QStringList{u"程序已经运行，不能再次装载。"_s});
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_FALSE(vb::FormRegistry::exists<BMLoginFrm>());
    EXPECT_TRUE(gConnStr.isEmpty()); // ended before the profile was read
}

// With no profile (nothing stored, or "NotExsists" stored) the dialog comes first, then
// the login; with one, straight the login, with server and database cut out of it. The
// script takes the forms in order and fails when one does not come.
TEST_F(ShellTest, ProfileDecidesTheFirstWindowsAndTheNamesCut) {
    const struct {
        const char *profile, *server, *database; // profile nullptr: nothing stored
    } cases[] = {
        {nullptr, "", ""},
        {"NotExsists", "", ""},
        {"PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;", "h", "d"},
        {"PROVIDER=MSDASQL;XServer=abc;UID=u;", "=abc", ""}, // found anywhere, cut by length
        {"Server=one;Server=two;Database=a;Database=b", "two", "b"}, // the later one wins
        {"", "", ""}, // no default: split, and on to the login
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.profile ? c.profile : "nothing stored");
        shelltest::resetGlobals();
        vb::releaseInstanceLock();
        c.profile ? store(QString::fromUtf8(c.profile))
                  : vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
        {
            ModalScript script;
            if (!c.profile || QString::fromUtf8(c.profile) == kNoProfile)
                script.on<frmODBC>([](frmODBC& f) { press(f, u"CmdCancel"_s); });
            script.on<BMLoginFrm>([](BMLoginFrm& f) { press(f, u"cmdExit"_s); });
            Main();
        }
        EXPECT_EQ(gConnStr, c.profile ? QString::fromUtf8(c.profile) : kNoProfile);
        EXPECT_EQ(gServer, QString::fromUtf8(c.server));
        EXPECT_EQ(gDatabase, QString::fromUtf8(c.database));
        EXPECT_FALSE(vb::form<BMLoginFrm>().isLoaded());
        EXPECT_TRUE(boxes().calls().empty());
    }
}

// Three wrong answers end the process; a quote in the name (which never reaches the
// database), a quote in the password and a broken connection do not count.
TEST_F(ShellTest, ThreeWrongLoginsEndTheProcessNothingElseCounts) {
    login().Show(0);
    store(shelltest::brokenProfile()); // were the name sent, the connection question would come
    attempt(u"o'brien"_s, u"x"_s);
    store(profile());
    boxes().answer(vb::vbNo);
    attempt(u"admin"_s, u"ad'min"_s);                  // a syntax error: the connection question
    EXPECT_FALSE(vb::FormRegistry::exists<frmODBC>()); // No: no dialog
    attempt(u"admin"_s, u"nope"_s);
    store(shelltest::brokenProfile());
    boxes().answer(vb::vbYes); // the dialog, and nothing retried when it closes
    {
        ModalScript script;
        script.on<frmODBC>(cancel);
        attempt(u"admin"_s, u"admin"_s);
    }
    store(profile());
    attempt(u"nobody"_s, u"admin"_s);
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_EQ(login().window()->focusWidget(), name());
    attempt(u"admin"_s, u"still wrong"_s);

    const QStringList p = boxes().prompts();
    ASSERT_EQ(p.size(), 6) << p.join(u'|').toStdString();
    EXPECT_TRUE(p[1].startsWith(u'[') && p[1].endsWith(kAskDialog));
    // The text is that of the statement run on the connection that did not open.
    const QString closed = u'[' + adodb::adoErrorText(adodb::adErrObjectClosed) + kAskDialog;
    EXPECT_EQ(p, (QStringList{u"用户名或者密码不能包含【'】符号！"_s, p[1], kWrong, closed, kWrong,
                              u"对不起，已经三次输入错误，退出该系统。"_s}));
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
}

// No profile: the question comes back after each Yes and cancelled dialog, until No. A
// profile saved from it is used by the retried click; Enter in the password logs in, and
// the name as typed, trailing blanks and all, becomes the operator's name.
TEST_F(ShellTest, NoProfileAsksUntilOneIsSavedThenTheFrameAndStartScreenCome) {
    login().Show(0);
    vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
    boxes().answer({vb::vbYes, vb::vbYes, vb::vbNo, vb::vbYes});
    {
        ModalScript script;
        script.on<frmODBC>(cancel).on<frmODBC>(cancel);
        attempt(u"admin"_s, u"admin"_s);
    }
    EXPECT_EQ(gConnStr, kNoProfile);
    EXPECT_TRUE(login().isLoaded());
    gServer = u"srv"_s;
    gDatabase = u"lib"_s;
    {
        ModalScript script;
        script.on<frmODBC>([good = profile()](frmODBC& f) {
            store(good);
            f.Unload();
        });
        name()->setText(u"admin  "_s);
        password()->setText(u"admin"_s);
        QTest::keyClick(password(), Qt::Key_Return);
    }
    EXPECT_EQ(boxes().prompts(), QStringList(4, u"无法取得正确连接数据库的信息!现在输入吗?"_s));
    EXPECT_EQ(gUserName, u"admin  "_s);
    EXPECT_EQ(gLoginName, gUserName);
    EXPECT_EQ(gConnStr, profile());
    EXPECT_FALSE(login().isLoaded());
    ASSERT_TRUE(vb::form<Mainfrm>().isVisible());
    EXPECT_TRUE(vb::form<frmLook>().isVisible());
    auto panel = [](int i) { return vb::form<Mainfrm>().ctl<QLabel>(u"Panel%1"_s.arg(i))->text(); };
    EXPECT_EQ(panel(2), u"操作员：  admin  "_s);
    EXPECT_EQ(panel(3), u"当前数据库：srv上的【lib】"_s);
}

// A user without the right, or with NULL for it, is refused and the process ends.
TEST_F(ShellTest, NoRightOrNullRightEndsTheProcess) {
    login().Show(0);
    for (const char* update : {"", "UPDATE LibUse SET cgk=NULL WHERE username='guest'"}) {
        SCOPED_TRACE(*update ? "NULL right" : "right false");
        boxes().clear();
        App::resetEndCount();
        if (*update) testsupport::execSqlite(dbPath(), QString::fromUtf8(update));
        attempt(u"guest"_s, u"guest"_s);
        EXPECT_EQ(boxes().prompts(), QStringList{u"对不起，你没有使用“图书采购子系统”的权限。"_s});
        EXPECT_EQ(testsupport::processEnds(), 1);
        EXPECT_TRUE(gUserName.isEmpty());
        EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
    }
}

// Each row: the three boxes, the answer to the empty-password question, the last box,
// LibUse.password afterwards, and whether the form stays (with nothing cleared). Then a
// database that fails keeps the form and the password; a user deleted meanwhile is told
// so and the form closes.
TEST_F(ShellTest, EveryPathOfThePasswordChange) {
    gConnStr = profile();
    gLoginName = u"admin"_s;
    const char* quote = "用户名或者密码中不能包含【'】符号！";
    const char* mismatch = "两次输入的密码不相符，请重新输入";
    const char* wrongOld = "你输入的密码与登陆密码不符";
    const char* done = "密码修改成功！请使用新密码！";
    const struct {
        const char *oldPw, *newPw, *again;
        int answer;
        const char *message, *after;
        bool staysOpen;
    } cases[] = {
        {"ad'min", "x", "x", 0, quote, "admin", true},
        {"admin", "xy", "x'y", 0, mismatch, "admin", true}, // quote in the confirmation
        {"ADMIN", "new", "new", 0, wrongOld, "admin", true},
        {"admin", "", "", vb::vbNo, "你输入的密码是空的，确定要把密码设为空吗？(Y/N)", "admin",
         true},
        {"admin", "s3cret", "s3cret", 0, done, "s3cret", false},
        {"s3cret", "", "", vb::vbYes, done, "", false}, // the success after Yes
    };
    const QString passwordNow =
        u"select coalesce(password,'<null>') from LibUse where username='admin'"_s;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.oldPw) + "/" + c.newPw + "/" + c.again);
        boxes().clear();
        if (!editPass().isLoaded()) editPass().Show(0);
        if (c.answer) boxes().answer(c.answer);
        change(c.oldPw, c.newPw, c.again);
        ASSERT_EQ(boxes().calls().size(), c.answer == vb::vbYes ? 2u : 1u)
            << boxes().prompts().join(u'|').toStdString();
        EXPECT_EQ(boxes().last().prompt, QString::fromUtf8(c.message));
        EXPECT_EQ(testsupport::querySqlite(dbPath(), passwordNow), QString::fromUtf8(c.after));
        EXPECT_EQ(editPass().isLoaded(), c.staysOpen);
        EXPECT_TRUE(!c.staysOpen || editPass().ctl<QLineEdit>(u"Text1"_s, 0)->text() ==
                                        QString::fromUtf8(c.oldPw)); // not cleared
    }
    editPass().Show(0);
    const QString good = gConnStr;
    gConnStr = shelltest::brokenProfile();
    change(u"s3cret"_s, u"x"_s, u"x"_s);
    EXPECT_EQ(boxes().last().prompt, u"密码修改失败！请使用原密码！"_s);
    EXPECT_TRUE(editPass().isLoaded());
    gConnStr = good;
    testsupport::execSqlite(dbPath(), u"DELETE FROM LibUse WHERE username='admin'"_s);
    change(u"s3cret"_s, u"x"_s, u"x"_s);
    EXPECT_EQ(boxes().last().prompt, u"当前用户已经被删除！"_s);
    EXPECT_FALSE(editPass().isLoaded());
}

// Each row fills the dialog and saves: refused with its message and nothing stored, or
// the profile stored and taken at once, with the names as typed (also from boxes greyed
// out by a chosen data source, which "(None)" brings back).
TEST_F(ShellTest, ConnectionDialogChecksTheInputAndSavesTheProfile) {
    dlg().Show(0);
    const char* incomplete = "填写的信息不完整!请重新输入!";
    const struct {
        bool named;
        const char *typed, *result; // the message or the profile
    } cases[] = {
        {false, "SQL Server|h|||d", incomplete},
        {false, "|h|u||d", incomplete},
        {true, "||||", "用户名不能为空!请重新输入!"},
        {false, "SQL Server|h|u|p|d",
         "PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;"},
        // An empty password passes. Quotes are doubled though this is no SQL.
        {false, "SQL Server|o'host|o'neil||li'b",
         "PROVIDER=MSDASQL;Driver=SQL Server;Server=o''host;UID=o''neil;PWD=;Database=li''b;"},
        // A data source: no Driver= nor Server=, Database= only when the box held text.
        {true, "||sa||", "PROVIDER=MSDASQL;DSN=SomeDSN;UID=sa;PWD=;"},
        {true, "SQL Server|old|sa|x|kept",
         "PROVIDER=MSDASQL;DSN=SomeDSN;UID=sa;PWD=x;Database=kept;"},
    };
    for (const auto& c : cases) {
        const QString result = QString::fromUtf8(c.result);
        const QStringList typed = QString::fromUtf8(c.typed).split(u'|');
        SCOPED_TRACE(c.typed);
        shelltest::resetGlobals();
        boxes().clear();
        vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
        dlg().Unload();
        fill(QString::fromUtf8(c.typed));
        if (c.named) {
            dsn()->addItem(u"SomeDSN"_s);
            chooseDsn(dsn()->count() - 1);
            EXPECT_EQ(enabled(), u"0010"_s);
        }
        press(dlg(), u"CmdOk"_s);
        const bool saved = result.startsWith(u"PROVIDER");
        EXPECT_EQ(boxes().prompts(), saved ? QStringList() : QStringList{result});
        EXPECT_EQ(dlg().isLoaded(), !saved);
        EXPECT_EQ(stored(), saved ? result : kNoProfile);
        if (saved) {
            EXPECT_EQ(gConnStr, result);
            EXPECT_EQ(QStringList({gServer, gDatabase}), QStringList({typed[1], typed[4]}));
            continue;
        }
        EXPECT_EQ(dlg().window()->focusWidget(), dlg().ctl<QWidget>(u"txtUID"_s));
        chooseDsn(0);
        EXPECT_EQ(enabled(), u"1111"_s);
    }
}

// A test through the real driver manager: a good SQLite file passes, an unknown driver
// fails into the last class, and the dialog stays with the stored profile untouched.
TEST_F(ShellTest, ConnectionDialogTestPassesAndFails) {
    dlg().Show(0);
    for (const QString& typed :
         {u"SQLite3|local|u||"_s + dbPath(), u"OrvaneNoSuchDriver|h|u||d"_s}) {
        fill(typed);
        press(dlg(), u"cmdCeshi"_s);
    }
    const QStringList seen = boxes().prompts();
    ASSERT_EQ(seen.size(), 2);
    EXPECT_EQ(seen[0], u"测试通过！\r\n请保存连接参数！"_s);
    const QString failed = u"连接失败，请重试！！详细信息如下：\r\n"_s;
    EXPECT_TRUE(seen[1].startsWith(failed) && seen[1].size() > failed.size())
        << seen[1].toStdString();
    EXPECT_EQ(dlg().window()->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(dlg().isLoaded());
    EXPECT_EQ(stored(), profile());
}

} // namespace
