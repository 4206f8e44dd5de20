// The shared routines: the server's date, the kind of a query field, a record into a grid.
#include "data/globals.h"
#include "data/publicHanshu.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "tests/support/testsupport.h"

#include <QDate>

namespace {

class ServerDate : public testsupport::DbTest {};

TEST_F(ServerDate, ComesFromTheServerWithItsTime) {
    gConnStr = makeDatabase();
    const QDateTime before = QDateTime::currentDateTime().addSecs(-5);
    const QDateTime d = serverDate();
    EXPECT_TRUE(d.isValid());
    EXPECT_GE(d, before);
    EXPECT_LE(d, QDateTime::currentDateTime().addSecs(5));
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

TEST_F(ServerDate, UnreachableServerReportsAndGivesTheLocalTime) {
    gConnStr = QStringLiteral("PROVIDER=MSDASQL;DSN=orvane_no_such_source;UID=a;PWD=b;");
    const QDateTime d = serverDate();
    EXPECT_LE(qAbs(d.secsTo(QDateTime::currentDateTime())), 5);
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    const auto& box = testsupport::boxes().last();
    EXPECT_TRUE(box.prompt.startsWith(QStringLiteral("获取服务器日期时出现错误！原因如下：\r\n")));
    EXPECT_GT(box.prompt.size(), QStringLiteral("获取服务器日期时出现错误！原因如下：\r\n").size());
    EXPECT_EQ(box.flags, 64);
    EXPECT_EQ(box.title, QStringLiteral("操作提示"));
}

TEST(FieldKind, ByTheChineseNameExactly) {
    for (const char16_t* n : {u"日期", u"预定日期", u"验收日期"}) EXPECT_EQ(fieldKind(QString::fromUtf16(n)), 2);
    for (const char16_t* n : {u"验收册数", u"验收价格", u"预定价格", u"预定册数", u"页码"})
        EXPECT_EQ(fieldKind(QString::fromUtf16(n)), 1);
    for (const char16_t* n : {u"书名", u"预定日期 ", u"价格", u"", u"cgkid"})
        EXPECT_EQ(fieldKind(QString::fromUtf16(n)), 0) << QString::fromUtf16(n).toStdString();
}

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

TEST(SetGridRow, FirstRecordTakesTheBlankRowThenRowsAreAdded) {
    auto& f = vb::form<GridFrm>();
    setGridRow(0, f, {QStringLiteral("新华书店"), QStringLiteral("北京"), QString()});
    EXPECT_EQ(f.grid()->Rows(), 2); // the blank row was used, none added
    EXPECT_EQ(f.grid()->TextMatrix(1, 0), QStringLiteral("新华书店"));
    setGridRow(0, f, {QStringLiteral("外文书店"), QVariant(), QStringLiteral("王府井")});
    EXPECT_EQ(f.grid()->Rows(), 3);
    EXPECT_EQ(f.grid()->TextMatrix(2, 2), QStringLiteral("王府井"));
    EXPECT_EQ(f.grid()->Row(), 2);
    EXPECT_EQ(f.grid()->Col(), 0);
    EXPECT_EQ(f.grid()->ColSel(), 2); // the whole row is selected
}

TEST(SetGridRow, ColumnZeroEmptyCountsAsABlankGrid) {
    auto& f = vb::form<GridFrm>();
    f.grid()->setTextMatrix(1, 1, QStringLiteral("残留"));
    setGridRow(0, f, {QStringLiteral("甲"), QString(), QString()});
    EXPECT_EQ(f.grid()->Rows(), 2);
    EXPECT_EQ(f.grid()->TextMatrix(1, 0), QStringLiteral("甲"));
    EXPECT_EQ(f.grid()->TextMatrix(1, 1), QStringLiteral("残留"));
}

TEST(SetGridRow, AnEditKeepsTheOldTextOfAnEmptiedField) {
    auto& f = vb::form<GridFrm>();
    setGridRow(0, f, {QStringLiteral("甲"), QStringLiteral("上海"), QStringLiteral("南京路")});
    setGridRow(0, f, {QStringLiteral("乙"), QStringLiteral("天津"), QString()});
    f.grid()->setRow(1);
    setGridRow(1, f, {QStringLiteral("甲二"), QString(), QStringLiteral("淮海路")});
    EXPECT_EQ(f.grid()->Rows(), 3);
    EXPECT_EQ(f.grid()->TextMatrix(1, 0), QStringLiteral("甲二"));
    EXPECT_EQ(f.grid()->TextMatrix(1, 1), QStringLiteral("上海")); // blanked, yet kept
    EXPECT_EQ(f.grid()->TextMatrix(1, 2), QStringLiteral("淮海路"));
    EXPECT_EQ(f.grid()->Row(), 1);
}

TEST(SetGridRow, AFormWithoutGrid1RaisesIntoTheCaller) {
    EXPECT_THROW(setGridRow(0, vb::form<NoGridFrm>(), {QStringLiteral("x")}), vb::VbError);
}

} // namespace
