// The outline reader on made-up files and on the shipped file.

#include "classify/fenleireader.h"
#include "fenleitestfile.h"

#include <QDir>
#include <QStringDecoder>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace classify;

namespace {

TEST(FenleiReader, SampleSectionsLetterByLetter) {
    QTemporaryDir dir;
    const QString p = dir.filePath(QStringLiteral("fenlei.Qvx"));
    EXPECT_EQ(readDaLei(p).status, ReadStatus::Missing);
    ASSERT_TRUE(fenleitest::writeOutline(p, fenleitest::sampleOutline()));
    const SectionRead main = readDaLei(p);
    EXPECT_EQ(main.status, ReadStatus::Ok);
    // Sections in any order; near misses open nothing, headers with blanks around are found;
    // blanks in front and the empty line kept; a bracket line closes only as read, without a
    // blank before or after, whatever it says.
    EXPECT_EQ(main.lines,
              (QStringList{"A 第一大类", "   B 第二大类，前有空格", "", "T 工业类", "t 小写的类",
                           " [X] 前有空格的方括号行不结束本节]", "[未完] "}));
    const std::pair<char16_t, QStringList> cases[] = {
        // " A2" has a blank before its letter; "[A8]" is a bracketed class of A; "[A9]"
        // ends the section, so A10 is never read.
        {u'A', {"A1 第一大类的第一个类", "A3 第一大类的第三个类", "[A8] 第一大类中方括号类目"}},
        // One letter: T takes TB and TP in file order, with B1 between them.
        {u'T', {"TB 工业类的第一个类", "TP 工业类的第二个类"}},
        {u't', {"t1 小写类的类"}}, // letters compare exactly
        // A main-class letter of "[" takes every bracketed line.
        {u'[', {"[A8] 第一大类中方括号类目"}},
    };
    for (const auto& [letter, expected] : cases) {
        const SectionRead r = readErJi(p, QChar(letter));
        EXPECT_EQ(r.status, ReadStatus::Ok);
        EXPECT_EQ(r.lines, expected) << "letter " << QString(QChar(letter)).toStdString();
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
    for (const char* out : {"[ A8]", "[", ""}) EXPECT_FALSE(belongsTo(out, u'A')) << out;
    EXPECT_EQ(configPath("/opt/orvane", QStringLiteral("fenlei.Qvx")),
              QDir::toNativeSeparators(QStringLiteral("/opt/orvane/fenlei.Qvx")));
    // A folder that already ends in a backslash gets no second separator.
    EXPECT_EQ(configPath(QStringLiteral("C:\\"), QStringLiteral("fenlei.Qvx")),
              QStringLiteral("C:\\fenlei.Qvx"));
}

TEST(FenleiShipped, IsGbkAndEveryLineIsReachable) {
    const QString shipped = QStringLiteral(ORVANE_FENLEI_QVX);
    QFile f(shipped);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << shipped.toStdString();
    const QByteArray bytes = f.readAll();
    QStringDecoder dec("GBK");
    EXPECT_FALSE(dec.decode(bytes).operator QString().contains(QChar::ReplacementCharacter));
    EXPECT_FALSE(dec.hasError());
    // Each main class has classes, and no line is lost to a blank in front, a lower-case
    // letter or an early end: the letters' lines add up to the whole section.
    const SectionRead main = readDaLei(shipped);
    ASSERT_EQ(main.status, ReadStatus::Ok);
    EXPECT_EQ(main.lines.size(), 22);
    qsizetype total = 0;
    for (const QString& m : main.lines) {
        const QStringList second = readErJi(shipped, classLetter(m)).lines;
        EXPECT_FALSE(second.isEmpty()) << m.toStdString();
        total += second.size();
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
