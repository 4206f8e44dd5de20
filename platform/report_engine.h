#pragma once
// Inside of DataReport: the data taken from the recordset, the pagination (done as far
// as asked, so the first page of a long report comes at once), the drawing of a page and
// the table the spreadsheet exports write.

#include "platform/report.h"

#include <QFont>
#include <QHash>
#include <QVariant>

#include <cstdint>
#include <map>
#include <vector>

namespace vb {

// A4 in twips.
constexpr int kA4Short = 11906;
constexpr int kA4Long = 16838;
constexpr int kReportMargin = 720;

struct WrappedLine {
    QString text;
    double width = 0;
};

// What the exports write: the report's own rows, not the raw table.
struct ReportSheet {
    enum Kind { Title, GroupTitle, Heading, Detail };
    std::vector<int> columnWidths; // twips, one per detail field in left order
    std::vector<Kind> kinds;
    std::vector<std::vector<QVariant>> rows;
};

class ReportEngine {
public:
    explicit ReportEngine(const ReportLayout& layout);

    // Takes the data; raises VbError when a field of the layout is not in the recordset.
    void setData(std::shared_ptr<adodb::Recordset> rs, const QString& title, const QDate& date,
                 const QString& reportName);
    void clear();
    bool hasData() const { return m_hasData; }
    void setLandscape(bool on);
    bool landscape() const { return m_landscape; }

    // Lays out until page `page` (zero-based) is complete; false when there is no such page.
    bool ensurePage(int page);
    // Lays out about `rows` more rows; true when the report is laid out to its end.
    bool layoutSome(long rows);
    bool done() const { return m_done; }
    int pagesLaidOut() const;
    int pageCount();

    // The sheet size in twips for the current orientation.
    int paperWidth() const { return m_landscape ? kA4Long : kA4Short; }
    int paperHeight() const { return m_landscape ? kA4Short : kA4Long; }
    void render(QPainter& p, int page, double dpi);
    QString bandDump();
    ReportSheet sheet() const;

    static std::vector<WrappedLine> wrap(const QString& text, const QFont& font, double width);

private:
    enum Sec : uint8_t { PH, GH, DT, GF, PF };
    struct Band {
        Sec sec;
        int group;
        long row;
        int y;
        int h;
    };
    struct Group {
        const adodb::Recordset* rs = nullptr;
        std::vector<long> rows;       // indices into rs
        std::vector<QVariant> gh, gf; // per control of the group header and footer
    };

    const ReportSection& section(Sec s) const;
    QFont font(const ReportControl& c) const;
    static int lineStep(const ReportControl& c);
    const std::vector<WrappedLine>& wrapped(const QString& text, const ReportControl& c) const;
    QString controlText(Sec s, size_t ci, int group, long row, int page) const;
    QVariant fieldValue(Sec s, size_t ci, int group, long row) const;
    int grow(Sec s, int group, long row) const;
    void newPage();
    bool step();
    double scale() const;
    int bodyHeight() const; // report twips
    void drawSection(QPainter& p, Sec s, int y, int h, int group, long row, int page) const;

    const ReportLayout& m_layout;
    bool m_hasData = false;
    bool m_landscape = false;
    std::shared_ptr<adodb::Recordset> m_rs;
    QString m_title;
    QString m_date;
    std::vector<Group> m_groups;
    std::vector<int> m_detailCol; // per detail control: column index (-1 for labels)
    mutable std::map<int, QFont> m_fonts;
    // Lines of texts already wrapped, by font and cell width: headings, page headers and the
    // many repeated values of a long report are laid out once, not on every page.
    mutable std::map<std::pair<int, int>, QHash<QString, std::vector<WrappedLine>>> m_wrapped;
    mutable size_t m_wrappedCount = 0;

    // Pagination state.
    std::vector<Band> m_bands;
    std::vector<size_t> m_pageStart;
    int m_g = 0;
    long m_r = -1; // -1: the group's header is next
    int m_y = 0;
    bool m_done = false;
};

} // namespace vb
