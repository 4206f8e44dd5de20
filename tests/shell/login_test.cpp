// The login against a database made by the database tool (admin/admin has the right,
// guest/guest has not), through the real ODBC path.
#include "modalscript.h"
#include "shelltest.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "shell/BMLoginFrm.h"
#include "shell/Mainfrm.h"
#include "shell/frmLook.h"
#include "shell/frmODBC.h"
#include "tests/support/testsupport.h"

#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>

using testsupport::boxes;

namespace {

const QString kWrong = QStringLiteral("用户名或用户密码输入错误，请核对后输入。");
const QString kThird = QStringLiteral("对不起，已经三次输入错误，退出该系统。");
const QString kNoRight = QStringLiteral("对不起，你没有使用“图书采购子系统”的权限。");
const QString kAskDialog = QStringLiteral("是否重新输入连接数据库的信息？");

class LoginTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        makeDatabase(false);
        login().Show(0);
    }
    BMLoginFrm& login() { return vb::form<BMLoginFrm>(); }
    void attempt(const QString& name, const QString& password) {
        shelltest::type(login().ctl<QLineEdit>(QStringLiteral("txtInName")), name);
        shelltest::type(login().ctl<QLineEdit>(QStringLiteral("txtInPassword")), password);
        shelltest::click(login().ctl<QPushButton>(QStringLiteral("cmdLogin")));
    }
    void store(const QString& v) { vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, v); }
    QString panel(int i) {
        return vb::form<Mainfrm>().ctl<QLabel>(QStringLiteral("Panel%1").arg(i))->text();
    }
};

TEST_F(LoginTest, GoodLoginStartsTheFrameAndTheStartScreen) {
    gServer = QStringLiteral("srv");
    gDatabase = QStringLiteral("lib");
    const QDateTime before = QDateTime::currentDateTime();
    attempt(QStringLiteral("admin"), QStringLiteral("admin"));
    EXPECT_TRUE(boxes().calls().empty()) << boxes().prompts().join(u'|').toStdString();
    EXPECT_EQ(gUserName, QStringLiteral("admin"));
    EXPECT_EQ(gLoginName, QStringLiteral("admin"));
    EXPECT_EQ(gConnStr, profile()); // re-read at the click
    EXPECT_FALSE(login().isLoaded());
    ASSERT_TRUE(vb::form<Mainfrm>().isLoaded());
    EXPECT_TRUE(vb::form<Mainfrm>().isVisible());
    EXPECT_TRUE(vb::form<frmLook>().isVisible());
    EXPECT_EQ(vb::form<frmLook>().ctl<QLabel>(QStringLiteral("lMain"))->text(),
              QStringLiteral("Orvane图书馆管理集成系统V4.1(专业版)"));

    const QString date = panel(1);
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^当前日期：\\d{4}年\\d{2}月\\d{2}日\\d{2}时$"))
                    .match(date)
                    .hasMatch())
        << date.toStdString();
    const QString expectBefore =
        QStringLiteral("当前日期：") + vb::Format(before, QStringLiteral("yyyy年mm月dd日hh时"));
    const QString expectAfter =
        QStringLiteral("当前日期：") +
        vb::Format(QDateTime::currentDateTime(), QStringLiteral("yyyy年mm月dd日hh时"));
    EXPECT_TRUE(date == expectBefore || date == expectAfter) << date.toStdString();
    EXPECT_EQ(panel(2), QStringLiteral("操作员：  admin"));
    EXPECT_EQ(panel(3), QStringLiteral("当前数据库：srv上的【lib】"));
}

// The database compares the name (its collation ignores trailing blanks); what was typed,
// blanks and all, becomes the operator's name.
TEST_F(LoginTest, TrailingBlanksOfTheNameTravelIntoTheOperatorName) {
    attempt(QStringLiteral("admin  "), QStringLiteral("admin"));
    ASSERT_TRUE(vb::form<Mainfrm>().isLoaded());
    EXPECT_EQ(gUserName, QStringLiteral("admin  "));
    EXPECT_EQ(panel(2), QStringLiteral("操作员：  admin  "));
}

