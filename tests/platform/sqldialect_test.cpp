// SQL Server text adapted for SQLite: only + between text, left( and top n change.
#include "platform/sqldialect.h"
#include "tests/support/printto.h"

#include <gtest/gtest.h>

namespace {

TEST(SqlDialect, Rewrites) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"Select '第 '+batch+' 批采购验收传票',bookfrom From cgk",
         u"Select '第 '||batch||' 批采购验收传票',bookfrom From cgk"},
        // Numbers keep their +, also beside a text chain; a comparison ends a chain.
        {u"Select price+1,'a'+b From t Where x=y+2", u"Select price+1,'a'||b From t Where x=y+2"},
        {u"Select a From t Where name='x' And n=m+1", u"Select a From t Where name='x' And n=m+1"},
        {u"Select f('a'+b, c+1) From t", u"Select f('a'||b, c+1) From t"},
        // Quoted text and bracketed names pass untouched, an unclosed literal too.
        {u"Select [a+b],'x+y' From t Where s='left(1)'",
         u"Select [a+b],'x+y' From t Where s='left(1)'"},
        {u"Insert Into t Values ('O''Neil+','+')", u"Insert Into t Values ('O''Neil+','+')"},
        {u"Select 'abc+d", u"Select 'abc+d"},
        // left( the function, not Left Join.
        {u"From cgk Left Join s On f=status And LEFT (x,1)='A'",
         u"From cgk Left Join s On f=status And vb_left (x,1)='A'"},
        {u"Select top 1 cgkid From cgk Order by cgkid",
         u"Select cgkid From cgk Order by cgkid LIMIT 1"},
        {u"select distinct top 5 code from Global", u"select distinct code from Global LIMIT 5"},
        {u"Select topic From t", u"Select topic From t"},
    };
    for (auto [sqlServer, sqlite] : cases)
        EXPECT_EQ(sqldialect::toSQLite(QString::fromUtf16(sqlServer)), QString::fromUtf16(sqlite));
}

} // namespace
