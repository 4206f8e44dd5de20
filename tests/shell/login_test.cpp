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
using namespace Qt::StringLiterals;

namespace {

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
    void store(const QString& v) { vb::SaveSetting(kSettingApp, kSettingSection, kSettingKey, v); }
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
    EXPECT_EQ(c[0].prompt, u"用户名或者密码不能包含【'】符号！"_s);
    EXPECT_EQ(c[0].flags, 64);
    EXPECT_TRUE(c[1].prompt.startsWith(u'[') && c[1].prompt.endsWith(kAskDialog));
    EXPECT_EQ(c[1].flags, 68);
    EXPECT_EQ(c[2].prompt, kWrong);
    // The text is that of the statement run on the connection that did not open.
    EXPECT_EQ(c[3].prompt, u'[' + adodb::adoErrorText(adodb::adErrObjectClosed) + kAskDialog);
    EXPECT_EQ(c[4].prompt, kWrong);
    EXPECT_EQ(c[5].prompt, u"对不起，已经三次输入错误，退出该系统。"_s);
    for (size_t i : {2, 4, 5}) EXPECT_EQ(c[i].flags, 16);
    for (const auto& box : c) EXPECT_EQ(box.title, u"操作提示"_s);
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
    for (const auto& c : boxes().calls()) {
        EXPECT_EQ(c.prompt, u"无法取得正确连接数据库的信息!现在输入吗?"_s);
        EXPECT_EQ(c.flags, 68);
        EXPECT_EQ(c.title, u"管理系统操作提示"_s);
    }
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
    const QString date = panel(1);
    auto at = [](const QDateTime& t) {
        return u"当前日期："_s + vb::Format(t, u"yyyy年mm月dd日hh时"_s);
    };
    EXPECT_TRUE(date == at(before) || date == at(QDateTime::currentDateTime()))
        << date.toStdString();
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
        EXPECT_EQ(boxes().last().prompt, u"对不起，你没有使用“图书采购子系统”的权限。"_s);
        EXPECT_EQ(boxes().last().flags, 16);
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

} // namespace
