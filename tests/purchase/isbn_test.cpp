// checkIsbn and formatIsbn as tables of inputs and answers; the check characters are worked
// out by hand (weights 10 down to 2, the sum's remainder by 11 taken from 11).
#include "data/publicHanshu.h"
#include "platform/errors.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

namespace {

const QString crlf = QStringLiteral("\r\n");
const QString kLength = QStringLiteral("Error:ISBN格式错误.ISBN号长度应该为13位");
const QString kFourParts = QStringLiteral("Error:ISBN格式错误.ISBN号应该分为4段") + crlf +
                           QStringLiteral("      第一段:国家、区域或语言集号") + crlf +
                           QStringLiteral("      第二段:出版商代号") + crlf +
                           QStringLiteral("      第三段:图书号") + crlf +
                           QStringLiteral("      第四段:校验位") + crlf;
const QString kCheck = QStringLiteral("Error:ISBN号校验位错误");
const QString kYes = QStringLiteral("yes");

QString segments(std::initializer_list<const char16_t*> lines) {
    QString s = QStringLiteral("ISBN格式错误！") + crlf;
    for (const char16_t* l : lines)
        s += QStringLiteral("       ISBN号") + QString::fromUtf16(l) + crlf;
    return s;
}

struct CheckCase {
    const char16_t* isbn;
    QString expected;
};
[[maybe_unused]] void PrintTo(const CheckCase& c, std::ostream* os) {
    *os << (c.isbn[0] ? QString::fromUtf16(c.isbn).toStdString() : std::string("empty"));
}

class CheckIsbn : public ::testing::TestWithParam<CheckCase> {};

TEST_P(CheckIsbn, Answers) {
    EXPECT_EQ(checkIsbn(QString::fromUtf16(GetParam().isbn)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CheckIsbn,
    ::testing::Values(
        // 7·10+5·9+0+0+0+1·5+2·4+3·3+4·2 = 145, 145 mod 11 = 2, 11-2 = 9.
        CheckCase{u"7-5000-1234-9", kYes},
        // 70+27+0+14 = 111, mod 11 = 1, 11-1 = 10: X.
        CheckCase{u"7-302-00000-X", kYes},
        // 111+5·2 = 121, mod 11 = 0, 11-0 = 11: 0.
        CheckCase{u"7-302-00005-0", kYes},
        CheckCase{u"7-302-00000-x", kCheck}, // lower-case x is a wrong check character
        CheckCase{u"7-5000-1234-5", kCheck}, CheckCase{u"7500012349", kLength},
        CheckCase{u"7-5000-1234-95", kLength}, CheckCase{u"", kLength},
        CheckCase{u"7-50001234-99", kFourParts},
        CheckCase{u"7--50001234-5", segments({u"第二段:出版商代号不能为空！"})},
        CheckCase{u"7-50a0-12b4-5",
                  segments({u"第二段:出版商代号只能为数字！", u"第三段:图书号只能为数字！"})},
        CheckCase{u"-75000-1234-5", segments({u"第一段:国家、区域或语言集号不能为空！"})},
        CheckCase{u"7-5000-12345-", segments({u"第四段:校验位不能为空！"})},
        CheckCase{u"7-5000-123-45", segments({u"第四段:校验位只应为一位字符！"})},
        CheckCase{u"7-5000--12345",
                  segments({u"第三段:图书号不能为空！", u"第四段:校验位只应为一位字符！"})},
        // Segments that pass the loose numeric test but hold a sign or a point.
        CheckCase{u"7-+500-1234-9",
                  QStringLiteral("Error:ISBN格式错误.ISBN号除校验位外只能为数字字符")},
        CheckCase{u"7-5.00-1234-9", kCheck}));

class FormatIsbn : public testsupport::SessionDb {};

TEST_F(FormatIsbn, ShortestKnownPrefixSplitsTheNumberAndTheCheckIsRecomputed) {
    // 7-5000 and 7-302 come with the database; 7-5054 does not yet.
    const char* cases[][2] = {
        {"7500012340", "7-5000-1234-9"},    // typed check character dropped
        {"9787500012345", "7-5000-1234-9"}, // 978 and the EAN digit dropped
        {"7 500 012 340", "7-5000-1234-9"}, // blanks go first
        {"7302000001", "7-302-00000-X"},
        {"7505412345", "7505412345"},       // no prefix known: bare
        {"7-5000-1234-5", "7-5000-1234-5"}, // hyphenated: untouched
        {"750001234X", "750001234X"},       // not numeric
        {"75000123", "75000123"},           // length neither 10 nor 13
        {" 7-5000 -1234-5 ", "7-5000-1234-5"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(formatIsbn(QString::fromUtf8(c[0])), QString::fromUtf8(c[1])) << c[0];

    exec(QStringLiteral("INSERT INTO cbk (cbkid,C_SBN,C_CBD,C_CBS) VALUES "
                        "(9001,'7-5054','石家庄','花山文艺出版社')"));
    // 70+45+0+35+24+5+8+9+8 = 204, mod 11 = 6, 11-6 = 5.
    EXPECT_EQ(formatIsbn(QStringLiteral("7505412345")), QStringLiteral("7-5054-1234-5"));
    EXPECT_EQ(formatIsbn(QStringLiteral("9787505412349")), QStringLiteral("7-5054-1234-5"));
    // A shorter prefix wins over a longer one.
    exec(QStringLiteral(
        "INSERT INTO cbk (cbkid,C_SBN,C_CBD,C_CBS) VALUES (9002,'7-50','北京','某出版社')"));
    EXPECT_EQ(formatIsbn(QStringLiteral("7505412345")), QStringLiteral("7-50-541234-5"));

    // An unreachable database gives the bare number, quietly.
    gConnStr = QStringLiteral("PROVIDER=MSDASQL;DSN=orvane_no_such_source;");
    EXPECT_EQ(formatIsbn(QStringLiteral("7500012340")), QStringLiteral("7500012340"));
    EXPECT_EQ(vb::Err().Number, 0);
    EXPECT_TRUE(testsupport::boxes().calls().empty());
}

} // namespace
