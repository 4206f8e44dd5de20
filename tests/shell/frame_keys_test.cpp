// The frame and the forms as a librarian meets them inside it: the exit question, the size
// a child window opens at, whose Alt letters win, what an access key does to the field
// being left, Enter on a button, what each routed command opens; the right-button popup.
#include "modalscript.h"
#include "shelltest.h"

#include "platform/Menu.h"
#include "platform/flexgrid.h"
#include "platform/vb.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "query/Findfrm.h"
#include "shell/Mainfrm.h"
#include "shell/routes.h"

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QScreen>
#include <QToolButton>

using testsupport::settle;

namespace {

class FrameTest : public testsupport::SessionDb {
protected:
    FrameTest() : SessionDb(true) {}
    void SetUp() override {
        SessionDb::SetUp();
        registerRoutes();
    }
    // Loaded on first use, so that a test may break the connection before.
    Mainfrm& frame() {
        auto& f = vb::form<Mainfrm>();
        if (!f.isLoaded()) {
            f.Load();
            f.Show();
            QApplication::setActiveWindow(f.window());
        }
        return f;
    }
    QToolButton* button(int index) {
        return frame().ctl<QToolButton>(vb::ctlName(u"Toolbar1"_s, index));
    }
    QAction* act(const QString& name) { return frame().window()->findChild<QAction*>(name); }
    QMdiArea* mdi() { return frame().ctl<QMdiArea>(u"MDIClient"_s); }
    CaiGoufrm& entry() { return vb::form<CaiGoufrm>(); }
    // The entry form as toolbar button 3 opens it.
    void openEntry() {
        QTest::mouseClick(button(3), Qt::LeftButton);
        settle();
        ASSERT_TRUE(entry().isVisible());
    }
    // A key typed where the focus is (a field of the entry form first, when asked), through
    // the shortcut map as a keyboard would.
    void key(Qt::Key k, QWidget* focus = nullptr) {
        if (focus) focus->setFocus();
        settle();
        QWidget* at = frame().window()->focusWidget();
        QTest::keyClick(at ? at : frame().window(), k, Qt::AltModifier);
        settle();
    }
};

// The close box, 退出系统 on the menu and button 15 ask the same question; No stays,
// Yes ends the process.
TEST_F(FrameTest, ExitQuestionFromEveryWayOut) {
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"close box", [this] { frame().window()->close(); }},
        {"menu", [this] { act(u"退出系统"_s)->trigger(); }},
        {"button 15", [this] { QTest::mouseClick(button(15), Qt::LeftButton); }},
    };
    for (const auto& [name, way] : ways) {
        SCOPED_TRACE(name);
        for (int answer : {vb::vbNo, vb::vbYes}) {
            boxes().clear();
            App::resetEndCount();
            boxes().answer(answer);
            try {
                way();
            } catch (const vb::ProcessEnded&) {
                // a trigger() called from here unwinds to us
            }
            EXPECT_EQ(boxes().prompts(), QStringList{u"  是否确定退出该操作系统？（Y/N）"_s});
            EXPECT_EQ(testsupport::processEnds(), answer == vb::vbYes ? 1 : 0);
            EXPECT_TRUE(frame().isLoaded());
        }
    }
}

