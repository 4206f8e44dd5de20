// The statistics generators on a small hand-made set of orders, every figure worked out by
// hand: what each print table holds, what its report is handed (data, title, paper), the
// messages, and the failures the statements are known for. One run goes through the query
// builder itself.
//
// The orders (status 1 = accepted; amounts are price x copies):
//   id source   title     zd  class lang cgff price copies | batch ysprice yscount ysjine
//   1  新华书店 红楼梦    Z1  I12   中文 预订  10    3      | B1    9       2       40
//   2  新华书店 红楼梦    Z1  I12   中文 预订  10    2      | B2    9       2       16
//   3  新华书店 数学分析  Z2  O17   中文 预订  20    1      | B1    20      1       40
//   4  外文书店 Hamlet    -   I56   英文 现购  30    2      | open
//   5  外文书店 Calculus  -   -     英文 现购  15    4      | open
//   6  -        无名书    -   -     -    -     5     1      | B3    5       1       5
// Voucher B1 is worth 40 (rows 1 and 3 both carry it), B2 16, B3 5.

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/form.h"
#include "platform/maskedbox.h"
#include "query/Findfrm.h"
#include "query/reports.h"
#include "query/tongji.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <map>
#include <ostream>

namespace {

using Rows = QStringList;

// One row as "a|b|c", Null as "-".
QString rowText(const adodb::Recordset& rs) {
    QStringList cells;
    for (int i = 0; i < rs.fieldCount(); ++i)
        cells << (rs.isNull(i) ? QStringLiteral("-") : rs.text(i));
    return cells.join(u'|');
}

Rows allRows(adodb::Recordset& rs) {
    Rows out;
    if (rs.EOF_() && rs.BOF()) return out;
    rs.MoveFirst();
    for (; !rs.EOF_(); rs.MoveNext()) out << rowText(rs);
    return out;
}

// "name=figures;name=figures" as the map totals() gives.
std::map<QString, QString> figures(const char16_t* text) {
    std::map<QString, QString> out;
    for (const QString& row : QString::fromUtf16(text).split(u';'))
        out[row.section(u'=', 0, 0)] = row.section(u'=', 1);
    return out;
}

class Tongji : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        gConnStr = makeDatabase();
        testsupport::execSqlite(
            dbPath(),
            QStringLiteral(
                "Insert Into cgk (cgkid,bookfrom,bookname,author,publisher,zdcode,classcode,"
                "lagclass,cgff,price,bookcount,status,batch,ysprice,yscount,ysjine,ysdate) Values "
                "(1,'新华书店','红楼梦','曹雪芹','人民文学出版社','Z1','I12','中文','预订',10,3,1,"
                "'B1',9,2,40,'2003-05-06'),"
                "(2,'新华书店','红楼梦','曹雪芹','人民文学出版社','Z1','I12','中文','预订',10,2,1,"
                "'B2',9,2,16,'2003-06-01'),"
                "(3,'新华书店','数学分析','华东师大','高等教育出版社','Z2','O17','中文','预订',20,"
                "1,"
                "1,'B1',20,1,40,'2003-05-06'),"
                "(4,'外文书店','Hamlet','Shakespeare','Penguin',NULL,'I56','英文','现购',30,2,0,"
                "NULL,NULL,NULL,NULL,NULL),"
                "(5,'外文书店','Calculus','Spivak','Publish or Perish',NULL,NULL,'英文','现购',15,"
                "4,0,NULL,NULL,NULL,NULL,NULL),"
                "(6,NULL,'无名书',NULL,NULL,NULL,NULL,NULL,NULL,5,1,1,'B3',5,1,5,'2003-07-01')"));
        tongji::setTrace([this](const QString& sql) { statements << sql; });
    }
    void TearDown() override {
        tongji::setTrace({});
        vb::FormRegistry::destroyAll();
        DbTest::TearDown();
    }

    // Runs a generator as the window does and remembers the report it handed over.
    void run(const QString& printType, const QString& where = {}, const QString& order = {}) {
        shown = nullptr;
        statements.clear();
        testsupport::boxes().clear();
        ASSERT_TRUE(
            tongji::run(printType, where, order, [this](vb::DataReport& r) { shown = &r; }));
    }
    Rows table(const QString& sql) {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(sql, conn, adodb::adOpenStatic);
        return allRows(rs);
    }
    // printTotalJE by name (the groups come in the database's order); the total row last.
    std::map<QString, QString> totals() {
        std::map<QString, QString> out;
        const Rows rows = table(QStringLiteral("select * from printTotalJE"));
        for (const QString& r : rows) out[r.section(u'|', 0, 0)] = r.section(u'|', 1);
        if (!rows.isEmpty()) lastRow = rows.back();
        return out;
    }
    QStringList prompts() { return testsupport::boxes().prompts(); }

    vb::DataReport* shown = nullptr;
    QStringList statements;
    QString lastRow;
};

