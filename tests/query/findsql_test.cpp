// The query builder's text on its own: operators per kind, dates given in part, quotes,
// groups and the unclosed group, the order list, the finished clauses; and the date
// clauses run on the embedded database.

#include "data/globals.h"
#include "platform/adodb.h"
#include "query/findsql.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

using findsql::Builder;
using findsql::Field;

namespace {

const Field kTitle{QStringLiteral("bookname"), QStringLiteral("书名"), 0};
const Field kCount{QStringLiteral("bookcount"), QStringLiteral("预定册数"), 1};
const Field kDate{QStringLiteral("yddate"), QStringLiteral("预定日期"), 2};
const QString kConv = QStringLiteral("Convert(varchar(10),yddate,111) ");

struct CondCase {
    const Field* field;
    const char16_t* fuhao;
    const char16_t* value;
    const char16_t* sql; // dates: behind kConv
};

class Conditions : public ::testing::TestWithParam<CondCase> {};

TEST_P(Conditions, EachOperatorOfEachKind) {
    const CondCase& c = GetParam();
    Builder b;
    b.addCondition(*c.field, QString::fromUtf16(c.fuhao), QString::fromUtf16(c.value));
    EXPECT_EQ(b.groupSql, (c.field == &kDate ? kConv : QString()) + QString::fromUtf16(c.sql));
}

INSTANTIATE_TEST_SUITE_P(
    PerKind, Conditions,
    ::testing::Values(CondCase{&kTitle, u"等于", u"中国", u"bookname='中国'"},
                      CondCase{&kTitle, u"不等于", u"中国", u"bookname<>'中国'"},
                      CondCase{&kTitle, u"包含", u"O'Brien", u"bookname Like '%O''Brien%'"},
                      // Numbers go in bare, whatever was typed.
                      CondCase{&kCount, u"等于", u"3", u"bookcount=3"},
                      CondCase{&kCount, u"不等于", u"3", u"bookcount<>3"},
                      CondCase{&kCount, u"大于", u"3", u"bookcount>3"},
                      CondCase{&kCount, u"不小于", u"3", u"bookcount>=3"},
                      CondCase{&kCount, u"小于", u"abc", u"bookcount<abc"},
                      CondCase{&kCount, u"不大于", u"3.5", u"bookcount<=3.5"},
                      // A full date with 等于 is still a Like; 不等于 takes the text as it is.
                      CondCase{&kDate, u"等于", u"2003-01-05", u"Like '2003/01/05'"},
                      CondCase{&kDate, u"不等于", u"2003-__-__", u"<>'2003/__/__'"},
                      // Gaps: the highest digit for > and <=, the lowest for >= and <.
                      CondCase{&kDate, u"大于", u"2003-1_-__", u">'2003/19/99'"},
                      CondCase{&kDate, u"不大于", u"2003-1_-__", u"<='2003/19/99'"},
                      CondCase{&kDate, u"不小于", u"2003-1_-__", u">='2003/10/00'"},
                      CondCase{&kDate, u"小于", u"2003-__-__", u"<'2003/00/00'"},
                      CondCase{&kDate, u"大于", u"2003-0'-__", u">'2003/0''/99'"}));

TEST(Builder, GroupsJoinWithOrTheirConditionsWithAndAndTheOrderWithCommas) {
    Builder b;
    EXPECT_FALSE(b.closeGroup()); // nothing to close
    b.addCondition(kTitle, QStringLiteral("包含"), QStringLiteral("O'Brien"));
    b.addCondition(kCount, QStringLiteral("小于"), QStringLiteral("2"));
    // The quote stands doubled in the shown text too.
    EXPECT_EQ(b.signText, QStringLiteral("书名'包含'O''Brien;预定册数'小于'2"));
    EXPECT_TRUE(b.closeGroup());
    b.addCondition(kTitle, QStringLiteral("等于"), QStringLiteral("乙"));
    EXPECT_TRUE(b.closeGroup());
    EXPECT_EQ(b.mergedSql,
              QStringLiteral("(bookname Like '%O''Brien%' And bookcount<2) OR (bookname='乙')"));
    EXPECT_EQ(b.totalTexts, (QStringList{QStringLiteral("书名'包含'O''Brien;预定册数'小于'2"),
                                         QStringLiteral("书名'等于'乙")}));
    EXPECT_TRUE(b.groupSql.isEmpty() && b.signText.isEmpty());
    b.addOrder(kTitle, 0, QStringLiteral("升序"));
    b.addOrder(kDate, 1, QStringLiteral("降序"));
    EXPECT_EQ(b.orderSql, QStringLiteral("bookname Asc,yddate Desc"));
    EXPECT_EQ(b.orderText, QStringLiteral("'书名'升;'预定日期'降"));
    b.clear();
    EXPECT_TRUE(b.isEmpty() && b.orderText.isEmpty() && b.totalTexts.isEmpty());
}

struct FinishCase {
    const char* name;
    int closed; // groups closed before OK
    bool open;  // a group left open at OK
    bool order; // an order chosen
    const char16_t* fixture;
    const char16_t* where;
};

class Finish : public ::testing::TestWithParam<FinishCase> {};

TEST_P(Finish, FoldsTheOpenGroupAndAddsTheFixedCondition) {
    const FinishCase& c = GetParam();
    Builder b;
    const QString names[] = {QStringLiteral("甲"), QStringLiteral("乙"), QStringLiteral("丙")};
    int n = 0;
    for (int i = 0; i < c.closed; ++i) {
        b.addCondition(kTitle, QStringLiteral("等于"), names[n++]);
        b.closeGroup();
    }
    if (c.open) b.addCondition(kTitle, QStringLiteral("等于"), names[n++]);
    if (c.order) b.addOrder(kDate, 1, QStringLiteral("降序"));
    const findsql::Clause cl =
        b.finish(QString::fromUtf16(c.fixture), QStringLiteral(" Where status=0"));
    EXPECT_EQ(cl.where, QString::fromUtf16(c.where));
    EXPECT_EQ(cl.order, c.order ? QStringLiteral(" Order By yddate Desc") : QString());
    // The builder keeps the clauses: the receiver gets them by reference.
    EXPECT_EQ(b.mergedSql, cl.where);
    EXPECT_EQ(b.orderSql, cl.order);
}

INSTANTIATE_TEST_SUITE_P(
    Clauses, Finish,
    ::testing::Values(FinishCase{"OpenAloneLosesItsParentheses", 0, true, false, u"",
                                 u" Where bookname='甲'"},
                      FinishCase{"OpenAfterClosedIsOneMoreGroup", 1, true, false, u"",
                                 u" Where (bookname='甲') OR (bookname='乙')"},
                      FinishCase{"OpenAloneBehindFixture", 0, true, false, u" Where status=1",
                                 u" Where status=1 AND (bookname='甲')"},
                      FinishCase{"ClosedGroupsBehindFixture", 2, false, true, u" Where status=1",
                                 u" Where status=1 AND ((bookname='甲') OR (bookname='乙'))"},
                      FinishCase{"OnlyAnOrderTakesTheWholeClause", 0, false, true,
                                 u" Where status=1", u" Where status=0"}),
    [](const ::testing::TestParamInfo<FinishCase>& i) { return std::string(i.param.name); });

// On the embedded database a month given in part selects the rows that plain date
// comparisons select.
class DateClauses : public testsupport::DbTest {};

TEST_F(DateClauses, PartialDatesSelectTheRowsTheyDescribe) {
    gConnStr = makeDatabase(true);
    const QString month =
        testsupport::querySqlite(dbPath(), QStringLiteral("SELECT substr(yddate,1,7) FROM cgk "
                                                          "GROUP BY 1 ORDER BY count(*) DESC"));
    ASSERT_EQ(month.size(), 7);
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"等于", "yddate LIKE '%1-%'"}, {u"不等于", "yddate IS NOT NULL"},
        {u"大于", "yddate > '%1-99'"},   {u"不小于", "yddate >= '%1-00'"},
        {u"小于", "yddate < '%1-00'"},   {u"不大于", "yddate <= '%1-99'"},
    };
    adodb::Connection conn;
    conn.Open(gConnStr);
    for (const auto& [fuhao, plain] : cases) {
        SCOPED_TRACE(QString::fromUtf16(fuhao).toStdString());
        Builder b;
        b.addCondition(kDate, QString::fromUtf16(fuhao), month + QStringLiteral("-__"));
        adodb::Recordset rs;
        rs.Open(QStringLiteral("Select count(*) From cgk") + b.finish({}, {}).where, conn);
        const QString expected =
            testsupport::querySqlite(dbPath(), QStringLiteral("SELECT count(*) FROM cgk WHERE ") +
                                                   QString::fromLatin1(plain).arg(month));
        EXPECT_EQ(rs.text(0), expected);
        EXPECT_GT(expected.toInt(), 0);
    }
}

} // namespace
