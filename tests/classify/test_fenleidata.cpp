// The shipped outline: the file a librarian reads class numbers off.

#include "classify/fenleireader.h"
#include "fenleitestfile.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringDecoder>

#include <gtest/gtest.h>

using namespace classify;

namespace {

const QString kShipped = QStringLiteral(ORVANE_FENLEI_QVX);

struct MainClass {
    char16_t letter;
    const char16_t* name;
};

// The 22 main classes of the Chinese Library Classification, 4th edition.
const MainClass kMainClasses[] = {
    {u'A', u"马克思主义、列宁主义、毛泽东思想、邓小平理论"},
    {u'B', u"哲学、宗教"},
    {u'C', u"社会科学总论"},
    {u'D', u"政治、法律"},
    {u'E', u"军事"},
    {u'F', u"经济"},
    {u'G', u"文化、科学、教育、体育"},
    {u'H', u"语言、文字"},
    {u'I', u"文学"},
    {u'J', u"艺术"},
    {u'K', u"历史、地理"},
    {u'N', u"自然科学总论"},
    {u'O', u"数理科学和化学"},
    {u'P', u"天文学、地球科学"},
    {u'Q', u"生物科学"},
    {u'R', u"医药、卫生"},
    {u'S', u"农业科学"},
    {u'T', u"工业技术"},
    {u'U', u"交通运输"},
    {u'V', u"航空、航天"},
    {u'X', u"环境科学、安全科学"},
    {u'Z', u"综合性图书"},
};

// "TP 自动化技术…" -> "TP"; "[C7] …" -> "C7"; "D33/37 …" -> "D33/37".
QString classNumber(const QString& line) {
    QString n = line.section(QLatin1Char(' '), 0, 0);
    if (n.startsWith(QLatin1Char('['))) n = n.mid(1, n.size() - 2);
    return n;
}

TEST(FenleiShipped, DecodesCleanlyAsGbkWithWindowsLineEnds) {
    QFile f(kShipped);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << kShipped.toStdString();
    const QByteArray bytes = f.readAll();
    QStringDecoder dec("GBK");
    ASSERT_TRUE(dec.isValid());
    const QString text = dec.decode(bytes);
    EXPECT_FALSE(dec.hasError());
    EXPECT_FALSE(text.contains(QChar::ReplacementCharacter));
    EXPECT_TRUE(bytes.endsWith("\r\n"));
    EXPECT_EQ(bytes.count("\n"), bytes.count("\r\n")) << "every line ends in CR LF";
    // Not UTF-8 by mistake: the header is there in its GBK bytes.
    EXPECT_TRUE(bytes.contains("[\xB4\xF3\xC0\xE0\xB1\xED]"));
}

TEST(FenleiShipped, TwentyTwoMainClassesInOrder) {
    const SectionRead r = readDaLei(kShipped);
    ASSERT_EQ(r.status, ReadStatus::Ok);
    ASSERT_EQ(r.lines.size(), std::size(kMainClasses));
    for (qsizetype i = 0; i < r.lines.size(); ++i) {
        const MainClass& m = kMainClasses[i];
        EXPECT_EQ(r.lines[i], QString(QChar(m.letter)) + u' ' + QString::fromUtf16(m.name));
        EXPECT_EQ(classLetter(r.lines[i]), QChar(m.letter));
    }
}

TEST(FenleiShipped, EveryMainClassHasItsSecondLevelClasses) {
    // A class number: the main-class letter, then digits with an optional "/" range
    // (E3/7, D33/37); T alone goes on with a second capital.
    const QRegularExpression number(QStringLiteral("^[A-Z](\\d+(/\\d+)?|[A-Z])$"));
    qsizetype total = 0;
    for (const MainClass& m : kMainClasses) {
        const QChar letter(m.letter);
        const SectionRead r = readErJi(kShipped, letter);
        ASSERT_EQ(r.status, ReadStatus::Ok);
        EXPECT_FALSE(r.lines.isEmpty()) << "class " << char(m.letter);
        total += r.lines.size();
        QString previous;
        for (const QString& line : r.lines) {
            const QString n = classNumber(line);
            EXPECT_TRUE(number.match(n).hasMatch()) << line.toStdString();
            EXPECT_EQ(n.front(), letter) << line.toStdString();
            EXPECT_EQ(n[1].isLetter(), letter == u'T') << line.toStdString();
            // Class numbers sort as strings (A4 < A49 < A5), so file order is ascending.
            EXPECT_LT(previous.toStdString(), n.toStdString());
            previous = n;
            const QString name = line.section(QLatin1Char(' '), 1);
            EXPECT_FALSE(name.trimmed().isEmpty()) << line.toStdString();
            EXPECT_FALSE(name.startsWith(QLatin1Char(' '))) << line.toStdString();
        }
    }
    // Nothing in the section is lost to a blank in front, a lower-case letter or a line
    // that ends it early: the letters' lines add up to the whole section.
    QFile f(kShipped);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QStringList lines = splitLines(f.readAll());
    const qsizetype start = lines.indexOf(erJiHeader());
    ASSERT_GE(start, 0);
    qsizetype end = start + 1;
    while (end < lines.size() && !endsSection(lines[end])) ++end;
    EXPECT_EQ(total, end - start - 1);
    EXPECT_EQ(end, lines.size() - 1) << "the section runs to its closing line at the end";
}

TEST(FenleiShipped, IndustrialClassesAndKnownNumbers) {
    QStringList t;
    for (const QString& line : readErJi(kShipped, u'T').lines) t << classNumber(line);
    EXPECT_EQ(t, (QStringList{"TB", "TD", "TE", "TF", "TG", "TH", "TJ", "TK", "TL", "TM", "TN",
                              "TP", "TQ", "TS", "TU", "TV"}));

    struct Known {
        char16_t letter;
        const char16_t* line;
    };
    const Known known[] = {
        {u'A', u"A49 邓小平著作"},
        {u'B', u"B84 心理学"},
        {u'C', u"[C7] 社会科学文献检索工具书"},
        {u'D', u"D9 法律"},
        {u'F', u"F8 财政、金融"},
        {u'G', u"G2 信息与知识传播"},
        {u'H', u"H1 汉语"},
        {u'I', u"I2 中国文学"},
        {u'K', u"K81 传记"},
        {u'O', u"O1 数学"},
        {u'P', u"P5 地质学"},
        {u'R', u"R2 中国医学"},
        {u'T', u"TP 自动化技术、计算机技术"},
        {u'U', u"[U8] 航空运输"},
        {u'Z', u"Z3 辞典"},
    };
    for (const Known& k : known) {
        const QString line = QString::fromUtf16(k.line);
        EXPECT_TRUE(readErJi(kShipped, QChar(k.letter)).lines.contains(line)) << line.toStdString();
    }
}

} // namespace
