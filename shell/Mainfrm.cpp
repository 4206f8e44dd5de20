#include "shell/Mainfrm.h"

#include "data/globals.h"
#include "data/publicHanshu.h"
#include "platform/errors.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "shell/AboutFrm.h"
#include "shell/EditPassFrm.h"
#include "shell/icons.h"

#include <QAction>
#include <QGuiApplication>
#include <QLabel>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <array>

namespace {

// The menu, in order. A level-1 entry is a group, but the last one, which acts itself.
struct MenuEntry {
    int level;
    const char16_t* name;
    const char16_t* caption;
    const char* shortcut;
    int command; // -1: a group or a separator
};

// clang-format off
const MenuEntry kMenu[] = {
    {1, u"《中图法》简表", u"《中图法》简表", "", -1},
    {2, u"中图法简表", u"《中图法》简表", "F2", Mainfrm::cmd中图法简表},
    {1, u"书目采购", u"书目采购（&C）", "", -1},
    {2, u"采购订单", u"采购订单        ", "Ctrl+G", Mainfrm::cmd采购订单},
    {2, u"dfgh", u"-", "", -1},
    {2, u"采购查询", u"采购查询", "Ctrl+F", Mainfrm::cmd采购查询},
    {2, u"sdghgg", u"-", "", -1},
    {2, u"采购打印", u"采购打印", "", -1},
    {3, u"采购来源", u"采购来源      ", "Ctrl+A", Mainfrm::cmd采购来源},
    {3, u"预定日期", u"预定日期", "Ctrl+D", Mainfrm::cmd预定日期},
    {3, u"fdghtyu", u"-", "", -1},
    {3, u"其他条件", u"其他条件", "Ctrl+O", Mainfrm::cmd其他条件},
    {1, u"书目验收", u"书目验收（&N）", "", -1},
    {2, u"验收", u"书目验收", "F4", Mainfrm::cmd验收},
    {2, u"dghrtyr", u"-", "", -1},
    {2, u"查询浏览", u"查询浏览", "Ctrl+B", Mainfrm::cmd查询浏览},
    {2, u"fduyty", u"-", "", -1},
    {2, u"补定单", u"补 定 单        ", "Ctrl+C", Mainfrm::cmd补定单},
    {1, u"帐目统计", u"帐目统计（&T）", "", -1},
    {2, u"采购分类统计", u"采购分类统计", "Ctrl+T", Mainfrm::cmd采购分类统计},
    {2, u"tiuyiy", u"-", "", -1},
    {2, u"采购明细统计", u"采购明细统计", "Ctrl+M", Mainfrm::cmd采购明细统计},
    {2, u"fgjhghj", u"-", "", -1},
    {2, u"采购金额统计", u"采购金额统计       ", "Ctrl+J", Mainfrm::cmd采购金额统计},
    {1, u"数据管理", u"系统管理（&D）", "", -1},
    {2, u"采购来源定义", u"采购来源定义     ", "Ctrl+L", Mainfrm::cmd采购来源定义},
    {2, u"ghety", u"-", "", -1},
    {2, u"口令修改", u"口令修改", "Ctrl+E", Mainfrm::cmd口令修改},
    {2, u"fghfghdf", u"-", "", -1},
    {2, u"区域设置", u"区域设置", "Ctrl+F3", Mainfrm::cmd区域设置},
    {2, u"打印机", u"打印机设置", "Ctrl+F2", Mainfrm::cmd打印机},
    {2, u"fengen5", u"-", "", -1},
    {2, u"关于系统", u"关于系统", "", Mainfrm::cmd关于系统},
    {1, u"退出系统", u"退出系统（&X）", "", Mainfrm::cmd退出系统},
};

// The toolbar by index: kind 0 separator, 1 button, 2 drop-down; the command, the icon.
struct ToolEntry {
    int kind;
    const char16_t* caption;
    int command;
    const char* icon;
};
const std::array<ToolEntry, 16> kTools = {{
    {0, u"", -1, ""}, // index 0 is not used
    {0, u"", -1, ""},
    {0, u"", -1, ""},
    {1, u"图书采购", Mainfrm::cmd采购订单, "caigou"},
    {1, u"采购浏览", Mainfrm::cmd采购查询, "browse"},
    {2, u"采购打印", -1, "print"},
    {0, u"", -1, ""},
    {1, u"书目验收", Mainfrm::cmd验收, "yanshou"},
    {1, u"验收浏览", Mainfrm::cmd查询浏览, "ysbrowse"},
    {1, u"补 定 单", Mainfrm::cmd补定单, "buding"},
    {0, u"", -1, ""},
    {1, u"分类统计", Mainfrm::cmd采购分类统计, "fenlei"},
    {1, u"明细统计", Mainfrm::cmd采购明细统计, "mingxi"},
    {1, u"金额统计", Mainfrm::cmd采购金额统计, "jine"},
    {0, u"", -1, ""},
    {1, u"退出系统", Mainfrm::cmd退出系统, "exit"},
}};
// The drop-down list of button 5.
struct ListEntry {
    const char16_t* caption;
    int command;
};
const std::array<ListEntry, 3> kPrintList = {{
    {u"采购来源", Mainfrm::cmd采购来源},
    {u"采购日期", Mainfrm::cmd预定日期},
    {u"其他条件", Mainfrm::cmd其他条件},
}};
// clang-format on

QString str(const char16_t* s) {
    return QString::fromUtf16(s);
}

QString toolButtonName(int index) {
    return vb::ctlName(QStringLiteral("Toolbar1"), index);
}

std::array<std::function<void()>, Mainfrm::commandCount>& handlers() {
    static std::array<std::function<void()>, Mainfrm::commandCount> h = [] {
        std::array<std::function<void()>, Mainfrm::commandCount> t;
        // The frame's own commands; the rest come from the feature folders.
        t[Mainfrm::cmd口令修改] = [] { vb::form<EditPassFrm>().Show(1); };
        t[Mainfrm::cmd关于系统] = [] { vb::form<AboutFrm>().Show(1); };
        return t;
    }();
    return h;
}

bool startDetached(const QString& program, const QStringList& args) {
    return QProcess::startDetached(program, args);
}

Mainfrm::Starter& starter() {
    static Mainfrm::Starter s = startDetached;
    return s;
}

Mainfrm::PrinterDialog& printerDialog() {
    static Mainfrm::PrinterDialog d;
    return d;
}

} // namespace

