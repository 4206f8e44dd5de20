// The legacy runtime's loose tests and conversions, corner by corner.
#include "platform/errors.h"
#include "platform/vb.h"

#include <gtest/gtest.h>

using namespace vb;

namespace {

struct NumericCase {
    const char16_t* text;
    bool numeric;
    double val;
};

class NumericTable : public ::testing::TestWithParam<NumericCase> {};

TEST_P(NumericTable, IsNumericAndVal) {
    const NumericCase& c = GetParam();
    const QString s = QString::fromUtf16(c.text);
    EXPECT_EQ(IsNumeric(s), c.numeric) << s.toStdString();
    EXPECT_DOUBLE_EQ(Val(s), c.val) << s.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Runtime, NumericTable,
    ::testing::Values(NumericCase{u"007", true, 7}, NumericCase{u"12.50", true, 12.5},
                      NumericCase{u"1,200", true, 1}, // numeric, but Val stops at the comma
                      NumericCase{u" 42 ", true, 42}, NumericCase{u"", false, 0},
                      NumericCase{u"   ", false, 0}, NumericCase{u".", false, 0},
                      NumericCase{u"-3", true, -3}, NumericCase{u"+3", true, 3},
                      NumericCase{u"- 3", true, -3}, NumericCase{u"1e3", true, 1000},
                      NumericCase{u"2D2", true, 200}, NumericCase{u"1e", false, 1},
                      NumericCase{u"&H1F", true, 31}, NumericCase{u"&O17", true, 15},
                      NumericCase{u"&HFFFF", true, -1}, NumericCase{u"(5)", true, 0},
                      NumericCase{u"12abc", false, 12}, NumericCase{u"abc", false, 0},
                      NumericCase{u"1 2 3", false, 123}, // Val skips blanks anywhere
                      NumericCase{u"1,", false, 1}, NumericCase{u",1", false, 0},
                      NumericCase{u"1.2.3", false, 1.2}, NumericCase{u".5", true, 0.5},
                      NumericCase{u"5.", true, 5}, NumericCase{u"１２", false, 0}),
    [](const ::testing::TestParamInfo<NumericCase>& p) {
        return "case" + std::to_string(p.index);
    });

TEST(Runtime, CStrOfDoublesIsTheShortestText) {
    EXPECT_EQ(CStr(7.0), QStringLiteral("7"));
    EXPECT_EQ(CStr(12.5), QStringLiteral("12.5"));
    EXPECT_EQ(CStr(-0.5), QStringLiteral("-0.5"));
    EXPECT_EQ(CStr(1e15), QStringLiteral("1E+15"));
    EXPECT_EQ(CStr(1e-5), QStringLiteral("1E-05"));
    EXPECT_EQ(CStr(0.0001), QStringLiteral("0.0001"));
    EXPECT_EQ(CStr(123456789012345.0), QStringLiteral("123456789012345"));
    EXPECT_EQ(CStr(0.1 + 0.2), QStringLiteral("0.3"));
    EXPECT_EQ(CStr(0.0), QStringLiteral("0"));
    EXPECT_EQ(CStr(Val(QStringLiteral("007"))), QStringLiteral("7"));
}

TEST(Runtime, IsDateTakesTheLegacyShapesOnly) {
    EXPECT_TRUE(IsDate(QStringLiteral("2003/1/1")));
    EXPECT_TRUE(IsDate(QStringLiteral("2003-01-31")));
    EXPECT_TRUE(IsDate(QStringLiteral("1/2/2003")));
    EXPECT_TRUE(IsDate(QStringLiteral("2003-1-31 10:00")));
    EXPECT_TRUE(IsDate(QStringLiteral("2003年1月1日")));
    EXPECT_TRUE(IsDate(QStringLiteral("25/12/2003"))); // d/m/y when m/d/y cannot be
    EXPECT_FALSE(IsDate(QStringLiteral("2003")));
    EXPECT_FALSE(IsDate(QStringLiteral("2003-02-30")));
    EXPECT_FALSE(IsDate(QStringLiteral("2003-13-01")));
    EXPECT_FALSE(IsDate(QStringLiteral("2003-1_-__")));
    EXPECT_FALSE(IsDate(QStringLiteral("")));
    EXPECT_FALSE(IsDate(QStringLiteral("2003-1-1 25:00")));
    EXPECT_EQ(CDate(QStringLiteral("1/2/2003"))->date(), QDate(2003, 1, 2)); // month first
    EXPECT_EQ(CDate(QStringLiteral("2004-2-29"))->date(), QDate(2004, 2, 29));
}

TEST(Runtime, FormatPatternsOfTheForms) {
    const QDateTime d(QDate(2003, 1, 5), QTime(9, 7, 3));
    EXPECT_EQ(Format(d, QStringLiteral("yyyy-mm-dd")), QStringLiteral("2003-01-05"));
    EXPECT_EQ(Format(d, QStringLiteral("YYYY-MM-DD")), QStringLiteral("2003-01-05"));
    EXPECT_EQ(Format(d, QStringLiteral("yyyy年mm月dd日hh时")),
              QStringLiteral("2003年01月05日09时"));
    EXPECT_EQ(Format(d, QStringLiteral("hh:mm:ss")),
              QStringLiteral("09:07:03")); // mm after hh is minutes
    EXPECT_EQ(Format(d, QStringLiteral("dddd")), QStringLiteral("星期日"));
    EXPECT_EQ(Format(12.5, QStringLiteral("0.00")), QStringLiteral("12.50"));
    EXPECT_EQ(Format(2.005, QStringLiteral("0")), QStringLiteral("2"));
    EXPECT_EQ(Format(QVariant(QStringLiteral("2003/1/5")), QStringLiteral("yyyy-mm-dd")),
              QStringLiteral("2003-01-05"));
    EXPECT_EQ(Format(QVariant(QStringLiteral("abc")), QStringLiteral("yyyy-mm-dd")),
              QStringLiteral("abc"));
    EXPECT_EQ(Format(QVariant(QStringLiteral("3")), QStringLiteral("0.00")),
              QStringLiteral("3.00"));
    EXPECT_EQ(Format(QVariant(), QStringLiteral("0.00")), QString());
}

TEST(Runtime, CIntRoundsHalfToEvenAndOverflowsPast32767) {
    EXPECT_EQ(CInt(2.5), 2);
    EXPECT_EQ(CInt(3.5), 4);
    EXPECT_EQ(CInt(-2.5), -2);
    EXPECT_EQ(CInt(32767.0), 32767);
    EXPECT_EQ(CInt(-32768.0), -32768);
    EXPECT_EQ(CInt(QStringLiteral("1,200")), 1200);
    EXPECT_EQ(CInt(QStringLiteral(" 7 ")), 7);
    try {
        CInt(32768.0);
        ADD_FAILURE() << "32768 must overflow";
    } catch (const VbError& e) {
        EXPECT_EQ(e.number(), errOverflow);
        EXPECT_EQ(e.description(), QStringLiteral("溢出"));
    }
    EXPECT_THROW(CInt(32767.5), VbError); // rounds to 32768
    EXPECT_THROW(CInt(QStringLiteral("32768")), VbError);
    try {
        CInt(QStringLiteral("abc"));
        ADD_FAILURE();
    } catch (const VbError& e) {
        EXPECT_EQ(e.number(), errTypeMismatch);
    }
    EXPECT_EQ(CLng(QStringLiteral("40000")), 40000);
}

TEST(Runtime, StringFunctionsCountFromOne) {
    EXPECT_EQ(Trim(QStringLiteral("  a b  ")), QStringLiteral("a b"));
    EXPECT_EQ(Trim(QStringLiteral("\ta\t")), QStringLiteral("\ta\t")); // blanks only
    EXPECT_EQ(Trim(QStringLiteral("　a")), QStringLiteral("　a"));     // full-width blank stays
    EXPECT_EQ(InStr(QStringLiteral("7-5000-1"), QStringLiteral("-")), 2);
    EXPECT_EQ(InStr(3, QStringLiteral("7-5000-1"), QStringLiteral("-")), 7);
    EXPECT_EQ(InStr(QStringLiteral("abc"), QStringLiteral("x")), 0);
    EXPECT_EQ(InStr(QStringLiteral("abc"), QString()), 1);
    EXPECT_EQ(InStr(QStringLiteral("Abc"), QStringLiteral("a")), 0); // exact compare
    EXPECT_EQ(Mid(QStringLiteral("abcdef"), 2, 3), QStringLiteral("bcd"));
    EXPECT_EQ(Mid(QStringLiteral("abc"), 5), QString());
    EXPECT_THROW(Mid(QStringLiteral("abc"), 0), VbError);
    EXPECT_EQ(Left(QStringLiteral("abc"), 5), QStringLiteral("abc"));
    EXPECT_EQ(Right(QStringLiteral("XServer=abc"), 11 - 7), QStringLiteral("=abc"));
    EXPECT_EQ(Split(QString(), QStringLiteral(";")).size(), 1);
    EXPECT_EQ(Split(QStringLiteral("a;b;"), QStringLiteral(";")),
              (QStringList{QStringLiteral("a"), QStringLiteral("b"), QString()}));
    EXPECT_EQ(Replace(QStringLiteral("O'Neil's"), QStringLiteral("'"), QStringLiteral("''")),
              QStringLiteral("O''Neil''s"));
    EXPECT_EQ(UCase(QStringLiteral("tp312a")), QStringLiteral("TP312A"));
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
    EXPECT_EQ(fatalBoxText(VbError(6, QStringLiteral("溢出"))),
              QStringLiteral("实时错误 '6':\r\n\r\n溢出"));
}

} // namespace
