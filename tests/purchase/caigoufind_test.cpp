// The purchase browser driven through its grid and buttons: the list, deleting a selection,
// the two wide columns, the print of its list into printCG, and its ways in.
#include "platform/Menu.h"
#include "platform/flexgrid.h"
#include "purchase/CaiGoufindfrm.h"
#include "purchase/CaiGoufrm.h"
#include "query/Findfrm.h"
#include "query/reports.h"
#include "tests/shell/modalscript.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

using testsupport::boxes;
using testsupport::cells;
using testsupport::settle;
using testsupport::shown;

class Browser : public testsupport::SessionDb {
protected:
    // Orders 10, 20, 30 ...: title 书n, n copies at 2.5, ordered on day n+1 of 2003; the
    // last one accepted, so that deletes are seen to pass over the status.
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

TEST_F(Browser, ListAndDeleteOfASelectionWhicheverEndIsTheRow) {
    addOrders(6);
    open();
    ASSERT_EQ(grid()->Rows(), 7);
    EXPECT_EQ(grid()->ColWidth(0), 0);
    EXPECT_EQ(grid()->TextMatrix(1, 1) + grid()->TextMatrix(6, 1) + grid()->TextMatrix(2, 2),
              QStringLiteral("预定中已验收2003/01/03"));

    boxes().answer({vb::vbNo, vb::vbYes, vb::vbYes});
    pressDelete(5, 6);
    EXPECT_EQ(ids(), QStringLiteral("10,20,30,40,50,60"));
    pressDelete(5, 6); // rows 5..6, the accepted one included
    pressDelete(4, 2); // RowSel above Row
    EXPECT_EQ(ids(), QStringLiteral("10"));
    EXPECT_EQ(shown(), QStringLiteral("    是否确定删除所选采购资料？\r\n该操作将永久删除记录，"
                                      "是否继续？(Y/N)  #%1\n")
                           .arg(vb::vbYesNo + vb::vbCritical)
                           .repeated(3)
                           .chopped(1));
    EXPECT_EQ(testsupport::gridColumn(grid(), 0), QStringList{QStringLiteral("10")});

    // The only row deleted leaves a blank row, and that is nothing to delete: no question.
    boxes().answer(vb::vbYes);
    pressDelete(1, 1);
    EXPECT_EQ(ids(), QString());
    ASSERT_EQ(grid()->Rows(), 2);
    for (int c = 0; c < grid()->Cols(); ++c) EXPECT_EQ(grid()->TextMatrix(1, c), QString()) << c;
    pressDelete(1, 1);
    EXPECT_EQ(boxes().calls().size(), 4u);
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

TEST_F(Browser, PrintFillsPrintCGInTheListsOrderWithATotal) {
    addOrders(3);
    exec(QStringLiteral("UPDATE cgk SET yddate='2002-12-31' WHERE cgkid=20"));
    // Before any load: by status, then date.
    f().Show(0);
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_TRUE(grid()->TextMatrix(1, 0).isEmpty());
    f().Command1(3)->click();
    EXPECT_EQ(printed(), QStringLiteral("书2:2|书1:1|书3:3|合  计:6"));

    f().loadGridData(QStringLiteral(" Where cgkid>10"), QStringLiteral(" Order By cgkid DESC"));
    boxes().clear();
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

    // Nothing matches: only the total, a count of nought, and no "no records" box.
    f().loadGridData(QStringLiteral(" Where cgkid<0"), QString());
    f().Command1(3)->click();
    EXPECT_EQ(printed() + vb::form<printCG>().Title, QStringLiteral("合  计:图书采购定单（0种）"));
    EXPECT_FALSE(boxes().prompts().contains(QStringLiteral("没有符合条件的记录！")));

    // A condition on the status name: the grid joins cgkStatus, the print does not and
    // ends the program, with printCG emptied before the failure.
    f().loadGridData(QStringLiteral(" Where fieldsname='已验收'"), QString());
    EXPECT_EQ(grid()->TextMatrix(1, 0), QStringLiteral("30"));
    QTest::mouseClick(f().Command1(3), Qt::LeftButton);
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("实时错误 '")));
    EXPECT_EQ(printed(), QString());
}

TEST_F(Browser, ThePopupsQueryAndTheEntryFormsBrowseReachIt) {
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
    EXPECT_EQ(testsupport::gridColumn(grid(), 0), QStringList{QStringLiteral("20")});

    auto& entry = vb::form<CaiGoufrm>();
    entry.Show(0);
    entry.loadGridData(QStringLiteral(" Where cgkid<>20"), QStringLiteral(" Order By cgkid DESC"));
    entry.Command2(4)->click();
    EXPECT_TRUE(f().isVisible());
    EXPECT_EQ(f().lastCond, QStringLiteral(" Where cgkid<>20"));
    EXPECT_EQ(testsupport::gridColumn(grid(), 0), cells("30,10"));
}

} // namespace
