// The nine reports against reviewed reference files (their PDF's text by pdftotext and where
// each section stood), the exports read back, bad targets and the preview, on small fixed
// sets of what the generators leave in the print tables; grouped ones through SHAPE.
//
// ORVANE_UPDATE_GOLDEN=1 rewrites the references in the source tree (review the diff).

#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/form.h"
#include "platform/report.h"
#include "platform/vb.h"
#include "query/reports.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using Rows = std::vector<std::vector<QVariant>>;

struct Case {
    const char* report;
    QString title;
    bool landscape;
    QStringList columns;
    Rows rows;
    // Grouped only: the print table (the report's name) is filled and shaped by this.
    QString shapeBy = {};
};

// Rows written as "a|b|c", typed by `types` (s text, i integer, n double); an empty
// place is NULL.
Case make(const char* report, const QString& title, bool landscape, const char* columns,
          const char* types, std::initializer_list<const char*> lines, const char* shapeBy = "") {
    Case c{report,    title,
           landscape, QString::fromLatin1(columns).split(u','),
           {},        QString::fromLatin1(shapeBy)};
    for (const char* line : lines) {
        std::vector<QVariant> row;
        const QStringList cells = QString::fromUtf8(line).split(u'|');
        for (qsizetype k = 0; k < cells.size(); ++k) {
            const QString& v = cells[k];
            row.push_back(v.isEmpty()       ? QVariant()
                          : types[k] == 's' ? QVariant(v)
                          : types[k] == 'i' ? QVariant(v.toInt())
                                            : QVariant(v.toDouble()));
        }
        c.rows.push_back(std::move(row));
    }
    return c;
}

// A case is shown by its report's name (its bytes would change the test names each run).
void PrintTo(const Case& c, std::ostream* os) {
    *os << c.report;
}

std::vector<Case> cases() {
    const QString longTitle = QStringLiteral("计算机程序设计艺术 第一卷 基本算法 第三版 中文版 "
                                             "影印本 附习题解答与索引");
    // A title longer than the two lines of its cell: the tail is cut.
    std::vector<Case> out{make(
        "printCG",
        QStringLiteral("图书采购定单（17种）") +
            QStringLiteral("一二三四五六七八九十").repeated(9) + QStringLiteral("看不见的尾巴"),
        true, "bookname,publisher,pubdate,price,zdcode,bookcount,jine", "", {})};
    const QStringList names =
        QStringLiteral("红楼梦 三国演义 水浒传 西游记 儒林外史 聊斋志异 老残游记 "
                       "镜花缘 官场现形记 儿女英雄传 封神演义 东周列国志 说岳全传 "
                       "隋唐演义 杨家将演义 七侠五义 海上花列传")
            .split(u' ');
    for (int k = 0; k < names.size(); ++k) {
        const double price = 10.5 + k * 1.25;
        out.back().rows.push_back({names[k], k % 2 ? "人民文学出版社" : "中华书局", "2003-01",
                                   price, QStringLiteral("1-%1").arg(100 + k), 1 + k % 3,
                                   price * (1 + k % 3)});
    }
    out.back().rows.push_back({"合  计", {}, {}, {}, {}, 34, 682.5});
    out.push_back(make(
        "printMX", {}, true, "ysdate,bookname,author,publisher,bookfrom,price,count", "sssssni",
        {"2003/05/06|数据库系统概论|萨师煊|高等教育出版社|新华书店|28.5|3",
         "2003/05/06||高德纳|国防工业出版社|外文书店|98|1",
         "2003/05/07|C++ Primer|Lippman|人民邮电出版社|新华书店|66.6|2", "合  计||||||6"}));
    out.back().rows[1][1] = longTitle;
    const char* classA = "A：马克思主义、列宁主义、毛泽东思想、邓小平理论》";
    out.push_back(make("printLeibie", {}, false, "type,batch,bookfrom,typecount,count,jine",
                       "sssiin",
                       {"|3|新华书店|2|5|120.5", "|4|外文书店|1|1|30", "|合计||3|6|150.5",
                        "I：文学》|3|新华书店|4|9|210.25", "I：文学》|合计||4|9|210.25"},
                       "type"));
    for (int k = 0; k < 3; ++k) out.back().rows[size_t(k)][0] = QString::fromUtf8(classA);
    const char* totals = "name,ydtype,ydcount,ydjine,ystype,yscount,ysjine";
    out.push_back(make("printJinECB", QStringLiteral("作品语种"), false, totals, "siiniin",
                       {"中文|12|30|845.5|10|25|700.25", "英文|3|3|360|||", "未定义|1|2|40|1|2|40",
                        "合计|16|35|1245.5|11|27|740.25"}));
    out.push_back(make("printJinEYFZ", QStringLiteral("图书来源"), true, totals, "siiniin",
                       {"新华书店|8|20|500|8|18|450", "外文书店|2|2|180.8|1|1|90.4",
                        "合计|10|22|680.8|9|19|540.4"}));
    // ydjine and ysjine hold the two percentages, truncated by integer division.
    out.push_back(make("printJinELV", QString(), false, totals, "siiiiii",
                       {"新华书店|8|20|87|7|18|90", "外文书店|2|2||||", "合计|10|22|70|7|18|81"}));
    out.push_back(make("printTotalJine", {}, false, "name,ydtype,ydcount,ydjine,ysjine,ystype",
                       "siinnn",
                       {"新华书店|8|18|450|300|66.6666666666667", "|1|1|90.4|90.4|100",
                        "合计|9|19|540.4|390.4|72.2427831236121"}));
    out.push_back(
        make("printYStotal", {}, false, "batch,bookfrom,typecount,counts,jine", "ssiin",
             {"第 3 批采购验收传票|新华书店|2|5|120.5", "第 3 批采购验收传票|外文书店|1|1|30",
              "第 4 批采购验收传票|新华书店|4|9|210.25"},
             "batch"));
    out.push_back(make("printYSmx", {}, true, "batch,bookname,author,publisher,price,counts",
                       "ssssni",
                       {"第 3 批书目采购明细表|数据库系统概论|萨师煊|高等教育出版社|28.5|3",
                        "第 3 批书目采购明细表||高德纳|国防工业出版社|98|1",
                        "第 4 批书目采购明细表|红楼梦|曹雪芹|人民文学出版社|45.8|2"},
                       "batch"));
    out.back().rows[1][1] = longTitle;
    return out;
}

