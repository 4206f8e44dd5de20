// The frame: menu and toolbar routing, the exit question, centring, the platform commands.
#include "modalscript.h"
#include "shelltest.h"

#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "shell/AboutFrm.h"
#include "shell/EditPassFrm.h"
#include "shell/Mainfrm.h"
#include "shell/routes.h"
#include "tests/support/testsupport.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QToolButton>

#include "classify/fenleihelp.h"

using testsupport::boxes;

namespace {

class MainfrmTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        shelltest::resetGlobals();
        gConnStr = makeEmptyDatabase(); // the server date comes from here
    }
    void TearDown() override {
        for (int c = 0; c < Mainfrm::commandCount; ++c)
            if (c != Mainfrm::cmd口令修改 && c != Mainfrm::cmd关于系统)
                Mainfrm::setCommandHandler(static_cast<Mainfrm::Command>(c), {});
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
        return frame().ctl<QToolButton>(vb::ctlName(QStringLiteral("Toolbar1"), index));
    }
};

TEST_F(MainfrmTest, MenuCaptionsKeepTheirBlanksAndAccelerators) {
    QStringList top;
    for (QAction* a : frame().ctl<QMenuBar>(QStringLiteral("MenuBar"))->actions()) top << a->text();
    EXPECT_EQ(top, (QStringList{"《中图法》简表", "书目采购（&C）", "书目验收（&N）",
                                "帐目统计（&T）", "系统管理（&D）", "退出系统（&X）"}));
    struct Entry {
        const char* name;
        const char* caption;
        const char* key;
    };
    const Entry entries[] = {
        {"中图法简表", "《中图法》简表", "F2"},
        {"采购订单", "采购订单        ", "Ctrl+G"},
        {"采购来源", "采购来源      ", "Ctrl+A"},
        {"验收", "书目验收", "F4"},
        {"补定单", "补 定 单        ", "Ctrl+C"},
        {"采购金额统计", "采购金额统计       ", "Ctrl+J"},
        {"采购来源定义", "采购来源定义     ", "Ctrl+L"},
        {"区域设置", "区域设置", "Ctrl+F3"},
        {"打印机", "打印机设置", "Ctrl+F2"},
        {"关于系统", "关于系统", ""},
    };
    for (const Entry& e : entries) {
        SCOPED_TRACE(e.name);
        QAction* a = act(QString::fromUtf8(e.name));
        ASSERT_NE(a, nullptr);
        EXPECT_EQ(a->text(), QString::fromUtf8(e.caption));
        EXPECT_EQ(a->shortcut(), QKeySequence(QString::fromUtf8(e.key)));
    }
    // The print submenu keeps its separator between 预定日期 and 其他条件.
    auto* sub = frame().ctl<QMenu>(QStringLiteral("采购打印"));
    ASSERT_EQ(sub->actions().size(), 4);
    EXPECT_TRUE(sub->actions()[2]->isSeparator());
    EXPECT_EQ(sub->actions()[2]->objectName(), QStringLiteral("fdghtyu"));
}

