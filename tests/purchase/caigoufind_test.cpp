// The purchase browser driven through its grid and buttons: deleting a selection, the
// column widths, the print of its list into printCG, the query builder's and the entry
// form's ways in.
#include "platform/Menu.h"
#include "platform/flexgrid.h"
#include "purchase/CaiGoufindfrm.h"
#include "purchase/CaiGoufrm.h"
#include "query/Findfrm.h"
#include "query/reports.h"
#include "tests/purchase/purchasetest.h"
#include "tests/shell/modalscript.h"

#include <QPushButton>

namespace {

using testsupport::boxes;

class Browser : public PurchaseDb {
protected:
    // Orders 10, 20, 30 ...: title 书n, source 新华书店, order n days into 2003; the last
    // one accepted, so that deletes are seen to pass over the status.
    void addOrders(int n, int first = 1) {
        for (int i = first; i < first + n; ++i)
            exec(QStringLiteral("INSERT INTO cgk (cgkid,bookfrom,bookname,price,yddate,bookcount,"
                                "status) VALUES (%1,'新华书店','书%2',2.5,'2003-01-%3',%2,%4)")
                     .arg(i * 10)
                     .arg(i)
                     .arg(i % 28 + 1, 2, 10, QLatin1Char('0'))
                     .arg(i == first + n - 1 ? 1 : 0));
    }
    CaiGoufindfrm& f() { return vb::form<CaiGoufindfrm>(); }
    vb::FlexGrid* grid() { return f().Grid1(); }
    void open(const QString& cond = {}) {
        f().Show(0);
        f().loadGridData(cond, QStringLiteral(" Order By cgkid"));
    }
    void pressDelete(int row, int rowSel) {
        grid()->setRow(row);
        grid()->setRowSel(rowSel);
        grid()->setFocus();
        QTest::keyClick(grid(), Qt::Key_Delete);
        settle();
    }
    QString ids() { return q(QStringLiteral("SELECT group_concat(cgkid) FROM cgk")); }
    QString printed() {
        return q(QStringLiteral("SELECT group_concat(bookname||':'||ifnull(bookcount,''),'|') FROM "
                                "(SELECT bookname,bookcount FROM printCG ORDER BY rowid)"));
    }
    // Widths land on whole pixels: each of the nine columns may lose up to 14 twips.
    int sumVisible() {
        int s = 0;
        for (int c = 1; c <= 9; ++c) s += grid()->ColWidth(c);
        return s;
    }
};

TEST_F(Browser, GridShowsStatusNamesAndSlashDates) {
    addOrders(3);
    open();
    ASSERT_EQ(grid()->Rows(), 4);
    EXPECT_EQ(grid()->Cols(), 21);
    EXPECT_EQ(grid()->TextMatrix(0, 3), QStringLiteral("书   名"));
    EXPECT_EQ(grid()->TextMatrix(1, 1), QStringLiteral("预定中"));
    EXPECT_EQ(grid()->TextMatrix(3, 1), QStringLiteral("已验收"));
    EXPECT_EQ(grid()->TextMatrix(2, 2), QStringLiteral("2003/01/03"));
    EXPECT_EQ(grid()->ColWidth(0), 0);
}

struct Selection {
    int row, rowSel;
};
class BrowserDelete : public Browser, public ::testing::WithParamInterface<Selection> {};

TEST_P(BrowserDelete, SelectionGoesAfterOneQuestionWhicheverEndIsRow) {
    addOrders(4);
    open();
    boxes().answer(vb::vbYes);
    pressDelete(GetParam().row, GetParam().rowSel); // rows 2..4, the accepted one included
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("    是否确定删除所选采购资料？\r\n该操作将"
                                                    "永久删除记录，是否继续？(Y/N)  "));
    EXPECT_EQ(boxes().last().flags, vb::vbYesNo + vb::vbCritical);
    EXPECT_EQ(ids(), QStringLiteral("10"));
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_EQ(grid()->TextMatrix(1, 0), QStringLiteral("10"));
}
INSTANTIATE_TEST_SUITE_P(RowAboveOrBelow, BrowserDelete,
                         ::testing::Values(Selection{2, 4}, Selection{4, 2}));

TEST_F(Browser, DeletingTheOnlyRowLeavesABlankRowAndNoIsNoDelete) {
    addOrders(1);
    open();
    boxes().answer(vb::vbNo);
    pressDelete(1, 1);
    EXPECT_EQ(ids(), QStringLiteral("10"));
    boxes().answer(vb::vbYes);
    pressDelete(1, 1);
    EXPECT_EQ(ids(), QString());
    ASSERT_EQ(grid()->Rows(), 2);
    for (int c = 0; c < grid()->Cols(); ++c) EXPECT_TRUE(grid()->TextMatrix(1, c).isEmpty()) << c;
    // The blank row is nothing to delete: no question.
    pressDelete(1, 1);
    EXPECT_EQ(boxes().calls().size(), 2u);
}