Mainfrm::Mainfrm() : vb::Form(QStringLiteral("Mainfrm")) {}

QString Mainfrm::commandName(Command c) {
    for (const MenuEntry& e : kMenu)
        if (e.command == c) return str(e.name);
    return QString();
}

void Mainfrm::setCommandHandler(Command c, std::function<void()> handler) {
    handlers()[c] = std::move(handler);
    if (vb::FormRegistry::exists<Mainfrm>() && vb::form<Mainfrm>().isLoaded())
        vb::form<Mainfrm>().refreshCommands();
}

bool Mainfrm::hasCommandHandler(Command c) {
    return c == cmd退出系统 || c == cmd区域设置 || c == cmd打印机 || bool(handlers()[c]);
}

void Mainfrm::runCommand(Command c) {
    switch (c) {
    case cmd退出系统:
        Unload();
        return;
    case cmd区域设置:
        regionalSettings();
        return;
    case cmd打印机:
        printerSetup();
        return;
    default:
        break;
    }
    // A copy: the handler may replace itself in the table.
    if (auto h = handlers()[c]) h();
}

QAction* Mainfrm::action(Command c) {
    return window()->findChild<QAction*>(commandName(c));
}

void Mainfrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("Orvane图书馆管理集成系统V4.1-------图书采购"));
    w->setWindowIcon(shellicons::icon(QStringLiteral("app")));
    auto* layout = new QVBoxLayout(w);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto* bar = new QMenuBar(w);
    bar->setObjectName(QStringLiteral("MenuBar"));
    layout->setMenuBar(bar);
    QMenu* group = nullptr;
    QMenu* sub = nullptr;
    for (const MenuEntry& e : kMenu) {
        const QString name = str(e.name);
        const QString caption = str(e.caption);
        QAction* a = nullptr;
        if (e.level == 1 && e.command < 0) {
            group = bar->addMenu(caption);
            group->setObjectName(name);
            group->menuAction()->setObjectName(name + QStringLiteral("_menu"));
            sub = nullptr;
            continue;
        }
        if (e.level == 1) {
            a = bar->addAction(caption); // acts on its own click
        } else if (e.level == 2 && e.command < 0 && caption != QStringLiteral("-")) {
            sub = group->addMenu(caption);
            sub->setObjectName(name);
            continue;
        } else {
            QMenu* into = e.level == 3 ? sub : group;
            a = caption == QStringLiteral("-") ? into->addSeparator() : into->addAction(caption);
        }
        a->setObjectName(name);
        a->setParent(w); // findable by name from the window
        if (*e.shortcut) {
            a->setShortcut(QKeySequence(QString::fromLatin1(e.shortcut)));
        }
        if (e.command >= 0) {
            const auto c = static_cast<Command>(e.command);
            connect(a, &QAction::triggered, this, [this, c] { runCommand(c); });
        }
    }

    auto* tb = new QToolBar(w);
    tb->setObjectName(QStringLiteral("Toolbar1"));
    tb->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    tb->setIconSize(QSize(32, 32));
    tb->setMovable(false);
    for (int i = 1; i < static_cast<int>(kTools.size()); ++i) {
        const ToolEntry& t = kTools[static_cast<size_t>(i)];
        if (t.kind == 0) {
            tb->addSeparator()->setObjectName(toolButtonName(i));
            continue;
        }
        auto* b = new QToolButton(tb);
        b->setObjectName(toolButtonName(i));
        b->setText(str(t.caption));
        b->setIcon(shellicons::icon(QString::fromLatin1(t.icon)));
        b->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        b->setAutoRaise(true);
        connect(b, &QToolButton::clicked, this, [this, i] { Toolbar1_ButtonClick(i); });
        if (t.kind == 2) {
            // The face of the button does nothing; only its list acts.
            auto* list = new QMenu(b);
            list->setObjectName(toolButtonName(i) + QStringLiteral("_list"));
            for (int k = 1; k <= static_cast<int>(kPrintList.size()); ++k) {
                QAction* a = list->addAction(str(kPrintList[static_cast<size_t>(k - 1)].caption));
                a->setObjectName(toolButtonName(i) + u'_' + QString::number(k));
                connect(a, &QAction::triggered, this, [this, k] { Toolbar1_ButtonMenuClick(k); });
            }
            b->setMenu(list);
            b->setPopupMode(QToolButton::MenuButtonPopup);
        }
        tb->addWidget(b);
    }
    layout->addWidget(tb);

    m_mdi = new QMdiArea(w);
    m_mdi->setObjectName(QStringLiteral("MDIClient"));
    m_mdi->setBackground(QColor(0x8a, 0x9b, 0xad));
    layout->addWidget(m_mdi, 1);
    vb::Form::setMdiArea(m_mdi);

    auto* status = new QStatusBar(w);
    status->setObjectName(QStringLiteral("StatusBar1"));
    status->setSizeGripEnabled(true);
    for (int i = 1; i <= 3; ++i) {
        auto* panel = new QLabel(status);
        panel->setObjectName(QStringLiteral("Panel%1").arg(i));
        panel->setFrameShape(QFrame::StyledPanel);
        panel->setFrameShadow(QFrame::Sunken);
        panel->setContentsMargins(4, 0, 4, 0);
        status->addWidget(panel, i == 3 ? 2 : 1);
    }
    layout->addWidget(status);

    // 打印机 needs a common dialog of its own: cmPrint stands for it.
    refreshCommands();
}

