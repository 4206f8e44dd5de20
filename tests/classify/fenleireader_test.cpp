// The outline reader on made-up files, every corner a table row, and the shipped file's
// encoding and sections.

#include "classify/fenleireader.h"
#include "fenleitestfile.h"

#include <QDir>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace classify;

namespace {

TEST(FenleiReader, SampleSectionsLetterByLetter) {
    QTemporaryDir dir;
    const QString p = dir.filePath(QStringLiteral("fenlei.Qvx"));
    EXPECT_EQ(readDaLei(p).status, ReadStatus::Missing);
    EXPECT_EQ(readErJi(p, u'A').status, ReadStatus::Missing);
    ASSERT_TRUE(fenleitest::writeOutline(p, fenleitest::sampleOutline()));
    const SectionRead main = readDaLei(p);
    EXPECT_EQ(main.status, ReadStatus::Ok);
    // Headers with blanks around are found; blanks in front kept, the empty line kept, the
    // blank-led bracket line does not close, "[随便什么]" closes whatever it says.
    EXPECT_EQ(main.lines, (QStringList{"A 第一大类", "   B 第二大类，前有空格", "", "T 工业类",
                                       "t 小写的类", " [X] 前有空格的方括号行不结束本节]"}));
    const std::pair<char16_t, QStringList> cases[] = {
        // " A2" has a blank before its letter; "[A8]" is a bracketed class of A; "[A9]"
        // ends the section, so A10 is never read.
        {u'A', {"A1 第一大类的第一个类", "A3 第一大类的第三个类", "[A8] 第一大类中方括号类目"}},
        {u'B', {"B1 第二大类的第一个类"}},
        // One letter: T takes TB and TP in file order, with B1 between them.
        {u'T', {"TB 工业类的第一个类", "TP 工业类的第二个类"}},
        {u't', {"t1 小写类的类"}}, // letters compare exactly
        {u'Z', {}},
        // A main-class letter of "[" takes every bracketed line.
        {u'[', {"[A8] 第一大类中方括号类目"}},
    };
    for (const auto& [letter, expected] : cases) {
        const SectionRead r = readErJi(p, QChar(letter));
        EXPECT_EQ(r.status, ReadStatus::Ok);
        EXPECT_EQ(r.lines, expected) << "letter " << QString(QChar(letter)).toStdString();
    }
    // A folder of the file's name is no file.
    ASSERT_TRUE(QFile::remove(p) && QDir(dir.path()).mkdir(QStringLiteral("fenlei.Qvx")));
    EXPECT_EQ(readDaLei(p).status, ReadStatus::Missing);
}

TEST(FenleiReader, SectionsOfSmallFilesWithoutAnError) {
    struct {
        QStringList lines, main, secondOfA;
    } const cases[] = {
        // clang-format off
        {{}, {}, {}},
        // Sections are found whatever their order.
        {{"[二级类目表]", "A1 甲", "[大类表]", "A 甲类", "B 乙类"}, {"A 甲类", "B 乙类"}, {"A1 甲"}},
        {{"[二级类目表]", "A1 甲"}, {}, {"A1 甲"}},
        {{"[大类表]", "A 甲类"}, {"A 甲类"}, {}},
        {{"[大类表]", "[二级类目表]", "[完]"}, {}, {}},
        // A header with more on its line, or a near miss, opens nothing.
        {{"[大类表] 甲", "A 甲类", "[二级类目]", "A1 甲"}, {}, {}},
        // Closing is judged on the line as read: trailing or leading blanks keep it open.
        {{"[大类表]", "A 甲类", "[未完] ", "B 乙类", "[]", "C 丙类"}, {"A 甲类", "[未完] ", "B 乙类"}, {}},
        // clang-format on
    };
    QTemporaryDir dir;
    const QString p = dir.filePath(QStringLiteral("fenlei.Qvx"));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.lines.join(u'|').toStdString());
        ASSERT_TRUE(fenleitest::writeOutline(p, c.lines));
        const SectionRead main = readDaLei(p), second = readErJi(p, u'A');
        EXPECT_EQ(main.status, ReadStatus::Ok);
        EXPECT_EQ(second.status, ReadStatus::Ok);
        EXPECT_EQ(main.lines, c.main);
        EXPECT_EQ(second.lines, c.secondOfA);
    }
}

