#include "classify/fenleireader.h"
#include "fenleitestfile.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace classify;
using fenleitest::sampleOutline;
using fenleitest::writeFile;
using fenleitest::writeOutline;

namespace {

class FenleiReader : public ::testing::Test {
protected:
    QString file(const QStringList& lines) {
        const QString p = dir.filePath(QStringLiteral("fenlei.Qvx"));
        EXPECT_TRUE(writeOutline(p, lines));
        return p;
    }
    QTemporaryDir dir;
};

TEST_F(FenleiReader, MainSectionIsTakenWholeAsRead) {
    const SectionRead r = readDaLei(file(sampleOutline()));
    EXPECT_EQ(r.status, ReadStatus::Ok);
    // Blanks in front kept, the empty line kept, the blank-led bracket line does not close,
    // "[随便什么]" closes whatever it says.
    const QStringList expected{
        QStringLiteral("A 第一大类"),
        QStringLiteral("   B 第二大类，前有空格"),
        QString(),
        QStringLiteral("T 工业类"),
        QStringLiteral("t 小写的类"),
        QStringLiteral(" [X] 前有空格的方括号行不结束本节]"),
    };
    EXPECT_EQ(r.lines, expected);
}

struct ErJiCase {
    char16_t letter;
    QStringList expected;
};

TEST_F(FenleiReader, SecondLevelLinesOfEachLetter) {
    const QString p = file(sampleOutline());
    const ErJiCase cases[] = {
        // " A2" has a blank before its letter; "[A8]" is a bracketed class of A; "[A9]"
        // ends the section, so A10 is never read.
        {u'A',
         {QStringLiteral("A1 第一大类的第一个类"), QStringLiteral("A3 第一大类的第三个类"),
          QStringLiteral("[A8] 第一大类中方括号类目")}},
        {u'B', {QStringLiteral("B1 第二大类的第一个类")}},
        // One letter: T takes TB and TP in file order, with B1 between them.
        {u'T', {QStringLiteral("TB 工业类的第一个类"), QStringLiteral("TP 工业类的第二个类")}},
        // Letters compare exactly.
        {u't', {QStringLiteral("t1 小写类的类")}},
        {u'Z', {}},
        // A main-class letter of "[" takes every bracketed line.
        {u'[', {QStringLiteral("[A8] 第一大类中方括号类目")}},
    };
    for (const ErJiCase& c : cases) {
        const SectionRead r = readErJi(p, QChar(c.letter));
        EXPECT_EQ(r.status, ReadStatus::Ok);
        EXPECT_EQ(r.lines, c.expected) << "letter " << QString(QChar(c.letter)).toStdString();
    }
}

TEST_F(FenleiReader, SectionsAreFoundIndependentlyOfTheirOrder) {
    const QString p =
        file({QStringLiteral("[二级类目表]"), QStringLiteral("A1 甲"), QStringLiteral("[大类表]"),
              QStringLiteral("A 甲类"), QStringLiteral("B 乙类")});
    EXPECT_EQ(readDaLei(p).lines,
              (QStringList{QStringLiteral("A 甲类"), QStringLiteral("B 乙类")}));
    EXPECT_EQ(readErJi(p, u'A').lines, QStringList{QStringLiteral("A1 甲")});
}

TEST_F(FenleiReader, AbsentOrEmptySectionGivesNothingAndNoError) {
    struct Case {
        QStringList lines;
        QStringList main;
        QStringList secondOfA;
    };
    const Case cases[] = {
        {{}, {}, {}},
        {{QStringLiteral("[二级类目表]"), QStringLiteral("A1 甲")}, {}, {QStringLiteral("A1 甲")}},
        {{QStringLiteral("[大类表]"), QStringLiteral("A 甲类")}, {QStringLiteral("A 甲类")}, {}},
        {{QStringLiteral("[大类表]"), QStringLiteral("[二级类目表]"), QStringLiteral("[完]")},
         {},
         {}},
        // A header with more on its line, or a near miss, opens nothing.
        {{QStringLiteral("[大类表] 甲"), QStringLiteral("A 甲类"), QStringLiteral("[二级类目]"),
          QStringLiteral("A1 甲")},
         {},
         {}},
    };
    for (const Case& c : cases) {
        const QString p = file(c.lines);
        const SectionRead main = readDaLei(p);
        const SectionRead second = readErJi(p, u'A');
        EXPECT_EQ(main.status, ReadStatus::Ok);
        EXPECT_EQ(second.status, ReadStatus::Ok);
        EXPECT_EQ(main.lines, c.main) << c.lines.join(u'|').toStdString();
        EXPECT_EQ(second.lines, c.secondOfA) << c.lines.join(u'|').toStdString();
    }
}

TEST_F(FenleiReader, OnlyALineThatBeginsAndEndsWithABracketClosesASection) {
    // Closing is judged on the line as read: trailing or leading blanks keep it open.
    const QString p =
        file({QStringLiteral("[大类表]"), QStringLiteral("A 甲类"), QStringLiteral("[未完] "),
              QStringLiteral("B 乙类"), QStringLiteral("[]"), QStringLiteral("C 丙类")});
    EXPECT_EQ(readDaLei(p).lines, (QStringList{QStringLiteral("A 甲类"), QStringLiteral("[未完] "),
                                               QStringLiteral("B 乙类")}));
}

TEST_F(FenleiReader, MissingFileAndFolderOfThatName) {
    const QString gone = dir.filePath(QStringLiteral("fenlei.Qvx"));
    EXPECT_EQ(readDaLei(gone).status, ReadStatus::Missing);
    EXPECT_EQ(readErJi(gone, u'A').status, ReadStatus::Missing);
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("fenlei.Qvx")));
    EXPECT_EQ(readDaLei(gone).status, ReadStatus::Missing);
}

