// A record into the grid Grid1 of another form: which row it takes, which cells it leaves.
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "platform/gridrow.h"
#include "tests/support/testsupport.h"

namespace {

class GridFrm : public vb::Form {
public:
    GridFrm() : Form(QStringLiteral("GridFrm")) {}
    vb::FlexGrid* grid() { return ctl<vb::FlexGrid>(QStringLiteral("Grid1")); }

protected:
    void build(QWidget* w) override {
        auto* g = new vb::FlexGrid(w);
        g->setObjectName(QStringLiteral("Grid1"));
        g->setFormatString(QStringLiteral("名  称|所在城市|地  址"));
        g->resize(400, 120);
    }
};

class NoGridFrm : public vb::Form {
public:
    NoGridFrm() : Form(QStringLiteral("NoGridFrm")) {}

protected:
    void build(QWidget*) override {}
};

TEST(SetGridRow, FirstRecordTakesTheBlankRowNewOnesAreAddedAnEditKeepsAnEmptiedField) {
    auto& f = vb::form<GridFrm>();
    // Column 0 empty counts as a blank row, whatever stands in the other columns.
    f.grid()->setTextMatrix(1, 1, QStringLiteral("残留"));
    setGridRow(0, f, {QStringLiteral("新华书店"), QString(), QString()});
    EXPECT_EQ(f.grid()->Rows(), 2);
    EXPECT_EQ(f.grid()->TextMatrix(1, 0), QStringLiteral("新华书店"));
    EXPECT_EQ(f.grid()->TextMatrix(1, 1), QStringLiteral("残留"));
    setGridRow(0, f, {QStringLiteral("外文书店"), QVariant(), QStringLiteral("王府井")});
    EXPECT_EQ(f.grid()->Rows(), 3);
    EXPECT_EQ(f.grid()->TextMatrix(2, 2), QStringLiteral("王府井"));
    EXPECT_EQ(f.grid()->ColSel(), 2); // the whole new row is selected

    f.grid()->setRow(1);
    setGridRow(1, f, {QStringLiteral("新华二店"), QString(), QStringLiteral("淮海路")});
    EXPECT_EQ(f.grid()->Rows(), 3);
    EXPECT_EQ(QStringList({f.grid()->TextMatrix(1, 0), f.grid()->TextMatrix(1, 1),
                           f.grid()->TextMatrix(1, 2)}),
              QStringList({QStringLiteral("新华二店"), QStringLiteral("残留"),
                           QStringLiteral("淮海路")})); // the emptied field keeps its old text
    EXPECT_EQ(f.grid()->Row(), 1);
}

TEST(SetGridRow, AFormWithoutGrid1RaisesIntoTheCaller) {
    EXPECT_THROW(setGridRow(0, vb::form<NoGridFrm>(), {QStringLiteral("x")}), vb::VbError);
}

} // namespace