TEST_F(LoginTest, ThreeWrongLoginsEndTheProcessConnectionErrorsBetweenDoNotCount) {
    attempt(QStringLiteral("admin"), QStringLiteral("nope"));
    attempt(QStringLiteral("nobody"), QStringLiteral("admin"));
    // The connection breaks: asked about the dialog, not counted.
    store(shelltest::brokenProfile());
    boxes().answer(vb::vbNo);
    attempt(QStringLiteral("admin"), QStringLiteral("nope"));
    store(profile());
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_TRUE(login().isLoaded());
    attempt(QStringLiteral("admin"), QStringLiteral("still wrong"));

    const QStringList p = boxes().prompts();
    ASSERT_EQ(p.size(), 4);
    EXPECT_EQ(p[0], kWrong);
    EXPECT_EQ(p[1], kWrong);
    EXPECT_TRUE(p[2].endsWith(QStringLiteral("]\r\n") + kAskDialog));
    EXPECT_EQ(p[3], kThird);
    for (int i : {0, 1, 3}) {
        EXPECT_EQ(boxes().calls()[size_t(i)].flags, 16);
        EXPECT_EQ(boxes().calls()[size_t(i)].title, QStringLiteral("操作提示"));
    }
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
}

TEST_F(LoginTest, QuoteInTheNameNeverReachesTheDatabase) {
    // Were the name sent, this profile would bring the connection question.
    store(shelltest::brokenProfile());
    attempt(QStringLiteral("o'brien"), QStringLiteral("x"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("用户名或者密码不能包含【'】符号！"));
    EXPECT_EQ(boxes().last().flags, 64);
    EXPECT_EQ(boxes().last().title, QStringLiteral("操作提示"));
    // Nor does it count: two wrong answers later the process still runs.
    store(profile());
    attempt(QStringLiteral("admin"), QStringLiteral("x"));
    attempt(QStringLiteral("admin"), QStringLiteral("y"));
    EXPECT_EQ(testsupport::processEnds(), 0);
}

TEST_F(LoginTest, QuoteInThePasswordGivesTheConnectionQuestion) {
    boxes().answer(vb::vbNo);
    attempt(QStringLiteral("admin"), QStringLiteral("ad'min"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    const auto& box = boxes().last();
    EXPECT_TRUE(box.prompt.startsWith(u'['));
    EXPECT_TRUE(box.prompt.endsWith(QStringLiteral("]\r\n") + kAskDialog));
    EXPECT_EQ(box.flags, 68);
    EXPECT_EQ(box.title, QStringLiteral("操作提示"));
    EXPECT_FALSE(vb::FormRegistry::exists<frmODBC>()); // No: no dialog
    EXPECT_TRUE(login().isLoaded());
}

// The connection fails; the text is that of the statement run on the unopened connection.
// Yes opens the dialog, and nothing is retried when it closes.
TEST_F(LoginTest, ConnectionFailureOffersTheDialog) {
    store(shelltest::brokenProfile());
    boxes().answer(vb::vbYes);
    {
        ModalScript script;
        script.on<frmODBC>(
            [](frmODBC& f) { shelltest::click(f.ctl<QPushButton>(QStringLiteral("CmdCancel"))); });
        attempt(QStringLiteral("admin"), QStringLiteral("admin"));
    }
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("[") +
                                         adodb::adoErrorText(adodb::adErrObjectClosed) +
                                         QStringLiteral("]\r\n") + kAskDialog);
    EXPECT_TRUE(login().isLoaded());
    EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
}

TEST_F(LoginTest, NoRightOrNullRightIsRefusedForGood) {
    for (const char* update : {"", "UPDATE LibUse SET cgk=NULL WHERE username='guest'"}) {
        SCOPED_TRACE(*update ? "NULL right" : "right false");
        boxes().clear();
        App::resetEndCount();
        if (*update) testsupport::execSqlite(dbPath(), QString::fromUtf8(update));
        attempt(QStringLiteral("guest"), QStringLiteral("guest"));
        ASSERT_EQ(boxes().calls().size(), 1u);
        EXPECT_EQ(boxes().last().prompt, kNoRight);
        EXPECT_EQ(boxes().last().flags, 16);
        EXPECT_EQ(testsupport::processEnds(), 1);
        EXPECT_TRUE(gUserName.isEmpty());
        EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
    }
}

// No profile: the question comes back after each Yes and a cancelled dialog, until No.
TEST_F(LoginTest, NoProfileAsksAgainAfterEachCancelledDialog) {
    vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
    boxes().answer({vb::vbYes, vb::vbYes, vb::vbNo});
    {
        ModalScript script;
        auto cancel = [](frmODBC& f) {
            shelltest::click(f.ctl<QPushButton>(QStringLiteral("CmdCancel")));
        };
        script.on<frmODBC>(cancel).on<frmODBC>(cancel);
        attempt(QStringLiteral("admin"), QStringLiteral("admin"));
    }
    ASSERT_EQ(boxes().calls().size(), 3u);
    for (const auto& c : boxes().calls()) {
        EXPECT_EQ(c.prompt, QStringLiteral("无法取得正确连接数据库的信息!现在输入吗?"));
        EXPECT_EQ(c.flags, 68);
        EXPECT_EQ(c.title, QStringLiteral("管理系统操作提示"));
    }
    EXPECT_EQ(gConnStr, kNoProfile);
    EXPECT_TRUE(login().isLoaded());
}

// A profile saved in the dialog opened from the question is used by the retried click.
TEST_F(LoginTest, ProfileSavedFromTheQuestionIsUsedAtOnce) {
    vb::DeleteSetting(kSettingApp, kSettingSection, kSettingKey);
    const QString good = profile();
    {
        ModalScript script;
        script.on<frmODBC>([good](frmODBC& f) {
            vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, good);
            f.Unload();
        });
        attempt(QStringLiteral("admin"), QStringLiteral("admin"));
    }
    ASSERT_EQ(boxes().calls().size(), 1u); // the question, once
    EXPECT_TRUE(vb::form<Mainfrm>().isLoaded());
    EXPECT_EQ(gUserName, QStringLiteral("admin"));
}

TEST_F(LoginTest, KeysPictureAndExit) {
    auto* name = login().ctl<QLineEdit>(QStringLiteral("txtInName"));
    auto* pass = login().ctl<QLineEdit>(QStringLiteral("txtInPassword"));
    EXPECT_EQ(pass->echoMode(), QLineEdit::Password);
    EXPECT_EQ(login().ctl<QPushButton>(QStringLiteral("cmdLogin"))->text(),
              QStringLiteral("登 陆（&G）"));
    EXPECT_EQ(login().ctl<QPushButton>(QStringLiteral("cmdExit"))->text(),
              QStringLiteral("退出（&Q）"));
    EXPECT_EQ(login().ctl<QLabel>(QStringLiteral("lblInfo_1"))->text(),
              QStringLiteral("密     码:"));
    EXPECT_EQ(name->nextInFocusChain(), pass);

    // The picture opens the dialog, modally.
    {
        ModalScript script;
        script.on<frmODBC>([](frmODBC& f) { f.Unload(); });
        auto* img = login().ctl<QLabel>(QStringLiteral("Image3"));
        EXPECT_EQ(img->toolTip(), QStringLiteral("单击此处重定向数据源"));
        QTest::mouseClick(img, Qt::LeftButton);
        EXPECT_TRUE(script.done());
    }
    // Enter in the password is the login click.
    name->setText(QStringLiteral("admin"));
    pass->setText(QStringLiteral("admin"));
    QTest::keyClick(pass, Qt::Key_Return);
    EXPECT_TRUE(vb::form<Mainfrm>().isLoaded());
    EXPECT_FALSE(login().isLoaded());
}

TEST_F(LoginTest, ExitUnloadsTheLogin) {
    shelltest::click(login().ctl<QPushButton>(QStringLiteral("cmdExit")));
    EXPECT_FALSE(login().isLoaded());
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_FALSE(vb::FormRegistry::exists<Mainfrm>());
}

} // namespace