// A command without its form is there and disabled; a handler enables the entry and the
// toolbar button, and both run the very same handler.
TEST_F(MainfrmTest, CommandsRouteThroughTheTableFromMenuAndToolbar) {
    EXPECT_FALSE(act(QStringLiteral("采购订单"))->isEnabled());
    EXPECT_FALSE(button(3)->isEnabled());
    EXPECT_FALSE(button(5)->isEnabled());
    EXPECT_TRUE(button(15)->isEnabled());
    EXPECT_TRUE(act(QStringLiteral("口令修改"))->isEnabled());

    std::vector<Mainfrm::Command> ran;
    const Mainfrm::Command routed[] = {
        Mainfrm::cmd采购订单,     Mainfrm::cmd采购查询,    Mainfrm::cmd采购来源,
        Mainfrm::cmd预定日期,     Mainfrm::cmd其他条件,    Mainfrm::cmd验收,
        Mainfrm::cmd查询浏览,     Mainfrm::cmd补定单,      Mainfrm::cmd采购分类统计,
        Mainfrm::cmd采购明细统计, Mainfrm::cmd采购金额统计};
    for (auto c : routed) Mainfrm::setCommandHandler(c, [&ran, c] { ran.push_back(c); });
    EXPECT_TRUE(act(QStringLiteral("采购订单"))->isEnabled());
    EXPECT_TRUE(button(3)->isEnabled());
    EXPECT_TRUE(button(5)->isEnabled());

    // Toolbar, by index.
    const std::pair<int, Mainfrm::Command> buttons[] = {
        {3, Mainfrm::cmd采购订单},      {4, Mainfrm::cmd采购查询},
        {7, Mainfrm::cmd验收},          {8, Mainfrm::cmd查询浏览},
        {9, Mainfrm::cmd补定单},        {11, Mainfrm::cmd采购分类统计},
        {12, Mainfrm::cmd采购明细统计}, {13, Mainfrm::cmd采购金额统计},
    };
    for (auto [index, c] : buttons) {
        ran.clear();
        shelltest::click(button(index));
        EXPECT_EQ(ran, std::vector<Mainfrm::Command>{c}) << "button " << index;
    }
    // The face of the drop-down does nothing; its list does.
    ran.clear();
    button(5)->click();
    EXPECT_TRUE(ran.empty());
    const Mainfrm::Command list[] = {Mainfrm::cmd采购来源, Mainfrm::cmd预定日期,
                                     Mainfrm::cmd其他条件};
    for (int k = 1; k <= 3; ++k) {
        ran.clear();
        frame().window()->findChild<QAction*>(QStringLiteral("Toolbar1_5_%1").arg(k))->trigger();
        EXPECT_EQ(ran, std::vector<Mainfrm::Command>{list[k - 1]}) << "list entry " << k;
    }
    EXPECT_EQ(button(5)->menu()->actions()[1]->text(), QStringLiteral("采购日期"));
    // Menu entries.
    for (auto c : routed) {
        ran.clear();
        act(Mainfrm::commandName(c))->trigger();
        EXPECT_EQ(ran, std::vector<Mainfrm::Command>{c}) << Mainfrm::commandName(c).toStdString();
    }
    // Taking the handler away disables the command again.
    Mainfrm::setCommandHandler(Mainfrm::cmd采购订单, {});
    EXPECT_FALSE(act(QStringLiteral("采购订单"))->isEnabled());
    EXPECT_FALSE(button(3)->isEnabled());
}

TEST_F(MainfrmTest, ClassificationHelpOpensOnceInTheFrame) {
    registerRoutes();
    EXPECT_TRUE(act(QStringLiteral("中图法简表"))->isEnabled());
    // F2 opens it; the menu entry a second time brings back the one that is there.
    QApplication::setActiveWindow(frame().window());
    QTest::keyClick(frame().window(), Qt::Key_F2);
    ASSERT_TRUE(vb::FormRegistry::exists<fenleihelp>());
    EXPECT_TRUE(vb::form<fenleihelp>().isVisible());
    act(QStringLiteral("中图法简表"))->trigger();
    auto* mdi = frame().ctl<QMdiArea>(QStringLiteral("MDIClient"));
    int shown = 0;
    for (QMdiSubWindow* s : mdi->subWindowList())
        if (s->widget() && s->widget()->objectName() == QStringLiteral("fenleihelp")) ++shown;
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(vb::form<fenleihelp>().isVisible());
}

