// The legacy grid surface over its table model, and the masked edit box.
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/maskedbox.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

using vb::FlexGrid;

namespace {

std::unique_ptr<adodb::Recordset> sampleRows(int n) {
    std::vector<std::vector<QVariant>> rows;
    for (int i = 0; i < n; ++i)
        rows.push_back({QVariant(i + 1), QVariant(QStringLiteral("书名%1").arg(i)),
                        i % 3 == 0 ? QVariant() : QVariant(12.5 + i)});
    return adodb::Recordset::fromRows(
        {QStringLiteral("cgkID"), QStringLiteral("书   名"), QStringLiteral("预定价格")},
        std::move(rows));
}

TEST(FlexGrid, FormatStringSetsColumnsHeadingsAndAlignment) {
    FlexGrid g;
    QAbstractItemModelTester tester(g.gridModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    g.setFormatString(QStringLiteral("IDs|^状态|<书   名|>册 数"));
    EXPECT_EQ(g.Cols(), 4);
    EXPECT_EQ(g.TextMatrix(0, 0), QStringLiteral("IDs"));
    EXPECT_EQ(g.TextMatrix(0, 2), QStringLiteral("书   名"));
    EXPECT_EQ(g.ColAlignment(1), vb::flexAlignCenterCenter);
    EXPECT_EQ(g.ColAlignment(3), vb::flexAlignRightCenter);
    EXPECT_EQ(g.gridModel()->headerData(2, Qt::Horizontal, Qt::DisplayRole).toString(),
              QStringLiteral("书   名"));
    g.setColWidth(0, 0); // hidden
    EXPECT_EQ(g.ColWidth(0), 0);
    g.setColWidth(2, 1500);
    EXPECT_EQ(g.ColWidth(2), 1500);
    g.setRowHeight(0, 350);
    EXPECT_EQ(g.RowHeight(0), 345); // whole pixels: 23 px
    EXPECT_THROW(g.TextMatrix(5, 0), vb::VbError);
}

TEST(FlexGrid, AddItemRemoveItemAndTheLastRowRule) {
    FlexGrid g;
    QAbstractItemModelTester tester(g.gridModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    g.setFormatString(QStringLiteral("a|b|c"));
    EXPECT_EQ(g.Rows(), 2);
    g.AddItem(QStringLiteral("1\t甲\tx"));
    g.AddItem(QStringLiteral("0\t乙"), 1);
    EXPECT_EQ(g.Rows(), 4);
    EXPECT_EQ(g.TextMatrix(1, 1), QStringLiteral("乙"));
    EXPECT_EQ(g.TextMatrix(3, 1), QStringLiteral("甲"));
    EXPECT_EQ(g.TextMatrix(1, 2), QString());
    g.RemoveItem(1);
    g.RemoveItem(1);
    EXPECT_EQ(g.Rows(), 2);
    EXPECT_THROW(g.RemoveItem(1), vb::VbError); // the last non-fixed row stays
    g.setTextMatrix(1, 1, QStringLiteral("x"));
    g.Clear();
    EXPECT_EQ(g.TextMatrix(1, 1), QString());
    EXPECT_EQ(g.TextMatrix(0, 0), QString()); // Clear takes the headings too
}

TEST(FlexGrid, RowColSelectionAndEvents) {
    FlexGrid g;
    g.setFormatString(QStringLiteral("a|b|c"));
    g.setRows(5);
    QSignalSpy rc(&g, &FlexGrid::RowColChange);
    g.setRow(3);
    EXPECT_EQ(g.Row(), 3);
    EXPECT_EQ(g.RowSel(), 3); // setting Row collapses the selection
    g.setCol(0);
    g.setColSel(2);
    EXPECT_EQ(g.ColSel(), 2);
    EXPECT_EQ(rc.count(), 2);
    EXPECT_THROW(g.setRow(9), vb::VbError);
    // Keys go to KeyDown first; a handler may swallow them.
    int seen = 0;
    QObject::connect(&g, &FlexGrid::KeyDown, [&](int& code, int) {
        seen = code;
        if (code == vb::vbKeyDelete) code = 0;
    });
    g.setCol(1);
    QTest::keyClick(&g, Qt::Key_Down);
    EXPECT_EQ(seen, vb::vbKeyDown);
    EXPECT_EQ(g.Row(), 4);
    QTest::keyClick(&g, Qt::Key_Delete);
    EXPECT_EQ(seen, vb::vbKeyDelete);
    EXPECT_EQ(g.Row(), 4);
}

TEST(FlexGrid, BindCopiesRowsAndAnEmptyBindKeepsOneBlankRow) {
    FlexGrid g;
    QAbstractItemModelTester tester(g.gridModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    auto rs = sampleRows(4);
    g.bind(*rs);
    EXPECT_EQ(g.Rows(), 5);
    EXPECT_EQ(g.Cols(), 3);
    EXPECT_EQ(g.TextMatrix(0, 1), QStringLiteral("书   名"));
    EXPECT_EQ(g.TextMatrix(1, 0), QStringLiteral("1"));
    EXPECT_EQ(g.TextMatrix(1, 2), QString()); // NULL
    EXPECT_EQ(g.TextMatrix(2, 2), QStringLiteral("13.5"));
    auto none = sampleRows(0);
    g.bind(*none);
    EXPECT_EQ(g.Rows(), 2);
    EXPECT_EQ(g.TextMatrix(1, 1), QString());
    EXPECT_EQ(g.TextMatrix(0, 2), QStringLiteral("预定价格"));
}

TEST(FlexGrid, WithoutAFixedRowRowZeroIsAnOrdinaryRow) {
    FlexGrid g;
    QAbstractItemModelTester tester(g.gridModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    g.setCols(2);
    g.setFixedRows(0);
    g.setFixedCols(0);
    g.setRows(3);
    g.setTextMatrix(0, 1, QStringLiteral("A 马克思主义"));
    EXPECT_EQ(g.gridModel()->rowCount(), 3);
    EXPECT_EQ(g.gridModel()->data(g.gridModel()->index(0, 1), Qt::DisplayRole).toString(),
              QStringLiteral("A 马克思主义"));
    EXPECT_TRUE(g.horizontalHeader()->isHidden());
    g.setRow(0);
    EXPECT_EQ(g.Row(), 0);
    g.AddItem(QStringLiteral("x\tB 哲学"), 0);
    EXPECT_EQ(g.TextMatrix(1, 1), QStringLiteral("A 马克思主义"));
    g.RemoveItem(0);
    EXPECT_EQ(g.TextMatrix(0, 1), QStringLiteral("A 马克思主义"));
    g.resize(300, 200);
    g.show();
    EXPECT_EQ(g.cellRect(0, 0).y(), g.viewport()->y());
}

TEST(FlexGrid, CellGeometryFollowsColumnsAndScrolling) {
    FlexGrid g;
    g.resize(400, 200);
    g.setFormatString(QStringLiteral("a|b|c"));
    auto rs = sampleRows(50);
    g.bind(*rs);
    g.setColWidth(0, 1500);
    g.show();
    const QRect r01 = g.cellRect(1, 1);
    EXPECT_EQ(r01.x(), g.cellRect(1, 0).x() + 100);
    EXPECT_GT(r01.y(), g.cellRect(0, 1).y());
    g.setTopRow(20);
    EXPECT_EQ(g.TopRow(), 20);
    EXPECT_LT(g.cellRect(20, 1).y(), g.cellRect(1, 1).y() + 1000);
}

TEST(MaskEdBox, UnfilledPlacesShowThePromptInText) {
    vb::MaskEdBox m;
    m.setMask(QStringLiteral("####-##-##"));
    EXPECT_EQ(m.Text(), QStringLiteral("____-__-__"));
    m.setTextVb(QStringLiteral("2003-1"));
    EXPECT_EQ(m.Text(), QStringLiteral("2003-1_-__"));
    m.setTextVb(QStringLiteral("____-__-__"));
    EXPECT_EQ(m.Text(), QStringLiteral("____-__-__"));
    m.setFocus();
    m.setCursorPosition(0);
    QTest::keyClicks(&m, QStringLiteral("20030115"));
    EXPECT_EQ(m.Text(), QStringLiteral("2003-01-15"));
    EXPECT_EQ(m.ClipText(), QStringLiteral("20030115"));
    m.setPromptChar(u' ');
    m.setTextVb(QString());
    EXPECT_EQ(m.Text(), QStringLiteral("    -  -  "));
    m.setMask(QString());
    m.setTextVb(QStringLiteral("abc"));
    EXPECT_EQ(m.Text(), QStringLiteral("abc"));
}

} // namespace

TEST(FlexGrid, OnlyTheLeftButtonMovesTheCurrentCell) {
    FlexGrid g;
    g.setFormatString(QStringLiteral("a|b|c"));
    g.setRows(6);
    g.resize(400, 300);
    g.show();
    g.setRow(1);
    g.setCol(1);
    std::vector<int> downs;
    QObject::connect(&g, &FlexGrid::MouseDown,
                     [&](int button, int, int, int) { downs.push_back(button); });
    const QPoint cell = g.cellRect(4, 2).center() - g.viewport()->pos();
    QTest::mouseClick(g.viewport(), Qt::RightButton, {}, cell);
    EXPECT_EQ(g.Row(), 1);
    EXPECT_EQ(g.Col(), 1);
    QTest::mouseClick(g.viewport(), Qt::LeftButton, {}, cell);
    EXPECT_EQ(g.Row(), 4);
    EXPECT_EQ(g.Col(), 2);
    EXPECT_EQ(downs, (std::vector<int>{2, 1}));
}
