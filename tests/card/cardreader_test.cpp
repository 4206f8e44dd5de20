// The record reader: the field layout, the directory, the byte cuts and every way a bad
// record is refused. The cuts inside the text are the random GBK test's.

#include "cardrecords.h"

#include "card/marcreader.h"

#include <gtest/gtest.h>

using namespace cardtest;

namespace {

// One field 200 "  ␟a甲书␞" behind the given 12-character directory.
QString withDirectory(const QString& dir) {
    return QStringLiteral("00100nam0 2200037   450 ") + dir + in(QStringLiteral("␞  ␟a甲书␞␝"));
}
QString withBase(const QString& base) {
    return record({{"200", "  ␟a甲书␞"}}).replace(12, 5, base);
}

} // namespace

TEST(CardReader, WorkedRecordFieldLayout) {
    const Outcome r = run(false, workedRecord());
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

TEST(CardReader, DirectoryOrderLeaderRecordEndEmptyDirectoryAndStrayControls) {
    const Outcome r = run(
        false,
        record({{"100", "  ␟a20010101␞"}, {"606", "0 ␟a乙␞"}, {"001", "X1␞"}, {"606", "0 ␟a甲␞"}}));
    ASSERT_TRUE(r.text);
    EXPECT_EQ(r.text->section(QStringLiteral("\r\n"), 1),
              lines({"100  $a20010101", "6060 $a乙", "001X1", "6060 $a甲", ""}));
    // Leader junk and a missing record end change nothing but the leader line.
    QString marc = record({{"200", "  ␟a甲书␞"}});
    const Outcome before = run(true, marc);
    marc.replace(0, 5, QStringLiteral("ZZZZZ")).replace(5, 7, QStringLiteral("xxxxxxx"));
    marc.replace(17, 7, QStringLiteral("yyyyyyy")).chop(1);
    const Outcome after = run(true, marc);
    ASSERT_TRUE(before.text && after.text);
    EXPECT_EQ(*before.text, *after.text);
    const QString empty = QStringLiteral("00026nam0 2200025   450 ") + QChar(30) + QChar(29);
    EXPECT_EQ(run(false, empty).text, QStringLiteral("00026nam0 2200025   450 \r\n"));
    EXPECT_EQ(run(true, empty).text, QStringLiteral("没有正题名,无法显示卡片!"));
    // The card reads number prefixes: "9  x" is 9 (blanks skipped, stops at x), no digits 0.
    EXPECT_TRUE(run(true, withDirectory("2009  x00000")).text->contains(QStringLiteral("甲书")));
    // A stray 30 inside a field and a 29 show as "@" and "%"; a length that runs past the
    // end takes the rest, record end included.
    const auto secondLine = [](const QString& m) {
        return run(false, m).text.value_or(QString()).section(QStringLiteral("\r\n"), 1, 1);
    };
    EXPECT_EQ(secondLine(record({{"300", "  ␟a甲␞乙␝丙␞"}})), QStringLiteral("300  $a甲@乙%丙"));
    EXPECT_EQ(secondLine(withDirectory("200099900000")), QStringLiteral("200  $a甲书@%"));
}

TEST(CardReader, EachBadInputGivesItsDefinedFailureInBothLayouts) {
    constexpr int kType = vb::errTypeMismatch, kCall = vb::errInvalidCall, kOver = vb::errOverflow;
    struct {
        const char* name;
        QString marc;
        int fieldsError, cardError; // VbError of each layout, 0 none
        bool dirMessage;            // refused with the directory message
    } const cases[] = {
        // clang-format off
        {"directory not a multiple of 12", withDirectory("20000090000"), 0, 0, true},
        {"base blank", withBase("     "), kType, kType, false},
        {"base above 32767", withBase("40000"), kOver, kOver, false},
        {"no field end", in(QStringLiteral("00100nam0 2200037   450 2000009000000")), kCall, kCall, false},
        {"field end before 25", in(QStringLiteral("00100nam0 2200037   4␞50 200000900000")), kCall, kCall, false},
        {"empty record", QString(), kType, kType, false},
        // The field layout converts the numbers strictly, the card reads their prefix.
        {"length not numeric", withDirectory("200x00900000"), kType, 0, false},
        {"length zero", withDirectory("200000000000"), kCall, 0, false},
        {"two delimiters in a row", in(QStringLiteral("00100nam0 2200037   450 200000900000␞  ␟␟a甲␞␝")), 0, kCall, false},
        {"offsets past the end", withDirectory("200000999999"), 0, 0, false},
        // clang-format on
    };
    for (const auto& c : cases) {
        for (bool card : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (card ? ", card layout" : ", field layout"));
            const Outcome r = run(card, c.marc);
            EXPECT_EQ(r.error, card ? c.cardError : c.fieldsError);
            if (c.dirMessage) {
                EXPECT_FALSE(r.text);
                EXPECT_EQ(r.messages, QStringList{"地址目次区数据出现错误，校验失败！"});
            } else if (r.error == 0) {
                EXPECT_TRUE(r.text);
            }
        }
    }
}
