// The record reader: the field layout, the directory, the byte cuts, the subfield walk
// and every way a bad record is refused.

#include "cardrecords.h"

#include "card/carddriver.h"
#include "card/kapianfmt.h"
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

template <class F> Outcome run(F&& layout, const QString& marc) {
    Outcome r;
    try {
        r.text = layout(card::MarcText(marc), [&](const QString& m) { r.messages << m; });
    } catch (const vb::VbError& e) {
        r.error = e.number();
    }
    return r;
}

Outcome ziduan(const QString& marc) {
    return run(card::showZiduan, marc);
}
Outcome kapian(const QString& marc) {
    return run(card::showKapian, marc);
}

} // namespace

TEST(CardReader, WorkedRecordHasTheDocumentedDirectory) {
    // The builder and the hand-written record agree: lengths and starts in GBK bytes.
    EXPECT_EQ(vis(workedRecord()), vis(record(workedFields())));
}

TEST(CardReader, WorkedRecordFieldLayout) {
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
    const QString marc =
        record({{"100", "  ␟a20010101␞"}, {"606", "0 ␟a乙␞"}, {"001", "X1␞"}, {"606", "0 ␟a甲␞"}});
    const Outcome r = ziduan(marc);
    ASSERT_TRUE(r.text);
    const QStringList got = r.text->split(QStringLiteral("\r\n"));
    EXPECT_EQ(got.mid(1), (QStringList{"100  $a20010101", "6060 $a乙", "001X1", "6060 $a甲", ""}));
}

TEST(CardReader, LeaderOtherThanBaseAddressAndRecordEndDoNotMatter) {
    QString marc = record({{"200", "  ␟a甲书␞"}});
    const Outcome before = kapian(marc);
    const Outcome beforeFields = ziduan(marc);
    marc.replace(0, 5, QStringLiteral("ZZZZZ")); // record length
    marc.replace(5, 7, QStringLiteral("xxxxxxx"));
    marc.replace(17, 7, QStringLiteral("yyyyyyy"));
    marc.chop(1); // no closing 29
    const Outcome after = kapian(marc);
    const Outcome afterFields = ziduan(marc);
    ASSERT_TRUE(before.text && after.text && afterFields.text);
    EXPECT_EQ(*before.text, *after.text);
    // Only the leader line itself differs.
    EXPECT_EQ(beforeFields.text->section(QStringLiteral("\r\n"), 1),
              afterFields.text->section(QStringLiteral("\r\n"), 1));
}

TEST(CardReader, EmptyDirectory) {
    const QString marc = QStringLiteral("00026nam0 2200025   450 ") + QChar(30) + QChar(29);
    const Outcome z = ziduan(marc);
    ASSERT_TRUE(z.text);
    EXPECT_EQ(*z.text, QStringLiteral("00026nam0 2200025   450 \r\n"));
    const Outcome k = kapian(marc);
    ASSERT_TRUE(k.text);
    EXPECT_EQ(*k.text, card::noTitleText());
    EXPECT_EQ(card::noTitleText(), QStringLiteral("没有正题名,无法显示卡片!"));
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
        const Outcome r = card ? kapian(b.marc) : ziduan(b.marc);
        EXPECT_EQ(r.error, card ? b.cardError : b.fieldsError);
        if (b.dirMessage) {
            EXPECT_FALSE(r.text);
            EXPECT_EQ(r.messages, QStringList{"地址目次区数据出现错误，校验失败！"});
        } else if (r.error == 0) {
            EXPECT_TRUE(r.text);
        }
    }
}

namespace {
QString withBase(const QString& base) {
    QString m = record({{"200", "  ␟a甲书␞"}});
    return m.replace(12, 5, base);
}
QString withDirectory(const QString& dir) {
    return QStringLiteral("00100nam0 2200037   450 ") + dir + QChar(30) + QStringLiteral("  ") +
           QChar(31) + QStringLiteral("a甲书") + QChar(30) + QChar(29);
}
} // namespace

INSTANTIATE_TEST_SUITE_P(
    Table, CardReaderFailure,
    ::testing::Values(
        BadInput{"DirectoryNotMultipleOf12", withDirectory("20000090000"), 0, 0, true},
        BadInput{"BaseBlank", withBase("     "), vb::errTypeMismatch, vb::errTypeMismatch, false},
        BadInput{"BaseLetters", withBase("00a93"), vb::errTypeMismatch, vb::errTypeMismatch, false},
        BadInput{"BaseAbove32767", withBase("40000"), vb::errOverflow, vb::errOverflow, false},
        BadInput{"NoFieldEnd", QStringLiteral("00100nam0 2200037   450 2000009000000"),
                 vb::errInvalidCall, vb::errInvalidCall, false},
        BadInput{"FieldEndBefore25",
                 QStringLiteral("00100nam0 2200037   4") + QChar(30) +
                     QStringLiteral("50 200000900000"),
                 vb::errInvalidCall, vb::errInvalidCall, false},
        BadInput{"ShortRecord", QStringLiteral("0010"), vb::errTypeMismatch, vb::errTypeMismatch,
                 false},
        BadInput{"EmptyRecord", QString(), vb::errTypeMismatch, vb::errTypeMismatch, false},
        // The field layout converts the numbers strictly, the card reads their prefix.
        BadInput{"LengthNotNumeric", withDirectory("200x00900000"), vb::errTypeMismatch, 0, false},
        BadInput{"StartNotNumeric", withDirectory("2000009y0000"), vb::errTypeMismatch, 0, false},
        BadInput{"LengthZero", withDirectory("200000000000"), vb::errInvalidCall, 0, false},
        BadInput{"TwoDelimitersInARow",
                 QStringLiteral("00100nam0 2200037   450 200000900000") + QChar(30) +
                     QStringLiteral("  ") + QChar(31) + QChar(31) + QStringLiteral("a甲") +
                     QChar(30) + QChar(29),
                 0, vb::errInvalidCall, false},
        BadInput{"OffsetsPastTheEnd", withDirectory("200000999999"), 0, 0, false}),
    [](const ::testing::TestParamInfo<BadInput>& p) { return std::string(p.param.name); });

