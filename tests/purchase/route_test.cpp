// The frame's 采购订单 command: a fresh entry form in the frame, whatever stood open before.
#include "purchase/CaiGoufrm.h"
#include "shell/Mainfrm.h"
#include "shell/routes.h"
#include "tests/purchase/purchasetest.h"

#include <QMdiArea>
#include <QMdiSubWindow>

namespace {

class Route : public PurchaseDb {
protected:
    void TearDown() override {
        // The routes also hand the entry form its query builder and supplier form.
        Mainfrm::setCommandHandler(Mainfrm::cmd采购订单, {});
        Mainfrm::setCommandHandler(Mainfrm::cmd采购来源定义, {});
        PurchaseDb::TearDown();
    }
};

TEST_F(Route, PurchaseOrderCommandStartsAFreshFormWithoutAQuestion) {
    registerRoutes();
    ASSERT_TRUE(Mainfrm::hasCommandHandler(Mainfrm::cmd采购订单));
    auto& frame = vb::form<Mainfrm>();
    frame.Load();
    frame.Show();
    frame.runCommand(Mainfrm::cmd采购订单);
    auto& f = vb::form<CaiGoufrm>();
    ASSERT_TRUE(f.isVisible());
    EXPECT_EQ(f.caption(), QStringLiteral("采购订单"));
    auto* mdi = frame.ctl<QMdiArea>(QStringLiteral("MDIClient"));
    ASSERT_NE(mdi->activeSubWindow(), nullptr);
    EXPECT_EQ(mdi->activeSubWindow()->widget(), f.window());

    f.addType = caigou::addAdding;
    f.Text1(1)->setText(QStringLiteral("未保存"));
    ASSERT_TRUE(f.anyFieldChanged());
    frame.Toolbar1_ButtonClick(3);
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    EXPECT_EQ(f.addType, caigou::addEmpty);
    EXPECT_EQ(f.Text1(1)->text(), QString());
    EXPECT_FALSE(f.anyFieldChanged());
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk")), QStringLiteral("0"));
}

} // namespace
