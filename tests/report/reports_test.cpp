// The nine reports against reviewed reference files (their PDF's text by pdftotext and
// where each section stood), the spreadsheet and CSV exports read back, bad targets, the
// preview window, and the amount statistics' dialog.
//
// ORVANE_UPDATE_GOLDEN=1 rewrites the references in the source tree (review the diff);
// ORVANE_REPORT_OUT=<dir> keeps each report's PDF there (for the pictures in docs/).

#include "data/globals.h"
#include "platform/errors.h"
#include "platform/form.h"
#include "platform/vb.h"
#include "query/Findfrm.h"
#include "query/reports.h"
#include "query/totalPrintfrm.h"
#include "tests/report/reportdata.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTimer>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <map>
#include <ostream>

using namespace Qt::StringLiterals;

namespace {

using reportdata::Case;

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
        if (c.table.isEmpty()) return adodb::Recordset::fromRows(c.columns, c.rows);
        if (m_profile.isEmpty()) m_profile = makeDatabase();
        adodb::Connection conn;
        conn.Open(m_profile);
        conn.Execute(u"Delete From "_s + c.table);
        QStringList cols;
        for (const QString& col : c.columns) cols << u'[' + col + u']';
        for (const auto& row : c.rows) {
            QStringList vals;
            for (const QVariant& v : row) vals << sqlLiteral(v);
            conn.Execute(u"Insert Into %1 (%2) Values (%3)"_s.arg(c.table, cols.join(u','),
                                                                  vals.join(u',')));
        }
        adodb::Connection shaped;
        shaped.Open(QString(m_profile).replace(u"MSDASQL"_s, u"MSDataShape"_s));
        auto rs = std::make_shared<adodb::Recordset>();
        QStringList plain;
        for (const QString& col : c.columns) plain << (col == u"count" ? u"[count]"_s : col);
        rs->Open(u" SHAPE {select %1 from %2}  AS myPrint COMPUTE myPrint BY '%3'"_s.arg(
                     plain.join(u','), c.table, c.shapeBy),
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

// ---- the references --------------------------------------------------------------------

class Golden : public Reports, public ::testing::WithParamInterface<Case> {};

TEST_P(Golden, MatchesReviewedReference) {
    const Case& c = GetParam();
    vb::DataReport& r = prepare(c);
    const QString pdf = tempPath() + u"/report.pdf"_s;
    r.exportPdf(pdf);
    if (const QByteArray keep = qgetenv("ORVANE_REPORT_OUT"); !keep.isEmpty()) {
        const QString to =
            QString::fromLocal8Bit(keep) + u'/' + QString::fromLatin1(c.report) + u".pdf"_s;
        QFile::remove(to);
        QFile::copy(pdf, to);
    }
    const QString actual = ideographs(run(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s})) +
                           u"---- bands ----\n"_s + r.bandDump();
    const QString golden =
        QStringLiteral(ORVANE_GOLDEN_DIR "/") + QString::fromLatin1(c.report) + u".txt"_s;
    if (qEnvironmentVariableIsSet("ORVANE_UPDATE_GOLDEN")) {
        QFile out(golden);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(actual.toUtf8());
        return;
    }
    QFile in(golden);
    ASSERT_TRUE(in.open(QIODevice::ReadOnly)) << golden.toStdString();
    const QString expected = QString::fromUtf8(in.readAll());
    // As plain strings, so that a difference is shown as a diff of lines.
    EXPECT_EQ(actual.toStdString(), expected.toStdString()) << c.report << " differs";
}

INSTANTIATE_TEST_SUITE_P(NineReports, Golden, ::testing::ValuesIn(reportdata::cases()),
                         [](const ::testing::TestParamInfo<Case>& p) {
                             return std::string(p.param.report);
                         });

// ---- engine behaviour the references do not show ---------------------------------------

const Case& caseOf(const char* name) {
    static const std::vector<Case> all = reportdata::cases();
    for (const Case& c : all)
        if (qstrcmp(c.report, name) == 0) return c;
    return all.front();
}

TEST_F(Reports, FlatRowsOfAGroupedReportAreGroupedInTableOrder) {
    // Interleaved batches: the second 3 joins the first group, as shaping does.
    Case c = caseOf("printYStotal");
    c.table.clear(); // the rows as they are, unshaped
    std::swap(c.rows[1], c.rows[2]);
    auto& r = prepare(c);
    const QString csv = tempPath() + u"/flat.csv"_s;
    r.exportCsv(csv);
    const QStringList lines = csvLines(csv);
    ASSERT_GE(lines.size(), 8);
    EXPECT_EQ((QStringList{lines[0], lines[2], lines[3], lines[4]}),
              (QStringList{u"第 3 批采购验收传票"_s, u"新华书店,2,5,120.5"_s, u"外文书店,1,1,30"_s,
                           u"第 4 批采购验收传票"_s}));
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
    reportdata::Rows rows;
    for (int k = 0; k < 3000; ++k)
        rows.push_back({u"书%1"_s.arg(k), u"社"_s, u"2003"_s, 1.5, u"z"_s, 1, 1.5});
    r.DataSource = adodb::Recordset::fromRows(caseOf("printCG").columns, rows);
    r.landscape = true;
    r.Refresh();
    r.Show();
    EXPECT_LE(r.pagesLaidOut(), 2);
    EXPECT_EQ(r.pageCount(), 200); // 15 rows a page in landscape
    r.landscape = false;
    r.Refresh();
    EXPECT_EQ(r.pageCount(), 89); // 34 in portrait, where the report is drawn smaller
}

// ---- exports ---------------------------------------------------------------------------

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

// Each "ref=value" of spec, '|' between them, found in the cells.
void expectCells(std::map<QString, QString> cells, const QString& spec) {
    for (const QString& kv : spec.split(u'|'))
        EXPECT_EQ(cells[kv.section(u'=', 0, 0)], kv.section(u'=', 1)) << kv.toStdString();
}

TEST_F(Reports, SpreadsheetAndCsvHoldWhatTheReportShows) {
    // Grouped: each batch's heading, its column headings, its rows; numbers as numbers.
    auto& g = prepare(caseOf("printYStotal"));
    g.exportXlsx(tempPath() + u"/g.xlsx"_s);
    expectCells(readXlsx(tempPath() + u"/g.xlsx"_s),
                u"A1=第 3 批采购验收传票|A2=采 购 来 源|D2=金 额|A3=新华书店|C3=#5|D3=#120.5|"
                "A5=第 4 批采购验收传票|D7=#210.25"_s);
    g.exportCsv(tempPath() + u"/g.csv"_s);
    EXPECT_EQ(csvLines(tempPath() + u"/g.csv"_s).join(u'\n'),
              u"第 3 批采购验收传票\n采 购 来 源,种 类,册 数,金 额\n新华书店,2,5,120.5\n"
              "外文书店,1,1,30\n第 4 批采购验收传票\n采 购 来 源,种 类,册 数,金 额\n"
              "新华书店,4,9,210.25\n"_s);

    // Flat, with the statistic's title as the first heading, the fixed heading above, an
    // empty accepted side and a value that needs quotes.
    Case c = caseOf("printJinECB");
    c.rows[1][0] = u"英文,\"原版\""_s;
    auto& t = reportByName(u"printJinECB"_s);
    t.DataSource = source(c);
    t.Title = c.title;
    t.exportXlsx(tempPath() + u"/t.xlsx"_s);
    const auto cells = readXlsx(tempPath() + u"/t.xlsx"_s);
    expectCells(cells, u"A1=图书采购资金统计管理|A2=作品语种|G2=验收金额|D3=#845.5|A6=合计"_s);
    EXPECT_EQ(cells.count(u"E4"_s), 0u);
    t.exportCsv(tempPath() + u"/t.csv"_s);
    const QStringList lines = csvLines(tempPath() + u"/t.csv"_s);
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ(lines[1], u"作品语种,预定种数,预定册数,预定金额,验收种数,验收册数,验收金额"_s);
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
    // A target that is a folder: refused, the folder untouched, no temporary left over.
    const QString folder = tempPath() + u"/out.csv"_s;
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_THROW(r.exportCsv(folder), vb::VbError);
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_EQ(QDir(tempPath()).entryList(QDir::Files | QDir::Hidden).size(), 1); // a-file only
}

// ---- the preview -----------------------------------------------------------------------

TEST_F(Reports, PreviewTurnsPagesChangesPaperAndSaves) {
    auto& r = prepare(caseOf("printCG"));
    r.Show();
    auto* page = r.ctl<QSpinBox>(u"txtPage"_s);
    auto* pages = r.ctl<QLabel>(u"lblPages"_s);
    auto* orient = r.ctl<QComboBox>(u"cboOrient"_s);
    EXPECT_EQ(std::pair(r.caption(), orient->currentText()),
              std::pair(u"采购打印报表"_s, u"横向"_s));
    testsupport::settle();
    EXPECT_EQ(pages->text(), u"/ 2"_s);
    r.ctl<QPushButton>(u"cmdNext"_s)->click();
    EXPECT_EQ(page->value(), 2);
    EXPECT_FALSE(r.ctl<QPushButton>(u"cmdNext"_s)->isEnabled());
    // Portrait takes the 18 rows on one page, the report drawn smaller.
    orient->setCurrentIndex(0);
    testsupport::settle();
    EXPECT_FALSE(r.landscape);
    EXPECT_EQ(std::pair(page->value(), pages->text()), std::pair(1, u"/ 1"_s));
    QString asked;
    const QString target = tempPath() + u"/saved"_s;
    auto old = vb::DataReport::setSaveFileChooser([&](const QString& caption, const QString&) {
        asked = caption;
        return target;
    });
    r.ctl<QPushButton>(u"cmdCsv"_s)->click();
    EXPECT_EQ(asked, u"导出到 CSV"_s);
    EXPECT_TRUE(QFileInfo::exists(target + u".csv"_s));
    // A target that cannot be written: one box with the reason, nothing left behind.
    vb::DataReport::setSaveFileChooser(
        [&](const QString&, const QString&) { return target + u".csv/x.pdf"_s; });
    r.ctl<QPushButton>(u"cmdPdf"_s)->click();
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    const auto& box = testsupport::boxes().calls()[0];
    EXPECT_EQ(std::pair(box.title, box.flags), std::pair(u"操作提示"_s, 16));
    EXPECT_TRUE(box.prompt.contains(u"x.pdf"_s));
    vb::DataReport::setSaveFileChooser(old);
    r.ctl<QPushButton>(u"cmdClose"_s)->click();
    EXPECT_FALSE(r.isLoaded());
}

// ---- totalPrintfrm ---------------------------------------------------------------------

// Each choice opens the query builder modally for its statistic; with none, nothing
// happens; the dialog stays open behind the builder.
TEST_F(Reports, TotalPrintDialogOpensTheBuilderForTheChosenStatistic) {
    gConnStr = makeDatabase();
    auto& t = vb::form<totalPrintfrm>();
    t.Show();
    t.Command1(0)->click();
    EXPECT_FALSE(vb::FormRegistry::exists<Findfrm>() && vb::form<Findfrm>().isLoaded());
    const char* const words[] = {"tclasscode", "tbookfrom", "tzdcode", "tcgff",
                                 "tlagclass",  "tyscount",  "tjine"};
    for (int k = 0; k < 7; ++k) {
        t.Option1(k)->setChecked(true);
        QString seen;
        QTimer::singleShot(0, [&] {
            auto& f = vb::form<Findfrm>();
            seen = f.isModalShowing() ? f.printType + u'/' + f.doType : u"not modal"_s;
            f.Unload();
        });
        t.Command1(0)->click();
        EXPECT_EQ(seen, QString::fromLatin1(words[k]) + u"/totaltotal"_s);
        EXPECT_TRUE(t.isVisible());
    }
    t.Command1(1)->click();
    EXPECT_FALSE(t.isLoaded());
}

} // namespace
