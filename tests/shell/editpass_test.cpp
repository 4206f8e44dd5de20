// The password change, with LibUse checked afterwards.
#include "shelltest.h"

#include "data/globals.h"
#include "platform/msgbox.h"
#include "shell/EditPassFrm.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QPushButton>

using testsupport::boxes;

using namespace Qt::StringLiterals;

namespace {

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
    QString stored() {
        return testsupport::querySqlite(
            dbPath(), QStringLiteral(
                          "select coalesce(password,'<null>') from LibUse where username='admin'"));
    }
};

TEST_F(EditPassTest, EveryPath) {
    struct Case {
        const char* name;
        const char* oldPw;
        const char* newPw;
        const char* again;
        int answer; // to the empty-password question
        const char* message;
        int flags;
        const char* title;
        const char* after; // LibUse.password afterwards
        bool staysOpen;
    };
    const Case cases[] = {
        {"quote in the old", "ad'min", "x", "x", 0, "用户名或者密码中不能包含【'】符号！", 64,
         "操作提示", "admin", true},
        {"quote in the new", "admin", "x'y", "x'y", 0, "用户名或者密码中不能包含【'】符号！", 64,
         "操作提示", "admin", true},
        {"quote in the confirmation alone", "admin", "xy", "x'y", 0,
         "两次输入的密码不相符，请重新输入", 64, "提示", "admin", true},
        {"old password in another case", "ADMIN", "new", "new", 0, "你输入的密码与登陆密码不符", 16,
         "提示", "admin", true},
        {"wrong old password", "nope", "new", "new", 0, "你输入的密码与登陆密码不符", 16, "提示",
         "admin", true},
        {"mismatch", "admin", "new", "neW", 0, "两次输入的密码不相符，请重新输入", 64, "提示",
         "admin", true},
        {"empty, answered No", "admin", "", "", vb::vbNo,
         "你输入的密码是空的，确定要把密码设为空吗？(Y/N)", 324, "", "admin", true},
        {"good change", "admin", "s3cret", "s3cret", 0, "密码修改成功！请使用新密码！", 64, "提示",
         "s3cret", false},
        // Yes to the question: the last box is the success.
        {"empty, answered Yes", "s3cret", "", "", vb::vbYes, "密码修改成功！请使用新密码！", 64,
         "提示", "", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        boxes().clear();
        if (!form().isLoaded()) form().Show(0);
        if (c.answer) boxes().answer(c.answer);
        change(QString::fromUtf8(c.oldPw), QString::fromUtf8(c.newPw), QString::fromUtf8(c.again));
        ASSERT_EQ(boxes().calls().size(), c.answer == vb::vbYes ? 2u : 1u)
            << boxes().prompts().join(u'|').toStdString();
        EXPECT_EQ(boxes().last().prompt, QString::fromUtf8(c.message));
        EXPECT_EQ(boxes().last().flags, c.flags);
        EXPECT_EQ(boxes().last().title, *c.title ? QString::fromUtf8(c.title) : vb::appTitle());
        EXPECT_EQ(stored(), QString::fromUtf8(c.after));
        EXPECT_EQ(form().isLoaded(), c.staysOpen);
        if (c.staysOpen) {
            EXPECT_EQ(box(0)->text(), QString::fromUtf8(c.oldPw)); // nothing cleared
        }
    }
}

// A database that fails keeps the form and the password; a user deleted meanwhile is told
// so and the form closes.
TEST_F(EditPassTest, FailureStaysDeletedUserCloses) {
    const QString good = gConnStr;
    gConnStr = shelltest::brokenProfile();
    change(u"admin"_s, u"x"_s, u"x"_s);
    gConnStr = good;
    testsupport::execSqlite(dbPath(), u"DELETE FROM LibUse WHERE username='admin'"_s);
    change(u"admin"_s, u"x"_s, u"x"_s);
    const auto& c = boxes().calls();
    ASSERT_EQ(c.size(), 2u);
    EXPECT_EQ(std::tuple(c[0].prompt, c[0].flags, c[0].title),
              std::tuple(u"密码修改失败！请使用原密码！"_s, 16, u"提示"_s));
    EXPECT_EQ(std::tuple(c[1].prompt, c[1].flags, c[1].title),
              std::tuple(u"当前用户已经被删除！"_s, 16, u"提示"_s));
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