vb::DataReport& reportByName(const QString& name) {
    vb::DataReport* all[] = {
        &vb::form<printCG>(),        &vb::form<printMX>(),      &vb::form<printLeibie>(),
        &vb::form<printJinECB>(),    &vb::form<printJinEYFZ>(), &vb::form<printJinELV>(),
        &vb::form<printTotalJine>(), &vb::form<printYStotal>(), &vb::form<printYSmx>()};
    for (vb::DataReport* r : all)
        if (r->name() == name) return *r;
    return *all[0];
}

QString sqlLiteral(const QVariant& v) {
    if (v.isNull()) return u"NULL"_s;
    if (v.typeId() == QMetaType::QString)
        return u'\'' + v.toString().replace(u'\'', u"''"_s) + u'\'';
    return vb::CStr(v);
}

QString run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    if (!p.waitForFinished(60000) || p.exitCode() != 0) return u"<%1 failed>"_s.arg(program);
    return QString::fromUtf8(p.readAllStandardOutput());
}

// Qt names each embedded glyph by the lowest code point that maps to it, and the Noto CJK
// faces share glyphs between the Kangxi radicals and the ideographs (U+2F00 "⼀" and
// U+4E00 "一"): the text read back from the PDF gets the ideographs again.
// The radicals supplement has no decompositions: those of simplified forms are paired here.
QString ideographs(QString text) {
    static const QString supplement =
        QStringLiteral("⺠民⻚页⻓长⻔门⻢马⻅见⻋车⻛风⻜飞⻝食⻥鱼⻦鸟⻩黄⻬齐⻮齿⻰龙⻳龟⻆角⻁"
                       "虎⻄西⺟母⺣火⺼肉⻌辶");
    for (QChar& ch : text) {
        if (ch.unicode() >= 0x2F00 && ch.unicode() <= 0x2FDF) {
            ch = QString(ch).normalized(QString::NormalizationForm_KC).at(0);
        } else if (ch.unicode() >= 0x2E80 && ch.unicode() <= 0x2EFF) {
            const qsizetype at = supplement.indexOf(ch);
            if (at >= 0 && at % 2 == 0) ch = supplement.at(at + 1);
        }
    }
    return text;
}

// A written CSV: the byte order mark, then its lines.
QStringList csvLines(const QString& path) {
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << path.toStdString();
    const QByteArray bytes = f.readAll();
    EXPECT_TRUE(bytes.startsWith("\xEF\xBB\xBF"));
    return QString::fromUtf8(bytes.mid(3)).split(u"\r\n"_s);
}

