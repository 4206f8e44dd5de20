// checkIsbn and formatIsbn: the whole rule set, as tables of inputs and expected answers.
#include "data/publicHanshu.h"
#include "platform/errors.h"
#include "tests/purchase/purchasetest.h"

namespace {

const QString crlf = QStringLiteral("\r\n");

struct CheckCase {
    const char16_t* isbn;
    QString expected;
};

QString segments(std::initializer_list<const char16_t*> lines) {
    QString s = QStringLiteral("ISBN格式错误！") + crlf;
    for (const char16_t* l : lines) s += QString::fromUtf16(l) + crlf;
    return s;
}

// The case's name in the test list is its ISBN.
[[maybe_unused]] void PrintTo(const CheckCase& c, std::ostream* os) {
    const QString isbn = QString::fromUtf16(c.isbn);
    *os << (isbn.isEmpty() ? std::string("empty") : isbn.toStdString());
}

class CheckIsbn : public ::testing::TestWithParam<CheckCase> {};

TEST_P(CheckIsbn, Answers) {
    EXPECT_EQ(checkIsbn(QString::fromUtf16(GetParam().isbn)).toStdString(),
              GetParam().expected.toStdString());
}

const QString kLength = QStringLiteral("Error:ISBN格式错误.ISBN号长度应该为13位");
const QString kFourParts = QStringLiteral("Error:ISBN格式错误.ISBN号应该分为4段") + crlf +
                           QStringLiteral("      第一段:国家、区域或语言集号") + crlf +
                           QStringLiteral("      第二段:出版商代号") + crlf +
                           QStringLiteral("      第三段:图书号") + crlf +
                           QStringLiteral("      第四段:校验位") + crlf;
const QString kCheck = QStringLiteral("Error:ISBN号校验位错误");
const QString kYes = QStringLiteral("yes");

INSTANTIATE_TEST_SUITE_P(
    Table, CheckIsbn,
    ::testing::Values(
        CheckCase{u"7-5000-1234-9", kYes}, CheckCase{u"7-302-00000-X", kYes},
        CheckCase{u"7-302-00000-x", kCheck}, // lower-case x is a wrong check digit
        CheckCase{u"7-5000-1234-5", kCheck}, CheckCase{u"7-5000-1234-0", kCheck},
        CheckCase{u"7500012349", kLength}, CheckCase{u"7-5000-1234-95", kLength},
        CheckCase{u"", kLength}, CheckCase{u"7-50001234-99", kFourParts},
        CheckCase{u"7-5-00-1234-9", kFourParts},
        CheckCase{u"7--50001234-5", segments({u"       ISBN号第二段:出版商代号不能为空！"})},
        CheckCase{u"7-50a0-12b4-5", segments({u"       ISBN号第二段:出版商代号只能为数字！",
                                              u"       ISBN号第三段:图书号只能为数字！"})},
        CheckCase{u"-75000-1234-5",
                  segments({u"       ISBN号第一段:国家、区域或语言集号不能为空！"})},
        CheckCase{u"a-5000-1234-5",
                  segments({u"       ISBN号第一段:国家、区域或语言集号只能为数字！"})},
        CheckCase{u"7-5000-12345-", segments({u"       ISBN号第四段:校验位不能为空！"})},
        CheckCase{u"7-5000-123-45", segments({u"       ISBN号第四段:校验位只应为一位字符！"})},
        CheckCase{u"7-5000--12345", segments({u"       ISBN号第三段:图书号不能为空！",
                                              u"       ISBN号第四段:校验位只应为一位字符！"})},
        // Segments that pass the loose numeric test but hold a sign or a point.
        CheckCase{u"7-+500-1234-9",
                  QStringLiteral("Error:ISBN格式错误.ISBN号除校验位外只能为数字字符")},
        CheckCase{u"7-5.00-1234-9", kCheck}));

TEST(IsbnCheckChar, WeightsTenDownToTwo) {
    EXPECT_EQ(isbnCheckChar(QStringLiteral("750001234")), QStringLiteral("9"));
    EXPECT_EQ(isbnCheckChar(QStringLiteral("730200000")), QStringLiteral("X"));
    EXPECT_EQ(isbnCheckChar(QStringLiteral("730200005")), QStringLiteral("0"));
    EXPECT_EQ(isbnCheckChar(QStringLiteral("75000123")), QString());
    EXPECT_EQ(isbnCheckChar(QStringLiteral("7500.1234")), QString());
}

class FormatIsbn : public PurchaseDb {};

TEST_F(FormatIsbn, ShortestKnownPrefixSplitsTheNumberAndTheCheckIsRecomputed) {
    // 7-5000 and 7-302 come with the database; 7-5054 does not yet.
    struct Case {
        const char* in;
        const char* out;
    } cases[] = {
        {"7500012340", "7-5000-1234-9"},    // typed check digit dropped
        {"9787500012345", "7-5000-1234-9"}, // 978 and the EAN digit dropped
        {"1237500012345", "7-5000-1234-9"}, // whatever the first three digits are
        {"7 500 012 340", "7-5000-1234-9"}, // blanks go first
        {"7302000001", "7-302-00000-X"},
        {"7505412345", "7505412345"},       // no prefix known: bare
        {"7-5000-1234-5", "7-5000-1234-5"}, // hyphenated: untouched
        {"750001234X", "750001234X"},       // not numeric
        {"75000123", "75000123"},           // length neither 10 nor 13
        {" 7-5000 -1234-5 ", "7-5000-1234-5"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(formatIsbn(QString::fromUtf8(c.in)).toStdString(), std::string(c.out)) << c.in;

    exec(QStringLiteral("INSERT INTO cbk (cbkid,C_SBN,C_CBD,C_CBS) VALUES "
                        "(9001,'7-5054','石家庄','花山文艺出版社')"));
    EXPECT_EQ(formatIsbn(QStringLiteral("7505412345")), QStringLiteral("7-5054-1234-5"));
    EXPECT_EQ(formatIsbn(QStringLiteral("9787505412349")), QStringLiteral("7-5054-1234-5"));
    // A shorter prefix wins over a longer one.
    exec(QStringLiteral(
        "INSERT INTO cbk (cbkid,C_SBN,C_CBD,C_CBS) VALUES (9002,'7-50','北京','某出版社')"));
    EXPECT_EQ(formatIsbn(QStringLiteral("7505412345")), QStringLiteral("7-50-541234-5"));
}

TEST_F(FormatIsbn, UnreachableDatabaseGivesTheBareNumberQuietly) {
    gConnStr = QStringLiteral("PROVIDER=MSDASQL;DSN=orvane_no_such_source;");
    EXPECT_EQ(formatIsbn(QStringLiteral("7500012340")), QStringLiteral("7500012340"));
    EXPECT_EQ(vb::Err().Number, 0);
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

} // namespace
