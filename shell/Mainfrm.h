#pragma once
// Mainfrm: the MDI frame with the menu, the toolbar and the status bar. It does nothing
// else: every command opens a form.
//
// The commands whose forms live in the feature folders are routed through a table that
// those folders fill (routes.cpp): setCommandHandler() enables the menu entry and the
// toolbar buttons of a command; a command without a handler stays disabled.

#include "platform/form.h"

#include <functional>

class QAction;
class QMdiArea;
class QMenu;
class QToolButton;

class Mainfrm : public vb::Form {
    Q_OBJECT
public:
    // The commands, named after their menu entries.
    enum Command : int {
        cmd中图法简表,
        cmd采购订单,
        cmd采购查询,
        cmd采购来源,
        cmd预定日期,
        cmd其他条件,
        cmd验收,
        cmd查询浏览,
        cmd补定单,
        cmd采购分类统计,
        cmd采购明细统计,
        cmd采购金额统计,
        cmd采购来源定义,
        cmd口令修改,
        cmd区域设置,
        cmd打印机,
        cmd关于系统,
        cmd退出系统,
        commandCount
    };

    Mainfrm();
    bool isTopLevelForm() const override { return true; }

    // The menu entry's control name of a command ("采购订单").
    static QString commandName(Command c);
    // Routes a command to a form; an empty handler disables the command again.
    static void setCommandHandler(Command c, std::function<void()> handler);
    static bool hasCommandHandler(Command c);
    // Runs a command as its menu entry does; a command without a handler does nothing.
    void runCommand(Command c);

    // The toolbar's dispatch: by the button's index (1..15) and by the index (1..3) of
    // an entry of the drop-down list on button 5.
    void Toolbar1_ButtonClick(int index);
    void Toolbar1_ButtonMenuClick(int index);

    // How 区域设置 starts the desktop's regional settings: the program and its arguments
    // for this platform, the first of the candidates that exists (none: empty program).
    struct Launch {
        QString program;
        QStringList arguments;
    };
    static Launch regionalSettingsCommand(const std::function<bool(const QString&)>& exists);
    // Starts a program without waiting; tests replace it. Returns the previous starter.
    using Starter = std::function<bool(const QString&, const QStringList&)>;
    static Starter setStarter(Starter s);
    // The printer dialog of 打印机: returns the chosen printer, empty when cancelled.
    // Tests replace it. Returns the previous one.
    using PrinterDialog = std::function<QString()>;
    static PrinterDialog setPrinterDialog(PrinterDialog d);
    // What makes a printer the default one on this platform.
    static Launch defaultPrinterCommand(const QString& printerName);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    bool queryUnload(int mode) override;
    void onUnload() override;
    void onResize() override;

private:
    QAction* action(Command c);
    void refreshCommands();
    void regionalSettings();
    void printerSetup();
    QString choosePrinter();

    QMdiArea* m_mdi = nullptr;
};
