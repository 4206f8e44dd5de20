// Start-up (the single instance, the stored profile, the names cut out of it, the order
// of the first windows), the login against a database made by the database tool
// (admin/admin has the right, guest/guest has not) and the password change, through the
// real ODBC path.
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

#include <QLabel>
#include <QLockFile>
#include <QUuid>

namespace {

void store(const QString& v) {
    vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, v);
}

class MainTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        // Our own instance name, so a client or another test run never gets in the way.
        vb::releaseInstanceLock();
        setInstanceKey(u"OrvaneCG-test-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces));
    }
    void TearDown() override {
        vb::releaseInstanceLock();
        DbTest::TearDown();
    }
};

TEST_F(MainTest, SecondInstanceIsRefusedAndEnds) {
    QLockFile other(vb::instanceLockPath(instanceKey()));
    other.setStaleLockTime(0);
    ASSERT_TRUE(other.tryLock(0));
    store(u"PROVIDER=MSDASQL;DSN=x;"_s);
    EXPECT_THROW(Main(), vb::ProcessEnded);
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(shelltest::lastBox(),
              std::tuple(u"程序已经运行，不能再次装载。"_s, 64, u"操作提示"_s));
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_FALSE(vb::FormRegistry::exists<BMLoginFrm>());
    EXPECT_TRUE(gConnStr.isEmpty()); // ended before the profile was read
}

// With no profile (nothing stored, or "NotExsists" stored) the dialog comes first, then
// the login; with one, straight the login, with server and database cut out of it.
TEST_F(MainTest, ProfileDecidesTheFirstWindowsAndTheNamesCut) {
    const struct {
        const char *profile, *server, *database; // profile nullptr: nothing stored
    } cases[] = {
        {nullptr, "", ""},
        {"NotExsists", "", ""},
        {"PROVIDER=MSDASQL;Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;", "h", "d"},
        {"PROVIDER=MSDASQL;XServer=abc;UID=u;", "=abc", ""}, // found anywhere, cut by length
        {"PROVIDER=MSDASQL;DSN=Orvane;UID=u;PWD=p;", "", ""},
        {"PROVIDER=MSDASQL;DSN=Orvane;UID=u;PWD=p;Database=lib;", "", "lib"},
        {"Server=one;Server=two;Database=a;Database=b", "two", "b"}, // the later one wins
        {"", "", ""}, // no default: split, and on to the login
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.profile ? c.profile : "nothing stored");
        shelltest::resetGlobals();
        vb::releaseInstanceLock();
        c.profile ? store(QString::fromUtf8(c.profile))
                  : vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
        QStringList order;
        {
            ModalScript script;
            if (!c.profile || QString::fromUtf8(c.profile) == kNoProfile)
                script.on<frmODBC>([&](frmODBC& f) {
                    order << f.caption();
                    shelltest::click(f.ctl<QPushButton>(u"CmdCancel"_s));
                });
            script.on<BMLoginFrm>([&](BMLoginFrm& f) {
                order << f.caption();
                shelltest::click(f.ctl<QPushButton>(u"cmdExit"_s));
            });
            Main();
        }
        EXPECT_EQ(order.last(), u"Orvane图书馆管理系统-------采购子系统"_s);
        EXPECT_TRUE(order.size() == 1 || order.first() == u"请设置要连接的数据库信息"_s);
        EXPECT_EQ(gConnStr, c.profile ? QString::fromUtf8(c.profile) : kNoProfile);
        EXPECT_EQ(gServer, QString::fromUtf8(c.server));
        EXPECT_EQ(gDatabase, QString::fromUtf8(c.database));
        EXPECT_FALSE(vb::form<BMLoginFrm>().isLoaded());
        EXPECT_TRUE(boxes().calls().empty());
    }
}

const QString kWrong = u"用户名或用户密码输入错误，请核对后输入。"_s;
const QString kAskDialog = u"]\r\n是否重新输入连接数据库的信息？"_s;

class LoginTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        makeDatabase(false);
        login().Show(0);
    }
    BMLoginFrm& login() { return vb::form<BMLoginFrm>(); }
    QLineEdit* name() { return login().ctl<QLineEdit>(u"txtInName"_s); }
    QLineEdit* password() { return login().ctl<QLineEdit>(u"txtInPassword"_s); }
    void attempt(const QString& n, const QString& p) {
        name()->setText(n);
        password()->setText(p);
        shelltest::click(login().ctl<QPushButton>(u"cmdLogin"_s));
    }
    static void cancel(frmODBC& f) { shelltest::click(f.ctl<QPushButton>(u"CmdCancel"_s)); }
};