TEST_F(Browser, TheTwoWideColumnsFillTheWidthLessRoomForAScrollBar) {
    addOrders(3);
    open();
    const int w = vb::toTwips(grid()->width());
    EXPECT_NEAR(sumVisible(), w - 80, 9 * 15);
    EXPECT_EQ(grid()->ColWidth(3), grid()->ColWidth(7));
    const int wide = grid()->ColWidth(3);
    addOrders(60, 4);
    f().loadGridData({}, {});
    EXPECT_NEAR(wide - grid()->ColWidth(3), 140, 15);
    EXPECT_NEAR(sumVisible(), w - 360, 9 * 15);
    // A wider window gives all of its width to the two columns.
    f().window()->resize(f().window()->width() + 100, f().window()->height());
    settle();
    EXPECT_NEAR(sumVisible(), vb::toTwips(grid()->width()) - 360, 9 * 15);
}

TEST_F(Browser, PrintOfTheListFillsPrintCGInItsOrderWithATotal) {
    addOrders(3);
    open(QStringLiteral(" Where cgkid>10"));
    f().loadGridData(f().lastCond, QStringLiteral(" Order By cgkid DESC"));
    f().Command1(3)->click();
    EXPECT_EQ(printed(), QStringLiteral("书3:3|书2:2|合  计:5"));
    EXPECT_EQ(q(QStringLiteral("SELECT jine FROM printCG WHERE bookname='合  计'")),
              QStringLiteral("12.5"));
    EXPECT_EQ(boxes().prompts(), QStringList{QStringLiteral("请将打印机设置为A4横向打印！")});
    auto& report = vb::form<printCG>();
    EXPECT_EQ(report.Title, QStringLiteral("图书采购定单（2种）"));
    EXPECT_TRUE(report.isVisible());
    ASSERT_TRUE(report.DataSource);
    EXPECT_EQ(report.DataSource->rowCount(), 3);
    EXPECT_TRUE(f().isVisible()); // the browser stays open
}

TEST_F(Browser, PrintOfNothingHasOnlyTheTotalAndACountOfNought) {
    addOrders(2);
    exec(QStringLiteral("INSERT INTO printCG (bookname) VALUES ('上次的')"));
    open(QStringLiteral(" Where cgkid<0"));
    f().Command1(3)->click();
    EXPECT_EQ(printed(), QStringLiteral("合  计:"));
    EXPECT_EQ(vb::form<printCG>().Title, QStringLiteral("图书采购定单（0种）"));
    EXPECT_FALSE(boxes().prompts().contains(QStringLiteral("没有符合条件的记录！")));
}

TEST_F(Browser, PrintOnAStatusNameConditionEndsTheProgram) {
    addOrders(2);
    open(QStringLiteral(" Where fieldsname='已验收'")); // the grid joins cgkStatus...
    EXPECT_EQ(grid()->TextMatrix(1, 0), QStringLiteral("20"));
    exec(QStringLiteral("INSERT INTO printCG (bookname) VALUES ('上次的')"));
    QTest::mouseClick(f().Command1(3), Qt::LeftButton); // ...the print does not
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("实时错误 '")));
    EXPECT_EQ(printed(), QString()); // emptied before the failure
}

TEST_F(Browser, BeforeAnyLoadThePrintSortsByStatusThenDate) {
    addOrders(3);
    exec(QStringLiteral("UPDATE cgk SET yddate='2002-12-31' WHERE cgkid=20"));
    f().Show(0);
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_TRUE(grid()->TextMatrix(1, 0).isEmpty());
    f().Command1(3)->click();
    EXPECT_EQ(printed(), QStringLiteral("书2:2|书1:1|书3:3|合  计:6"));
}

TEST_F(Browser, QueryBuilderAndPopupReachTheBrowser) {
    addOrders(3);
    open();
    ModalScript script;
    script.on<Findfrm>([](Findfrm& find) {
        EXPECT_EQ(find.doType, QStringLiteral("cgk"));
        find.q.groupSql = QStringLiteral("bookname='书2'");
        find.findData();
    });
    const Menu::Picker previous = Menu::setPicker(Menu::pickText(QStringLiteral("查找")));
    QTest::mouseClick(grid()->viewport(), Qt::RightButton, {}, QPoint(5, 5));
    settle();
    Menu::setPicker(previous);
    EXPECT_EQ(f().lastCond, QStringLiteral(" Where bookname='书2'"));
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_EQ(grid()->TextMatrix(1, 0), QStringLiteral("20"));
}

TEST_F(Browser, EntryFormBrowseOpensAFreshBrowserOnItsLastQuery) {
    addOrders(3);
    open();
    auto& entry = vb::form<CaiGoufrm>();
    entry.Show(0);
    entry.loadGridData(QStringLiteral(" Where cgkid<>20"), QStringLiteral(" Order By cgkid DESC"));
    entry.Command2(4)->click();
    EXPECT_TRUE(f().isVisible());
    EXPECT_EQ(f().lastCond, QStringLiteral(" Where cgkid<>20"));
    ASSERT_EQ(grid()->Rows(), 3);
    EXPECT_EQ(grid()->TextMatrix(1, 0), QStringLiteral("30"));
    EXPECT_EQ(grid()->TextMatrix(2, 0), QStringLiteral("10"));
}

} // namespace