class Reports : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        vb::DataReport::setFontFamily(u"Noto Serif CJK SC"_s);
    }
    void TearDown() override {
        vb::FormRegistry::destroyAll();
        vb::DataReport::setFontFamily(QString());
        DbTest::TearDown();
    }

    // The recordset a caller would hand over: flat rows, or the print table filled and
    // read back through the shaped statement.
    std::shared_ptr<adodb::Recordset> source(const Case& c) {
        if (c.shapeBy.isEmpty()) return adodb::Recordset::fromRows(c.columns, c.rows);
        if (m_profile.isEmpty()) m_profile = makeDatabase();
        adodb::Connection conn;
        conn.Open(m_profile);
        conn.Execute(u"Delete From "_s + QString::fromLatin1(c.report));
        QStringList cols;
        for (const QString& col : c.columns) cols << u'[' + col + u']';
        for (const auto& row : c.rows) {
            QStringList vals;
            for (const QVariant& v : row) vals << sqlLiteral(v);
            conn.Execute(u"Insert Into %1 (%2) Values (%3)"_s.arg(
                QString::fromLatin1(c.report), cols.join(u','), vals.join(u',')));
        }
        adodb::Connection shaped;
        shaped.Open(QString(m_profile).replace(u"MSDASQL"_s, u"MSDataShape"_s));
        auto rs = std::make_shared<adodb::Recordset>();
        QStringList plain;
        for (const QString& col : c.columns) plain << (col == u"count" ? u"[count]"_s : col);
        rs->Open(u" SHAPE {select %1 from %2}  AS myPrint COMPUTE myPrint BY '%3'"_s.arg(
                     plain.join(u','), QString::fromLatin1(c.report), c.shapeBy),
                 shaped);
        return rs;
    }

    vb::DataReport& prepare(const Case& c) {
        vb::DataReport& r = reportByName(QString::fromLatin1(c.report));
        r.DataSource = source(c);
        r.Title = c.title;
        r.landscape = c.landscape;
        r.printDate = QDate(2003, 5, 8);
        r.Refresh();
        return r;
    }

    QString m_profile;
};

class Golden : public Reports, public ::testing::WithParamInterface<Case> {};

TEST_P(Golden, MatchesReviewedReference) {
    const Case& c = GetParam();
    vb::DataReport& r = prepare(c);
    const QString pdf = tempPath() + u"/report.pdf"_s;
    r.exportPdf(pdf);
    const QString actual = ideographs(run(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s})) +
                           u"---- bands ----\n"_s + r.bandDump();
    QFile file(QStringLiteral(ORVANE_GOLDEN_DIR "/") + QString::fromLatin1(c.report) + u".txt"_s);
    if (qEnvironmentVariableIsSet("ORVANE_UPDATE_GOLDEN")) {
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(actual.toUtf8());
        return;
    }
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    // As plain strings, so that a difference is shown as a diff of lines.
    EXPECT_EQ(actual.toStdString(), file.readAll().toStdString()) << c.report << " differs";
}

INSTANTIATE_TEST_SUITE_P(NineReports, Golden, ::testing::ValuesIn(cases()),
                         [](const ::testing::TestParamInfo<Case>& p) {
                             return std::string(p.param.report);
                         });

const Case& caseOf(const char* name) {
    static const std::vector<Case> all = cases();
    for (const Case& c : all)
        if (qstrcmp(c.report, name) == 0) return c;
    return all.front();
}

TEST_F(Reports, MissingFieldOrSourceIsNamedAndLongReportsOpenPageByPage) {
    auto& r = vb::form<printCG>();
    r.DataSource = adodb::Recordset::fromRows({"bookname", "price"}, {{u"x"_s, 1}});
    try {
        r.Refresh();
        FAIL() << "a field missing from the recordset was not reported";
    } catch (const vb::VbError& e) {
        EXPECT_TRUE(e.description().contains(u"publisher"_s)) << e.what();
    }
    r.DataSource.reset();
    EXPECT_THROW(r.Refresh(), vb::VbError);

    // 3,000 rows: the first page is ready before the rest is laid out.
    Rows rows(3000, {u"书"_s, u"社"_s, u"2003"_s, 1.5, u"z"_s, 1, 1.5});
    r.DataSource = adodb::Recordset::fromRows(caseOf("printCG").columns, rows);
    r.landscape = true;
    r.Refresh();
    r.Show();
    EXPECT_LE(r.pagesLaidOut(), 2);
    EXPECT_EQ(r.pageCount(), 200); // 15 rows a page in landscape
}

// Cells of the first sheet of an XLSX by reference ("B3"), numbers marked with '#'.
std::map<QString, QString> readXlsx(const QString& path) {
    const QString sheet = run(u"unzip"_s, {u"-p"_s, path, u"xl/worksheets/sheet1.xml"_s});
    const QString shared = run(u"unzip"_s, {u"-p"_s, path, u"xl/sharedStrings.xml"_s});
    QStringList strings;
    QXmlStreamReader ss(shared);
    while (!ss.atEnd())
        if (ss.readNext() == QXmlStreamReader::StartElement && ss.name() == u"t")
            strings << ss.readElementText();
    std::map<QString, QString> cells;
    QXmlStreamReader x(sheet);
    QString ref, type;
    while (!x.atEnd()) {
        if (x.readNext() != QXmlStreamReader::StartElement) continue;
        if (x.name() == u"c") {
            ref = x.attributes().value(u"r"_s).toString();
            type = x.attributes().value(u"t"_s).toString();
        } else if (x.name() == u"v") {
            const QString v = x.readElementText();
            cells[ref] = type == u"s" ? strings.value(v.toInt()) : u'#' + v;
        }
    }
    return cells;
}