TEST_F(Tongji, OrderListCountsItsRowsInTheTitleAndAddsTheTotal) {
    run(QStringLiteral("print"));
    ASSERT_EQ(shown, &vb::form<printCG>());
    EXPECT_EQ(shown->Title, QStringLiteral("图书采购定单（6种）"));
    EXPECT_TRUE(shown->landscape);
    EXPECT_EQ(prompts(), QStringList{tongji::kLandscapeMessage});
    EXPECT_EQ(allRows(*shown->DataSource).back(), QStringLiteral("合  计|-|-|-|-|13|195"));

    // The order clause is used; the selection counts kinds of the condition only.
    run(QStringLiteral("print"), QStringLiteral(" Where bookfrom='外文书店'"),
        QStringLiteral(" Order By price Desc"));
    EXPECT_EQ(allRows(*shown->DataSource),
              (Rows{QStringLiteral("Hamlet|Penguin|-|30|-|2|60"),
                    QStringLiteral("Calculus|Publish or Perish|-|15|-|4|60"),
                    QStringLiteral("合  计|-|-|-|-|6|120")}));
    EXPECT_EQ(shown->Title, QStringLiteral("图书采购定单（2种）"));

    // Nothing selected: the report still comes, with the total row alone and 0 kinds.
    run(QStringLiteral("print"), QStringLiteral(" Where bookfrom='无此书店'"));
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(allRows(*shown->DataSource), Rows{QStringLiteral("合  计|-|-|-|-|-|-")});
    EXPECT_EQ(shown->Title, QStringLiteral("图书采购定单（0种）"));
}

TEST_F(Tongji, DetailListsAcceptedRowsWithTheOrderPrice) {
    run(QStringLiteral("totalmx"), {}, QStringLiteral(" Order By cgkid"));
    ASSERT_EQ(shown, &vb::form<printMX>());
    EXPECT_EQ(allRows(*shown->DataSource),
              (Rows{QStringLiteral("2003/05/06|红楼梦|曹雪芹|人民文学出版社|新华书店|10|2"),
                    QStringLiteral("2003/06/01|红楼梦|曹雪芹|人民文学出版社|新华书店|10|2"),
                    QStringLiteral("2003/05/06|数学分析|华东师大|高等教育出版社|新华书店|20|1"),
                    QStringLiteral("2003/07/01|无名书|-|-|-|5|1"),
                    QStringLiteral("合  计|-|-|-|-|-|6")}));
    EXPECT_TRUE(shown->landscape);
    // Without a condition of its own the accepted test brings its Where, two blanks first.
    EXPECT_TRUE(
        statements.filter(QStringLiteral("From cgk   Where status<>0 Order By cgkid")).size() == 1)
        << statements.join(u'\n').toStdString();

    run(QStringLiteral("totalmx"), QStringLiteral(" Where batch='B1'"));
    EXPECT_EQ(allRows(*shown->DataSource).size(), 3);
}

TEST_F(Tongji, ClassByBatchGroupsEachClassWithItsOwnTotal) {
    run(QStringLiteral("totaltotal"));
    ASSERT_EQ(shown, &vb::form<printLeibie>());
    EXPECT_FALSE(shown->landscape);
    EXPECT_EQ(prompts(), QStringList{tongji::kPortraitMessage});
    // Read shaped: one parent row per class, its rows as the child.
    adodb::Recordset& rs = *shown->DataSource;
    std::map<QString, Rows> groups;
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext())
        groups[rs.text(1)] = allRows(*rs.child(QStringLiteral("myPrint")));
    ASSERT_EQ(groups.size(), 3u);
    // 红楼梦 came in two vouchers: one kind in each batch.
    EXPECT_EQ(groups[QStringLiteral("I：文学》")],
              (Rows{QStringLiteral("I：文学》|B1|新华书店|1|2|18"),
                    QStringLiteral("I：文学》|B2|新华书店|1|2|18"),
                    QStringLiteral("I：文学》|合计|-|2|4|36")}));
    EXPECT_EQ(groups[QStringLiteral("O：数理科学和化学》")],
              (Rows{QStringLiteral("O：数理科学和化学》|B1|新华书店|1|1|20"),
                    QStringLiteral("O：数理科学和化学》|合计|-|1|1|20")}));
    // No class number is 其它; the open Calculus has none either but is not accepted.
    EXPECT_EQ(groups[QStringLiteral("其它：其它》")],
              (Rows{QStringLiteral("其它：其它》|B3|-|1|1|5"),
                    QStringLiteral("其它：其它》|合计|-|1|1|5")}));

    // Nothing accepted matches: no total row of its own, so the user is told.
    run(QStringLiteral("totaltotal"), QStringLiteral(" Where bookfrom='外文书店'"));
    EXPECT_EQ(shown, nullptr);
    EXPECT_EQ(prompts(), (QStringList{tongji::kPortraitMessage, tongji::kNoRecordsMessage}));
}

