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

namespace {

using reportdata::Case;

vb::DataReport& reportByName(const QString& name) {
    if (name == u"printCG") return vb::form<printCG>();
    if (name == u"printMX") return vb::form<printMX>();
    if (name == u"printLeibie") return vb::form<printLeibie>();
    if (name == u"printJinECB") return vb::form<printJinECB>();
    if (name == u"printJinEYFZ") return vb::form<printJinEYFZ>();
    if (name == u"printJinELV") return vb::form<printJinELV>();
    if (name == u"printTotalJine") return vb::form<printTotalJine>();
    if (name == u"printYStotal") return vb::form<printYStotal>();
    return vb::form<printYSmx>();
}

QString sqlLiteral(const QVariant& v) {
    if (v.isNull()) return QStringLiteral("NULL");
    if (v.typeId() == QMetaType::QString)
        return u'\'' + v.toString().replace(u'\'', QStringLiteral("''")) + u'\'';
    return vb::CStr(v);
}

QString run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    if (!p.waitForFinished(60000) || p.exitCode() != 0)
        return QStringLiteral("<%1 failed>").arg(program);
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

class Reports : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        vb::DataReport::setFontFamily(QStringLiteral("Noto Serif CJK SC"));
    }
    void TearDown() override {
        vb::FormRegistry::destroyAll();
        vb::DataReport::setFontFamily(QString());
        DbTest::TearDown();
    }

    // The recordset a caller would hand over: flat rows, or the print table filled and
    // read back through the shaped statement.
    std::shared_ptr<adodb::Recordset> source(const Case& c) {
        if (c.table.isEmpty())
            return std::shared_ptr<adodb::Recordset>(
                adodb::Recordset::fromRows(c.columns, c.rows).release());
        if (m_profile.isEmpty()) m_profile = makeDatabase();
        adodb::Connection conn;
        conn.Open(m_profile);
        conn.Execute(QStringLiteral("Delete From ") + c.table);
        QStringList cols;
        for (const QString& col : c.columns) cols << u'[' + col + u']';
        for (const auto& row : c.rows) {
            QStringList vals;
            for (const QVariant& v : row) vals << sqlLiteral(v);
            conn.Execute(QStringLiteral("Insert Into %1 (%2) Values (%3)")
                             .arg(c.table, cols.join(u','), vals.join(u',')));
        }
        adodb::Connection shaped;
        shaped.Open(
            QString(m_profile).replace(QStringLiteral("MSDASQL"), QStringLiteral("MSDataShape")));
        auto rs = std::make_shared<adodb::Recordset>();
        QStringList plain;
        for (const QString& col : c.columns)
            plain << (col == u"count" ? QStringLiteral("[count]") : col);
        rs->Open(QStringLiteral(" SHAPE {select %1 from %2}  AS myPrint COMPUTE myPrint BY '%3'")
                     .arg(plain.join(u','), c.table, c.shapeBy),
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
    const QString pdf = tempPath() + QStringLiteral("/report.pdf");
    r.exportPdf(pdf);
    if (const QByteArray keep = qgetenv("ORVANE_REPORT_OUT"); !keep.isEmpty()) {
        const QString to = QString::fromLocal8Bit(keep) + u'/' + QString::fromLatin1(c.report) +
                           QStringLiteral(".pdf");
        QFile::remove(to);
        QFile::copy(pdf, to);
    }
    const QString actual = ideographs(run(QStringLiteral("pdftotext"),
                                          {QStringLiteral("-layout"), pdf, QStringLiteral("-")})) +
                           QStringLiteral("---- bands ----\n") + r.bandDump();
    const QString golden = QStringLiteral(ORVANE_GOLDEN_DIR "/") + QString::fromLatin1(c.report) +
                           QStringLiteral(".txt");
    if (qEnvironmentVariableIsSet("ORVANE_UPDATE_GOLDEN")) {
        QFile out(golden);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(actual.toUtf8());
        return;
    }
    QFile in(golden);
    ASSERT_TRUE(in.open(QIODevice::ReadOnly)) << golden.toStdString();
    const QString expected = QString::fromUtf8(in.readAll());
    const QStringList a = actual.split(u'\n'), e = expected.split(u'\n');
    for (qsizetype k = 0; k < std::max(a.size(), e.size()); ++k) {
        const QString al = k < a.size() ? a[k] : QStringLiteral("<end>");
        const QString el = k < e.size() ? e[k] : QStringLiteral("<end>");
        ASSERT_EQ(al, el) << c.report << " differs from its reference at line " << k + 1;
    }
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
    std::swap(c.rows[1], c.rows[2]);
    auto& r = vb::form<printYStotal>();
    r.DataSource =
        std::shared_ptr<adodb::Recordset>(adodb::Recordset::fromRows(c.columns, c.rows).release());
    r.printDate = QDate(2003, 5, 8);
    r.Refresh();
    const QString csv = tempPath() + QStringLiteral("/flat.csv");
    r.exportCsv(csv);
    QFile f(csv);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(f.readAll().mid(3)).split(QStringLiteral("\r\n"));
    ASSERT_GE(lines.size(), 8);
    EXPECT_EQ(lines[0], QStringLiteral("第 3 批采购验收传票"));
    EXPECT_EQ(lines[2], QStringLiteral("新华书店,2,5,120.5"));
    EXPECT_EQ(lines[3], QStringLiteral("外文书店,1,1,30"));
    EXPECT_EQ(lines[4], QStringLiteral("第 4 批采购验收传票"));
}

TEST_F(Reports, MissingFieldOrSourceIsNamedAndLongReportsOpenPageByPage) {
    auto& r = vb::form<printCG>();
    r.DataSource = std::shared_ptr<adodb::Recordset>(
        adodb::Recordset::fromRows({"bookname", "price"}, {{QStringLiteral("x"), 1}}).release());
    try {
        r.Refresh();
        FAIL() << "a field missing from the recordset was not reported";
    } catch (const vb::VbError& e) {
        EXPECT_TRUE(e.description().contains(QStringLiteral("publisher"))) << e.what();
    }
    r.DataSource.reset();
    EXPECT_THROW(r.Refresh(), vb::VbError);

    // 3,000 rows: the first page is ready before the rest is laid out.
    reportdata::Rows rows;
    for (int k = 0; k < 3000; ++k)
        rows.push_back({QStringLiteral("书%1").arg(k), QStringLiteral("社"), QStringLiteral("2003"),
                        1.5, QStringLiteral("z"), 1, 1.5});
    r.DataSource = std::shared_ptr<adodb::Recordset>(
        adodb::Recordset::fromRows(caseOf("printCG").columns, rows).release());
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
    const QString sheet =
        run(QStringLiteral("unzip"),
            {QStringLiteral("-p"), path, QStringLiteral("xl/worksheets/sheet1.xml")});
    const QString shared = run(QStringLiteral("unzip"), {QStringLiteral("-p"), path,
                                                         QStringLiteral("xl/sharedStrings.xml")});
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
            ref = x.attributes().value(QStringLiteral("r")).toString();
            type = x.attributes().value(QStringLiteral("t")).toString();
        } else if (x.name() == u"v") {
            const QString v = x.readElementText();
            cells[ref] = type == u"s" ? strings.value(v.toInt()) : u'#' + v;
        }
    }
    return cells;
}

