// The frame itself: captions and keys of the menu, the exit question, the size and the
// centring, the status bar when the server date fails, the two desktop commands; and the
// right-button popup. What the routed commands open is in frame_keys_test.cpp, through
// the real table.
#include "modalscript.h"
#include "shelltest.h"

#include "platform/Menu.h"
#include "platform/vb.h"
#include "shell/EditPassFrm.h"
#include "shell/Mainfrm.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QToolButton>

namespace {

class MainfrmTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        gConnStr = makeEmptyDatabase(); // the server date comes from here
    }
    void TearDown() override {
        Mainfrm::setStarter({});
        Mainfrm::setPrinterDialog({});
        DbTest::TearDown();
    }

public:
    Mainfrm& frame() {
        auto& f = vb::form<Mainfrm>();
        if (!f.isLoaded()) {
            f.Load();
            f.Show();
        }
        return f;
    }
    QAction* act(const QString& name) { return frame().window()->findChild<QAction*>(name); }
    QToolButton* button(int index) {
        return frame().ctl<QToolButton>(vb::ctlName(u"Toolbar1"_s, index));
    }
};

// Trailing blanks belong to the captions. No route is registered here: a command without
// its form is there but disabled, on the menu and on the toolbar.
TEST_F(MainfrmTest, MenuCaptionsKeysAndCommandsWithoutAForm) {
    QStringList top;
    for (QAction* a : frame().ctl<QMenuBar>(u"MenuBar"_s)->actions()) top << a->text();
    EXPECT_EQ(top, (QStringList{u"《中图法》简表"_s, u"书目采购（&C）"_s, u"书目验收（&N）"_s,
                                u"帐目统计（&T）"_s, u"系统管理（&D）"_s, u"退出系统（&X）"_s}));
    const std::tuple<const char*, const char*, const char*> entries[] = {
        {"中图法简表", "《中图法》简表", "F2"},
        {"采购订单", "采购订单        ", "Ctrl+G"},
        {"采购来源", "采购来源      ", "Ctrl+A"},
        {"补定单", "补 定 单        ", "Ctrl+C"},
        {"采购金额统计", "采购金额统计       ", "Ctrl+J"},
        {"采购来源定义", "采购来源定义     ", "Ctrl+L"},
        {"打印机", "打印机设置", "Ctrl+F2"}};
    for (auto [name, caption, key] : entries) {
        QAction* a = act(QString::fromUtf8(name));
        ASSERT_NE(a, nullptr) << name;
        EXPECT_EQ(std::pair(a->text(), a->shortcut().toString()),
                  std::pair(QString::fromUtf8(caption), QString::fromUtf8(key)));
    }
    auto* sub = frame().ctl<QMenu>(u"采购打印"_s);
    ASSERT_EQ(sub->actions().size(), 4);
    EXPECT_TRUE(sub->actions()[2]->isSeparator());
    EXPECT_FALSE(act(u"采购订单"_s)->isEnabled() || button(3)->isEnabled() ||
                 button(5)->isEnabled());
    EXPECT_TRUE(button(15)->isEnabled() && act(u"口令修改"_s)->isEnabled());
}

// The close box, 退出系统 on the menu and button 15 ask the same question; No stays,
// Yes ends the process with nothing else unloaded.
TEST_F(MainfrmTest, ExitQuestionFromEveryWayOut) {
    const std::vector<std::pair<const char*, std::function<void(MainfrmTest&)>>> ways = {
        {"close box", [](MainfrmTest& t) { t.frame().window()->close(); }},
        {"menu", [](MainfrmTest& t) { t.act(u"退出系统"_s)->trigger(); }},
        {"button 15", [](MainfrmTest& t) { shelltest::click(t.button(15)); }},
    };
    for (const auto& [name, way] : ways) {
        SCOPED_TRACE(name);
        for (int answer : {vb::vbNo, vb::vbYes}) {
            boxes().clear();
            App::resetEndCount();
            frame();
            vb::form<EditPassFrm>().Load(); // a child with something open
            boxes().answer(answer);
            try {
                way(*this);
            } catch (const vb::ProcessEnded&) {
                // a trigger() called from here unwinds to us
            }
            ASSERT_EQ(boxes().calls().size(), 1u);
            EXPECT_EQ(shelltest::lastBox(),
                      std::tuple(u"  是否确定退出该操作系统？（Y/N）"_s, 20, u"退出操作"_s));
            EXPECT_EQ(testsupport::processEnds(), answer == vb::vbYes ? 1 : 0);
            EXPECT_TRUE(frame().isLoaded() && vb::form<EditPassFrm>().isLoaded());
        }
    }
}

