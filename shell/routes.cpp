// The frame's routing table: how each command of the menu and the toolbar opens its form.
// Mainfrm enables a command when it has a line here; the frame's own commands (口令修改,
// 关于系统, 区域设置, 打印机, 退出系统) are kept in Mainfrm itself.
//
//   采购订单              unload CaiGoufrm, show it modeless, bring it forward; each step
//                         goes on past an error
//   采购查询, 查询浏览,    bring up CaiGoufindfrm, YanShouBrowerfrm, cgGYSfrm, fenleihelp
//   采购来源定义, 中图法简表 modeless
//   补定单, 验收, 采购来源, show YanShouBDDfrm, YanShoudofrm, CaiGouprintfrm,
//   预定日期, 采购金额统计  CaiGoufindDatefrm, totalPrintfrm modeless, brought forward
//   采购分类统计, 采购明细统计, 其他条件
//                         Findfrm.printType = Findfrm.doType = "totaltotal", "totalmx",
//                         "print"; then Findfrm modal
#include "shell/routes.h"

#include "acceptance/YanShouBDDfrm.h"
#include "acceptance/YanShouBrowerfrm.h"
#include "acceptance/YanShoudofrm.h"
#include "classify/fenleihelp.h"
#include "platform/errors.h"
#include "purchase/CaiGoufindDatefrm.h"
#include "purchase/CaiGoufindfrm.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/CaiGouprintfrm.h"
#include "query/Findfrm.h"
#include "query/totalPrintfrm.h"
#include "shell/Mainfrm.h"
#include "supplier/cgGYSfrm.h"

namespace {

// Brings up a form that may stand open already: it comes to the front as it is.
template <class F> void bringUp() {
    auto& f = vb::form<F>();
    f.Hide();
    f.Show(0);
}

// Shows a form modeless and brings it forward.
template <class F> void showForward() {
    auto& f = vb::form<F>();
    f.Show(0);
    f.window()->raise();
}

// The query builder opened for printing or statistics.
void findFor(const QString& mode) {
    auto& f = vb::form<Findfrm>();
    f.printType = mode;
    f.doType = mode;
    f.Show(1);
}

} // namespace

void registerRoutes() {
    using M = Mainfrm;
    // A fresh start: an open entry form goes without a question. A failure on the way
    // (a database that will not open in its Load) leaves the rest of the steps to run.
    M::setCommandHandler(M::cmd采购订单, [] {
        vb::resume([] { vb::form<CaiGoufrm>().Unload(); });
        vb::resume([] { vb::form<CaiGoufrm>().Show(0); });
        vb::resume([] {
            auto& f = vb::form<CaiGoufrm>();
            if (f.isLoaded() && f.isVisible()) f.window()->raise();
        });
    });
    M::setCommandHandler(M::cmd采购查询, [] { bringUp<CaiGoufindfrm>(); });
    M::setCommandHandler(M::cmd采购来源, [] { showForward<CaiGouprintfrm>(); });
    M::setCommandHandler(M::cmd预定日期, [] { showForward<CaiGoufindDatefrm>(); });
    M::setCommandHandler(M::cmd中图法简表, [] { bringUp<fenleihelp>(); });
    M::setCommandHandler(M::cmd采购来源定义, [] { bringUp<cgGYSfrm>(); });
    M::setCommandHandler(M::cmd其他条件, [] { findFor(QStringLiteral("print")); });
    M::setCommandHandler(M::cmd采购分类统计, [] { findFor(QStringLiteral("totaltotal")); });
    M::setCommandHandler(M::cmd采购明细统计, [] { findFor(QStringLiteral("totalmx")); });
    M::setCommandHandler(M::cmd查询浏览, [] { bringUp<YanShouBrowerfrm>(); });
    // 打印设置 of the browser's print menu is the frame's printer dialog.
    YanShouBrowerfrm::setPrinterSetupHandler([] { vb::form<Mainfrm>().runCommand(M::cmd打印机); });
    M::setCommandHandler(M::cmd验收, [] { showForward<YanShoudofrm>(); });
    M::setCommandHandler(M::cmd补定单, [] { showForward<YanShouBDDfrm>(); });
    M::setCommandHandler(M::cmd采购金额统计, [] { showForward<totalPrintfrm>(); });
}
