// The query builder's dialog driven through its controls, and the statistics generators on
// a small hand-made set of orders, every figure worked out by hand: what each print table
// holds, what its report is handed (data, title, paper), the messages, and the failures the
// statements are known for. One run goes from the amount dialog through the builder to the
// report; orvane-report runs as a process.
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
#include "platform/events.h"
#include "platform/form.h"
#include "platform/maskedbox.h"
#include "query/Findfrm.h"
#include "query/reports.h"
#include "query/tongji.h"
#include "query/totalPrintfrm.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <map>

using namespace Qt::StringLiterals;

namespace {

using Rows = QStringList;

// One row as "a|b|c", Null as "-".
Rows allRows(adodb::Recordset& rs) {
    Rows out;
    if (rs.EOF_() && rs.BOF()) return out;
    for (rs.MoveFirst(); !rs.EOF_(); rs.MoveNext()) {
        QStringList cells;
        for (int i = 0; i < rs.fieldCount(); ++i)
            cells << (rs.isNull(i) ? QStringLiteral("-") : rs.text(i));
        out << cells.join(u'|');
    }
    return out;
}

// "name=figures;name=figures" as the map totals() gives.
std::map<QString, QString> figures(const char16_t* text) {
    std::map<QString, QString> out;
    for (const QString& row : QString::fromUtf16(text).split(u';'))
        out[row.section(u'=', 0, 0)] = row.section(u'=', 1);
    return out;
}

// Stands in for the purchase form: takes the query and remembers it.
class CaiGoufrm : public vb::Form, public QueryReceiver {
public:
    CaiGoufrm() : Form(QStringLiteral("CaiGoufrm")) {}
    void loadGridData(const QString& iiWhere, const QString& iiOrderby) override {
        ++calls;
        where = iiWhere + iiOrderby;
    }
    int calls = 0;
    QString where;

protected:
    void build(QWidget*) override {}
};

class FindForm : public testsupport::SessionDb {
protected:
    void open(const QString& doType) {
        f().doType = doType;
        f().Load();
        f().Show(0);
    }
    Findfrm& f() { return vb::form<Findfrm>(); }
    template <class W> W* c(const char* name) { return f().ctl<W>(QString::fromLatin1(name)); }
    QComboBox* cFuhao() { return c<QComboBox>("cFuhao"); }
    QComboBox* cOrderby() { return c<QComboBox>("cOrderby"); }
    vb::MaskEdBox* lSql() { return c<vb::MaskEdBox>("lSql"); }
    void click(const char* button) { QTest::mouseClick(c<QPushButton>(button), Qt::LeftButton); }
    void clickLabel(int index) {
        QTest::mouseClick(f().ctl<QLabel>(QStringLiteral("Label3"), index), Qt::LeftButton);
    }

    // The operator's way: click the field in the list, pick the operator, type the value.
    void pickField(const QString& name) {
        auto* list = c<QListWidget>("LFields");
        const auto found = list->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name.toStdString();
        list->scrollToItem(found[0]);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(found[0]).center());
    }
    void pickFuhao(const QString& fuhao) { cFuhao()->setCurrentIndex(cFuhao()->findText(fuhao)); }
    void type(const QString& value) {
        lSql()->setFocus();
        lSql()->setTextVb(QString());
        lSql()->home(false);
        testsupport::typeText(lSql(), value);
    }
    void addCondition(const QString& field, const QString& fuhao, const QString& value) {
        pickField(field);
        pickFuhao(fuhao);
        type(value);
        QTest::keyClick(lSql(), Qt::Key_Return);
    }
    void order(const QString& name, int label) {
        cOrderby()->setCurrentIndex(cOrderby()->findText(name));
        clickLabel(label);
    }
};