// The close box, 退出系统 on the menu and button 15 ask the same question; No stays,
// Yes ends the process with nothing else unloaded.
TEST_F(MainfrmTest, ExitQuestionFromEveryWayOut) {
    const std::vector<std::pair<const char*, std::function<void(MainfrmTest&)>>> ways = {
        {"close box", [](MainfrmTest& t) { t.frame().window()->close(); }},
        {"menu", [](MainfrmTest& t) { t.act(QStringLiteral("退出系统"))->trigger(); }},
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
            EXPECT_EQ(boxes().last().prompt, QStringLiteral("  是否确定退出该操作系统？（Y/N）"));
            EXPECT_EQ(boxes().last().flags, 20);
            EXPECT_EQ(boxes().last().title, QStringLiteral("退出操作"));
            EXPECT_EQ(testsupport::processEnds(), answer == vb::vbYes ? 1 : 0);
            EXPECT_TRUE(frame().isLoaded());
            EXPECT_TRUE(vb::form<EditPassFrm>().isLoaded());
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
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("获取服务器日期时出现错误！")));
    EXPECT_TRUE(frame()
                    .ctl<QLabel>(QStringLiteral("Panel1"))
                    ->text()
                    .startsWith(QStringLiteral("当前日期：") +
                                vb::Format(QDateTime::currentDateTime(),
                                           QStringLiteral("yyyy年mm月dd日"))));
}

TEST_F(MainfrmTest, RegionalSettingsTellsThenStartsTheDesktopPanel) {
    std::vector<QStringList> started;
    Mainfrm::setStarter([&](const QString& p, const QStringList& a) {
        started.push_back(QStringList{p} + a);
        return true;
    });
    act(QStringLiteral("区域设置"))->trigger();
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt,
              QStringLiteral("请选择日期标签，将【短日期样式】修改为【yyyy-MM-dd】"));
    EXPECT_EQ(boxes().last().flags, 64);
    const Mainfrm::Launch l = Mainfrm::regionalSettingsCommand(
        [](const QString& p) { return !QStandardPaths::findExecutable(p).isEmpty(); });
    if (l.program.isEmpty())
        EXPECT_TRUE(started.empty());
    else
        EXPECT_EQ(started, std::vector<QStringList>{QStringList{l.program} + l.arguments});

#ifndef Q_OS_WIN
    // Which panel, by what the desktop has.
    auto pick = [](QStringList have) {
        return Mainfrm::regionalSettingsCommand(
            [have](const QString& p) { return have.contains(p); });
    };
    EXPECT_TRUE(pick({}).program.isEmpty());
    EXPECT_EQ(pick({"kcmshell5", "gnome-control-center"}).program,
              QStringLiteral("gnome-control-center"));
    EXPECT_EQ(pick({"gnome-control-center"}).arguments, QStringList{"region"});
    EXPECT_EQ(pick({"kcmshell5"}).arguments, QStringList{"kcm_regionandlang"});
#endif
}

TEST_F(MainfrmTest, PrinterChoiceBecomesTheDefaultPrinter) {
    std::vector<QStringList> started;
    Mainfrm::setStarter([&](const QString& p, const QStringList& a) {
        started.push_back(QStringList{p} + a);
        return true;
    });
    QString choice = QStringLiteral("Office_Laser");
    Mainfrm::setPrinterDialog([&] { return choice; });
    act(QStringLiteral("打印机"))->trigger();
    const Mainfrm::Launch l = Mainfrm::defaultPrinterCommand(QStringLiteral("Office_Laser"));
    EXPECT_EQ(started, std::vector<QStringList>{QStringList{l.program} + l.arguments});
    EXPECT_TRUE(l.arguments.contains(QStringLiteral("Office_Laser")));
    // Cancelled: nothing changes.
    started.clear();
    choice.clear();
    act(QStringLiteral("打印机"))->trigger();
    EXPECT_TRUE(started.empty());
}

TEST_F(MainfrmTest, PasswordAndAboutOpenModally) {
    QStringList seen;
    {
        ModalScript script;
        script.on<EditPassFrm>([&](EditPassFrm& f) {
            seen << f.caption();
            f.Unload();
        });
        script.on<AboutFrm>([&](AboutFrm& f) {
            seen << f.caption();
            shelltest::click(f.ctl<QPushButton>(QStringLiteral("Command1")));
        });
        act(QStringLiteral("口令修改"))->trigger();
        act(QStringLiteral("关于系统"))->trigger();
    }
    EXPECT_EQ(seen, (QStringList{QStringLiteral("修改口令"), QStringLiteral("关于系统")}));
    EXPECT_FALSE(vb::form<AboutFrm>().isLoaded());
}

} // namespace
