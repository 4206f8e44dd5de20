// The frame's routing table: one line per command whose form lives in a feature folder.
// A folder that brings such a form adds its library target to ORVANE_SHELL_FORM_TARGETS
// in shell/CMakeLists.txt (which defines ORVANE_HAVE_<TARGET>) and its line here. Until
// then the command stays on the menu and the toolbar, disabled.
//
// How each command opens its form:
//   采购订单              unload CaiGoufrm (errors resumed), show it modeless, bring it forward
//   采购查询, 查询浏览,    bring up CaiGoufindfrm, YanShouBrowerfrm, cgGYSfrm modeless
//   采购来源定义
//   补定单, 验收, 采购来源, show YanShouBDDfrm, YanShoudofrm, CaiGouprintfrm,
//   预定日期, 采购金额统计  CaiGoufindDatefrm, totalPrintfrm modeless, brought forward
//   采购分类统计, 采购明细统计, 其他条件
//                         Findfrm.printType = Findfrm.doType = "totaltotal", "totalmx",
//                         "print"; then Findfrm modal
#include "shell/routes.h"

#include "shell/Mainfrm.h"

#ifdef ORVANE_HAVE_FENLEIHELP
#include "classify/fenleihelp.h"
#endif
#ifdef ORVANE_HAVE_ORVANE_PURCHASE
#include "platform/errors.h"
#include "purchase/CaiGoufrm.h"
#endif
#ifdef ORVANE_HAVE_ORVANE_SUPPLIER
#include "platform/errors.h"
#include "query/Findfrm.h"
#include "supplier/cgGYSdofrm.h"
#include "supplier/cgGYSfrm.h"

#include <QLineEdit>
#endif

void registerRoutes() {
#ifdef ORVANE_HAVE_FENLEIHELP
    Mainfrm::setCommandHandler(Mainfrm::cmd中图法简表, [] {
        auto& f = vb::form<fenleihelp>();
        f.Hide();
        f.Show(0);
    });
#endif
#ifdef ORVANE_HAVE_ORVANE_PURCHASE
    // A fresh start: an open entry form goes without a question.
    Mainfrm::setCommandHandler(Mainfrm::cmd采购订单, [] {
        auto& f = vb::form<CaiGoufrm>();
        vb::resume([&] { f.Unload(); });
        f.Show(0);
    });
#endif
#ifdef ORVANE_HAVE_ORVANE_SUPPLIER
    Mainfrm::setCommandHandler(Mainfrm::cmd采购来源定义, [] {
        auto& f = vb::form<cgGYSfrm>();
        f.Hide();
        f.Show(0);
    });
#endif
#if defined(ORVANE_HAVE_ORVANE_PURCHASE) && defined(ORVANE_HAVE_ORVANE_SUPPLIER)
    // The entry form's 查找 asks the query builder for its orders.
    CaiGoufrm::setFindHandler([] {
        auto& f = vb::form<Findfrm>();
        f.doType = QStringLiteral("caigou");
        f.Show(1);
    });
    // A source the user wants added: the supplier form in its mode for the entry form,
    // with the name proposed; each step goes on past an error.
    CaiGoufrm::setSourceAddHandler([](const QString& source) {
        auto& f = vb::form<cgGYSdofrm>();
        vb::resume([&] { f.Unload(); });
        vb::resume([&] { f.gysMode = 2; });
        vb::resume([&] { f.Text1(0)->setText(source); });
        vb::resume([&] { f.Show(0); });
    });
#endif
}
