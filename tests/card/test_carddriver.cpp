// The card layout: the passes, the slots, the numbered sections and the assembly.

#include "cardrecords.h"

#include "card/carddriver.h"

#include <gtest/gtest.h>

using namespace cardtest;

namespace {

struct Card {
    QString text; // with ␞ for the kept closing characters
    QStringList messages;
};

Card cardText(const std::vector<Field>& fields) {
    Card c;
    const auto t = card::showKapian(card::MarcText(record(fields)),
                                    [&](const QString& m) { c.messages << m; });
    EXPECT_TRUE(t.has_value());
    c.text = t ? vis(*t) : QString();
    return c;
}

QStringList cardLines(const std::vector<Field>& fields) {
    return cardText(fields).text.split(QStringLiteral("\r\n"));
}

// The tracing is always the last line.
QString tracing(const std::vector<Field>& fields) {
    return cardLines(fields).last();
}

} // namespace

TEST(CardDriver, WorkedRecord) {
    const auto t = card::showKapian(card::MarcText(workedRecord()),
                                    [](const QString& m) { ADD_FAILURE() << m.toStdString(); });
    ASSERT_TRUE(t);
    EXPECT_EQ(
        vis(*t),
        lines({
            "",
            "",
            "  数据结构：算法与实践／王小明著；李华译␞·—第2版,张三修订␞·—北京：示例出版社，2001␞",
            "  320页：图；26cm␞·—（计算机丛书；第3辑␞）",
            "",
            "  本书由讲义整理而成␞·—有书目␞",
            "  ISBN 7-5000-1234-5（精装）:CNY25.00␞",
            "",
            "  Ⅰ.①数···②计···Ⅱ.①王··· ②李···Ⅲ.①数据结构 ②算法␞ Ⅳ.TP311.12␞",
        }));
}

TEST(CardDriver, OneTitleRecord) {
    EXPECT_EQ(cardText({{"200", "  ␟a甲书␞"}}).text,
              lines({"", "", "  甲书␞", "", "  ", "", "  Ⅰ.甲··· "}));
}

TEST(CardDriver, SecondTitleAndPublicationReplaceTheFirst) {
    const Card c = cardText(
        {{"200", "␟f某著␟a一书␞"}, {"210", "␟a北京␞"}, {"200", "␟a二书␞"}, {"210", "␟a上海␞"}});
    EXPECT_EQ(c.text.split(QStringLiteral("\r\n")).at(2), QStringLiteral("  二书␞·—上海␞"));
    // The first title leaves only its message.
    EXPECT_EQ(c.messages, QStringList{"本条记录缺少题名，无法正常显示！"});
}

TEST(CardDriver, DescriptionSlotsJoin) {
    const QStringList l = cardLines({{"208", "␟a乐谱一␞"},
                                     {"205", "␟a第1版␞"},
                                     {"206", "␟a图一␞"},
                                     {"200", "␟a书␞"},
                                     {"205", "␟a第2版␞"},
                                     {"230", "␟a电子一␞"},
                                     {"206", "␟a图二␞"},
                                     {"208", "␟a乐谱二␞"},
                                     {"207", "␟a卷一␞"},
                                     {"230", "␟a电子二␞"},
                                     {"207", "␟a卷二␞"}});
    // Order: title, 205, 206, 207, 208, 230; 205/206/207/230 join with "；",
    // the last 208 wins, 230 gets the area mark only in front of the first.
    EXPECT_EQ(l.at(2), QStringLiteral("  书␞·—第1版␞；·—第2版␞·—图一␞；·—图二␞·—卷一␞；·—卷二␞"
                                      "·—乐谱二␞·—电子一␞；电子二␞"));
}

TEST(CardDriver, PhysicalDescriptionAndSeries) {
    const QStringList l = cardLines({{"200", "␟a书␞"},
                                     {"225", "␟a甲丛书␞"},
                                     {"215", "␟a100页␞"},
                                     {"225", "␟a乙丛书␞"},
                                     {"215", "␟a200页␞"}});
    EXPECT_EQ(l.mid(2, 4),
              (QStringList{"  书␞", "  100页␞", "  ", "  200页␞·—（甲丛书␞）·—（乙丛书␞）"}));
    // The second character of the tracing's first section is the first series'.
    EXPECT_EQ(l.last(), QStringLiteral("  Ⅰ.①书···②甲··· "));
}

TEST(CardDriver, EmptySeriesLeavesItsBrackets) {
    const QStringList l = cardLines({{"200", "␟a书␞"}, {"225", "␟b甲␞"}});
    EXPECT_EQ(l.at(2), QStringLiteral("  书␞·—（）"));
    EXPECT_EQ(l.last(), QStringLiteral("  Ⅰ.①书···②）··· "));
}

TEST(CardDriver, Note324WipesTheNotesBeforeIt) {
    const QStringList l = cardLines(
        {{"325", "␟a三二五␞"}, {"300", "␟a三百␞"}, {"200", "␟a书␞"}, {"324", "␟a三二四␞"}});
    EXPECT_EQ(l.mid(3, 2), (QStringList{"", "  三二四␞·—三二五␞"}));
}

TEST(CardDriver, NoteWithoutSubfieldAStillMarksTheSlot) {
    const QStringList l = cardLines(
        {{"200", "␟a书␞"}, {"300", "␟b甲␞"}, {"327", "␟a第一章␟a第二章␞"}, {"330", "无子字段␞"}});
    EXPECT_EQ(l.mid(3, 2), (QStringList{"", "  ·—第一章·—第二章␞·—"}));
}