// The operator list and the value follow the kind of the field, the order labels, and OK
// handing the clauses to the receiver found by its name.
TEST_F(FindForm, ConditionsOrderAndOk) {
    auto& r = vb::form<CaiGoufrm>();
    r.fixture_Where = QStringLiteral(" Where status=0");
    open(QStringLiteral("caigou"));
    addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("中国"));
    // A number: six comparisons, the value cleared; Add by the button.
    type(QStringLiteral("甲"));
    pickField(QStringLiteral("预定册数"));
    EXPECT_EQ(cFuhao()->count(), 6);
    EXPECT_TRUE(lSql()->Text().isEmpty() && lSql()->Mask().isEmpty());
    type(QStringLiteral("3"));
    click("Command3");
    // A date: the mask; a key other than Enter adds nothing.
    pickField(QStringLiteral("预定日期"));
    pickFuhao(QStringLiteral("大于"));
    type(QStringLiteral("20031"));
    EXPECT_EQ(lSql()->Text(), QStringLiteral("2003-1_-__"));
    int key = vb::vbKeyDown;
    f().lSql_KeyDown(key, 0);
    click("Command3");
    const QString where = QStringLiteral("bookname Like '%中国%' And bookcount=3 And "
                                         "Convert(varchar(10),yddate,111) >'2003/19/99'");
    EXPECT_EQ(f().q.groupSql, where);

    order(QStringLiteral("书名"), 0);
    order(QStringLiteral("预定日期"), 1);
    // The field just used is gone: the label asks instead of sorting twice.
    clickLabel(1);
    EXPECT_EQ(testsupport::boxes().prompts(),
              QStringList{QStringLiteral("请选择排序项目，取消该操作。")});
    EXPECT_EQ(f().q.orderSql, QStringLiteral("bookname Asc,yddate Desc"));

    click("Command1_1");
    EXPECT_EQ(r.where,
              u" Where status=0 AND ("_s + where + u") Order By bookname Asc,yddate Desc"_s);
    EXPECT_FALSE(f().isLoaded());
    // Unload cleared the state, all but printType.
    EXPECT_TRUE(f().doType.isEmpty() && f().q.isEmpty());
    EXPECT_EQ(f().findKind, -1);

    // 关闭 hands nothing over.
    open(QStringLiteral("caigou"));
    addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("中国"));
    click("Command1_2");
    EXPECT_FALSE(f().isLoaded());
    EXPECT_EQ(r.calls, 1);
    EXPECT_EQ(testsupport::boxes().calls().size(), 1u);
    EXPECT_EQ(testsupport::processEnds(), 0);
}

class Tongji : public FindForm {
protected:
    void SetUp() override {
        FindForm::SetUp();
        exec(QStringLiteral(
            "Insert Into cgk (cgkid,bookfrom,bookname,author,publisher,zdcode,classcode,"
            "lagclass,cgff,price,bookcount,status,batch,ysprice,yscount,ysjine,ysdate) Values "
            "(1,'新华书店','红楼梦','曹雪芹','人民文学出版社','Z1','I12','中文','预订',10,3,1,"
            "'B1',9,2,40,'2003-05-06'),"
            "(2,'新华书店','红楼梦','曹雪芹','人民文学出版社','Z1','I12','中文','预订',10,2,1,"
            "'B2',9,2,16,'2003-06-01'),"
            "(3,'新华书店','数学分析','华东师大','高等教育出版社','Z2','O17','中文','预订',20,1,"
            "1,'B1',20,1,40,'2003-05-06'),"
            "(4,'外文书店','Hamlet','Shakespeare','Penguin',NULL,'I56','英文','现购',30,2,0,"
            "NULL,NULL,NULL,NULL,NULL),"
            "(5,'外文书店','Calculus','Spivak','Publish or Perish',NULL,NULL,'英文','现购',15,"
            "4,0,NULL,NULL,NULL,NULL,NULL),"
            "(6,NULL,'无名书',NULL,NULL,NULL,NULL,NULL,NULL,5,1,1,'B3',5,1,5,'2003-07-01')"));
    }

    // Runs a generator as the window does and remembers the report it handed over.
    void run(const QString& printType, const QString& where = {}, const QString& order = {}) {
        shown = nullptr;
        testsupport::boxes().clear();
        ASSERT_TRUE(
            tongji::run(printType, where, order, [this](vb::DataReport& r) { shown = &r; }));
    }
    // printTotalJE by name.
    std::map<QString, QString> totals() {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(QStringLiteral("select * from printTotalJE"), conn, adodb::adOpenStatic);
        std::map<QString, QString> out;
        for (const QString& r : allRows(rs)) out[r.section(u'|', 0, 0)] = r.section(u'|', 1);
        return out;
    }
    QStringList prompts() { return testsupport::boxes().prompts(); }
    // orvane-report as a script runs it, "@db" standing for the database and "@x" for a
    // file in the temporary folder; gives the exit code and stderr.
    std::pair<int, QString> tool(const QStringList& args) {
        QStringList real;
        for (const QString& a : args)
            real << (a == u"@db" ? dbPath() : a.startsWith(u'@') ? out(a.mid(1)) : a);
        QProcess p;
        p.start(QStringLiteral(ORVANE_REPORT_EXE), real);
        EXPECT_TRUE(p.waitForFinished(60000));
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardError())};
    }
    QString out(const QString& name) { return tempPath() + u'/' + name; }

    vb::DataReport* shown = nullptr;
};

