// The two print forms: by source (name as it stands, sorted by id, no trap) and by a span
// of order dates (dates as typed, sorted by date, the trap and its box), both filling
// printCG for the order list and staying open.
#include "platform/flexgrid.h"
#include "platform/maskedbox.h"
#include "purchase/CaiGoufindDatefrm.h"
#include "purchase/CaiGouprintfrm.h"
#include "query/reports.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

using testsupport::boxes;
using testsupport::settle;
using testsupport::shown;

const QString kEmpty = QStringLiteral("    -  -  ");

class OrderPrint : public testsupport::SessionDb {
protected:
    void order(int id, const QString& source, const QString& yddate, int count = 1) {
        exec(QStringLiteral("INSERT INTO cgk (cgkid,bookfrom,bookname,price,yddate,bookcount) "
                            "VALUES (%1,'%2','书%1',10,'%3',%4)")
                 .arg(id)
                 .arg(QString(source).replace(u'\'', QStringLiteral("''")), yddate)
                 .arg(count));
    }
    QString printed() {
        return q(QStringLiteral("SELECT group_concat(bookname,'|') FROM "
                                "(SELECT bookname FROM printCG ORDER BY rowid)"));
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

TEST_F(OrderPrint, SourcePrintTakesTheSourcesOrdersByIdAndStaysOpen) {
    // No orders: one blank source, and a print of the total alone.
    src().Show(0);
    EXPECT_EQ(testsupport::gridColumn(src().Grid1(), 0), QStringList{QString()});
    src().Command1(0)->click();
    EXPECT_EQ(printed() + vb::form<printCG>().Title, QStringLiteral("合  计图书采购定单（0种）"));
    src().Unload();

    order(30, QStringLiteral("新华书店"), QStringLiteral("2003-01-01"));
    order(10, QStringLiteral("新华书店"), QStringLiteral("2003-03-01"));
    order(20, QStringLiteral("外文书店"), QStringLiteral("2003-02-01"));
    boxes().clear();
    src().Show(0);
    vb::FlexGrid* g = src().Grid1();
    EXPECT_EQ(g->TextMatrix(0, 0), QStringLiteral("采 购 来 源"));
    ASSERT_EQ(g->Rows(), 3);
    // Two sources fit: the column takes the width less 80.
    EXPECT_NEAR(g->ColWidth(0), vb::toTwips(g->width()) - 80, 15); // whole pixels
    g->setRow(sourceRow(QStringLiteral("新华书店")));
    src().Command1(0)->click();
    EXPECT_EQ(printed() + vb::form<printCG>().Title + boxes().prompts().join(u'\n'),
              QStringLiteral("书10|书30|合  计图书采购定单（2种）请将打印机设置为A4横向打印！"));
    EXPECT_TRUE(src().isVisible());

    // The name goes in as it stands: a quote ends the program, printCG already emptied.
    order(40, QStringLiteral("O'Neil书店"), QStringLiteral("2003-01-01"));
    src().Unload();
    src().Show(0);
    src().Grid1()->setRow(sourceRow(QStringLiteral("O'Neil书店")));
    QTest::mouseClick(src().Command1(0), Qt::LeftButton);
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("实时错误 '")));
    EXPECT_EQ(printed(), QString());
}

TEST_F(OrderPrint, SpanSortsByDateAndItsEndReachesOnlyMidnight) {
    order(10, QStringLiteral("新华书店"), QStringLiteral("2003-01-31"));
    order(20, QStringLiteral("新华书店"), QStringLiteral("2003-01-31 10:30:00"));
    order(30, QStringLiteral("外文书店"), QStringLiteral("2003-01-01 12:00:00"));
    order(40, QStringLiteral("外文书店"), QStringLiteral("2002-12-31"));
    printSpan(QStringLiteral("2003-01-01"), QStringLiteral("2003-01-31"));
    EXPECT_EQ(printed() + vb::form<printCG>().Title + boxes().prompts().join(u'\n'),
              QStringLiteral("书30|书10|合  计图书采购定单（2种）请将打印机设置为A4横向打印！"));
    EXPECT_TRUE(span().isVisible());
    // A reversed span is no error: it selects nothing.
    printSpan(QStringLiteral("2003-01-31"), QStringLiteral("2003-01-01"));
    EXPECT_EQ(printed() + vb::form<printCG>().Title, QStringLiteral("合  计图书采购定单（0种）"));
}

TEST_F(OrderPrint, APartlyFilledDateIsRefusedOnLeavingAndReset) {
    span().Show(0);
    ASSERT_TRUE(QTest::qWaitForWindowActive(span().window()));
    // The first box has the focus as the form comes up, ready for the date.
    ASSERT_TRUE(span().lDate(0)->hasFocus());
    EXPECT_EQ(span().lDate(0)->Text(), kEmpty);
    testsupport::typeText(span().lDate(0), QStringLiteral("2003"));
    EXPECT_EQ(span().lDate(0)->Text(), QStringLiteral("2003-  -  "));
    QTest::keyClick(span().lDate(0), Qt::Key_Return); // Enter moves on like Tab
    settle();
    EXPECT_EQ(boxes().prompts(), QStringList{QStringLiteral("无效日期时间格式，取消该操作。")});
    EXPECT_EQ(span().lDate(0)->Text(), kEmpty);
    EXPECT_TRUE(span().lDate(0)->hasFocus());
    // An empty box is left without a word, a whole date too.
    QTest::keyClick(span().lDate(0), Qt::Key_Tab);
    settle();
    testsupport::typeText(span().lDate(1), QStringLiteral("20030105"));
    QTest::keyClick(span().lDate(1), Qt::Key_Tab);
    settle();
    EXPECT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(span().lDate(1)->Text(), QStringLiteral("2003-01-05"));

    // Both dates are needed.
    span().lDate(1)->setTextVb(QString());
    span().lDate(0)->setTextVb(QStringLiteral("2003-01-01"));
    boxes().clear();
    span().Command1(0)->click();
    EXPECT_EQ(shown(), QStringLiteral("请输入打印查找日期，取消该操作。#%1").arg(vb::vbCritical));
    EXPECT_TRUE(span().lDate(1)->hasFocus());
}

TEST_F(OrderPrint, SpanFailureIsTrappedWithItsReason) {
    exec(QStringLiteral("DROP TABLE printCG"));
    printSpan(QStringLiteral("2003-01-01"), QStringLiteral("2003-01-31"));
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_TRUE(shown().startsWith(QStringLiteral("操作过程出现错误，错误原因如下：\r\n")));
    EXPECT_TRUE(shown().endsWith(QStringLiteral("#%1").arg(vb::vbInformation)));
    EXPECT_GT(boxes().last().prompt.size(), 20);
    EXPECT_EQ(boxes().calls().size(), 1u);
}

} // namespace