TEST_F(FenleiReader, LineEndsOfEveryKindAndGbkText) {
    const QString p = dir.filePath(QStringLiteral("fenlei.Qvx"));
    QByteArray bytes = "[\xB4\xF3\xC0\xE0\xB1\xED]\n" // [大类表] with a bare LF
                       "A \xBC\xD7\r"                 // A 甲 with a bare CR
                       "B \xD2\xD2\r\n"               // B 乙
                       "C \xB1\xFB";                  // C 丙, no break at the end
    ASSERT_TRUE(writeFile(p, bytes));
    EXPECT_EQ(readDaLei(p).lines, (QStringList{QStringLiteral("A 甲"), QStringLiteral("B 乙"),
                                               QStringLiteral("C 丙")}));
}

TEST(FenleiLines, SplitLines) {
    struct Case {
        QByteArray in;
        QStringList out;
    };
    const Case cases[] = {
        {"", {}},
        {"a", {"a"}},
        {"a\r\n", {"a"}},
        {"a\r\n\r\n", {"a", ""}},
        {"\r\n", {""}},
        {"a\n\nb", {"a", "", "b"}},
        {"a\r\rb", {"a", "", "b"}},
        {"a\n\rb", {"a", "", "b"}},
        // A CR byte never stands inside a GBK pair.
        {"\xD6\xD0\r\n\xCE\xC4", {QStringLiteral("中"), QStringLiteral("文")}},
    };
    for (const Case& c : cases) EXPECT_EQ(splitLines(c.in), c.out) << c.in.toStdString();
}

TEST(FenleiLines, LetterSectionEndAndMembership) {
    EXPECT_EQ(classLetter(QStringLiteral("   B 第二大类")), QChar(u'B'));
    EXPECT_EQ(classLetter(QStringLiteral("TP 计算机")), QChar(u'T'));
    EXPECT_TRUE(classLetter(QStringLiteral("    ")).isNull());
    EXPECT_TRUE(classLetter(QString()).isNull());
    // Only blanks are trimmed, as the runtime does.
    EXPECT_EQ(classLetter(QStringLiteral("\tA")), QChar(u'\t'));

    EXPECT_TRUE(endsSection(QStringLiteral("[x]")));
    EXPECT_TRUE(endsSection(QStringLiteral("[]")));
    EXPECT_TRUE(endsSection(QStringLiteral("[A9] 也结束]")));
    EXPECT_FALSE(endsSection(QStringLiteral("[")));
    EXPECT_FALSE(endsSection(QStringLiteral(" [x]")));
    EXPECT_FALSE(endsSection(QStringLiteral("[x] ")));
    EXPECT_FALSE(endsSection(QStringLiteral("[A8] 方括号类目")));

    EXPECT_TRUE(belongsTo(QStringLiteral("A1 x"), u'A'));
    EXPECT_TRUE(belongsTo(QStringLiteral("[A8] x"), u'A'));
    EXPECT_TRUE(belongsTo(QStringLiteral("A"), u'A'));
    EXPECT_FALSE(belongsTo(QStringLiteral(" A1 x"), u'A'));
    EXPECT_FALSE(belongsTo(QStringLiteral("a1 x"), u'A'));
    EXPECT_FALSE(belongsTo(QStringLiteral("[ A8]"), u'A'));
    EXPECT_FALSE(belongsTo(QStringLiteral("["), u'A'));
    EXPECT_FALSE(belongsTo(QString(), u'A'));
}

TEST(FenleiLines, PathAndMessages) {
    EXPECT_EQ(configPath(QStringLiteral("/opt/orvane"), QStringLiteral("fenlei.Qvx")),
              QDir::toNativeSeparators(QStringLiteral("/opt/orvane/fenlei.Qvx")));
    EXPECT_EQ(configPath(QStringLiteral("/opt/orvane/"), QStringLiteral("fenlei.Qvx")),
              QDir::toNativeSeparators(QStringLiteral("/opt/orvane/fenlei.Qvx")));
    // A folder that already ends in a backslash gets no second separator.
    EXPECT_EQ(configPath(QStringLiteral("C:\\"), QStringLiteral("fenlei.Qvx")),
              QStringLiteral("C:\\fenlei.Qvx"));
    EXPECT_EQ(missingMessage(QStringLiteral("/opt/orvane/fenlei.Qvx")),
              QStringLiteral("配置文件【/opt/orvane/fenlei.Qvx】丢失。"));
}

} // namespace
