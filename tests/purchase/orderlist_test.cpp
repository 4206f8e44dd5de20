// The order lists: the purchase browser driven through its grid and buttons (the list,
// deleting a selection, the print of its list, its ways in), and the two print forms, by
// source (name as it stands, sorted by id, no trap) and by a span of order dates (dates as
// typed, sorted by date, the trap and its box), all filling printCG and staying open.
#include "platform/Menu.h"
#include "platform/flexgrid.h"
#include "platform/maskedbox.h"
#include "purchase/CaiGoufindDatefrm.h"
#include "purchase/CaiGoufindfrm.h"
#include "purchase/CaiGouprintfrm.h"
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

class Orders : public testsupport::SessionDb {
protected:
    // An order titled 书<id>, at 2.5 a copy.
    void order(int id, const QString& source, const QString& yddate, int count = 1,
               int status = 0) {
        exec(QStringLiteral("INSERT INTO cgk (cgkid,bookfrom,bookname,price,yddate,bookcount,"
                            "status) VALUES (%1,'%2','书%1',2.5,'%3',%4,%5)")
                 .arg(id)
                 .arg(QString(source).replace(u'\'', QStringLiteral("''")), yddate)
                 .arg(count)
                 .arg(status));
    }
    // Orders 10, 20, 30 ...: n copies of the n-th, ordered on day n+1 of 2003; the last one
    // accepted, so that deletes are seen to pass over the status.
    void addOrders(int n) {
        for (int i = 1; i <= n; ++i)
            order(i * 10, QStringLiteral("新华书店"),
                  QStringLiteral("2003-01-%1").arg(i + 1, 2, 10, QLatin1Char('0')), i, i == n);
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
    CaiGouprintfrm& src() { return vb::form<CaiGouprintfrm>(); }
    CaiGoufindDatefrm& span() { return vb::form<CaiGoufindDatefrm>(); }
    // Prints the span from the date form with both boxes filled as typed.
    void printSpan(const QString& from, const QString& to) {
        span().Show(0);
        span().lDate(0)->setTextVb(from);
        span().lDate(1)->setTextVb(to);
        span().Command1(0)->click();
    }
    int sourceRow(const QString& name) {
        vb::FlexGrid* g = src().Grid1();
        for (int r = 1; r < g->Rows(); ++r)
            if (g->TextMatrix(r, 0) == name) return r;
        return -1;
    }
};

TEST_F(Orders, ListAndDeleteOfASelectionWhicheverEndIsTheRow) {
    addOrders(6);
    open();
    ASSERT_EQ(grid()->Rows(), 7);
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

TEST_F(Orders, PrintFillsPrintCGInTheListsOrderWithATotal) {
    addOrders(3);
    exec(QStringLiteral("UPDATE cgk SET yddate='2002-12-31' WHERE cgkid=20"));
    // Before any load: by status, then date.
    f().Show(0);
    f().Command1(3)->click();
    EXPECT_EQ(printed(), QStringLiteral("书20:2|书10:1|书30:3|合  计:6"));

    f().loadGridData(QStringLiteral(" Where cgkid>10"), QStringLiteral(" Order By cgkid DESC"));
    boxes().clear();
    f().Command1(3)->click();
    EXPECT_EQ(printed(), QStringLiteral("书30:3|书20:2|合  计:5"));
    EXPECT_EQ(q(QStringLiteral("SELECT jine FROM printCG WHERE bookname='合  计'")),
              QStringLiteral("12.5"));
    auto& report = vb::form<printCG>();
    EXPECT_TRUE(report.isVisible() && report.DataSource && report.DataSource->rowCount() == 3);
    EXPECT_TRUE(f().isVisible()); // the browser stays open
}

TEST_F(Orders, ThePopupsQueryNarrowsTheList) {
    addOrders(3);
    open();
    ModalScript script;
    script.on<Findfrm>([](Findfrm& find) {
        EXPECT_EQ(find.doType, QStringLiteral("cgk"));
        find.q.groupSql = QStringLiteral("bookname='书20'");
        find.findData();
    });
    const Menu::Picker previous = Menu::setPicker(Menu::pickText(QStringLiteral("查找")));
    QTest::mouseClick(grid()->viewport(), Qt::RightButton, {}, QPoint(5, 5));
    settle();
    Menu::setPicker(previous);
    EXPECT_EQ(f().lastCond, QStringLiteral(" Where bookname='书20'"));
    EXPECT_EQ(testsupport::gridColumn(grid(), 0), QStringList{QStringLiteral("20")});
}

TEST_F(Orders, SourcePrintTakesTheSourcesOrdersByIdAndStaysOpen) {
    order(30, QStringLiteral("新华书店"), QStringLiteral("2003-01-01"));
    order(10, QStringLiteral("新华书店"), QStringLiteral("2003-03-01"));
    order(20, QStringLiteral("外文书店"), QStringLiteral("2003-02-01"));
    src().Show(0);
    ASSERT_EQ(src().Grid1()->Rows(), 3);
    src().Grid1()->setRow(sourceRow(QStringLiteral("新华书店")));
    src().Command1(0)->click();
    EXPECT_EQ(
        printed() + vb::form<printCG>().Title + boxes().prompts().join(u'\n'),
        QStringLiteral("书10:1|书30:1|合  计:2图书采购定单（2种）请将打印机设置为A4横向打印！"));
    EXPECT_TRUE(src().isVisible());
}

TEST_F(Orders, SpanSortsByDateItsEndReachesOnlyMidnightAndAFailureIsTrapped) {
    order(10, QStringLiteral("新华书店"), QStringLiteral("2003-01-31"));
    order(20, QStringLiteral("新华书店"), QStringLiteral("2003-01-31 10:30:00"));
    order(30, QStringLiteral("外文书店"), QStringLiteral("2003-01-01 12:00:00"));
    order(40, QStringLiteral("外文书店"), QStringLiteral("2002-12-31"));
    printSpan(QStringLiteral("2003-01-01"), QStringLiteral("2003-01-31"));
    EXPECT_EQ(
        printed() + vb::form<printCG>().Title + boxes().prompts().join(u'\n'),
        QStringLiteral("书30:1|书10:1|合  计:2图书采购定单（2种）请将打印机设置为A4横向打印！"));
    EXPECT_TRUE(span().isVisible());
    // A reversed span is no error: it selects nothing.
    printSpan(QStringLiteral("2003-01-31"), QStringLiteral("2003-01-01"));
    EXPECT_EQ(printed() + vb::form<printCG>().Title, QStringLiteral("合  计:图书采购定单（0种）"));
    // Both dates are needed.
    boxes().clear();
    printSpan(QStringLiteral("2003-01-01"), QString());
    EXPECT_EQ(shown(), QStringLiteral("请输入打印查找日期，取消该操作。#%1").arg(vb::vbCritical));
    // A failure is trapped and told with its reason.
    exec(QStringLiteral("DROP TABLE printCG"));
    boxes().clear();
    printSpan(QStringLiteral("2003-01-01"), QStringLiteral("2003-01-31"));
    EXPECT_EQ(testsupport::processEnds(), 0);
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_TRUE(shown().startsWith(QStringLiteral("操作过程出现错误，错误原因如下：\r\n")));
    EXPECT_GT(boxes().last().prompt.size(), 20); // the reason follows
}

} // namespace