TEST_F(Reports, SpreadsheetAndCsvHoldWhatTheReportShows) {
    // Grouped: each batch's heading, its column headings, its rows.
    auto& g = prepare(caseOf("printYStotal"));
    const QString gx = tempPath() + QStringLiteral("/g.xlsx");
    g.exportXlsx(gx);
    auto cells = readXlsx(gx);
    EXPECT_EQ(cells[QStringLiteral("A1")], QStringLiteral("第 3 批采购验收传票"));
    EXPECT_EQ(cells[QStringLiteral("A2")], QStringLiteral("采 购 来 源"));
    EXPECT_EQ(cells[QStringLiteral("D2")], QStringLiteral("金 额"));
    EXPECT_EQ(cells[QStringLiteral("A3")], QStringLiteral("新华书店"));
    EXPECT_EQ(cells[QStringLiteral("C3")], QStringLiteral("#5"));
    EXPECT_EQ(cells[QStringLiteral("D3")], QStringLiteral("#120.5"));
    EXPECT_EQ(cells[QStringLiteral("A5")], QStringLiteral("第 4 批采购验收传票"));
    EXPECT_EQ(cells[QStringLiteral("D7")], QStringLiteral("#210.25"));

    const QString gc = tempPath() + QStringLiteral("/g.csv");
    g.exportCsv(gc);
    QFile f(gc);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray bytes = f.readAll();
    EXPECT_TRUE(bytes.startsWith("\xEF\xBB\xBF"));
    EXPECT_EQ(QString::fromUtf8(bytes.mid(3)),
              QStringLiteral("第 3 批采购验收传票\r\n采 购 来 源,种 类,册 数,金 额\r\n"
                             "新华书店,2,5,120.5\r\n外文书店,1,1,30\r\n"
                             "第 4 批采购验收传票\r\n采 购 来 源,种 类,册 数,金 额\r\n"
                             "新华书店,4,9,210.25\r\n"));

    // Flat, with the statistic's title as the first heading, the fixed heading above, an
    // empty accepted side and a value that needs quotes.
    Case c = caseOf("printJinECB");
    c.rows[1][0] = QStringLiteral("英文,\"原版\"");
    auto& t = reportByName(QStringLiteral("printJinECB"));
    t.DataSource = source(c);
    t.Title = c.title;
    const QString tx = tempPath() + QStringLiteral("/t.xlsx");
    t.exportXlsx(tx);
    cells = readXlsx(tx);
    EXPECT_EQ(cells[QStringLiteral("A1")], QStringLiteral("图书采购资金统计管理"));
    EXPECT_EQ(cells[QStringLiteral("A2")], QStringLiteral("作品语种"));
    EXPECT_EQ(cells[QStringLiteral("G2")], QStringLiteral("验收金额"));
    EXPECT_EQ(cells[QStringLiteral("D3")], QStringLiteral("#845.5"));
    EXPECT_EQ(cells.count(QStringLiteral("E4")), 0u);
    EXPECT_EQ(cells[QStringLiteral("A6")], QStringLiteral("合计"));
    const QString tc = tempPath() + QStringLiteral("/t.csv");
    t.exportCsv(tc);
    QFile tf(tc);
    ASSERT_TRUE(tf.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(tf.readAll().mid(3)).split(QStringLiteral("\r\n"));
    EXPECT_EQ(lines[1],
              QStringLiteral("作品语种,预定种数,预定册数,预定金额,验收种数,验收册数,验收金额"));
    EXPECT_EQ(lines[3], QStringLiteral("\"英文,\"\"原版\"\"\",3,3,360,,,"));
}

TEST_F(Reports, UnwritableTargetsSaySoAndLeaveNothing) {
    auto& r = prepare(caseOf("printJinELV"));
    const QString blocker = tempPath() + QStringLiteral("/a-file");
    QFile b(blocker);
    ASSERT_TRUE(b.open(QIODevice::WriteOnly));
    b.write("x");
    b.close();
    for (const char* suffix : {"/r.pdf", "/r.xlsx", "/r.csv"}) {
        const QString target = blocker + QString::fromLatin1(suffix); // under a plain file
        try {
            if (QString::fromLatin1(suffix).endsWith(u"pdf"))
                r.exportPdf(target);
            else if (QString::fromLatin1(suffix).endsWith(u"xlsx"))
                r.exportXlsx(target);
            else
                r.exportCsv(target);
            ADD_FAILURE() << suffix << " was written under a file";
        } catch (const vb::VbError& e) {
            EXPECT_TRUE(e.description().contains(QDir::toNativeSeparators(target))) << e.what();
        }
    }
    // A target that is a folder: refused, the folder untouched, no temporary left over.
    const QString folder = tempPath() + QStringLiteral("/out.csv");
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_THROW(r.exportCsv(folder), vb::VbError);
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_EQ(QDir(tempPath()).entryList(QDir::Files | QDir::Hidden).size(), 1); // a-file only
}

// ---- the preview -----------------------------------------------------------------------

TEST_F(Reports, PreviewTurnsPagesChangesPaperAndSaves) {
    auto& r = prepare(caseOf("printCG"));
    r.Show();
    auto* page = r.ctl<QSpinBox>(QStringLiteral("txtPage"));
    auto* pages = r.ctl<QLabel>(QStringLiteral("lblPages"));
    auto* orient = r.ctl<QComboBox>(QStringLiteral("cboOrient"));
    EXPECT_EQ(r.caption(), QStringLiteral("采购打印报表"));
    EXPECT_EQ(orient->currentText(), QStringLiteral("横向"));
    testsupport::settle();
    EXPECT_EQ(pages->text(), QStringLiteral("/ 2"));
    r.ctl<QPushButton>(QStringLiteral("cmdNext"))->click();
    EXPECT_EQ(page->value(), 2);
    EXPECT_FALSE(r.ctl<QPushButton>(QStringLiteral("cmdNext"))->isEnabled());
    // Portrait takes the 18 rows on one page, the report drawn smaller.
    orient->setCurrentIndex(0);
    testsupport::settle();
    EXPECT_FALSE(r.landscape);
    EXPECT_EQ(page->value(), 1);
    EXPECT_EQ(pages->text(), QStringLiteral("/ 1"));

    QString asked;
    const QString target = tempPath() + QStringLiteral("/saved");
    auto old = vb::DataReport::setSaveFileChooser([&](const QString& caption, const QString&) {
        asked = caption;
        return target;
    });
    r.ctl<QPushButton>(QStringLiteral("cmdCsv"))->click();
    EXPECT_EQ(asked, QStringLiteral("导出到 CSV"));
    EXPECT_TRUE(QFileInfo::exists(target + QStringLiteral(".csv")));
    // A target that cannot be written: one box with the reason, nothing left behind.
    vb::DataReport::setSaveFileChooser(
        [&](const QString&, const QString&) { return target + QStringLiteral(".csv/x.pdf"); });
    r.ctl<QPushButton>(QStringLiteral("cmdPdf"))->click();
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    EXPECT_EQ(testsupport::boxes().calls()[0].title, QStringLiteral("操作提示"));
    EXPECT_EQ(testsupport::boxes().calls()[0].flags, 16);
    EXPECT_TRUE(testsupport::boxes().calls()[0].prompt.contains(QStringLiteral("x.pdf")));
    vb::DataReport::setSaveFileChooser(old);
    r.ctl<QPushButton>(QStringLiteral("cmdClose"))->click();
    EXPECT_FALSE(r.isLoaded());
}

// ---- totalPrintfrm ---------------------------------------------------------------------

TEST_F(Reports, TotalPrintDialogOpensTheBuilderForTheChosenStatistic) {
    gConnStr = makeDatabase();
    auto& t = vb::form<totalPrintfrm>();
    t.Show();
    EXPECT_EQ(t.caption(), QStringLiteral("采购金额统计"));
    EXPECT_EQ(t.Command1(0)->text(), QStringLiteral("&A  确定"));
    EXPECT_EQ(t.Command1(1)->text(), QStringLiteral("&X  取消"));
    const char16_t* const captions[] = {u"按“学科类别”", u"按“图书来源”", u"按“征 订 号”",
                                        u"按“采购方式”", u"按“作品语种”", u"验收书率统计",
                                        u"付款情况统计"};
    for (int k = 0; k < 7; ++k) {
        EXPECT_EQ(t.Option1(k)->text(), QString::fromUtf16(captions[k]));
        EXPECT_FALSE(t.Option1(k)->isChecked());
    }
    // Nothing chosen: nothing happens.
    t.Command1(0)->click();
    EXPECT_FALSE(vb::FormRegistry::exists<Findfrm>() && vb::form<Findfrm>().isLoaded());

    const std::pair<int, const char*> picks[] = {
        {0, "tclasscode"}, {1, "tbookfrom"}, {2, "tzdcode"}, {3, "tcgff"},
        {4, "tlagclass"},  {5, "tyscount"},  {6, "tjine"}};
    for (const auto& [index, word] : picks) {
        t.Option1(index)->setChecked(true);
        QString seenPrint, seenDo;
        bool modal = false;
        QTimer::singleShot(0, [&] {
            auto& f = vb::form<Findfrm>();
            seenPrint = f.printType;
            seenDo = f.doType;
            modal = f.isModalShowing();
            f.Unload();
        });
        t.Command1(0)->click();
        EXPECT_TRUE(modal) << word;
        EXPECT_EQ(seenPrint, QString::fromLatin1(word));
        EXPECT_EQ(seenDo, QStringLiteral("totaltotal"));
        EXPECT_TRUE(t.isVisible()); // stays open behind the builder
    }
    t.Command1(1)->click();
    EXPECT_FALSE(t.isLoaded());
}

} // namespace