TEST_F(MainfrmTest, LoadSizesAndEveryResizeCentres) {
    QWidget* w = frame().window();
    const QRect screen = w->screen()->geometry();
    auto centred = [&] {
        const QRect f = w->frameGeometry();
        EXPECT_NEAR(f.x(), screen.x() + (screen.width() - f.width()) / 2, 1);
        EXPECT_NEAR(f.y(), screen.y() + (screen.height() - f.height()) / 2, 1);
    };
    EXPECT_EQ(w->size(), QSize(11800 / 15, 7200 / 15));
    centred();
    w->move(3, 5);
    w->resize(600, 400);
    QCoreApplication::processEvents();
    EXPECT_EQ(w->size(), QSize(600, 400));
    centred();
}

TEST_F(MainfrmTest, ServerDateFailureIsToldOnceAndTheLocalTimeShown) {
    gConnStr = shelltest::brokenProfile();
    frame();
    ASSERT_EQ(boxes().calls().size(), 1u) << boxes().prompts().join(u'|').toStdString();
    EXPECT_TRUE(boxes().last().prompt.startsWith(u"获取服务器日期时出现错误！"_s));
    const QString today = vb::Format(QDateTime::currentDateTime(), u"yyyy年mm月dd日"_s);
    EXPECT_TRUE(frame().ctl<QLabel>(u"Panel1"_s)->text().startsWith(u"当前日期："_s + today));
}

// 区域设置 tells what to change, then starts the desktop's panel for it (if there is one)
// without waiting; 打印机 makes the printer chosen the default one, and a cancelled dialog
// changes nothing.
TEST_F(MainfrmTest, RegionalSettingsAndPrinterStartTheDesktopsTools) {
    std::vector<QStringList> started;
    Mainfrm::setStarter([&](const QString& p, const QStringList& a) {
        started.push_back(QStringList{p} + a);
        return true;
    });
    act(u"区域设置"_s)->trigger();
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(std::pair(boxes().last().prompt, boxes().last().flags),
              std::pair(u"请选择日期标签，将【短日期样式】修改为【yyyy-MM-dd】"_s, 64));
    EXPECT_LE(started.size(), 1u);
#ifndef Q_OS_WIN
    auto pick = [](QStringList have) {
        return Mainfrm::regionalSettingsCommand(
            [have](const QString& p) { return have.contains(p); });
    };
    EXPECT_TRUE(pick({}).program.isEmpty());
    EXPECT_EQ(pick({"kcmshell5", "gnome-control-center"}).program, u"gnome-control-center"_s);
    EXPECT_EQ(pick({"gnome-control-center"}).arguments, QStringList{"region"});
    EXPECT_EQ(pick({"kcmshell5"}).arguments, QStringList{"kcm_regionandlang"});
#endif
    started.clear();
    QString choice = u"Office_Laser"_s;
    Mainfrm::setPrinterDialog([&] { return choice; });
    act(u"打印机"_s)->trigger();
    ASSERT_EQ(started.size(), 1u);
    EXPECT_TRUE(started[0].contains(u"Office_Laser"_s)) << started[0].join(u' ').toStdString();
    choice.clear();
    act(u"打印机"_s)->trigger();
    EXPECT_EQ(started.size(), 1u);
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
        {{Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}, 3, "删除"},
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

} // namespace
