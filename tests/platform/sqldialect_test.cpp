// SQL Server text adapted for SQLite: only + between text, left( and top n change.
#include "platform/sqldialect.h"

#include <gtest/gtest.h>

using sqldialect::toSQLite;

namespace {

TEST(SqlDialect, PlusBetweenTextBecomesConcatenation) {
    EXPECT_EQ(toSQLite(QStringLiteral("Select '第 '+batch+' 批采购验收传票',bookfrom From cgk")),
              QStringLiteral("Select '第 '||batch||' 批采购验收传票',bookfrom From cgk"));
    // Numbers keep their +, also beside a text chain in the same statement.
    EXPECT_EQ(toSQLite(QStringLiteral("Select price+1,'a'+b From t Where x=y+2")),
              QStringLiteral("Select price+1,'a'||b From t Where x=y+2"));
    // A comparison ends a chain: the right side is numeric.
    EXPECT_EQ(toSQLite(QStringLiteral("Select a From t Where name='x' And n=m+1")),
              QStringLiteral("Select a From t Where name='x' And n=m+1"));
    // Inside a function's brackets the chain is its own.
    EXPECT_EQ(toSQLite(QStringLiteral("Select f('a'+b, c+1) From t")),
              QStringLiteral("Select f('a'||b, c+1) From t"));
}

TEST(SqlDialect, QuotedTextAndNamesPassUntouched) {
    EXPECT_EQ(toSQLite(QStringLiteral("Select [a+b],'x+y' From t Where s='left(1)'")),
              QStringLiteral("Select [a+b],'x+y' From t Where s='left(1)'"));
    EXPECT_EQ(toSQLite(QStringLiteral("Insert Into t Values ('O''Neil+','+')")),
              QStringLiteral("Insert Into t Values ('O''Neil+','+')"));
    // An unclosed literal runs to the end and breaks nothing.
    EXPECT_EQ(toSQLite(QStringLiteral("Select 'abc+d")), QStringLiteral("Select 'abc+d"));
}

TEST(SqlDialect, LeftFunctionButNotLeftJoin) {
    EXPECT_EQ(toSQLite(QStringLiteral("Select Distinct left(classcode,1) AS type From cgk")),
              QStringLiteral("Select Distinct vb_left(classcode,1) AS type From cgk"));
    EXPECT_EQ(toSQLite(QStringLiteral(
                  "From cgk Left Join cgkStatus On fieldsstatus=status And LEFT (x,1)='A'")),
              QStringLiteral(
                  "From cgk Left Join cgkStatus On fieldsstatus=status And vb_left (x,1)='A'"));
}

TEST(SqlDialect, TopBecomesLimit) {
    EXPECT_EQ(toSQLite(QStringLiteral("Select top 1 cgkid From cgk Order by cgkid")),
              QStringLiteral("Select cgkid From cgk Order by cgkid LIMIT 1"));
    EXPECT_EQ(toSQLite(QStringLiteral("select distinct top 5 code from Global")),
              QStringLiteral("select distinct code from Global LIMIT 5"));
    EXPECT_EQ(toSQLite(QStringLiteral("Select topic From t")),
              QStringLiteral("Select topic From t"));
}

} // namespace