TEST(FenleiLines, SplitLettersEndsMembershipAndPath) {
    // clang-format off
    const std::pair<QByteArray, QStringList> cases[] = {
        {"", {}}, {"a", {"a"}}, {"a\r\n", {"a"}}, {"a\r\n\r\n", {"a", ""}}, {"\r\n", {""}},
        {"a\n\nb", {"a", "", "b"}}, {"a\r\rb", {"a", "", "b"}}, {"a\n\rb", {"a", "", "b"}},
        {"\xD6\xD0\r\n\xCE\xC4", {"中", "文"}}}; // a CR byte never stands inside a GBK pair
    // clang-format on
    for (const auto& [in, out] : cases) EXPECT_EQ(splitLines(in), out) << in.toStdString();
    QString letters; // "-" for no letter
    for (const char* line : {"   B 第二大类", "TP 计算机", "    ", "", "\tA"})
        letters += classLetter(line).isNull() ? QChar(u'-') : classLetter(line);
    EXPECT_EQ(letters, QStringLiteral("BT--\t")); // only blanks are trimmed, as the runtime does
    // What the sample file does not show already.
    EXPECT_FALSE(endsSection("["));
    for (const char* out : {"[ A8]", "[", ""}) EXPECT_FALSE(belongsTo(out, u'A')) << out;
    for (const char* folder : {"/opt/orvane", "/opt/orvane/"})
        EXPECT_EQ(configPath(folder, QStringLiteral("fenlei.Qvx")),
                  QDir::toNativeSeparators(QStringLiteral("/opt/orvane/fenlei.Qvx")));
    // A folder that already ends in a backslash gets no second separator.
    EXPECT_EQ(configPath(QStringLiteral("C:\\"), QStringLiteral("fenlei.Qvx")),
              QStringLiteral("C:\\fenlei.Qvx"));
}

TEST(FenleiShipped, IsGbkWithWindowsLineEndsAndEveryLineIsReachable) {
    const QString shipped = QStringLiteral(ORVANE_FENLEI_QVX);
    QFile f(shipped);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << shipped.toStdString();
    const QByteArray bytes = f.readAll();
    QStringDecoder dec("GBK");
    EXPECT_FALSE(dec.decode(bytes).operator QString().contains(QChar::ReplacementCharacter));
    EXPECT_FALSE(dec.hasError());
    EXPECT_TRUE(bytes.endsWith("\r\n"));
    EXPECT_EQ(bytes.count("\n"), bytes.count("\r\n")) << "every line ends in CR LF";
    // Each main class has second-level classes in file order (class numbers sort as text),
    // and no line of the section is lost to a blank in front, a lower-case letter or a
    // line that ends it early: the letters' lines add up to the whole section.
    const SectionRead main = readDaLei(shipped);
    ASSERT_EQ(main.status, ReadStatus::Ok);
    EXPECT_EQ(main.lines.size(), 22);
    const QRegularExpression number(QStringLiteral("^\\[?[A-Z](\\d+(/\\d+)?|[A-Z])\\]? \\S"));
    qsizetype total = 0;
    for (const QString& m : main.lines) {
        const QStringList second = readErJi(shipped, classLetter(m)).lines;
        EXPECT_FALSE(second.isEmpty()) << m.toStdString();
        total += second.size();
        std::string previous;
        for (const QString& line : second) {
            EXPECT_TRUE(number.match(line).hasMatch()) << line.toStdString();
            const std::string n = line.section(u' ', 0, 0).remove(u'[').remove(u']').toStdString();
            EXPECT_LT(previous, n);
            previous = n;
        }
    }
    const QStringList lines = splitLines(bytes);
    const qsizetype start = lines.indexOf(erJiHeader());
    ASSERT_GE(start, 0);
    qsizetype end = start + 1;
    while (end < lines.size() && !endsSection(lines[end])) ++end;
    EXPECT_EQ(total, end - start - 1);
    EXPECT_EQ(end, lines.size() - 1) << "the section runs to its closing line at the end";
}

} // namespace
