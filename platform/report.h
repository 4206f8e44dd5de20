#pragma once
// The report engine's face to the forms, as the legacy DataReport had it: a report is one
// form-like object named as the report; the caller fills a print table, hands the
// recordset over and shows it.
//
//     auto rs = std::make_shared<adodb::Recordset>();
//     rs->Open(sql, conn);
//     auto& r = vb::form<printCG>();
//     r.DataSource = rs;          // flat, or shaped (grouped reports)
//     r.Title = u"图书采购定单（3种）"_s;
//     r.landscape = true;         // as the caller's paper message said
//     r.Refresh();
//     r.Show();                   // non-modal preview in the frame
//
// Headless output (tests, the command-line report tool, the preview's own buttons) goes
// through exportPdf / exportXlsx / exportCsv, which raise vb::VbError with a readable
// message when the target cannot be written and leave no half-written file behind.
//
// A report is data (ReportLayout below): sections with heights in twips, labels with the
// tokens "%i" (Title), "%D" (date of printing) and "%p" (page number), fields bound to
// columns. Pages are A4; they are laid out as they are asked for, so a report of thousands
// of pages opens at once.

#include "platform/adodb.h"
#include "platform/form.h"

#include <QDate>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

class QPainter;
class QPagedPaintDevice;

namespace vb {

enum class ReportAlign { Left, Centre, Right };

// What a control is to the report: the ruling lines go around headings and detail fields,
// and the exports leave the page-number controls out.
enum class ReportRole {
    Text,     // a label: a title, a fixed heading, "分类统计《"
    Heading,  // a column heading, ruled
    Field,    // bound to a column; ruled in the detail section
    PageInfo, // "%D", "%p" and the "页码：" before it
};

struct ReportControl {
    ReportRole role = ReportRole::Text;
    QString text;                                 // the label's text, or the column of a field
    int left = 0, top = 0, width = 0, height = 0; // twips
    ReportAlign align = ReportAlign::Left;
    int fontTwips = 180; // 9 pt
    bool bold = false;
    int lines = 1; // lines of text the cell holds; more are cut, unless it grows
    bool canGrow = false;
};

struct ReportSection {
    int height = 0; // a section of height 0 takes no room
    std::vector<ReportControl> controls;
};

struct ReportLayout {
    QString caption;
    int width = 0;   // twips
    QString groupBy; // empty: no group
    ReportSection pageHeader, groupHeader, detail, groupFooter, pageFooter;
};

class ReportEngine;
class PreviewPane;

class DataReport : public Form {
    Q_OBJECT
public:
    explicit DataReport(const QString& name);
    DataReport(const QString& name, ReportLayout layout);
    ~DataReport() override;

    // What the report shows: a flat recordset, or a shaped one whose parent rows are the
    // groups and whose child recordsets ("myPrint") are the detail rows.
    std::shared_ptr<adodb::Recordset> DataSource;
    // Printed wherever a label holds "%i".
    QString Title;
    // Page orientation the preview and the exports start with.
    bool landscape = false;
    // The date "%D" prints; a null date is the day of printing.
    QDate printDate;

    // Lays the pages out again from DataSource and Title.
    void Refresh();
    int pageCount();

    void exportPdf(const QString& path);
    void exportXlsx(const QString& path);
    void exportCsv(const QString& path);

    const ReportLayout& layout() const { return m_layout; }
    // Where each section of each page stands, one line per band ("page 1", then
    // "  <section> y=<twips> h=<twips> [row]"): the layout without the ink.
    QString bandDump();
    // Draws one page (zero-based) in device units of `dpi`, the whole A4 sheet.
    void renderPage(QPainter& p, int page, double dpi);
    // Pages laid out so far, without laying out the rest.
    int pagesLaidOut() const;
    // Sends every page to a printer or PDF writer; false when it could not start.
    bool printTo(QPagedPaintDevice& device, double dpi);

    // The family reports are drawn in: 宋体 where installed, else a Noto CJK face, so that
    // the metrics are the same from one machine to the next. Tests pin it.
    static QString fontFamily();
    static void setFontFamily(const QString& family);

    // Where the preview's save buttons ask for a file name (tests replace it); returns ""
    // when the user cancels.
    using SaveFileChooser = std::function<QString(const QString& caption, const QString& filter)>;
    static SaveFileChooser setSaveFileChooser(SaveFileChooser chooser);

protected:
    void build(QWidget* w) override;
    void onUnload() override;

private:
    friend class PreviewPane;
    ReportEngine& engine();
    void saveAs(int kind);
    void printPreview();

    ReportLayout m_layout;
    std::unique_ptr<ReportEngine> m_engine;
    bool m_refreshed = false;
    PreviewPane* m_pane = nullptr;
};

} // namespace vb