TEST(CardReader, CardReadsNumberPrefixes) {
    // "9  x" reads as 9 (blanks skipped, stops at x); no digits reads as 0.
    const Outcome r = kapian(withDirectory("2009  x00000"));
    ASSERT_TRUE(r.text);
    EXPECT_TRUE(r.text->contains(QStringLiteral("甲书")));
    const Outcome none = kapian(withDirectory("200abcdabcde"));
    ASSERT_TRUE(none.text);
    EXPECT_EQ(*none.text, card::noTitleText()); // 0 bytes: an empty title
}

// One field through the field layout: its line, the second of the text.
struct FieldLine {
    const char* name;
    QString marc;
    QString line;
};

void PrintTo(const FieldLine& c, std::ostream* os) {
    *os << c.name;
}

class CardFieldLine : public ::testing::TestWithParam<FieldLine> {};

TEST_P(CardFieldLine, Reads) {
    const Outcome r = ziduan(GetParam().marc);
    ASSERT_TRUE(r.text);
    EXPECT_EQ(r.text->section(QStringLiteral("\r\n"), 1, 1), GetParam().line);
}

namespace {
// 甲 is two bytes; a directory length one short ends the cut on its first byte.
QString oneByteShort() {
    return record({{"300", "  ␟a甲␞"}})
        .replace(QStringLiteral("3000007"), QStringLiteral("3000006"));
}
} // namespace

INSTANTIATE_TEST_SUITE_P(
    Table, CardFieldLine,
    ::testing::Values(
        // The field layout drops the closing 30 (the card keeps it: CardDriver.WorkedRecord).
        FieldLine{"ClosingCharacterDropped", record({{"200", "  ␟a甲书␞"}}), "200  $a甲书"},
        // A stray 30 inside a field and a 29 show as "@" and "%".
        FieldLine{"ControlCharactersAsMarks", record({{"300", "  ␟a甲␞乙␝丙␞"}}),
                  "300  $a甲@乙%丙"},
        FieldLine{"LengthCutsInsideACharacter", oneByteShort(), "300  $a?"},
        // Past the end: nothing; a length that runs past it: the rest, record end included.
        FieldLine{"StartPastTheEnd", withDirectory("200000999999"), "200"},
        FieldLine{"LengthPastTheEnd", withDirectory("200099900000"), "200  $a甲书@%"}),
    [](const ::testing::TestParamInfo<FieldLine>& p) { return std::string(p.param.name); });

TEST(CardWalk, ConsumesTheFieldAndKeepsTheLastValueWhole) {
    QString f = in(QStringLiteral("1 ␟a数据␟b␟c丙丁␞"));
    QStringList seen;
    card::walkSubfields(f, [&](char16_t code, QStringView v) {
        seen << QString(QChar(code)) + u'=' + vis(v.toString());
    });
    // $b is a legal empty value; the last value runs to the end of the field.
    EXPECT_EQ(seen, (QStringList{"a=数据", "b=", "c=丙丁␞"}));
    EXPECT_EQ(vis(f), QStringLiteral("c丙丁␞"));

    // Walked again, the remainder has no delimiter: nothing, and nothing changes.
    seen.clear();
    card::walkSubfields(f, [&](char16_t code, QStringView) { seen << QString(QChar(code)); });
    EXPECT_TRUE(seen.isEmpty());
    EXPECT_EQ(vis(f), QStringLiteral("c丙丁␞"));
}

TEST(CardWalk, DelimiterAtTheVeryEnd) {
    QString f = in(QStringLiteral("␟a甲␟"));
    QStringList seen;
    card::walkSubfields(f, [&](char16_t code, QStringView v) {
        seen << QString::number(code) + u'=' + v.toString();
    });
    // The last delimiter has no code and no value; it is no failure.
    EXPECT_EQ(seen, (QStringList{"97=甲", "0="}));
    EXPECT_TRUE(f.isEmpty());
}

TEST(CardWalk, FieldAbove32767BytesOverflows) {
    QString f = in(QStringLiteral("␟a")) + QString(16384, QChar(u'甲'));
    try {
        card::walkSubfields(f, [](char16_t, QStringView) {});
        FAIL() << "no overflow";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), vb::errOverflow);
    }
}

TEST(CardCuts, RuntimeSemantics) {
    const QString s = QStringLiteral("甲乙丙");
    EXPECT_EQ(card::mid(s, 2, 1), QStringLiteral("乙"));
    EXPECT_EQ(card::mid(s, 4, 1), QString());
    EXPECT_EQ(card::mid(s, 2, 99), QStringLiteral("乙丙"));
    EXPECT_THROW(card::mid(s, 0, 1), vb::VbError);
    EXPECT_THROW(card::mid(s, 1, -1), vb::VbError);
    const QByteArray b = gbk::encode(s);
    EXPECT_EQ(card::midB(b, 3, 2), QStringLiteral("乙"));
    EXPECT_EQ(card::midB(b, 3, 3), QStringLiteral("乙?")); // ends inside 丙
    EXPECT_EQ(card::midB(b, 7, 1), QString());
    EXPECT_THROW(card::midB(b, 0, 1), vb::VbError);
    EXPECT_THROW(card::toLong(3e9), vb::VbError);
}