void Mainfrm::refreshCommands() {
    QWidget* w = window();
    for (int c = 0; c < commandCount; ++c)
        if (QAction* a = action(static_cast<Command>(c)))
            a->setEnabled(hasCommandHandler(static_cast<Command>(c)));
    for (int i = 1; i < static_cast<int>(kTools.size()); ++i) {
        const ToolEntry& t = kTools[static_cast<size_t>(i)];
        auto* b = w->findChild<QToolButton*>(toolButtonName(i));
        if (!b) continue;
        if (t.kind == 1) {
            b->setEnabled(hasCommandHandler(static_cast<Command>(t.command)));
        } else if (t.kind == 2) {
            bool any = false;
            for (int k = 1; k <= static_cast<int>(kPrintList.size()); ++k) {
                const auto c = static_cast<Command>(kPrintList[static_cast<size_t>(k - 1)].command);
                any = any || hasCommandHandler(c);
                if (auto* a = w->findChild<QAction*>(toolButtonName(i) + u'_' + QString::number(k)))
                    a->setEnabled(hasCommandHandler(c));
            }
            b->setEnabled(any);
        }
    }
}

void Mainfrm::onLoad() {
    // Each step resumes at the next statement; what went wrong is told at the end.
    vb::Err().Clear();
    bool ok = vb::resume([&] { window()->resize(vb::twips(11800), vb::twips(7200)); });
    QDateTime now;
    ok = vb::resume([&] { now = serverDate(); }) && ok;
    // serverDate reports its own failure and answers with the local time.
    if (ok) vb::Err().Clear();
    ok = vb::resume([&] {
             auto* w = window();
             w->findChild<QLabel*>(QStringLiteral("Panel1"))
                 ->setText(QStringLiteral("当前日期：") +
                           vb::Format(now, QStringLiteral("yyyy年mm月dd日hh时")));
             w->findChild<QLabel*>(QStringLiteral("Panel2"))
                 ->setText(QStringLiteral("操作员：") + QStringLiteral("  ") + gUserName);
             w->findChild<QLabel*>(QStringLiteral("Panel3"))
                 ->setText(QStringLiteral("当前数据库：") + gServer + QStringLiteral("上的【") +
                           gDatabase + QStringLiteral("】"));
         }) &&
         ok;
    if (!ok)
        vb::MsgBox(QStringLiteral("出现意外错误！详细信息如下：") + QStringLiteral("\r\n") +
                       vb::Err().Description,
                   vb::vbInformation, vb::kMsgTitle);
}