struct FieldCase {
    const char* printType;
    const char16_t* title;
    bool landscape;
    const char16_t* rows; // name=ydtype|ydcount|ydjine|ystype|yscount|ysjine;...
};

class TotalsByField : public Tongji, public ::testing::WithParamInterface<FieldCase> {};

TEST_P(TotalsByField, CountKindsAndLeaveUnacceptedGroupsEmpty) {
    const FieldCase& c = GetParam();
    run(QString::fromLatin1(c.printType));
    EXPECT_EQ(totals(), figures(c.rows));
    EXPECT_TRUE(lastRow.startsWith(QStringLiteral("合计|")));
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown, c.landscape ? static_cast<vb::DataReport*>(&vb::form<printJinEYFZ>())
                                 : &vb::form<printJinECB>());
    EXPECT_EQ(shown->Title, QString::fromUtf16(c.title));
    EXPECT_EQ(shown->landscape, c.landscape);
    EXPECT_EQ(shown->DataSource->fieldNames(),
              (QStringList{"name", "ydtype", "ydcount", "ydjine", "ystype", "yscount", "ysjine"}));
    EXPECT_EQ(allRows(*shown->DataSource).size(), 4);
    EXPECT_EQ(prompts(),
              QStringList{c.landscape ? tongji::kLandscapeMessage : tongji::kPortraitMessage});
}

INSTANTIATE_TEST_SUITE_P(
    EachField, TotalsByField,
    ::testing::Values(
        FieldCase{"tbookfrom", u"图书来源", true,
                  u"新华书店=2|6|70|2|5|56;外文书店=2|6|120|-|-|-;未定义=1|1|5|-|-|-;"
                  u"合计=5|13|195|2|5|56"},
        FieldCase{"tlagclass", u"作品语种", false,
                  u"中文=2|6|70|2|5|56;英文=2|6|120|-|-|-;未定义=1|1|5|-|-|-;"
                  u"合计=5|13|195|2|5|56"},
        FieldCase{"tcgff", u"采购方式", false,
                  u"预订=2|6|70|2|5|56;现购=2|6|120|-|-|-;未定义=1|1|5|-|-|-;"
                  u"合计=5|13|195|2|5|56"},
        // The Null group holds an accepted title, and still keeps no accepted figures.
        FieldCase{"tzdcode", u"征 订 号", false,
                  u"Z1=1|5|50|1|4|36;Z2=1|1|20|1|1|20;未定义=3|7|125|-|-|-;"
                  u"合计=5|13|195|2|5|56"}),
    [](const ::testing::TestParamInfo<FieldCase>& i) { return std::string(i.param.printType); });

TEST_F(Tongji, TotalsFollowTheConditionAndAnEmptyOneLeavesTheTotalAlone) {
    run(QStringLiteral("tbookfrom"), QStringLiteral(" Where bookname='红楼梦'"));
    EXPECT_EQ(totals(), figures(u"新华书店=1|5|50|1|4|36;合计=1|5|50|1|4|36"));
    run(QStringLiteral("tbookfrom"), QStringLiteral(" Where bookname='无此书'"));
    EXPECT_EQ(totals(), figures(u"合计=-|-|-|-|-|-"));
    ASSERT_NE(shown, nullptr);
}

TEST_F(Tongji, ASourceWithAQuoteStopsTheRunWhereItFails) {
    run(QStringLiteral("tbookfrom"));
    testsupport::execSqlite(
        dbPath(), QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,price,"
                                 "bookcount,status) Values (7,'O''Reilly','Perl',50,1,0)"));
    for (const char* t : {"tbookfrom", "tyscount", "tjine"}) {
        SCOPED_TRACE(t);
        shown = nullptr;
        testsupport::boxes().clear();
        EXPECT_THROW(
            tongji::run(QString::fromLatin1(t), {}, {}, [this](vb::DataReport& r) { shown = &r; }),
            vb::VbError);
        EXPECT_EQ(shown, nullptr);
        EXPECT_TRUE(prompts().isEmpty()); // no paper message: the run stopped before
        // What the run wrote before the failing group stands: the last run's rows are gone
        // and no total row was added.
        const auto rows = totals();
        EXPECT_EQ(rows.count(QStringLiteral("合计")), 0u);
        EXPECT_LE(rows.size(), 3u);
    }
    testsupport::execSqlite(dbPath(), QStringLiteral("Delete From cgk Where cgkid=7"));
    run(QStringLiteral("tbookfrom"));
    EXPECT_EQ(totals().size(), 4u);
}

