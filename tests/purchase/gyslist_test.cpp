// The drop-down pick list: at most three rows, as high as its rows, selection following the
// mouse, a pick on click, Enter or Space, Esc and focus loss closing it.
#include "platform/flexgrid.h"
#include "purchase/CaiGoufrm.h"
#include "supplier/gysListfrm.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

namespace {

using testsupport::settle;

class TargetFrm : public vb::Form {
public:
    TargetFrm() : Form(QStringLiteral("TargetFrm")) {}
    QLineEdit* edit() { return ctl<QLineEdit>(QStringLiteral("Text1_0")); }

protected:
    void build(QWidget* w) override {
        w->resize(400, 200);
        auto* e = new QLineEdit(w);
        e->setObjectName(QStringLiteral("Text1_0"));
        e->setGeometry(40, 30, 180, 22);
    }
};

class GysList : public testsupport::SessionDb {
protected:
    void SetUp() override {
        SessionDb::SetUp();
        exec(QStringLiteral("CREATE TABLE picks (n INTEGER, v TEXT)"));
        for (int i = 1; i <= 5; ++i)
            exec(QStringLiteral("INSERT INTO picks VALUES (%1,'第%1项')").arg(i));
        target().Show(0);
        ASSERT_TRUE(QTest::qWaitForWindowActive(target().window()));
        connect = QObject::connect(target().edit(), &QLineEdit::textChanged, [this] { ++changes; });
    }
    void TearDown() override {
        QObject::disconnect(connect);
        SessionDb::TearDown();
    }
    TargetFrm& target() { return vb::form<TargetFrm>(); }
    gysListfrm& list() { return vb::form<gysListfrm>(); }
    void open(int upTo) {
        list().pTxt = target().edit();
        list().tForm = &target();
        EXPECT_FALSE(list().isLoaded()); // setting the members loads nothing
        list().loadData(QStringLiteral("SELECT v FROM picks WHERE n<=%1 ORDER BY n").arg(upTo));
        list().Show(0);
        settle();
    }
    int changes = 0;
    QMetaObject::Connection connect;
};

TEST_F(GysList, AtMostThreeRowsShowAndTheListIsAsHighAsThem) {
    for (int n = 0; n <= 5; ++n) {
        open(n);
        vb::FlexGrid* g = list().Grid1();
        const int entries = std::max(n, 1); // nothing found: one empty entry
        EXPECT_EQ(list().listCount(), entries) << n;
        EXPECT_EQ(list().visibleRows(), std::min(entries, 3)) << n;
        EXPECT_EQ(g->viewport()->height(), std::min(entries, 3) * g->rowHeight(0)) << n;
        EXPECT_EQ(g->verticalScrollBarPolicy(),
                  n >= 4 ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
        EXPECT_EQ(list().listRow(), 0);
        EXPECT_EQ(list().window()->width(), target().edit()->width());
        EXPECT_EQ(list().window()->height(), g->height());
        // Just under the field.
        EXPECT_EQ(list().window()->pos(),
                  target().edit()->mapToGlobal(QPoint(0, target().edit()->height())));
        list().Unload();
    }
}

TEST_F(GysList, ClickEnterOrSpacePickEscapeAndFocusLossKeepTheText) {
    target().edit()->setText(QStringLiteral("原值"));
    changes = 0;
    open(5);
    QTest::keyClick(list().Grid1(), Qt::Key_Escape);
    EXPECT_FALSE(list().isLoaded());
    open(3);
    list().Grid1()->clearFocus();
    settle();
    EXPECT_FALSE(list().isLoaded());
    EXPECT_EQ(target().edit()->text(), QStringLiteral("原值"));
    EXPECT_EQ(changes, 0);

    open(3);
    vb::FlexGrid* g = list().Grid1();
    const QRect second = g->visualRect(g->model()->index(1, 0));
    QTest::mouseMove(g->viewport(), second.center());
    QTest::mouseClick(g->viewport(), Qt::LeftButton, {}, second.center());
    settle();
    EXPECT_EQ(target().edit()->text(), QStringLiteral("第2项"));
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(list().isLoaded());

    open(5);
    for (int i = 0; i < 3; ++i) QTest::keyClick(list().Grid1(), Qt::Key_Down);
    QTest::keyClick(list().Grid1(), Qt::Key_Return);
    EXPECT_EQ(target().edit()->text(), QStringLiteral("第4项"));
    open(5);
    QTest::keyClick(list().Grid1(), Qt::Key_Space);
    EXPECT_EQ(target().edit()->text(), QStringLiteral("第1项"));
    EXPECT_FALSE(list().isLoaded());
}

TEST_F(GysList, SelectionFollowsTheMouseAndStopsAtTheLastRow) {
    open(2);
    vb::FlexGrid* g = list().Grid1();
    const int rowTw = g->RowHeight(1);
    list().Grid1_MouseMove(0, 0, 0, vb::toTwips(g->frameWidth()) + rowTw + 10);
    EXPECT_EQ(list().listRow(), 1);
    EXPECT_EQ(g->RowSel(), g->Row());
    list().Grid1_MouseMove(0, 0, 0, rowTw * 20);
    EXPECT_EQ(list().listRow(), 1); // held on the last row
    list().Grid1_MouseMove(0, 0, 0, 0);
    EXPECT_EQ(list().listRow(), 0);
    // Scrolled down, the top row counts in.
    list().Unload();
    open(5);
    g = list().Grid1();
    g->setTopRow(3);
    list().Grid1_MouseMove(0, 0, 0, vb::toTwips(g->frameWidth()) + 10);
    EXPECT_EQ(list().listRow(), g->TopRow() - 1);
    EXPECT_GT(list().listRow(), 0);
}

TEST_F(GysList, APickFromTheEntryFormMarksTheFieldChanged) {
    auto& cg = vb::form<CaiGoufrm>();
    cg.Show(0);
    cg.addType = caigou::addAdding;
    cg.cList_Click(4); // purchase ways
    ASSERT_TRUE(list().isLoaded());
    EXPECT_EQ(list().listCount(), 5);
    EXPECT_EQ(list().visibleRows(), 3);
    QTest::keyClick(list().Grid1(), Qt::Key_Return);
    EXPECT_FALSE(list().isLoaded());
    EXPECT_FALSE(cg.Text1(15)->text().isEmpty());
    EXPECT_TRUE(cg.fieldChanged(15));
    EXPECT_TRUE(cg.Command2(2)->isEnabled());
    EXPECT_TRUE(testsupport::boxes().calls().empty()); // the rule waits until the field is left
}

} // namespace
