// The record reader: the field layout, the directory, the byte cuts, the subfield walk
// and every way a bad record is refused.

#include "cardrecords.h"

#include "card/carddriver.h"
#include "card/marcreader.h"
#include "platform/errors.h"

#include <gtest/gtest.h>

using namespace cardtest;

namespace {

struct Outcome {
    std::optional<QString> text;
    QStringList messages;
    int error = 0; // VbError number, 0 when none
};

Outcome run(bool card, const QString& marc) {
    Outcome r;
    try {
        const auto say = [&](const QString& m) { r.messages << m; };
        r.text = card ? card::showKapian(marc, say) : card::showZiduan(marc, say);
    } catch (const vb::VbError& e) {
        r.error = e.number();
    }
    return r;
}
Outcome ziduan(const QString& marc) {
    return run(false, marc);
}
Outcome kapian(const QString& marc) {
    return run(true, marc);
}

// One field 200 "  ␟a甲书␞" behind the given 12-character directory.
QString withDirectory(const QString& dir) {
    return QStringLiteral("00100nam0 2200037   450 ") + dir + in(QStringLiteral("␞  ␟a甲书␞␝"));
}
QString withBase(const QString& base) {
    return record({{"200", "  ␟a甲书␞"}}).replace(12, 5, base);
}
QString raw(const char* s) {
    return in(QString::fromUtf8(s));
}

} // namespace

TEST(CardReader, WorkedRecordFieldLayout) {
    // The builder and the hand-written record agree: lengths and starts in GBK bytes.
    EXPECT_EQ(vis(workedRecord()), vis(record(workedFields())));
    const Outcome r = ziduan(workedRecord());
    ASSERT_TRUE(r.text);
    EXPECT_TRUE(r.messages.isEmpty());
    EXPECT_EQ(*r.text, lines({
                           "00473nam0 2200193   450 ",
                           "001012345678",
                           "010  $a7-5000-1234-5$b精装$dCNY25.00",
                           "2001 $a数据结构$e算法与实践$f王小明著$g李华译",
                           "205  $a第2版$f张三修订",
                           "210  $a北京$c示例出版社$d2001",
                           "215  $a320页$c图$d26cm",
                           "2252 $a计算机丛书$v第3辑",
                           "300  $a本书由讲义整理而成",
                           "320  $a有书目",
                           "6060 $a数据结构$x教材",
                           "6060 $a算法",
                           "690  $aTP311.12",
                           "701 0$a王小明$4著",
                           "702 0$a李华$4译",
                           "",
                       }));
}

TEST(CardReader, FieldLayoutKeepsDirectoryOrderAndUnknownTags) {
    const Outcome r = ziduan(
        record({{"100", "  ␟a20010101␞"}, {"606", "0 ␟a乙␞"}, {"001", "X1␞"}, {"606", "0 ␟a甲␞"}}));
    ASSERT_TRUE(r.text);
    EXPECT_EQ(r.text->section(QStringLiteral("\r\n"), 1),
              lines({"100  $a20010101", "6060 $a乙", "001X1", "6060 $a甲", ""}));
}

TEST(CardReader, LeaderAndRecordEndDoNotMatterAndEmptyDirectory) {
    QString marc = record({{"200", "  ␟a甲书␞"}});
    const Outcome before = kapian(marc), beforeFields = ziduan(marc);
    marc.replace(0, 5, QStringLiteral("ZZZZZ")).replace(5, 7, QStringLiteral("xxxxxxx"));
    marc.replace(17, 7, QStringLiteral("yyyyyyy")).chop(1); // no closing 29
    const Outcome after = kapian(marc), afterFields = ziduan(marc);
    ASSERT_TRUE(before.text && after.text && afterFields.text);
    EXPECT_EQ(*before.text, *after.text);
    // Only the leader line itself differs.
    EXPECT_EQ(beforeFields.text->section(QStringLiteral("\r\n"), 1),
              afterFields.text->section(QStringLiteral("\r\n"), 1));
    const QString empty = QStringLiteral("00026nam0 2200025   450 ") + QChar(30) + QChar(29);
    EXPECT_EQ(ziduan(empty).text, QStringLiteral("00026nam0 2200025   450 \r\n"));
    EXPECT_EQ(kapian(empty).text, QStringLiteral("没有正题名,无法显示卡片!"));
}

// Each bad input and what it gives, in both layouts.
struct BadInput {
    const char* name;
    QString marc;
    int fieldsError; // VbError of the field layout, 0 none
    int cardError;   // VbError of the card layout, 0 none
    bool dirMessage; // refused with the directory message
};

void PrintTo(const BadInput& b, std::ostream* os) {
    *os << b.name;
}

class CardReaderFailure : public ::testing::TestWithParam<BadInput> {};

TEST_P(CardReaderFailure, GivesItsDefinedFailure) {
    const BadInput& b = GetParam();
    for (bool card : {false, true}) {
        SCOPED_TRACE(card ? "card layout" : "field layout");
        const Outcome r = run(card, b.marc);
        EXPECT_EQ(r.error, card ? b.cardError : b.fieldsError);
        if (b.dirMessage) {
            EXPECT_FALSE(r.text);
            EXPECT_EQ(r.messages, QStringList{"地址目次区数据出现错误，校验失败！"});
        } else if (r.error == 0) {
            EXPECT_TRUE(r.text);
        }
    }
}