TEST_F(Tongji, OrderListCountsKindsOfTheConditionAndEmptySelectionsKeepTheTotal) {
    run(QStringLiteral("print"));
    ASSERT_EQ(shown, &vb::form<printCG>());
    EXPECT_EQ(shown->Title, QStringLiteral("图书采购定单（6种）"));
    EXPECT_EQ(prompts(), QStringList{tongji::kLandscapeMessage});
    EXPECT_EQ(allRows(*shown->DataSource).back(), QStringLiteral("合  计|-|-|-|-|13|195"));

    run(QStringLiteral("print"), QStringLiteral(" Where bookfrom='外文书店'"),
        QStringLiteral(" Order By price Desc"));
    EXPECT_EQ(allRows(*shown->DataSource),
              (Rows{QStringLiteral("Hamlet|Penguin|-|30|-|2|60"),
                    QStringLiteral("Calculus|Publish or Perish|-|15|-|4|60"),
                    QStringLiteral("合  计|-|-|-|-|6|120")}));
    EXPECT_EQ(shown->Title, QStringLiteral("图书采购定单（2种）"));

    // Nothing selected: the reports still come, with the total row alone (and 0 kinds).
    run(QStringLiteral("print"), QStringLiteral(" Where bookfrom='无此书店'"));
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(allRows(*shown->DataSource), Rows{QStringLiteral("合  计|-|-|-|-|-|-")});
    EXPECT_EQ(shown->Title, QStringLiteral("图书采购定单（0种）"));
    run(QStringLiteral("tbookfrom"), QStringLiteral(" Where bookname='无此书'"));
    EXPECT_EQ(totals(), figures(u"合计=-|-|-|-|-|-"));
    EXPECT_NE(shown, nullptr);
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
}

TEST_F(Tongji, ClassByBatchGroupsEachClassWithItsOwnTotal) {
    run(QStringLiteral("totaltotal"));
    ASSERT_EQ(shown, &vb::form<printLeibie>());
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
}

struct TotalsCase {
    const char* printType;
    const char* report;
    const char16_t* title;
    bool landscape;
    const char16_t* rows; // name=ydtype|ydcount|ydjine|ystype|yscount|ysjine;...
};

class Totals : public Tongji, public ::testing::WithParamInterface<TotalsCase> {};

TEST_P(Totals, FiguresPerGroupAndTheTotal) {
    const TotalsCase& c = GetParam();
    if (c.printType == std::string("tclasscode")) {
        // A class letter the type table does not know keeps its letter.
        exec(QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,classcode,"
                            "price,bookcount,status) Values "
                            "(8,'新华书店','无类书','W1',4,1,0)"));
    }
    run(QString::fromLatin1(c.printType));
    EXPECT_EQ(totals(), figures(c.rows));
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->name(), QString::fromLatin1(c.report));
    EXPECT_EQ(shown->Title, QString::fromUtf16(c.title));
    EXPECT_EQ(shown->landscape, c.landscape);
}

INSTANTIATE_TEST_SUITE_P(
    EachStatistic, Totals,
    ::testing::Values(
        TotalsCase{"tbookfrom", "printJinEYFZ", u"图书来源", true,
                   u"新华书店=2|6|70|2|5|56;外文书店=2|6|120|-|-|-;未定义=1|1|5|-|-|-;"
                   u"合计=5|13|195|2|5|56"},
        TotalsCase{"tlagclass", "printJinECB", u"作品语种", false,
                   u"中文=2|6|70|2|5|56;英文=2|6|120|-|-|-;未定义=1|1|5|-|-|-;"
                   u"合计=5|13|195|2|5|56"},
        TotalsCase{"tcgff", "printJinECB", u"采购方式", false,
                   u"预订=2|6|70|2|5|56;现购=2|6|120|-|-|-;未定义=1|1|5|-|-|-;"
                   u"合计=5|13|195|2|5|56"},
        // The Null group holds an accepted title, and still keeps no accepted figures.
        TotalsCase{"tzdcode", "printJinECB", u"征 订 号", false,
                   u"Z1=1|5|50|1|4|36;Z2=1|1|20|1|1|20;未定义=3|7|125|-|-|-;"
                   u"合计=5|13|195|2|5|56"},
        TotalsCase{"tclasscode", "printJinECB", u"作品分类", false,
                   u"文学=2|7|110|1|4|36;数理科学和化学=1|1|20|1|1|20;其它=2|5|65|1|1|5;"
                   u"W=1|1|4|-|-|-;合计=6|14|199|3|6|61"},
        // ydtype|ydcount|kinds rate|ystype|yscount|copies rate: 500/6 is 83, 500/13 38.
        TotalsCase{"tyscount", "printJinELV", u"", false,
                   u"新华书店=2|6|100|2|5|83;外文书店=2|6|-|-|-|-;未定义=1|1|-|-|-|-;"
                   u"合计=5|13|40|2|5|38"},
        // name|ydtype|ydcount|ydjine|ysjine|ystype. 新华书店: payable 36 + 20, paid B1 40
        // (on two rows) + B2 16. The nameless source is found with IS Null and keeps no
        // name; 外文书店 accepted nothing and has no row.
        TotalsCase{"tjine", "printTotalJine", u"", false,
                   u"新华书店=2|5|56|100|-|56;-=1|1|5|100|-|5;合计=3|6|61|100|-|61"}),
    [](const ::testing::TestParamInfo<TotalsCase>& i) { return std::string(i.param.printType); });

