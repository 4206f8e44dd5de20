// The query builder's text on its own: operators per kind, dates given in part, quotes,
// groups, the finished clauses; and the date clauses run on the embedded database.

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

TEST(Builder, EachOperatorOfEachKind) {
    const struct {
        const Field* field;
        const char16_t* fuhao;
        const char16_t* value;
        const char16_t* sql; // dates: behind kConv
    } cases[] = {
        {&kTitle, u"等于", u"中国", u"bookname='中国'"},
        {&kTitle, u"不等于", u"中国", u"bookname<>'中国'"},
        {&kTitle, u"包含", u"O'Brien", u"bookname Like '%O''Brien%'"},
        // Numbers go in bare, whatever was typed.
        {&kCount, u"等于", u"3", u"bookcount=3"},
        {&kCount, u"不等于", u"3", u"bookcount<>3"},
        {&kCount, u"大于", u"3", u"bookcount>3"},
        {&kCount, u"不小于", u"3", u"bookcount>=3"},
        {&kCount, u"小于", u"abc", u"bookcount<abc"},
        {&kCount, u"不大于", u"3.5", u"bookcount<=3.5"},
        // A full date with 等于 is still a Like; 不等于 takes the text as it is.
        {&kDate, u"等于", u"2003-01-05", u"Like '2003/01/05'"},
        {&kDate, u"不等于", u"2003-__-__", u"<>'2003/__/__'"},
        // Gaps (the rows they select: DateClauses below), and a quote in a date.
        {&kDate, u"不大于", u"2003-1_-__", u"<='2003/19/99'"},
        {&kDate, u"大于", u"2003-0'-__", u">'2003/0''/99'"},
    };
    for (const auto& c : cases) {
        Builder b;
        b.addCondition(*c.field, QString::fromUtf16(c.fuhao), QString::fromUtf16(c.value));
        EXPECT_EQ(b.groupSql, (c.field == &kDate ? kConv : QString()) + QString::fromUtf16(c.sql));
    }
}

TEST(Builder, GroupsJoinWithOrTheirConditionsWithAnd) {
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
    EXPECT_TRUE(b.groupSql.isEmpty() && b.signText.isEmpty());
    b.addOrder(kDate, 1, QStringLiteral("降序"));
    b.clear();
    EXPECT_TRUE(b.isEmpty() && b.orderText.isEmpty() && b.totalTexts.isEmpty());
}

// OK folds the open group in and puts the receiver's fixed condition before the groups;
// only an order takes the receiver's whole clause. The builder keeps what it hands over.
TEST(Builder, FinishFoldsTheOpenGroupBehindTheFixedCondition) {
    const struct {
        int closed; // groups closed before OK
        bool open;  // a group left open at OK
        const char16_t* fixture;
        const char16_t* where;
    } cases[] = {
        {0, true, u"", u" Where bookname='甲'"}, // alone: no parentheses
        {1, true, u"", u" Where (bookname='甲') OR (bookname='乙')"},
        {0, true, u" Where status=1", u" Where status=1 AND (bookname='甲')"},
        {2, false, u" Where status=1", u" Where status=1 AND ((bookname='甲') OR (bookname='乙'))"},
        {0, false, u" Where status=1", u" Where status=0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(QString::fromUtf16(c.where).toStdString());
        Builder b;
        const QString names[] = {QStringLiteral("甲"), QStringLiteral("乙")};
        for (int i = 0; i < c.closed + (c.open ? 1 : 0); ++i) {
            b.addCondition(kTitle, QStringLiteral("等于"), names[i]);
            if (i < c.closed) b.closeGroup();
        }
        b.addOrder(kDate, 1, QStringLiteral("降序"));
        const findsql::Clause cl =
            b.finish(QString::fromUtf16(c.fixture), QStringLiteral(" Where status=0"));
        EXPECT_EQ(cl.where, QString::fromUtf16(c.where));
        EXPECT_EQ(cl.order, QStringLiteral(" Order By yddate Desc"));
        EXPECT_EQ(b.mergedSql + b.orderSql, cl.where + cl.order);
    }
}

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
