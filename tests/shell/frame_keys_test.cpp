// The forms as a librarian meets them inside the frame: the size a child window opens at,
// whose Alt letters win, what an access key does to the field being left, Enter on a
// button, and what each routed command opens.
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "query/Findfrm.h"
#include "shell/Mainfrm.h"
#include "shell/routes.h"
#include "tests/shell/shelltest.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTimer>

#include <algorithm>
#include <functional>

using testsupport::boxes;
using testsupport::settle;

namespace {

class FrameTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        gConnStr = makeDatabase(true);
        registerRoutes();
        auto& f = vb::form<Mainfrm>();
        f.Load();
        f.Show();
        QApplication::setActiveWindow(f.window());
    }
    void TearDown() override {
        for (int c = 0; c < Mainfrm::commandCount; ++c)
            if (c != Mainfrm::cmd口令修改 && c != Mainfrm::cmd关于系统)
                Mainfrm::setCommandHandler(static_cast<Mainfrm::Command>(c), {});
        DbTest::TearDown();
    }
    QString q(const QString& sql) { return testsupport::querySqlite(dbPath(), sql); }
    Mainfrm& frame() { return vb::form<Mainfrm>(); }
    QMdiArea* mdi() { return frame().ctl<QMdiArea>(QStringLiteral("MDIClient")); }
    CaiGoufrm& entry() { return vb::form<CaiGoufrm>(); }
    // The entry form as toolbar button 3 opens it.
    void openEntry() {
        frame().Toolbar1_ButtonClick(3);
        settle();
        ASSERT_TRUE(entry().isVisible());
    }
    // A key typed where the focus is, through the shortcut map as a keyboard would.
    void key(Qt::Key k, Qt::KeyboardModifiers m = Qt::AltModifier) {
        QWidget* at = frame().window()->focusWidget();
        QTest::keyClick(at ? at : frame().window(), k, m);
        settle();
    }
    // Runs the action that opens a modal form, and `inside` (which must close it) as soon as
    // that form is up.
    static void whileModal(std::function<void()> inside, const std::function<void()>& open) {
        auto* poll = new QTimer;
        QObject::connect(poll, &QTimer::timeout, [poll, inside = std::move(inside)] {
            if (!QApplication::activeModalWidget()) return;
            poll->stop();
            poll->deleteLater();
            inside();
        });
        poll->start(10);
        open();
        settle();
    }
};

TEST_F(FrameTest, EntryFormOpensAtItsDesignSizeWhollyVisible) {
    openEntry();
    QMdiSubWindow* sub = mdi()->activeSubWindow();
    ASSERT_NE(sub, nullptr);
    ASSERT_EQ(sub->widget(), entry().window());
    // Laid out at 12000 x 5700 twips.
    EXPECT_GE(entry().window()->width(), 800);
    EXPECT_GE(entry().window()->height(), 380);
    // Its top left corner in sight; the frame grows to hold it, as far as the screen goes.
    EXPECT_EQ(sub->pos(), QPoint(0, 0));
    const QSize room = frame().window()->screen()->availableGeometry().size();
    const QSize view = mdi()->viewport()->size();
    EXPECT_GE(view.width(), std::min(sub->width(), room.width() - 40));
    EXPECT_GE(view.height(), std::min(sub->height(), room.height() - 220));
    for (int i = 0; i <= 17; ++i) {
        QLineEdit* t = entry().Text1(i);
        EXPECT_TRUE(t->isVisible()) << i;
        EXPECT_TRUE(entry().window()->rect().contains(t->geometry())) << i;
    }
}

TEST_F(FrameTest, TheEntryFormsAltKeysWinOverTheMenuLetters) {
    openEntry();
    auto* bar = frame().ctl<QMenuBar>(QStringLiteral("MenuBar"));
    entry().Text1(1)->setFocus();
    settle();
    // N: the next record (the form's key preview), not 书目验收.
    key(Qt::Key_N);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(bar->activeAction(), nullptr);
    EXPECT_GT(entry().cgkIDs(), 0);
    EXPECT_EQ(entry().caption(), QStringLiteral("采购定单-%1").arg(entry().cgkIDs()));
    // D: 查找, the query builder for orders, not 系统管理.
    bool found = false;
    whileModal(
        [&] {
            auto& f = vb::form<Findfrm>();
            found = f.isVisible() && f.doType == QStringLiteral("caigou");
            f.Unload();
        },
        [&] { key(Qt::Key_D); });
    EXPECT_TRUE(found);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    // T: nothing on the form claims it, so the frame's 帐目统计 opens.
    entry().Text1(1)->setFocus();
    settle();
    key(Qt::Key_T);
    auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(popup, nullptr);
    EXPECT_EQ(popup->objectName(), QStringLiteral("帐目统计"));
    popup->close();
    settle();
    // X: 关闭 of the form, not 退出系统 of the frame.
    entry().Text1(1)->setFocus();
    settle();
    key(Qt::Key_X);
    EXPECT_FALSE(entry().isLoaded());
    EXPECT_TRUE(frame().isLoaded());
    EXPECT_TRUE(boxes().calls().empty() || boxes().last().title != QStringLiteral("退出操作"));
}