TEST_F(Tongji, ASourceWithAQuoteStopsTheRunWhereItFails) {
    run(QStringLiteral("tbookfrom"));
    exec(QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,price,"
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
}

// The librarian's way: each choice of the amount dialog opens the query builder modally
// for its statistic; one condition and OK fill the table and show the report.
TEST_F(Tongji, AmountDialogThroughTheQueryBuilderToTheReport) {
    testsupport::boxes().clear();
    auto& t = vb::form<totalPrintfrm>();
    t.Show();
    const char* const words[] = {"tclasscode", "tbookfrom", "tzdcode", "tcgff",
                                 "tlagclass",  "tyscount",  "tjine"};
    for (int k = 0; k < 7; ++k) {
        SCOPED_TRACE(words[k]);
        t.Option1(k)->setChecked(true);
        QString seen;
        QTimer::singleShot(0, [&] {
            seen = f().isModalShowing() ? f().printType + u'/' + f().doType : u"not modal"_s;
            if (k != 1) {
                f().Unload();
                return;
            }
            addCondition(QStringLiteral("采购来源"), QStringLiteral("等于"),
                         QStringLiteral("新华书店"));
            click("Command1_1");
        });
        t.Command1(0)->click();
        EXPECT_EQ(seen, QString::fromLatin1(words[k]) + u"/totaltotal"_s);
        EXPECT_FALSE(f().isLoaded());
    }
    EXPECT_EQ(prompts(), QStringList{tongji::kLandscapeMessage});
    EXPECT_EQ(totals(), figures(u"新华书店=2|6|70|2|5|56;合计=2|6|70|2|5|56"));
    auto& report = vb::form<printJinEYFZ>();
    ASSERT_TRUE(report.DataSource);
    EXPECT_EQ(allRows(*report.DataSource).size(), 2);
    t.Command1(1)->click();
    EXPECT_FALSE(t.isLoaded());
}

// Each kind of file (told by its first bytes), the usage errors, a failing statement, and
// a selection with nothing accepted.
TEST_F(Tongji, ReportToolFilesExitCodesAndMessages) {
    const QStringList chinese{"--db", "@db", "--where", " Where lagclass='中文'", "--out"};
    const struct {
        QStringList args;
        int code;
        const char16_t* says = u"usage: orvane-report"; // what stderr holds
        QByteArray magic = {};
    } cases[] = {
        {chinese + QStringList{"@m.pdf", "totalmx"}, 0, u"请将打印机设置为A4", "%PDF-"},
        {chinese + QStringList{"@c.xlsx", "totaltotal"}, 0, u"请将打印机设置为A4", "PK"},
        {chinese + QStringList{"@t.csv", "tbookfrom"}, 0, u"请将打印机设置为A4", "\xEF\xBB\xBF"},
        {{}, 2},
        {{"--out", "@x.csv", "tnothing"}, 2},
        {{"--out", "@x.txt", "tjine"}, 2},
        {{"--db", "@db", "--where", " Where nosuchcolumn=1", "--out", "@x.csv", "print"},
         1,
         u"nosuchcolumn"},
        {{"--db", "@missing.db", "--out", "@x.csv", "print"}, 1, u""},
        // Nothing accepted matches: said, and no file.
        {{"--db", "@db", "--where", " Where bookfrom='外文书店'", "--out", "@x.csv", "totaltotal"},
         0,
         u"没有符合条件的记录！"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(u' ').toStdString());
        const auto [code, err] = tool(c.args);
        EXPECT_EQ(code, c.code);
        EXPECT_TRUE(err.contains(QString::fromUtf16(c.says))) << err.toStdString();
        if (c.magic.isEmpty()) continue;
        QFile f(out(c.args[c.args.indexOf(u"--out"_s) + 1].mid(1)));
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        EXPECT_EQ(f.read(c.magic.size()), c.magic);
    }
    // The tool leaves the print table filled: 新华书店 and the total row.
    EXPECT_EQ(q(QStringLiteral("select count(*)||'/'||sum(ysjine) from printTotalJE")),
              QStringLiteral("2/112.0"));
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("x.csv"))));
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("missing.db"))));
}

} // namespace