TEST(CardDriver, IsbnLines) {
    // Two 010 without notes: an empty line, then the numbers on lines of their own.
    QStringList l = cardLines({{"010", "␟a甲␞"}, {"200", "␟a书␞"}, {"010", "␟a乙␞"}});
    EXPECT_EQ(l.mid(2), (QStringList{"  书␞", "", "  ISBN 甲␞", "  ISBN 乙␞", "", "  Ⅰ.书··· "}));
    // With notes, the numbers follow the notes directly.
    l = cardLines({{"010", "␟a甲␞"}, {"200", "␟a书␞"}, {"300", "␟a注␞"}});
    EXPECT_EQ(l.mid(2), (QStringList{"  书␞", "", "  注␞", "  ISBN 甲␞", "", "  Ⅰ.书··· "}));
    // Notes without any 010: an empty line and a line of two blanks.
    l = cardLines({{"200", "␟a书␞"}, {"300", "␟a注␞"}});
    EXPECT_EQ(l.mid(2), (QStringList{"  书␞", "", "  注␞", "", "  ", "", "  Ⅰ.书··· "}));
}

TEST(CardDriver, TwelveSubjectsShowTen) {
    std::vector<Field> f{{"200", "␟a书␞"}};
    for (int i = 1; i <= 12; ++i) f.push_back({"606", QStringLiteral("␟aS%1").arg(i)});
    EXPECT_EQ(tracing(f), QStringLiteral("  Ⅰ.书···Ⅲ.①S1 ②S2③S3④S4⑤S5⑥S6⑦S7⑧S8⑨S9⑩S10 "));
}

TEST(CardDriver, NumberingRunsAcrossTheTagsOfASectionInPassOrder) {
    // The 607 stands first in the record, the 606 is passed first; a subject without
    // $a takes no number.
    EXPECT_EQ(tracing({{"607", "␟a北京"}, {"200", "␟a书␞"}, {"600", "␟x无"}, {"606", "␟a地理"}}),
              QStringLiteral("  Ⅰ.书···Ⅲ.①地理 ②北京 "));
    // A lone entry of a section has no number.
    EXPECT_EQ(tracing({{"200", "␟a书␞"}, {"610", "␟a词"}, {"692", "␟aX"}}),
              QStringLiteral("  Ⅰ.书···Ⅲ.词 Ⅳ.X"));
}

TEST(CardDriver, AuthorsByTheirFirstCharacter) {
    EXPECT_EQ(tracing({{"200", "␟a书␞"},
                       {"712", "␟a机构"},
                       {"701", "␟a 王"},
                       {"700", "0 ␟b无"},
                       {"702", "␟a李华"}}),
              QStringLiteral("  Ⅰ.书···Ⅱ.① ··· ②李···③机··· "));
}

TEST(CardDriver, Classification686TakesANumberButShowsNoText) {
    EXPECT_EQ(tracing({{"200", "␟a书␞"}, {"690", "␟aK20"}, {"686", "␟aX1"}, {"690", "␟aK21"}}),
              QStringLiteral("  Ⅰ.书··· Ⅳ.① ②K20③K21"));
    // A 686 without $a takes none.
    EXPECT_EQ(tracing({{"200", "␟a书␞"}, {"686", "␟bX1"}, {"690", "␟aK20"}}),
              QStringLiteral("  Ⅰ.书··· Ⅳ.K20"));
    // Pass order of the section: 675, 676, 680, 686, 690, 692.
    EXPECT_EQ(tracing({{"692", "␟aE"},
                       {"690", "␟aD"},
                       {"680", "␟aC"},
                       {"676", "␟aB"},
                       {"675", "␟aA"},
                       {"200", "␟a书␞"}}),
              QStringLiteral("  Ⅰ.书··· Ⅳ.①A ②B③C④D⑤E"));
}

TEST(CardDriver, TitleOfBlanksIsNotEmpty) {
    const Card c = cardText({{"200", "␟a   ␞"}});
    const QStringList l = c.text.split(QStringLiteral("\r\n"));
    EXPECT_EQ(l.at(2), QStringLiteral("  ␞")); // leading blanks trimmed, the 30 stays
    // The first character after trimming is the kept closing character.
    EXPECT_EQ(l.last(), QStringLiteral("  Ⅰ.␞··· "));
}

TEST(CardDriver, NoTitle) {
    // Every pass still runs, so the title's messages come before the verdict.
    const Card c = cardText({{"200", "␟f某著␞"}, {"606", "␟a甲"}});
    EXPECT_EQ(c.text, QStringLiteral("没有正题名,无法显示卡片!"));
    EXPECT_EQ(c.messages, QStringList{"本条记录缺少题名，无法正常显示！"});
    EXPECT_EQ(cardText({{"001", "123␞"}, {"606", "␟a甲"}}).text, card::noTitleText());
}

TEST(CardDriver, OnlyTheListedTagsAreLookedAt) {
    EXPECT_EQ(card::kCardTags.size(), 62u);
    EXPECT_EQ(QString::fromUtf16(card::kCardTags.front()), QStringLiteral("010"));
    EXPECT_EQ(QString::fromUtf16(card::kCardTags.back()), QStringLiteral("692"));
    // Full-width digits, a 309 (not in the notes) and a 6O6 are passed over.
    EXPECT_EQ(
        cardText({{"200", "␟a书␞"}, {"３００", "␟a甲"}, {"309", "␟a乙"}, {"6O6", "␟a丙"}}).text,
        lines({"", "", "  书␞", "", "  ", "", "  Ⅰ.书··· "}));
}