// The right-button popup, driven by keys: ids count separators (a blanked dash is one
// too), the caption comes back trimmed, and 0 with no caption when it is dismissed.
TEST(MenuTest, RealPopupAtTheMouse) {
    const QStringList items = {u"修改"_s, u"-"_s, u"删除"_s, u" - "_s, u"  打印  "_s};
    QWidget owner;
    owner.show();
    QApplication::setActiveWindow(&owner);
    const std::tuple<std::vector<Qt::Key>, int, const char*> cases[] = {
        {{Qt::Key_Escape}, 0, ""},
        {{Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, 5, "打印"},
    };
    for (const auto& [keys, id, caption] : cases) {
        ModalScript script;
        script.when([] { return QApplication::activePopupWidget() != nullptr; },
                    [&keys] {
                        for (Qt::Key k : keys)
                            QTest::keyClick(QApplication::activePopupWidget(), k);
                    });
        Menu m;
        EXPECT_EQ(m.rightMenu(items), id);
        EXPECT_EQ(m.SelMenuString(), QString::fromUtf8(caption));
    }
}

TEST_F(FrameTest, TheEntryFormsAltKeysWinOverTheMenuLetters) {
    openEntry();
    // N: the next record (the form's key preview), not 书目验收.
    key(Qt::Key_N, entry().Text1(1));
    EXPECT_EQ(frame().ctl<QMenuBar>(u"MenuBar"_s)->activeAction(), nullptr);
    EXPECT_GT(entry().cgkIDs(), 0);
    // D: 查找, the query builder for orders, not 系统管理.
    bool found = false;
    whileModal(
        [&] {
            auto& f = vb::form<Findfrm>();
            found = f.isVisible() && f.doType == u"caigou"_s;
            f.Unload();
        },
        [&] { key(Qt::Key_D); });
    EXPECT_TRUE(found);
    // X: 关闭 of the form, not 退出系统 of the frame.
    key(Qt::Key_X, entry().Text1(1));
    EXPECT_FALSE(entry().isLoaded());
    EXPECT_TRUE(frame().isLoaded());
    EXPECT_TRUE(boxes().calls().empty() || boxes().last().title != u"退出操作"_s);
}

TEST_F(FrameTest, AnAccessKeyRunsTheLeaveRuleFirstAndARefusedFieldStopsTheClick) {
    openEntry();
    key(Qt::Key_F); // the first record, open for editing
    ASSERT_GT(entry().cgkIDs(), 0);
    const QString sql = u"select price from cgk where cgkid=%1"_s.arg(entry().cgkIDs());
    const QString price = q(sql);
    QLineEdit* field = entry().Text1(14);
    for (const char* typed : {"40abc", "40"}) { // put right, the same key saves
        field->setFocus();
        settle();
        field->selectAll();
        testsupport::typeText(field, QString::fromLatin1(typed));
        ASSERT_TRUE(entry().Command2(2)->isEnabled());
        boxes().clear();
        key(Qt::Key_S);
        if (qstrcmp(typed, "40") != 0) {
            EXPECT_EQ(boxes().prompts(), QStringList{u"无效数字格式，取消该操作。"_s});
            EXPECT_EQ(frame().window()->focusWidget(), field);
            EXPECT_EQ(q(sql), price);
            EXPECT_TRUE(entry().isLoaded());
        }
    }
    EXPECT_EQ(q(sql).toDouble(), 40.0);
    EXPECT_FALSE(entry().Command2(2)->isEnabled());
}

TEST_F(FrameTest, EnterOnTheFocusedSearchButtonOfTheDuplicateCheckSearches) {
    openEntry();
    const QString title = q(u"select bookname from cgk order by cgkid limit 1"_s);
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

// Every routed command through the real table: first from the menu, then from its toolbar
// button (or the drop-down's list entry), or the menu again where it has none. A modal
// form is up inside the call, with the query builder's mode words set; a modeless one
// opens in the frame at its design size, and the second run brings forward the very same
// window (state and all) rather than a second one.
TEST_F(FrameTest, EveryCommandOpensItsFormOnceInItsMode) {
    // Toolbar index (50 + k: entry k of the drop-down's list; 0: menu only), the form, and
    // for a modal one both Findfrm words ("" when it is not the query builder).
    const struct {
        Mainfrm::Command command;
        int button;
        const char *form, *mode;
    } cases[] = {
        {Mainfrm::cmd采购查询, 4, "CaiGoufindfrm", nullptr},
        {Mainfrm::cmd采购来源, 51, "CaiGouprintfrm", nullptr},
        {Mainfrm::cmd预定日期, 52, "CaiGoufindDatefrm", nullptr},
        {Mainfrm::cmd其他条件, 53, "Findfrm", "print"},
        {Mainfrm::cmd验收, 7, "YanShoudofrm", nullptr},
        {Mainfrm::cmd查询浏览, 8, "YanShouBrowerfrm", nullptr},
        {Mainfrm::cmd补定单, 9, "YanShouBDDfrm", nullptr},
        {Mainfrm::cmd采购分类统计, 11, "Findfrm", "totaltotal"},
        {Mainfrm::cmd采购金额统计, 13, "totalPrintfrm", nullptr},
        {Mainfrm::cmd中图法简表, 0, "fenleihelp", nullptr},
        {Mainfrm::cmd采购来源定义, 0, "cgGYSfrm", nullptr},
        {Mainfrm::cmd口令修改, 0, "EditPassFrm", ""},
        {Mainfrm::cmd关于系统, 0, "AboutFrm", ""},
    };
    auto* toolbarMenu = frame().ctl<QToolButton>(u"Toolbar1_5"_s)->menu();
    for (const auto& c : cases) {
        const QString name = QString::fromLatin1(c.form);
        SCOPED_TRACE(c.form);
        auto run = [&](bool fromToolbar) {
            if (!fromToolbar || c.button == 0)
                frame().window()->findChild<QAction*>(Mainfrm::commandName(c.command))->trigger();
            else if (c.button > 50)
                toolbarMenu->actions()[c.button - 51]->trigger();
            else
                QTest::mouseClick(frame().ctl<QToolButton>(vb::ctlName(u"Toolbar1"_s, c.button)),
                                  Qt::LeftButton);
            settle();
        };
        if (c.mode) {
            for (bool fromToolbar : {false, true}) {
                QString up;
                whileModal(
                    [&] {
                        up = QApplication::activeModalWidget()->objectName();
                        vb::Form* f = vb::FormRegistry::byName(up);
                        if (!f || !f->isModalShowing()) up += u" (not modal)"_s;
                        if (up == u"Findfrm")
                            up += u' ' + vb::form<Findfrm>().printType + u'/' +
                                  vb::form<Findfrm>().doType;
                        if (f) f->Unload();
                    },
                    [&] { run(fromToolbar); });
                EXPECT_EQ(up,
                          *c.mode ? u"%1 %2/%2"_s.arg(name, QString::fromLatin1(c.mode)) : name);
            }
            continue;
        }
        run(false);
        vb::Form* f = vb::FormRegistry::byName(name);
        ASSERT_TRUE(f && f->isVisible());
        ASSERT_TRUE(mdi()->activeSubWindow() && mdi()->activeSubWindow()->widget() == f->window());
        const QSize opened = f->window()->size();
        EXPECT_TRUE(opened.width() >= 200 && opened.height() >= 100); // collapsed: 120 x 26
        for (QWidget* w : f->window()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            EXPECT_TRUE(w->isHidden() || f->window()->rect().contains(w->geometry()))
                << w->objectName().toStdString();
        f->window()->setProperty("seenBefore", true);
        const auto count = mdi()->subWindowList().size();
        run(true);
        EXPECT_EQ(mdi()->subWindowList().size(), count);
        EXPECT_EQ(mdi()->activeSubWindow()->widget(), f->window());
        EXPECT_TRUE(f->window()->property("seenBefore").toBool()); // not unloaded meanwhile
    }
    // F2 reaches the classification help too.
    QApplication::setActiveWindow(frame().window());
    QTest::keyClick(frame().window(), Qt::Key_F2);
    settle();
    EXPECT_EQ(mdi()->activeSubWindow()->widget()->objectName(), u"fenleihelp"_s);
}

// 采购订单 opens the entry form at its design size, wholly visible; run again it starts
// the form afresh, dropping what was typed without a question; it goes on past a database
// that will not open.
TEST_F(FrameTest, PurchaseOrderCommandOpensAFreshFormWhollyVisible) {
    const QString rows = q(u"select count(*) from cgk"_s);
    openEntry();
    QMdiSubWindow* sub = mdi()->activeSubWindow();
    ASSERT_TRUE(sub && sub->widget() == entry().window());
    // Laid out at 12000 x 5700 twips, not collapsed.
    EXPECT_TRUE(entry().window()->width() >= 800 && entry().window()->height() >= 380);
    // Its top left corner in sight; the frame grows to hold it, as far as the screen goes.
    EXPECT_EQ(sub->pos(), QPoint(0, 0));
    const QSize room = frame().window()->screen()->availableGeometry().size();
    const QSize view = mdi()->viewport()->size();
    EXPECT_GE(view.width(), std::min(sub->width(), room.width() - 40));
    EXPECT_GE(view.height(), std::min(sub->height(), room.height() - 220));
    for (int i = 0; i <= 17; ++i)
        EXPECT_TRUE(entry().Text1(i)->isVisible() &&
                    entry().window()->rect().contains(entry().Text1(i)->geometry()))
            << i;
    // What was typed goes without a question.
    entry().addType = caigou::addAdding;
    entry().Text1(1)->setText(u"未保存"_s);
    ASSERT_TRUE(entry().anyFieldChanged());
    act(u"采购订单"_s)->trigger();
    settle();
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_TRUE(entry().isVisible());
    EXPECT_EQ(entry().addType, caigou::addEmpty);
    EXPECT_EQ(entry().Text1(1)->text(), QString());
    EXPECT_EQ(q(u"select count(*) from cgk"_s), rows);
    gConnStr = shelltest::brokenProfile();
    frame().runCommand(Mainfrm::cmd采购订单);
    settle();
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_TRUE(frame().isLoaded());
}

} // namespace