void Mainfrm::onResize() {
    // Centred at every resize, whatever the window state; the size itself is left alone.
    QWidget* w = window();
    const QRect screen = (w->screen() ? w->screen() : QGuiApplication::primaryScreen())->geometry();
    const QRect frame = w->frameGeometry();
    w->move(screen.x() + (screen.width() - frame.width()) / 2,
            screen.y() + (screen.height() - frame.height()) / 2);
}

bool Mainfrm::queryUnload(int mode) {
    // The desktop session is ending (or a test harness tears every form down): nobody is
    // there to answer.
    if (mode == vb::vbAppWindows) return true;
    if (vb::MsgBox(QStringLiteral("  是否确定退出该操作系统？（Y/N）"),
                   vb::vbYesNo + vb::vbCritical, QStringLiteral("退出操作")) != vb::vbYes)
        return false;
    // At once, with no child unloaded: no child's prompt comes up, unsaved entries go.
    App::end();
}

void Mainfrm::onUnload() {
    if (vb::Form::mdiArea() == m_mdi) vb::Form::setMdiArea(nullptr);
    m_mdi = nullptr;
}

void Mainfrm::Toolbar1_ButtonClick(int index) {
    switch (index) {
    case 3:
        runCommand(cmd采购订单);
        break;
    case 4:
        runCommand(cmd采购查询);
        break;
    case 7:
        runCommand(cmd验收);
        break;
    case 8:
        runCommand(cmd查询浏览);
        break;
    case 9:
        runCommand(cmd补定单);
        break;
    case 11:
        runCommand(cmd采购分类统计);
        break;
    case 12:
        runCommand(cmd采购明细统计);
        break;
    case 13:
        runCommand(cmd采购金额统计);
        break;
    case 15:
        Unload();
        break;
    default: // 5, the drop-down, acts only through its list
        break;
    }
}

