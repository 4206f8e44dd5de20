// The legacy grid surface over its table model, and the masked edit box.
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/maskedbox.h"
#include "tests/support/printto.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

using vb::FlexGrid;
using namespace Qt::StringLiterals;

namespace {

// Rows 1..n, every third price NULL.
std::unique_ptr<adodb::Recordset> sampleRows(int n) {
    std::vector<std::vector<QVariant>> rows;
    for (int i = 0; i < n; ++i)
        rows.push_back({i + 1, u"书名%1"_s.arg(i), i % 3 == 0 ? QVariant() : QVariant(12.5 + i)});
    return adodb::Recordset::fromRows({u"cgkID"_s, u"书   名"_s, u"预定价格"_s}, std::move(rows));
}

struct Grid : FlexGrid {
    QAbstractItemModelTester tester{gridModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST(FlexGrid, FormatStringAddItemRemoveItemAndClear) {
    Grid g;
    g.setFormatString(u"IDs|^状态|<书   名|>册 数"_s);
    EXPECT_EQ(std::pair(g.Cols(), g.Rows()), std::pair(4, 2));
    EXPECT_EQ(g.TextMatrix(0, 2), u"书   名"_s);
    EXPECT_EQ(std::pair(g.ColAlignment(1), g.ColAlignment(3)),
              (std::pair<int, int>(vb::flexAlignCenterCenter, vb::flexAlignRightCenter)));
    g.setRowHeight(0, 350);
    EXPECT_EQ(g.RowHeight(0), 345); // whole pixels: 23 px
    EXPECT_THROW(g.TextMatrix(5, 0), vb::VbError);
    g.AddItem(u"1\t甲\tx"_s);
    g.AddItem(u"0\t乙"_s, 1);
    EXPECT_EQ(g.Rows(), 4);
    EXPECT_EQ(g.TextMatrix(1, 1) + g.TextMatrix(3, 1), u"乙甲"_s);
    g.RemoveItem(1);
    g.RemoveItem(1);
    EXPECT_THROW(g.RemoveItem(1), vb::VbError); // the last non-fixed row stays
    g.setTextMatrix(1, 1, u"x"_s);
    g.Clear();
    EXPECT_EQ(g.TextMatrix(1, 1) + g.TextMatrix(0, 0), QString()); // the headings go too
}

TEST(FlexGrid, RowColSelectionKeysAndTheMouse) {
    FlexGrid g;
    g.setFormatString(u"a|b|c"_s);
    g.setRows(6);
    QSignalSpy rc(&g, &FlexGrid::RowColChange);
    g.setRow(3);
    EXPECT_EQ(g.RowSel(), 3); // setting Row collapses the selection
    g.setCol(0);
    g.setColSel(2);
    EXPECT_EQ(std::pair(g.ColSel(), int(rc.count())), std::pair(2, 2));
    EXPECT_THROW(g.setRow(9), vb::VbError);
    // Keys go to KeyDown first; a handler may swallow them.
    int seen = 0;
    QObject::connect(&g, &FlexGrid::KeyDown, [&](int& code, int) {
        seen = code;
        if (code == vb::vbKeyDown) code = 0;
    });
    g.setCol(1);
    QTest::keyClick(&g, Qt::Key_Down);
    EXPECT_EQ(std::pair(seen, g.Row()), std::pair(int(vb::vbKeyDown), 3));
    QTest::keyClick(&g, Qt::Key_Up);
    EXPECT_EQ(std::pair(seen, g.Row()), std::pair(int(vb::vbKeyUp), 2));
    // The right button reports itself but leaves the current cell; the left one moves it.
    g.resize(400, 300);
    g.show();
    g.setRow(1);
    std::vector<int> downs;
    QObject::connect(&g, &FlexGrid::MouseDown, [&](int b, int, int, int) { downs.push_back(b); });
    const QPoint cell = g.cellRect(4, 2).center() - g.viewport()->pos();
    QTest::mouseClick(g.viewport(), Qt::RightButton, {}, cell);
    EXPECT_EQ(std::pair(g.Row(), g.Col()), std::pair(1, 1));
    QTest::mouseClick(g.viewport(), Qt::LeftButton, {}, cell);
    EXPECT_EQ(std::pair(g.Row(), g.Col()), std::pair(4, 2));
    EXPECT_EQ(downs, (std::vector<int>{2, 1}));
}

TEST(FlexGrid, BindCopiesRowsAndCellsFollowColumnsAndScrolling) {
    Grid g;
    g.bind(*sampleRows(4));
    EXPECT_EQ(g.Rows(), 5);
    EXPECT_EQ(g.TextMatrix(0, 1), u"书   名"_s);
    EXPECT_EQ(g.TextMatrix(1, 2), QString()); // NULL
    EXPECT_EQ(g.TextMatrix(2, 2), u"13.5"_s);
    g.bind(*sampleRows(0)); // the header and one blank row
    EXPECT_EQ(g.Rows(), 2);
    EXPECT_EQ(g.TextMatrix(1, 1) + g.TextMatrix(0, 2), u"预定价格"_s);
    // Where the in-grid editors go.
    g.resize(400, 200);
    g.bind(*sampleRows(50));
    g.setColWidth(0, 1500);
    g.show();
    EXPECT_EQ(g.cellRect(1, 1).x(), g.cellRect(1, 0).x() + 100);
    EXPECT_GT(g.cellRect(1, 1).y(), g.cellRect(0, 1).y());
    g.setTopRow(20);
    EXPECT_EQ(g.TopRow(), 20);
    EXPECT_LT(g.cellRect(20, 1).y(), g.cellRect(1, 1).y() + 1000);
}

TEST(FlexGrid, WithoutAFixedRowRowZeroIsAnOrdinaryRow) {
    Grid g;
    g.setCols(2);
    g.setFixedRows(0);
    g.setFixedCols(0);
    g.setRows(3);
    g.setTextMatrix(0, 1, u"A 马克思主义"_s);
    EXPECT_EQ(g.gridModel()->data(g.gridModel()->index(0, 1), Qt::DisplayRole).toString(),
              u"A 马克思主义"_s);
    EXPECT_TRUE(g.horizontalHeader()->isHidden());
    g.AddItem(u"x\tB 哲学"_s, 0);
    EXPECT_EQ(g.TextMatrix(1, 1), u"A 马克思主义"_s);
    g.RemoveItem(0);
    EXPECT_EQ(g.TextMatrix(0, 1), u"A 马克思主义"_s);
    g.resize(300, 200);
    g.show();
    EXPECT_EQ(g.cellRect(0, 0).y(), g.viewport()->y());
}

TEST(MaskEdBox, UnfilledPlacesShowThePromptInText) {
    vb::MaskEdBox m;
    m.setMask(u"####-##-##"_s);
    m.setTextVb(u"2003-1"_s);
    EXPECT_EQ(m.Text(), u"2003-1_-__"_s);
    m.setFocus();
    m.setCursorPosition(0);
    QTest::keyClicks(&m, u"20030115"_s);
    EXPECT_EQ(m.Text() + m.ClipText(), u"2003-01-1520030115"_s);
    m.setPromptChar(u' ');
    m.setTextVb(QString());
    EXPECT_EQ(m.Text(), u"    -  -  "_s);
    m.setMask(QString());
    m.setTextVb(u"abc"_s);
    EXPECT_EQ(m.Text(), u"abc"_s);
}

} // namespace
