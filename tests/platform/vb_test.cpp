// The legacy runtime's loose tests and conversions, GBK both ways, and SQL Server text
// adapted for SQLite: one row per corner case.
#include "platform/errors.h"
#include "platform/gbk.h"
#include "platform/sqldialect.h"
#include "platform/vb.h"
#include "tests/support/printto.h"

#include <gtest/gtest.h>

using namespace vb;
using namespace Qt::StringLiterals;

namespace {

// The number of the runtime error f raises (0 when none).
template <class F> int errorOf(F f) {
    try {
        f();
    } catch (const VbError& e) {
        return e.number();
    }
    return 0;
}

// "1,200" is numeric, but Val stops at the comma.
TEST(Runtime, IsNumericAndVal) {
    const std::tuple<const char16_t*, bool, double> cases[] = {
        {u"007", true, 7},      {u"12.50", true, 12.5}, {u"1,200", true, 1}, {u" 42 ", true, 42},
        {u"", false, 0},        {u".", false, 0},       {u"+3", true, 3},    {u"- 3", true, -3},
        {u"1e3", true, 1000},   {u"2D2", true, 200},    {u"1e", false, 1},   {u"&H1F", true, 31},
        {u"&O17", true, 15},    {u"&HFFFF", true, -1},  {u"(5)", true, 0},   {u"12abc", false, 12},
        {u"1 2 3", false, 123}, {u",1", false, 0},      {u"1,", false, 1},   {u"5.", true, 5},
        {u"1.2.3", false, 1.2}, {u".5", true, 0.5},     {u"１２", false, 0}};
    for (auto [text, numeric, val] : cases) {
        const QString s = QString::fromUtf16(text);
        EXPECT_EQ(IsNumeric(s), numeric) << s.toStdString();
        EXPECT_DOUBLE_EQ(Val(s), val) << s.toStdString();
    }
}

// CStr gives the shortest text; CInt rounds half to even and overflows past 32767.
TEST(Runtime, NumbersToTextAndToIntegers) {
    const std::pair<double, const char*> texts[] = {
        {7.0, "7"},        {12.5, "12.5"},     {1e15, "1E+15"},
        {1e-5, "1E-05"},   {0.0001, "0.0001"}, {123456789012345.0, "123456789012345"},
        {0.1 + 0.2, "0.3"}};
    for (auto [d, text] : texts) EXPECT_EQ(CStr(d), QString::fromLatin1(text)) << text;
    const std::pair<double, int> rounded[] = {
        {2.5, 2}, {3.5, 4}, {-2.5, -2}, {32767.0, 32767}, {-32768.0, -32768}};
    for (auto [d, i] : rounded) EXPECT_EQ(CInt(d), i) << d;
    EXPECT_EQ(CInt(u"1,200"_s) + CInt(u" 7 "_s), 1207);
    EXPECT_EQ(CLng(u"40000"_s), 40000);
    EXPECT_EQ(errorOf([] { CInt(32768.0); }), errOverflow);
    EXPECT_EQ(errorOf([] { CInt(32767.5); }), errOverflow); // rounds to 32768
    EXPECT_EQ(errorOf([] { CInt(u"32768"_s); }), errOverflow);
    EXPECT_EQ(errorOf([] { CInt(u"abc"_s); }), errTypeMismatch);
}

TEST(Runtime, DatesTakeTheLegacyShapesOnlyAndFormatAsTheFormsAsk) {
    for (const char* text :
         {"2003/1/1", "2003-01-31", "1/2/2003", "2003-1-31 10:00", "2003年1月1日", "25/12/2003"})
        EXPECT_TRUE(IsDate(QString::fromUtf8(text))) << text;
    for (const char* text :
         {"2003", "2003-02-30", "2003-13-01", "2003-1_-__", "", "2003-1-1 25:00"})
        EXPECT_FALSE(IsDate(QString::fromUtf8(text))) << text;
    EXPECT_EQ(CDate(u"1/2/2003"_s)->date(), QDate(2003, 1, 2)); // month first
    EXPECT_EQ(CDate(u"2004-2-29"_s)->date(), QDate(2004, 2, 29));
    const QDateTime d(QDate(2003, 1, 5), QTime(9, 7, 3));
    const std::tuple<QVariant, const char16_t*, QString> formats[] = {
        {d, u"yyyy-mm-dd", u"2003-01-05"_s}, {d, u"yyyy年mm月dd日hh时", u"2003年01月05日09时"_s},
        {d, u"hh:mm:ss", u"09:07:03"_s}, // mm after hh is minutes
        {12.5, u"0.00", u"12.50"_s},         {u"2003/1/5"_s, u"yyyy-mm-dd", u"2003-01-05"_s},
        {u"abc"_s, u"yyyy-mm-dd", u"abc"_s}, {QVariant(), u"0.00", QString()}};
    for (const auto& [value, pattern, text] : formats)
        EXPECT_EQ(Format(value, QString::fromUtf16(pattern)), text) << text.toStdString();
}

TEST(Runtime, StringFunctionsCountFromOne) {
    EXPECT_EQ(Trim(u"  a b  "_s), u"a b"_s);
    EXPECT_EQ(Trim(u"\ta\t"_s), u"\ta\t"_s); // blanks only
    EXPECT_EQ(Trim(u"　a"_s), u"　a"_s);     // the full-width blank stays
    EXPECT_EQ(InStr(3, u"7-5000-1"_s, u"-"_s), 7);
    EXPECT_EQ(InStr(u"abc"_s, QString()), 1);
    EXPECT_EQ(InStr(u"Abc"_s, u"a"_s), 0); // exact compare
    EXPECT_EQ(Mid(u"abcdef"_s, 2, 3) + Mid(u"abc"_s, 5), u"bcd"_s);
    EXPECT_THROW(Mid(u"abc"_s, 0), VbError);
    EXPECT_EQ(Split(QString(), u";"_s).size(), 1);
    EXPECT_EQ(Split(u"a;b;"_s, u";"_s), (QStringList{u"a"_s, u"b"_s, QString()}));
    EXPECT_EQ(Replace(u"O'Neil's"_s, u"'"_s, u"''"_s), u"O''Neil''s"_s);
}

TEST(Runtime, ResumeNextRecordsTheErrorAndGoesOn) {
    Err().Clear();
    int reached = 0;
    EXPECT_FALSE(resume([] { vb::raise(errOverflow); }));
    ++reached;
    EXPECT_EQ(Err().Number, errOverflow);
    EXPECT_TRUE(resume([&] { ++reached; }));
    EXPECT_EQ(Err().Number, errOverflow); // kept until the next error or Clear
    EXPECT_EQ(reached, 2);
    // The end of the process is not an error to resume from.
    EXPECT_THROW(resume([] { throw ProcessEnded(); }), ProcessEnded);
}

// What a byte cut inside a character gives.
TEST(Gbk, RoundTripByteCountsAndCutsInsideACharacter) {
    const QString s = u"中图法 ABC 《红楼梦》①Ⅳ"_s;
    EXPECT_EQ(gbk::decode(gbk::encode(s)), s);
    EXPECT_EQ(gbk::encode(u"a中"_s), QByteArray("a\xD6\xD0"));
    // What GBK cannot hold is one '?', one byte.
    EXPECT_EQ(gbk::encode(u"a😀b"_s), QByteArray("a?b"));
    EXPECT_EQ(gbk::byteLength(u"a😀b"_s) + gbk::byteLength(u"a中"_s), 6);
    const QByteArray b = gbk::encode(u"中文"_s);
    // The last lead byte without its trail becomes one '?'.
    EXPECT_EQ(gbk::decode(b.left(3)), u"中?"_s);
    // A lead followed by a control character: '?' then the control character.
    EXPECT_EQ(gbk::decode(QByteArray("\xD6\x1E"
                                     "a")),
              u"?\x1E"
              "a"_s);
    EXPECT_EQ(gbk::decode(QByteArray("\xFF")), u"?"_s);
}

// Only + between text, left( and top n change.
TEST(SqlDialect, Rewrites) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"Select '第 '+batch+' 批采购验收传票',bookfrom From cgk",
         u"Select '第 '||batch||' 批采购验收传票',bookfrom From cgk"},
        // Numbers keep their +, also beside a text chain; a comparison ends a chain.
        {u"Select price+1,'a'+b From t Where x=y+2", u"Select price+1,'a'||b From t Where x=y+2"},
        {u"Select a From t Where name='x' And n=m+1", u"Select a From t Where name='x' And n=m+1"},
        {u"Select f('a'+b, c+1) From t", u"Select f('a'||b, c+1) From t"},
        // Quoted text and bracketed names pass untouched.
        {u"Select [a+b],'x+y' From t Where s='left(1)'",
         u"Select [a+b],'x+y' From t Where s='left(1)'"},
        {u"Insert Into t Values ('O''Neil+','+')", u"Insert Into t Values ('O''Neil+','+')"},
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
