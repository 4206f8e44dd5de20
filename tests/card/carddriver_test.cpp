// The card layout: the passes, the slots, the numbered sections and the assembly.

#include "cardrecords.h"

#include "card/carddriver.h"

#include <gtest/gtest.h>

using namespace cardtest;

namespace {

// The card of a record, with ␞ for the kept closing characters.
Outcome cardOf(const std::vector<Field>& fields) {
    Outcome c = run(true, record(fields));
    EXPECT_TRUE(c.text);
    c.text = vis(c.text.value_or(QString()));
    return c;
}

} // namespace

TEST(CardDriver, WorkedRecord) {
    const Outcome c = cardOf(workedFields());
    EXPECT_TRUE(c.messages.isEmpty());
    EXPECT_EQ(
        *c.text,
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

std::vector<Field> withSubjects(int n) {
    std::vector<Field> f{{"200", "␟a书␞"}};
    for (int i = 1; i <= n; ++i) f.push_back({"606", QStringLiteral("␟aS%1").arg(i)});
    return f;
}

TEST(CardDriver, EdgeCases) {
    // A record and the card lines it gives from line `from` on (-1: the last line, the
    // tracing, alone).
    struct {
        const char* name;
        std::vector<Field> fields;
        int from;
        QStringList lines;
    } const cases[] = {
        // clang-format off
    // Order: title, 205, 206, 207, 208, 230; 205/206/207/230 join with "；", the last 208
    // wins, 230 gets the area mark only in front of the first.
        {"DescriptionSlotsJoin", {{"208", "␟a乐谱一␞"}, {"205", "␟a第1版␞"}, {"206", "␟a图一␞"}, {"200", "␟a书␞"}, {"205", "␟a第2版␞"}, {"230", "␟a电子一␞"}, {"206", "␟a图二␞"}, {"208", "␟a乐谱二␞"}, {"207", "␟a卷一␞"}, {"230", "␟a电子二␞"}, {"207", "␟a卷二␞"}}, 2, {"  书␞·—第1版␞；·—第2版␞·—图一␞；·—图二␞·—卷一␞；·—卷二␞·—乐谱二␞·—电子一␞；电子二␞"}},
        // Each 215 on a line of its own, the series after the last; the second character of
        // the tracing's first section is the first series'.
        {"PhysicalDescriptionAndSeries", {{"200", "␟a书␞"}, {"225", "␟a甲丛书␞"}, {"215", "␟a100页␞"}, {"225", "␟a乙丛书␞"}, {"215", "␟a200页␞"}}, 2, {"  书␞", "  100页␞", "  ", "  200页␞·—（甲丛书␞）·—（乙丛书␞）", "", "  ", "", "  Ⅰ.①书···②甲··· "}},
        {"Note324WipesTheNotesBeforeIt", {{"325", "␟a三二五␞"}, {"300", "␟a三百␞"}, {"200", "␟a书␞"}, {"324", "␟a三二四␞"}}, 3, {"", "  三二四␞·—三二五␞"}},
        {"NoteWithoutSubfieldAStillMarksTheSlot", {{"200", "␟a书␞"}, {"300", "␟b甲␞"}, {"327", "␟a第一章␟a第二章␞"}, {"330", "无子字段␞"}}, 3, {"", "  ·—第一章·—第二章␞·—"}},
    // Two 010 without notes: an empty line, then the numbers on lines of their own.
        {"TwoIsbnsNoNotes", {{"010", "␟a甲␞"}, {"200", "␟a书␞"}, {"010", "␟a乙␞"}}, 2, {"  书␞", "", "  ISBN 甲␞", "  ISBN 乙␞", "", "  Ⅰ.书··· "}},
    // With notes, the numbers follow the notes directly.
        {"IsbnAfterNotes", {{"010", "␟a甲␞"}, {"200", "␟a书␞"}, {"300", "␟a注␞"}}, 2, {"  书␞", "", "  注␞", "  ISBN 甲␞", "", "  Ⅰ.书··· "}},
    // Notes without any 010: an empty line and a line of two blanks.
        {"NotesNoIsbn", {{"200", "␟a书␞"}, {"300", "␟a注␞"}}, 2, {"  书␞", "", "  注␞", "", "  ", "", "  Ⅰ.书··· "}},
        {"TwelveSubjectsShowTen", withSubjects(12), -1, {"  Ⅰ.书···Ⅲ.①S1 ②S2③S3④S4⑤S5⑥S6⑦S7⑧S8⑨S9⑩S10 "}},
    // The 607 stands first in the record, the 606 is passed first; a subject without $a
    // takes no number.
        {"NumberingInPassOrder", {{"607", "␟a北京"}, {"200", "␟a书␞"}, {"600", "␟x无"}, {"606", "␟a地理"}}, -1, {"  Ⅰ.书···Ⅲ.①地理 ②北京 "}},
    // A lone entry of a section has no number.
        {"LoneEntryUnnumbered", {{"200", "␟a书␞"}, {"610", "␟a词"}, {"692", "␟aX"}}, -1, {"  Ⅰ.书···Ⅲ.词 Ⅳ.X"}},
        {"AuthorsByTheirFirstCharacter", {{"200", "␟a书␞"}, {"712", "␟a机构"}, {"701", "␟a 王"}, {"700", "0 ␟b无"}, {"702", "␟a李华"}}, -1, {"  Ⅰ.书···Ⅱ.① ··· ②李···③机··· "}},
    // A 686 takes a number but shows no text; without $a it takes none.
        {"Class686Numbered", {{"200", "␟a书␞"}, {"690", "␟aK20"}, {"686", "␟aX1"}, {"690", "␟aK21"}}, -1, {"  Ⅰ.书··· Ⅳ.① ②K20③K21"}},
    // Pass order of the section: 675, 676, 680, 686, 690, 692.
        {"ClassPassOrder", {{"692", "␟aE"}, {"690", "␟aD"}, {"680", "␟aC"}, {"676", "␟aB"}, {"675", "␟aA"}, {"200", "␟a书␞"}}, -1, {"  Ⅰ.书··· Ⅳ.①A ②B③C④D⑤E"}},
    // Full-width digits, a 309 (not in the notes) and a 6O6 are passed over.
        {"OnlyTheListedTags", {{"200", "␟a书␞"}, {"３００", "␟a甲"}, {"309", "␟a乙"}, {"6O6", "␟a丙"}}, 0, {"", "", "  书␞", "", "  ", "", "  Ⅰ.书··· "}},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QStringList l = cardOf(c.fields).text->split(QStringLiteral("\r\n"));
        EXPECT_EQ(c.from < 0 ? QStringList{l.last()} : l.mid(c.from, c.lines.size()), c.lines);
    }
}

TEST(CardDriver, SecondTitleAndPublicationReplaceTheFirstAndNoTitle) {
    Outcome c = cardOf(
        {{"200", "␟f某著␟a一书␞"}, {"210", "␟a北京␞"}, {"200", "␟a二书␞"}, {"210", "␟a上海␞"}});
    EXPECT_EQ(c.text->split(QStringLiteral("\r\n")).at(2), QStringLiteral("  二书␞·—上海␞"));
    // The first title leaves only its message.
    EXPECT_EQ(c.messages, QStringList{"本条记录缺少题名，无法正常显示！"});
    // Every pass still runs, so the title's messages come before the verdict.
    c = cardOf({{"200", "␟f某著␞"}, {"606", "␟a甲"}});
    EXPECT_EQ(c.text, QStringLiteral("没有正题名,无法显示卡片!"));
    EXPECT_EQ(c.messages, QStringList{"本条记录缺少题名，无法正常显示！"});
}