TEST_F(Reports, SpreadsheetAndCsvHoldWhatTheReportShows) {
    // Grouped: each batch's heading, its column headings, its rows; numbers as numbers.
    auto& g = prepare(caseOf("printYStotal"));
    g.exportXlsx(tempPath() + u"/g.xlsx"_s);
    auto cells = readXlsx(tempPath() + u"/g.xlsx"_s);
    for (const QString& kv : u"A1=第 3 批采购验收传票|A3=新华书店|C3=#5|D3=#120.5|"
                             "A5=第 4 批采购验收传票|D7=#210.25"_s.split(u'|'))
        EXPECT_EQ(cells[kv.section(u'=', 0, 0)], kv.section(u'=', 1)) << kv.toStdString();
    g.exportCsv(tempPath() + u"/g.csv"_s);
    EXPECT_EQ(csvLines(tempPath() + u"/g.csv"_s).join(u'\n'),
              u"第 3 批采购验收传票\n采 购 来 源,种 类,册 数,金 额\n新华书店,2,5,120.5\n"
              "外文书店,1,1,30\n第 4 批采购验收传票\n采 购 来 源,种 类,册 数,金 额\n"
              "新华书店,4,9,210.25\n"_s);

    // Flat, with an empty accepted side and a value that needs quotes.
    Case c = caseOf("printJinECB");
    c.rows[1][0] = u"英文,\"原版\""_s;
    prepare(c).exportCsv(tempPath() + u"/t.csv"_s);
    const QStringList lines = csvLines(tempPath() + u"/t.csv"_s);
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ(lines[3], u"\"英文,\"\"原版\"\"\",3,3,360,,,"_s);
}

TEST_F(Reports, UnwritableTargetsSaySoAndLeaveNothing) {
    auto& r = prepare(caseOf("printJinELV"));
    const QString blocker = tempPath() + u"/a-file"_s;
    ASSERT_TRUE(QFile(blocker).open(QIODevice::WriteOnly)); // an empty plain file
    using Export = void (vb::DataReport::*)(const QString&);
    const std::pair<const char*, Export> exports[] = {{"/r.pdf", &vb::DataReport::exportPdf},
                                                      {"/r.xlsx", &vb::DataReport::exportXlsx},
                                                      {"/r.csv", &vb::DataReport::exportCsv}};
    for (auto [suffix, write] : exports) {
        const QString target = blocker + QString::fromLatin1(suffix); // under a plain file
        try {
            (r.*write)(target);
            ADD_FAILURE() << suffix << " was written under a file";
        } catch (const vb::VbError& e) {
            EXPECT_TRUE(e.description().contains(QDir::toNativeSeparators(target))) << e.what();
        }
    }
    // No temporary left over.
    EXPECT_EQ(QDir(tempPath()).entryList(QDir::Files | QDir::Hidden).size(), 1); // a-file only
}

TEST_F(Reports, PreviewTurnsPagesAndSaves) {
    auto& r = prepare(caseOf("printCG"));
    r.Show();
    auto* page = r.ctl<QSpinBox>(u"txtPage"_s);
    auto* pages = r.ctl<QLabel>(u"lblPages"_s);
    testsupport::settle();
    EXPECT_EQ(pages->text(), u"/ 2"_s);
    r.ctl<QPushButton>(u"cmdNext"_s)->click();
    EXPECT_EQ(page->value(), 2);
    const QString target = tempPath() + u"/saved"_s;
    auto old =
        vb::DataReport::setSaveFileChooser([&](const QString&, const QString&) { return target; });
    r.ctl<QPushButton>(u"cmdCsv"_s)->click();
    EXPECT_TRUE(QFileInfo::exists(target + u".csv"_s));
    // A target that cannot be written: one box with the reason, nothing left behind.
    vb::DataReport::setSaveFileChooser(
        [&](const QString&, const QString&) { return target + u".csv/x.pdf"_s; });
    r.ctl<QPushButton>(u"cmdPdf"_s)->click();
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    EXPECT_TRUE(testsupport::boxes().last().prompt.contains(u"x.pdf"_s));
    vb::DataReport::setSaveFileChooser(old);
}

} // namespace