TEST_F(FrameTest, AnAccessKeyRunsTheLeaveRuleFirstAndARefusedFieldStopsTheClick) {
    openEntry();
    key(Qt::Key_F); // the first record, open for editing
    const int id = entry().cgkIDs();
    ASSERT_GT(id, 0);
    const QString price = q(QStringLiteral("select price from cgk where cgkid=%1").arg(id));
    QLineEdit* field = entry().Text1(14);
    field->setFocus();
    settle();
    field->selectAll();
    testsupport::typeText(field, QStringLiteral("40abc"));
    ASSERT_TRUE(entry().Command2(2)->isEnabled());
    boxes().clear();
    key(Qt::Key_S);
    ASSERT_FALSE(boxes().calls().empty());
    EXPECT_EQ(boxes().calls()[0].prompt, QStringLiteral("无效数字格式，取消该操作。"));
    EXPECT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(frame().window()->focusWidget(), field);
    EXPECT_EQ(q(QStringLiteral("select price from cgk where cgkid=%1").arg(id)), price);
    EXPECT_TRUE(entry().isLoaded());
    // Put right, the same key saves.
    field->selectAll();
    testsupport::typeText(field, QStringLiteral("40"));
    boxes().clear();
    key(Qt::Key_S);
    EXPECT_EQ(q(QStringLiteral("select price from cgk where cgkid=%1").arg(id)).toDouble(), 40.0);
    EXPECT_FALSE(entry().Command2(2)->isEnabled());
}

TEST_F(FrameTest, EnterOnTheFocusedSearchButtonOfTheDuplicateCheckSearches) {
    openEntry();
    const QString title = q(QStringLiteral("select bookname from cgk order by cgkid limit 1"));
    int rows = 0;
    whileModal(
        [&] {
            auto& d = vb::form<loadCheckDatafrm>();
            d.Option1(0)->click();
            d.Text1()->setText(title);
            d.Command1(0)->setFocus();
            settle();
            QTest::keyClick(d.Command1(0), Qt::Key_Return);
            settle();
            rows = d.Grid1()->Rows();
            d.Unload();
        },
        [&] { entry().Command2(0)->click(); });
    EXPECT_GE(rows, 2);
}

// What each routed command opens and in which mode.
TEST_F(FrameTest, FindCommandsOpenTheQueryBuilderModallyInTheirMode) {
    const struct {
        Mainfrm::Command command;
        int toolbar; // 0: menu only, else the toolbar button (or list entry) that runs it
        bool list;
        const char* mode;
    } cases[] = {
        {Mainfrm::cmd其他条件, 3, true, "print"},
        {Mainfrm::cmd采购分类统计, 11, false, "totaltotal"},
        {Mainfrm::cmd采购明细统计, 12, false, "totalmx"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        QString printType, doType;
        bool modal = false;
        whileModal(
            [&] {
                auto& f = vb::form<Findfrm>();
                printType = f.printType;
                doType = f.doType;
                modal = f.isModalShowing() && f.isVisible();
                f.Unload();
            },
            [&] {
                if (c.list)
                    frame().Toolbar1_ButtonMenuClick(c.toolbar);
                else
                    frame().Toolbar1_ButtonClick(c.toolbar);
            });
        EXPECT_TRUE(modal);
        EXPECT_EQ(printType, QString::fromLatin1(c.mode));
        EXPECT_EQ(doType, QString::fromLatin1(c.mode));
    }
}

// Every modeless command opens its one form in the frame, at the size it was laid out at,
// and a second run brings the same window forward instead of a second one.
TEST_F(FrameTest, ModelessCommandsOpenTheirFormAtItsDesignSizeOnce) {
    const struct {
        Mainfrm::Command command;
        const char* form;
    } cases[] = {
        {Mainfrm::cmd采购查询, "CaiGoufindfrm"},     {Mainfrm::cmd采购来源, "CaiGouprintfrm"},
        {Mainfrm::cmd预定日期, "CaiGoufindDatefrm"}, {Mainfrm::cmd验收, "YanShoudofrm"},
        {Mainfrm::cmd查询浏览, "YanShouBrowerfrm"},  {Mainfrm::cmd补定单, "YanShouBDDfrm"},
        {Mainfrm::cmd采购金额统计, "totalPrintfrm"}, {Mainfrm::cmd采购来源定义, "cgGYSfrm"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.form);
        frame().runCommand(c.command);
        settle();
        vb::Form* f = vb::FormRegistry::byName(QString::fromLatin1(c.form));
        ASSERT_NE(f, nullptr);
        ASSERT_TRUE(f->isVisible());
        QMdiSubWindow* sub = mdi()->activeSubWindow();
        ASSERT_NE(sub, nullptr);
        EXPECT_EQ(sub->widget(), f->window());
        const QSize opened = f->window()->size();
        EXPECT_GE(opened.width(), 200); // collapsed, a child window was 120 x 26
        EXPECT_GE(opened.height(), 100);
        // Every control of the form lies inside it.
        for (QWidget* w : f->window()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (w->isHidden()) continue;
            EXPECT_TRUE(f->window()->rect().contains(w->geometry()))
                << w->objectName().toStdString();
        }
        const auto count = mdi()->subWindowList().size();
        frame().runCommand(c.command);
        settle();
        EXPECT_EQ(mdi()->subWindowList().size(), count);
        EXPECT_EQ(mdi()->activeSubWindow()->widget(), f->window());
        EXPECT_EQ(f->window()->size(), opened);
    }
}

TEST_F(FrameTest, PurchaseOrderCommandGoesOnPastADatabaseFailure) {
    gConnStr = shelltest::brokenProfile();
    frame().runCommand(Mainfrm::cmd采购订单);
    settle();
    // The process goes on: the frame is there and the next command still works.
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_TRUE(frame().isLoaded());
    gConnStr = profile();
    frame().runCommand(Mainfrm::cmd采购订单);
    settle();
    EXPECT_TRUE(entry().isVisible());
    EXPECT_EQ(mdi()->activeSubWindow()->widget(), entry().window());
}

} // namespace