void Mainfrm::Toolbar1_ButtonMenuClick(int index) {
    switch (index) {
    case 1:
        runCommand(cmd采购来源);
        break;
    case 2:
        runCommand(cmd预定日期);
        break;
    case 3:
        runCommand(cmd其他条件);
        break;
    default:
        break;
    }
}

Mainfrm::Launch
Mainfrm::regionalSettingsCommand(const std::function<bool(const QString&)>& exists) {
#ifdef Q_OS_WIN
    (void)exists;
    return {QStringLiteral("control.exe"), {QStringLiteral("intl.cpl")}};
#else
    // The desktops' own panels for formats and region, the first one found.
    const Launch candidates[] = {
        {QStringLiteral("gnome-control-center"), {QStringLiteral("region")}},
        {QStringLiteral("kcmshell6"), {QStringLiteral("kcm_regionandlang")}},
        {QStringLiteral("kcmshell5"), {QStringLiteral("kcm_regionandlang")}},
        {QStringLiteral("cinnamon-settings"), {QStringLiteral("region")}},
        {QStringLiteral("lxqt-config-locale"), {}},
    };
    for (const Launch& l : candidates)
        if (exists(l.program)) return l;
    return {};
#endif
}

Mainfrm::Starter Mainfrm::setStarter(Starter s) {
    Starter previous = std::move(starter());
    starter() = s ? std::move(s) : Starter(startDetached);
    return previous;
}

Mainfrm::PrinterDialog Mainfrm::setPrinterDialog(PrinterDialog d) {
    PrinterDialog previous = std::move(printerDialog());
    printerDialog() = std::move(d);
    return previous;
}

void Mainfrm::regionalSettings() {
    vb::MsgBox(QStringLiteral("请选择日期标签，将【短日期样式】修改为【yyyy-MM-dd】"),
               vb::vbInformation, vb::kMsgTitle);
    const Launch l = regionalSettingsCommand(
        [](const QString& p) { return !QStandardPaths::findExecutable(p).isEmpty(); });
    // Started in a window of its own, not waited for. A desktop without such a panel has
    // had the message, which says what to set.
    if (!l.program.isEmpty()) starter()(l.program, l.arguments);
}

Mainfrm::Launch Mainfrm::defaultPrinterCommand(const QString& printerName) {
#ifdef Q_OS_WIN
    return {QStringLiteral("rundll32.exe"),
            {QStringLiteral("printui.dll,PrintUIEntry"), QStringLiteral("/y"), QStringLiteral("/n"),
             printerName}};
#else
    // The user's default printer of CUPS, which every program's print dialog starts on.
    return {QStringLiteral("lpoptions"), {QStringLiteral("-d"), printerName}};
#endif
}

QString Mainfrm::choosePrinter() {
    QPrinter printer; // starts on the default printer
    QPrintDialog dlg(&printer, window());
    dlg.setObjectName(QStringLiteral("cmPrint"));
    dlg.setWindowTitle(QStringLiteral("打印机设置"));
    if (dlg.exec() != QDialog::Accepted) return QString();
    // Printing to a file is no printer to remember.
    if (printer.outputFormat() != QPrinter::NativeFormat) return QString();
    return printer.printerName();
}

void Mainfrm::printerSetup() {
    // As on the system the program comes from, the choice becomes the default printer,
    // which the reports then print on.
    const QString name = printerDialog() ? printerDialog()() : choosePrinter();
    if (name.isEmpty()) return;
    const Launch l = defaultPrinterCommand(name);
    starter()(l.program, l.arguments);
}