// Three wrong answers end the process; a quote in the name (which never reaches the
// database), a quote in the password and a broken connection do not count.
TEST_F(LoginTest, ThreeWrongAnswersEndTheProcessNothingElseCounts) {
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

    const auto& c = boxes().calls();
    ASSERT_EQ(c.size(), 6u) << boxes().prompts().join(u'|').toStdString();
    EXPECT_TRUE(c[1].prompt.startsWith(u'[') && c[1].prompt.endsWith(kAskDialog));
    // The text is that of the statement run on the connection that did not open.
    const QString closed = u'[' + adodb::adoErrorText(adodb::adErrObjectClosed) + kAskDialog;
    const QString three = u"对不起，已经三次输入错误，退出该系统。"_s;
    const QString prompts[] = {
        u"用户名或者密码不能包含【'】符号！"_s, c[1].prompt, kWrong, closed, kWrong, three};
    const int flags[] = {64, 68, 16, 68, 16, 16};
    for (size_t i = 0; i < 6; ++i)
        EXPECT_EQ(std::tuple(c[i].prompt, c[i].flags, c[i].title),
                  std::tuple(prompts[i], flags[i], u"操作提示"_s))
            << i;
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
}

// No profile: the question comes back after each Yes and cancelled dialog, until No. A
// profile saved from it is used by the retried click; Enter in the password logs in, and
// the name as typed, trailing blanks and all, becomes the operator's name.
TEST_F(LoginTest, NoProfileAsksUntilOneIsSavedThenTheFrameAndStartScreenCome) {
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
    const QDateTime before = QDateTime::currentDateTime();
    {
        ModalScript script;
        script.on<frmODBC>([good = profile()](frmODBC& f) {
            vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, good);
            f.Unload();
        });
        name()->setText(u"admin  "_s);
        password()->setText(u"admin"_s);
        QTest::keyClick(password(), Qt::Key_Return);
    }
    ASSERT_EQ(boxes().calls().size(), 4u) << boxes().prompts().join(u'|').toStdString();
    for (const auto& c : boxes().calls())
        EXPECT_EQ(
            std::tuple(c.prompt, c.flags, c.title),
            std::tuple(u"无法取得正确连接数据库的信息!现在输入吗?"_s, 68, u"管理系统操作提示"_s));
    EXPECT_EQ(gUserName, u"admin  "_s);
    EXPECT_EQ(gLoginName, gUserName);
    EXPECT_EQ(gConnStr, profile());
    EXPECT_FALSE(login().isLoaded());
    ASSERT_TRUE(vb::form<Mainfrm>().isVisible());
    EXPECT_TRUE(vb::form<frmLook>().isVisible());
    EXPECT_EQ(vb::form<frmLook>().ctl<QLabel>(u"lMain"_s)->text(),
              u"Orvane图书馆管理集成系统V4.1(专业版)"_s);
    auto panel = [](int i) { return vb::form<Mainfrm>().ctl<QLabel>(u"Panel%1"_s.arg(i))->text(); };
    // The server's hour at the start, either side of the hour the test ran in.
    auto at = [](const QDateTime& t) {
        return u"当前日期："_s + vb::Format(t, u"yyyy年mm月dd日hh时"_s);
    };
    EXPECT_TRUE(panel(1) == at(before) || panel(1) == at(QDateTime::currentDateTime()))
        << panel(1).toStdString();
    EXPECT_EQ(panel(2), u"操作员：  admin  "_s);
    EXPECT_EQ(panel(3), u"当前数据库：srv上的【lib】"_s);
}

TEST_F(LoginTest, NoRightOrNullRightIsRefusedForGood) {
    for (const char* update : {"", "UPDATE LibUse SET cgk=NULL WHERE username='guest'"}) {
        SCOPED_TRACE(*update ? "NULL right" : "right false");
        boxes().clear();
        App::resetEndCount();
        if (*update) testsupport::execSqlite(dbPath(), QString::fromUtf8(update));
        attempt(u"guest"_s, u"guest"_s);
        ASSERT_EQ(boxes().calls().size(), 1u);
        EXPECT_EQ(std::tuple(boxes().last().prompt, boxes().last().flags),
                  std::tuple(u"对不起，你没有使用“图书采购子系统”的权限。"_s, 16));
        EXPECT_EQ(testsupport::processEnds(), 1);
        EXPECT_TRUE(gUserName.isEmpty());
        EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
    }
}

// The picture opens the dialog modally; 退出 unloads the login and nothing else runs.
TEST_F(LoginTest, PictureAndExit) {
    EXPECT_EQ(password()->echoMode(), QLineEdit::Password);
    EXPECT_EQ(name()->nextInFocusChain(), password());
    {
        ModalScript script;
        script.on<frmODBC>([](frmODBC& f) { f.Unload(); });
        auto* img = login().ctl<QLabel>(u"Image3"_s);
        EXPECT_EQ(img->toolTip(), u"单击此处重定向数据源"_s);
        QTest::mouseClick(img, Qt::LeftButton);
        EXPECT_TRUE(script.done());
    }
    EXPECT_EQ(login().ctl<QPushButton>(u"cmdExit"_s)->text(), u"退出（&Q）"_s);
    shelltest::click(login().ctl<QPushButton>(u"cmdExit"_s));
    EXPECT_FALSE(login().isLoaded());
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
}

class EditPassTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        gConnStr = makeDatabase(false);
        gLoginName = u"admin"_s;
        form().Show(0);
    }
    EditPassFrm& form() { return vb::form<EditPassFrm>(); }
    QLineEdit* box(int i) { return form().ctl<QLineEdit>(u"Text1"_s, i); }
    void change(const QString& oldPw, const QString& newPw, const QString& again) {
        box(0)->setText(oldPw);
        box(1)->setText(newPw);
        box(2)->setText(again);
        shelltest::click(form().ctl<QPushButton>(u"CmdOk"_s));
    }
};

// Each row: the three boxes, the answer to the empty-password question, the last box,
// LibUse.password afterwards, and whether the form stays (with nothing cleared).
TEST_F(EditPassTest, EveryPath) {
    const char* quote = "用户名或者密码中不能包含【'】符号！";
    const char* mismatch = "两次输入的密码不相符，请重新输入";
    const char* wrongOld = "你输入的密码与登陆密码不符";
    const char* done = "密码修改成功！请使用新密码！";
    const struct {
        const char *oldPw, *newPw, *again;
        int answer;
        const char* message;
        int flags;
        const char *title, *after;
        bool staysOpen;
    } cases[] = {
        {"ad'min", "x", "x", 0, quote, 64, "操作提示", "admin", true},
        {"admin", "x'y", "x'y", 0, quote, 64, "操作提示", "admin", true},
        {"admin", "xy", "x'y", 0, mismatch, 64, "提示", "admin", true}, // quote in the confirmation
        {"ADMIN", "new", "new", 0, wrongOld, 16, "提示", "admin", true},
        {"nope", "new", "new", 0, wrongOld, 16, "提示", "admin", true},
        {"admin", "new", "neW", 0, mismatch, 64, "提示", "admin", true},
        {"admin", "", "", vb::vbNo, "你输入的密码是空的，确定要把密码设为空吗？(Y/N)", 324, "",
         "admin", true},
        {"admin", "s3cret", "s3cret", 0, done, 64, "提示", "s3cret", false},
        {"s3cret", "", "", vb::vbYes, done, 64, "提示", "", false}, // the success after Yes
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.oldPw) + "/" + c.newPw + "/" + c.again);
        boxes().clear();
        if (!form().isLoaded()) form().Show(0);
        if (c.answer) boxes().answer(c.answer);
        change(c.oldPw, c.newPw, c.again);
        ASSERT_EQ(boxes().calls().size(), c.answer == vb::vbYes ? 2u : 1u)
            << boxes().prompts().join(u'|').toStdString();
        EXPECT_EQ(shelltest::lastBox(),
                  std::tuple(QString::fromUtf8(c.message), c.flags,
                             *c.title ? QString::fromUtf8(c.title) : vb::appTitle()));
        EXPECT_EQ(testsupport::querySqlite(dbPath(), u"select coalesce(password,'<null>') from "
                                                     "LibUse where username='admin'"_s),
                  QString::fromUtf8(c.after));
        EXPECT_EQ(form().isLoaded(), c.staysOpen);
        EXPECT_TRUE(!c.staysOpen || box(0)->text() == QString::fromUtf8(c.oldPw)); // not cleared
    }
}

// A database that fails keeps the form and the password; a user deleted meanwhile is told
// so and the form closes.
TEST_F(EditPassTest, FailureStaysDeletedUserCloses) {
    const QString good = gConnStr;
    gConnStr = shelltest::brokenProfile();
    change(u"admin"_s, u"x"_s, u"x"_s);
    EXPECT_EQ(shelltest::lastBox(), std::tuple(u"密码修改失败！请使用原密码！"_s, 16, u"提示"_s));
    EXPECT_TRUE(form().isLoaded());
    gConnStr = good;
    testsupport::execSqlite(dbPath(), u"DELETE FROM LibUse WHERE username='admin'"_s);
    change(u"admin"_s, u"x"_s, u"x"_s);
    EXPECT_EQ(boxes().calls().size(), 2u);
    EXPECT_EQ(shelltest::lastBox(), std::tuple(u"当前用户已经被删除！"_s, 16, u"提示"_s));
    EXPECT_FALSE(form().isLoaded());
}

TEST_F(EditPassTest, FocusColoursAndSelection) {
    QApplication::setActiveWindow(form().window());
    box(1)->setText(u"abc"_s);
    box(1)->setFocus(Qt::TabFocusReason);
    QCoreApplication::processEvents();
    const QColor light = box(1)->palette().color(QPalette::Light);
    const QColor midlight = box(1)->palette().color(QPalette::Midlight);
    ASSERT_NE(light, midlight);
    EXPECT_EQ(box(1)->palette().color(QPalette::Base), light);
    EXPECT_EQ(box(1)->selectedText(), u"abc"_s);
    box(2)->setFocus(Qt::TabFocusReason);
    QCoreApplication::processEvents();
    EXPECT_EQ(box(1)->palette().color(QPalette::Base), midlight);
    EXPECT_EQ(box(2)->palette().color(QPalette::Base), light);
}

} // namespace
