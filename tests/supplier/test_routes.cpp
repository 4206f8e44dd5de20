// The forms as the frame and the entry form reach them: 采购来源定义 brings up the supplier
// manager, the entry form's 查找 goes through the query builder to its first match, and an
// unknown source is added through the supplier form with the focus handed back.

#include "data/globals.h"
#include "platform/flexgrid.h"
#include "platform/maskedbox.h"
#include "purchase/CaiGoufrm.h"
#include "query/Findfrm.h"
#include "shell/Mainfrm.h"
#include "shell/routes.h"
#include "supplier/cgGYSdofrm.h"
#include "supplier/cgGYSfrm.h"
#include "tests/purchase/purchasetest.h"

#include <QComboBox>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTimer>

namespace {

using testsupport::boxes;

using testsupport::settle;

class Routes : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        gConnStr = makeDatabase(true);
        gUserName = QStringLiteral("采购员甲");
        registerRoutes();
    }
    void TearDown() override {
        Mainfrm::setCommandHandler(Mainfrm::cmd采购来源定义, {});
        DbTest::TearDown();
    }
    QString q(const QString& sql) { return testsupport::querySqlite(dbPath(), sql); }
    CaiGoufrm& cg() { return vb::form<CaiGoufrm>(); }
    void openEntry() {
        cg().Show(0);
        ASSERT_TRUE(QTest::qWaitForWindowActive(cg().window()));
    }
    void typeLeave(QLineEdit* t, const QString& text) {
        t->setFocus();
        settle();
        t->selectAll();
        typeText(t, text);
        QTest::keyClick(t, Qt::Key_Tab);
        settle();
    }
};

TEST_F(Routes, SupplierCommandBringsUpTheManagerInTheFrame) {
    ASSERT_TRUE(Mainfrm::hasCommandHandler(Mainfrm::cmd采购来源定义));
    auto& frame = vb::form<Mainfrm>();
    frame.Load();
    frame.Show();
    frame.runCommand(Mainfrm::cmd采购来源定义);
    auto& m = vb::form<cgGYSfrm>();
    ASSERT_TRUE(m.isVisible());
    auto* mdi = frame.ctl<QMdiArea>(QStringLiteral("MDIClient"));
    ASSERT_NE(mdi->activeSubWindow(), nullptr);
    EXPECT_EQ(mdi->activeSubWindow()->widget(), m.window());
    // Brought up again, it keeps what it shows.
    QString cond = QStringLiteral(" Where pubplace='北京'"), order;
    m.loadGridData(cond, order);
    const int rows = m.Grid1()->Rows();
    frame.runCommand(Mainfrm::cmd采购来源定义);
    EXPECT_EQ(m.Grid1()->Rows(), rows);
    EXPECT_EQ(m.lastCond, cond);
}

TEST_F(Routes, EntryFormFindStandsOnTheFirstMatch) {
    const QString where = QStringLiteral(" WHERE bookname LIKE '%中国%' ORDER BY cgkid");
    const int matches = q(QStringLiteral("SELECT count(*) FROM cgk") + where).toInt();
    ASSERT_GE(matches, 2);
    const QString second =
        q(QStringLiteral("SELECT cgkid FROM cgk") + where + QStringLiteral(" LIMIT 1 OFFSET 1"));
    openEntry();
    QTimer::singleShot(0, [] {
        auto& f = vb::form<Findfrm>();
        ASSERT_EQ(f.doType, QStringLiteral("caigou"));
        auto* fields = f.ctl<QListWidget>(QStringLiteral("LFields"));
        fields->setCurrentRow(
            fields->row(fields->findItems(QStringLiteral("书名"), Qt::MatchExactly).value(0)));
        auto* op = f.ctl<QComboBox>(QStringLiteral("cFuhao"));
        op->setCurrentIndex(op->findText(QStringLiteral("包含")));
        f.ctl<vb::MaskEdBox>(QStringLiteral("lSql"))->setTextVb(QStringLiteral("中国"));
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command3")), Qt::LeftButton);
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command1_1")), Qt::LeftButton);
    });
    QTest::mouseClick(cg().Command2(3), Qt::LeftButton);
    EXPECT_FALSE(vb::form<Findfrm>().isLoaded());
    EXPECT_EQ(cg().lastCond(), QStringLiteral(" Where bookname Like '%中国%'"));
    // Blank until an arrow is used; the next one steps from the first match to the second.
    EXPECT_EQ(cg().cgkIDs(), 0);
    QTest::mouseClick(cg().Command1(2), Qt::LeftButton);
    settle();
    EXPECT_EQ(QString::number(cg().cgkIDs()), second);
    EXPECT_TRUE(cg().Text1(1)->text().contains(QStringLiteral("中国")));
}

TEST_F(Routes, UnknownSourceIsAddedThroughTheSupplierForm) {
    openEntry();
    cg().addType = caigou::addAdding;
    cg().Text1(1)->setFocus(); // where the user moves on to
    boxes().answer(vb::vbYes);
    typeLeave(cg().Text1(0), QStringLiteral("未列书店"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("采购来源：‘未列书店’不存在，是否添加。"));
    auto& d = vb::form<cgGYSdofrm>();
    ASSERT_TRUE(d.isVisible());
    EXPECT_EQ(d.gysMode, 2);
    EXPECT_EQ(d.caption(), QStringLiteral("增加供应商资料"));
    EXPECT_EQ(d.Text1(0)->text(), QStringLiteral("未列书店"));

    QApplication::setActiveWindow(d.window());
    settle();
    typeLeave(d.Text1(1), QStringLiteral("南京"));
    typeLeave(d.Text1(2), QStringLiteral("中山路"));
    d.Combo1()->setCurrentIndex(0);
    // 保存增加 closes too in this mode, and no supplier grid is touched.
    QTest::mouseClick(d.ctl<QPushButton>(QStringLiteral("Command1_0")), Qt::LeftButton);
    settle();
    EXPECT_EQ(q(QStringLiteral("SELECT pubplace FROM cggys WHERE publisher='未列书店'")),
              QStringLiteral("南京"));
    EXPECT_FALSE(d.isLoaded());
    EXPECT_FALSE(vb::form<cgGYSfrm>().isLoaded());
    QApplication::setActiveWindow(cg().window());
    settle();
    EXPECT_EQ(QApplication::focusWidget(), cg().Text1(0));
    EXPECT_EQ(cg().Text1(0)->text(), QStringLiteral("未列书店"));
    // Now listed, the source passes without a question.
    boxes().clear();
    typeLeave(cg().Text1(0), QStringLiteral("未列书店"));
    EXPECT_TRUE(boxes().calls().empty());
}

} // namespace
