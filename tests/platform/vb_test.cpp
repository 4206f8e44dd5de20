// The legacy runtime's loose tests and conversions, one row per corner case.
#include "platform/errors.h"
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

TEST(Runtime, CStrOfDoublesIsTheShortestText) {
    const std::pair<double, const char*> cases[] = {
        {7.0, "7"},        {12.5, "12.5"},     {1e15, "1E+15"},
        {1e-5, "1E-05"},   {0.0001, "0.0001"}, {123456789012345.0, "123456789012345"},
        {0.1 + 0.2, "0.3"}};
    for (auto [d, text] : cases) EXPECT_EQ(CStr(d), QString::fromLatin1(text)) << text;
}

TEST(Runtime, IsDateTakesTheLegacyShapesOnly) {
    for (const char* text :
         {"2003/1/1", "2003-01-31", "1/2/2003", "2003-1-31 10:00", "2003年1月1日", "25/12/2003"})
        EXPECT_TRUE(IsDate(QString::fromUtf8(text))) << text;
    for (const char* text :
         {"2003", "2003-02-30", "2003-13-01", "2003-1_-__", "", "2003-1-1 25:00"})
        EXPECT_FALSE(IsDate(QString::fromUtf8(text))) << text;
    EXPECT_EQ(CDate(u"1/2/2003"_s)->date(), QDate(2003, 1, 2)); // month first
    EXPECT_EQ(CDate(u"2004-2-29"_s)->date(), QDate(2004, 2, 29));
}

TEST(Runtime, FormatPatternsOfTheForms) {
    const QDateTime d(QDate(2003, 1, 5), QTime(9, 7, 3));
    EXPECT_EQ(Format(d, u"yyyy-mm-dd"_s), u"2003-01-05"_s);
    EXPECT_EQ(Format(d, u"YYYY-MM-DD"_s), u"2003-01-05"_s);
    EXPECT_EQ(Format(d, u"yyyy年mm月dd日hh时"_s), u"2003年01月05日09时"_s);
    EXPECT_EQ(Format(d, u"hh:mm:ss"_s), u"09:07:03"_s); // mm after hh is minutes
    EXPECT_EQ(Format(12.5, u"0.00"_s), u"12.50"_s);
    EXPECT_EQ(Format(QVariant(u"2003/1/5"_s), u"yyyy-mm-dd"_s), u"2003-01-05"_s);
    EXPECT_EQ(Format(QVariant(u"abc"_s), u"yyyy-mm-dd"_s), u"abc"_s);
    EXPECT_EQ(Format(QVariant(u"3"_s), u"0.00"_s), u"3.00"_s);
    EXPECT_EQ(Format(QVariant(), u"0.00"_s), QString());
}

TEST(Runtime, CIntRoundsHalfToEvenAndOverflowsPast32767) {
    const std::pair<double, int> rounded[] = {
        {2.5, 2}, {3.5, 4}, {-2.5, -2}, {32767.0, 32767}, {-32768.0, -32768}};
    for (auto [d, i] : rounded) EXPECT_EQ(CInt(d), i) << d;
    EXPECT_EQ(CInt(u"1,200"_s), 1200);
    EXPECT_EQ(CInt(u" 7 "_s), 7);
    EXPECT_EQ(CLng(u"40000"_s), 40000);
    EXPECT_EQ(errorOf([] { CInt(32768.0); }), errOverflow);
    EXPECT_EQ(errorOf([] { CInt(32767.5); }), errOverflow); // rounds to 32768
    EXPECT_EQ(errorOf([] { CInt(u"32768"_s); }), errOverflow);
    EXPECT_EQ(errorOf([] { CInt(u"abc"_s); }), errTypeMismatch);
}

TEST(Runtime, StringFunctionsCountFromOne) {
    EXPECT_EQ(Trim(u"  a b  "_s), u"a b"_s);
    EXPECT_EQ(Trim(u"\ta\t"_s), u"\ta\t"_s); // blanks only
    EXPECT_EQ(Trim(u"　a"_s), u"　a"_s);     // the full-width blank stays
    EXPECT_EQ(InStr(3, u"7-5000-1"_s, u"-"_s), 7);
    EXPECT_EQ(InStr(u"abc"_s, QString()), 1);
    EXPECT_EQ(InStr(u"Abc"_s, u"a"_s), 0); // exact compare
    EXPECT_EQ(Mid(u"abcdef"_s, 2, 3), u"bcd"_s);
    EXPECT_EQ(Mid(u"abc"_s, 5), QString());
    EXPECT_THROW(Mid(u"abc"_s, 0), VbError);
    EXPECT_EQ(Right(u"XServer=abc"_s, 11 - 7), u"=abc"_s);
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
    EXPECT_EQ(fatalBoxText(VbError(6, u"溢出"_s)), u"实时错误 '6':\r\n\r\n溢出"_s);
}

} // namespace