TEST_F(Tongji, TotalsByClassNameTheClassFromTheTypeTable) {
    // A class letter the type table does not know keeps its letter.
    testsupport::execSqlite(dbPath(),
                            QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,classcode,"
                                           "price,bookcount,status) Values "
                                           "(8,'新华书店','无类书','W1',4,1,0)"));
    run(QStringLiteral("tclasscode"));
    EXPECT_EQ(totals(), figures(u"文学=2|7|110|1|4|36;数理科学和化学=1|1|20|1|1|20;其它=2|5|65|1|1|"
                                u"5;W=1|1|4|-|-|-;合计=6|14|199|3|6|61"));
    ASSERT_EQ(shown, &vb::form<printJinECB>());
    EXPECT_EQ(shown->Title, QStringLiteral("作品分类"));
    EXPECT_EQ(prompts(), QStringList{tongji::kPortraitMessage});
}

TEST_F(Tongji, ArrivalRatesUseTheDatabasesWholeNumberDivision) {
    run(QStringLiteral("tyscount"));
    // name -> ydtype|ydcount|kinds rate|ystype|yscount|copies rate: 500/6 is 83, 500/13 38.
    EXPECT_EQ(totals(), figures(u"新华书店=2|6|100|2|5|83;外文书店=2|6|-|-|-|-;未定义=1|1|-|-|-|-;"
                                u"合计=5|13|40|2|5|38"));
    ASSERT_EQ(shown, &vb::form<printJinELV>());
    EXPECT_EQ(shown->Title, QString());
    EXPECT_FALSE(shown->landscape);
}

TEST_F(Tongji, PaymentSumsEachVoucherOnce) {
    run(QStringLiteral("tjine"));
    // 新华书店: payable 36 + 20 = 56, paid B1 40 (on two rows) + B2 16 = 56. The source
    // without a name gets its figures (the update finds it with IS Null) and keeps no name;
    // 外文书店 accepted nothing and has no row.
    EXPECT_EQ(totals(), figures(u"新华书店=2|5|56|100|-|56;-=1|1|5|100|-|5;合计=3|6|61|100|-|61"));
    ASSERT_EQ(shown, &vb::form<printTotalJine>());
    EXPECT_EQ(shown->DataSource->fieldNames(),
              (QStringList{"name", "ydtype", "ydcount", "ydjine", "ysjine", "ystype"}));
    EXPECT_EQ(prompts(), QStringList{tongji::kPortraitMessage});
}

// The builder as the librarian uses it: a statistics mode, one condition, OK.
TEST_F(Tongji, OkOnTheQueryBuilderFillsTheTableAndShowsTheReport) {
    testsupport::boxes().clear();
    auto& f = vb::form<Findfrm>();
    f.printType = QStringLiteral("tbookfrom");
    f.doType = QStringLiteral("totaltotal");
    f.Load();
    f.Show(0);
    auto* fields = f.ctl<QListWidget>(QStringLiteral("LFields"));
    const auto found = fields->findItems(QStringLiteral("采购来源"), Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1);
    fields->setCurrentItem(found[0]);
    f.ctl<QComboBox>(QStringLiteral("cFuhao"))->setCurrentIndex(0); // 等于
    f.ctl<vb::MaskEdBox>(QStringLiteral("lSql"))->setTextVb(QStringLiteral("新华书店"));
    QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command3")), Qt::LeftButton);
    QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command1_1")), Qt::LeftButton);

    EXPECT_FALSE(f.isLoaded());
    EXPECT_EQ(prompts(), QStringList{tongji::kLandscapeMessage});
    EXPECT_EQ(totals(), figures(u"新华书店=2|6|70|2|5|56;合计=2|6|70|2|5|56"));
    auto& report = vb::form<printJinEYFZ>();
    ASSERT_TRUE(report.DataSource);
    EXPECT_EQ(allRows(*report.DataSource).size(), 2);
    EXPECT_EQ(report.Title, QStringLiteral("图书来源"));
    EXPECT_TRUE(report.landscape);
    EXPECT_TRUE(report.isLoaded());
    EXPECT_EQ(f.printType, QStringLiteral("tbookfrom"));

    // A printType without a generator does nothing, and the builder still goes.
    statements.clear();
    f.printType = QStringLiteral("nothing");
    f.doType = QStringLiteral("totaltotal");
    f.Load();
    f.Show(0);
    f.ctl<vb::MaskEdBox>(QStringLiteral("lSql"))->setTextVb(QStringLiteral("红楼梦"));
    QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command3")), Qt::LeftButton);
    QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command1_1")), Qt::LeftButton);
    EXPECT_FALSE(f.isLoaded());
    EXPECT_TRUE(statements.isEmpty());
}

} // namespace