constexpr int kType = vb::errTypeMismatch, kCall = vb::errInvalidCall;
// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, CardReaderFailure, ::testing::Values(
    BadInput{"DirectoryNotMultipleOf12", withDirectory("20000090000"), 0, 0, true},
    BadInput{"BaseBlank", withBase("     "), kType, kType, false},
    BadInput{"BaseLetters", withBase("00a93"), kType, kType, false},
    BadInput{"BaseAbove32767", withBase("40000"), vb::errOverflow, vb::errOverflow, false},
    BadInput{"NoFieldEnd", raw("00100nam0 2200037   450 2000009000000"), kCall, kCall, false},
    BadInput{"FieldEndBefore25", raw("00100nam0 2200037   4␞50 200000900000"), kCall, kCall, false},
    BadInput{"ShortRecord", raw("0010"), kType, kType, false},
    BadInput{"EmptyRecord", QString(), kType, kType, false},
    // The field layout converts the numbers strictly, the card reads their prefix.
    BadInput{"LengthNotNumeric", withDirectory("200x00900000"), kType, 0, false},
    BadInput{"StartNotNumeric", withDirectory("2000009y0000"), kType, 0, false},
    BadInput{"LengthZero", withDirectory("200000000000"), kCall, 0, false},
    BadInput{"TwoDelimitersInARow", raw("00100nam0 2200037   450 200000900000␞  ␟␟a甲␞␝"), 0, kCall, false},
    BadInput{"OffsetsPastTheEnd", withDirectory("200000999999"), 0, 0, false}),
    [](const ::testing::TestParamInfo<BadInput>& p) { return std::string(p.param.name); });
// clang-format on

TEST(CardReader, CardReadsNumberPrefixes) {
    // "9  x" reads as 9 (blanks skipped, stops at x); no digits reads as 0: an empty title.
    const Outcome r = kapian(withDirectory("2009  x00000"));
    ASSERT_TRUE(r.text);
    EXPECT_TRUE(r.text->contains(QStringLiteral("甲书")));
    EXPECT_EQ(kapian(withDirectory("200abcdabcde")).text, card::noTitleText());
}

// One field through the field layout: its line, the second of the text.
class CardFieldLine : public ::testing::TestWithParam<std::pair<QString, QString>> {};

TEST_P(CardFieldLine, Reads) {
    const Outcome r = ziduan(GetParam().first);
    ASSERT_TRUE(r.text);
    EXPECT_EQ(r.text->section(QStringLiteral("\r\n"), 1, 1), GetParam().second);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Table, CardFieldLine, ::testing::Values(
    // The field layout drops the closing 30 (the card keeps it: CardDriver.WorkedRecord).
    std::pair{record({{"200", "  ␟a甲书␞"}}), QStringLiteral("200  $a甲书")},
    // A stray 30 inside a field and a 29 show as "@" and "%".
    std::pair{record({{"300", "  ␟a甲␞乙␝丙␞"}}), QStringLiteral("300  $a甲@乙%丙")},
    // 甲 is two bytes; a directory length one short ends the cut on its first byte.
    std::pair{record({{"300", "  ␟a甲␞"}}).replace("3000007", "3000006"), QStringLiteral("300  $a?")},
    // Past the end: nothing; a length that runs past it: the rest, record end included.
    std::pair{withDirectory("200000999999"), QStringLiteral("200")},
    std::pair{withDirectory("200099900000"), QStringLiteral("200  $a甲书@%")}));
// clang-format on

TEST(CardWalk, ConsumesTheFieldAndKeepsTheLastValueWhole) {
    QString f = in(QStringLiteral("1 ␟a数据␟b␟c丙丁␞"));
    QStringList seen;
    const auto walk = [&] {
        card::walkSubfields(f, [&](char16_t code, QStringView v) {
            seen << QString::number(code) + u'=' + vis(v.toString());
        });
    };
    walk(); // $b is a legal empty value; the last value runs to the end of the field.
    EXPECT_EQ(seen, (QStringList{"97=数据", "98=", "99=丙丁␞"}));
    EXPECT_EQ(vis(f), QStringLiteral("c丙丁␞"));
    walk(); // the remainder has no delimiter: nothing, and nothing changes
    EXPECT_EQ(seen.size(), 3);
    EXPECT_EQ(vis(f), QStringLiteral("c丙丁␞"));
    // The last delimiter has no code and no value; it is no failure.
    f = in(QStringLiteral("␟a甲␟"));
    walk();
    EXPECT_EQ(seen.mid(3), (QStringList{"97=甲", "0="}));
    EXPECT_TRUE(f.isEmpty());
    f = in(QStringLiteral("␟a")) + QString(16384, QChar(u'甲')); // above 32767 bytes
    try {
        walk();
        ADD_FAILURE() << "no overflow";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), vb::errOverflow);
    }
}

TEST(CardCuts, RuntimeSemantics) {
    const QString s = QStringLiteral("甲乙丙");
    EXPECT_EQ(QStringList({card::mid(s, 2, 1).toString(), card::mid(s, 4, 1).toString(),
                           card::mid(s, 2, 99).toString()}),
              (QStringList{"乙", "", "乙丙"}));
    EXPECT_THROW(card::mid(s, 0, 1), vb::VbError);
    EXPECT_THROW(card::mid(s, 1, -1), vb::VbError);
    const QByteArray b = gbk::encode(s);
    // 3 bytes from the third end inside 丙.
    EXPECT_EQ(card::midB(b, 3, 2) + u'|' + card::midB(b, 3, 3) + u'|' + card::midB(b, 7, 1),
              QStringLiteral("乙|乙?|"));
    EXPECT_THROW(card::midB(b, 0, 1), vb::VbError);
    EXPECT_THROW(card::toLong(3e9), vb::VbError);
}
