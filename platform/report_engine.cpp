#include "platform/report_engine.h"

#include "platform/errors.h"
#include "platform/vb.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace vb {

namespace {

// Inner margins of a cell's text.
constexpr int kHPad = 45;
// Errors the engine raises: a missing field is ADO's "item not found".
constexpr int kErrItemNotFound = 3265;

bool isGroupSection(int s) {
    return s == 1 || s == 3;
}

QString sectionName(int s) {
    static const char* const names[] = {"pageHeader", "groupHeader", "detail", "groupFooter",
                                        "pageFooter"};
    return QString::fromLatin1(names[s]);
}

} // namespace

ReportEngine::ReportEngine(const ReportLayout& layout) : m_layout(layout) {}

const ReportSection& ReportEngine::section(Sec s) const {
    switch (s) {
    case PH:
        return m_layout.pageHeader;
    case GH:
        return m_layout.groupHeader;
    case DT:
        return m_layout.detail;
    case GF:
        return m_layout.groupFooter;
    case PF:
        break;
    }
    return m_layout.pageFooter;
}

QFont ReportEngine::font(const ReportControl& c) const {
    const int key = c.fontTwips * 2 + (c.bold ? 1 : 0);
    auto it = m_fonts.find(key);
    if (it != m_fonts.end()) return it->second;
    QFont f(DataReport::fontFamily());
    f.setPixelSize(c.fontTwips); // drawn on a painter that counts in twips
    f.setBold(c.bold);
    f.setHintingPreference(QFont::PreferNoHinting);
    f.setKerning(false);
    return m_fonts.emplace(key, f).first->second;
}

int ReportEngine::lineStep(const ReportControl& c) {
    return static_cast<int>(std::lround(c.fontTwips * 1.3));
}

std::vector<WrappedLine> ReportEngine::wrap(const QString& text, const QFont& f, double width) {
    std::vector<WrappedLine> out;
    QString t = text;
    t.remove(u'\r');
    t.replace(u'\n', QChar::LineSeparator);
    if (t.isEmpty()) return out;
    QTextLayout tl(t, f);
    QTextOption opt;
    opt.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    opt.setUseDesignMetrics(true);
    tl.setTextOption(opt);
    tl.beginLayout();
    for (;;) {
        QTextLine line = tl.createLine();
        if (!line.isValid()) break;
        line.setLineWidth(std::max(1.0, width));
        QString s = t.mid(line.textStart(), line.textLength());
        while (!s.isEmpty() && (s.back().isSpace() || s.back() == QChar::LineSeparator)) s.chop(1);
        out.push_back({s, line.naturalTextWidth()});
    }
    tl.endLayout();
    return out;
}

const std::vector<WrappedLine>& ReportEngine::wrapped(const QString& text,
                                                      const ReportControl& c) const {
    // Texts seen once (titles, order codes) would grow the cache without end: past this
    // many it starts afresh, which keeps a report of any length in bounded memory.
    constexpr size_t kMaxWrapped = 8192;
    const int width = c.width - 2 * kHPad;
    auto& byText = m_wrapped[{c.fontTwips * 2 + (c.bold ? 1 : 0), width}];
    auto it = byText.constFind(text);
    if (it != byText.constEnd()) return *it;
    if (m_wrappedCount >= kMaxWrapped) {
        for (auto& [key, texts] : m_wrapped) texts.clear();
        m_wrappedCount = 0;
    }
    ++m_wrappedCount;
    return *byText.insert(text, wrap(text, font(c), width));
}

// ---- data ------------------------------------------------------------------------------

void ReportEngine::clear() {
    m_hasData = false;
    m_rs.reset();
    m_groups.clear();
    m_detailCol.clear();
    m_bands.clear();
    m_pageStart.clear();
    m_done = false;
    m_wrapped.clear();
    m_wrappedCount = 0;
}

void ReportEngine::setData(std::shared_ptr<adodb::Recordset> rs, const QString& title,
                           const QDate& date, const QString& reportName) {
    clear();
    if (!rs || !rs->isOpen())
        throw VbError(kErrItemNotFound,
                      QStringLiteral("报表 %1 没有数据源：请先给 DataSource 一个打开的记录集。")
                          .arg(reportName));
    auto missing = [&](const QString& col) {
        return VbError(kErrItemNotFound,
                       QStringLiteral("报表 %1 的字段 %2 不在数据源中。").arg(reportName, col));
    };
    m_title = title;
    m_date = date.toString(QStringLiteral("yyyy-MM-dd"));

    const bool grouped = !m_layout.groupBy.isEmpty();
    const bool shaped = rs->hasChildren();
    // The rows of each group: the children of a shaped recordset, or the flat rows taken
    // in table order by the group column, which is what shaping would give.
    struct Parent {
        std::vector<QVariant> row;
        QStringList names;
    };
    std::vector<Parent> parents;
    if (shaped) {
        const QString chapter = rs->fieldName(0);
        // The recordset gives the child of its current row only: walk it once, as the
        // report designer did, and leave it on its first row.
        rs->MoveFirst();
        for (long i = 0; i < rs->rowCount(); ++i, rs->MoveNext()) {
            Group g;
            g.rs = rs->child(chapter);
            g.rows.resize(static_cast<size_t>(g.rs->rowCount()));
            for (long k = 0; k < g.rs->rowCount(); ++k) g.rows[static_cast<size_t>(k)] = k;
            m_groups.push_back(std::move(g));
            Parent p{{}, rs->fieldNames()};
            for (int k = 0; k < rs->fieldCount(); ++k) p.row.push_back(rs->value(i, k));
            parents.push_back(std::move(p));
        }
        rs->MoveFirst();
    } else if (grouped && rs->fieldIndex(m_layout.groupBy) >= 0) {
        const int by = rs->fieldIndex(m_layout.groupBy);
        std::vector<QVariant> keys;
        for (long i = 0; i < rs->rowCount(); ++i) {
            const QVariant key = rs->value(i, by);
            size_t g = 0;
            while (g < keys.size() && !(keys[g] == key && keys[g].isNull() == key.isNull())) ++g;
            if (g == keys.size()) {
                keys.push_back(key);
                m_groups.push_back(Group{rs.get(), {}, {}, {}});
                parents.push_back({});
            }
            m_groups[g].rows.push_back(i);
        }
    } else {
        Group g{rs.get(), {}, {}, {}};
        g.rows.resize(static_cast<size_t>(rs->rowCount()));
        for (long k = 0; k < rs->rowCount(); ++k) g.rows[static_cast<size_t>(k)] = k;
        m_groups.push_back(std::move(g));
        parents.push_back({});
    }
    if (grouped && !shaped && rs->fieldIndex(m_layout.groupBy) < 0) throw missing(m_layout.groupBy);

    // Detail fields against the detail rows (all children share their columns).
    const adodb::Recordset* detailRs = m_groups.empty() ? nullptr : m_groups.front().rs;
    for (const auto& c : m_layout.detail.controls) {
        if (c.role != ReportRole::Field) {
            m_detailCol.push_back(-1);
            continue;
        }
        const int col = detailRs ? detailRs->fieldIndex(c.text) : -1;
        if (detailRs && col < 0) throw missing(c.text);
        m_detailCol.push_back(col);
    }
    // Group header and footer fields: the parent row first, then the group's first row.
    for (size_t gi = 0; gi < m_groups.size(); ++gi) {
        Group& g = m_groups[gi];
        auto take = [&](const ReportSection& s, std::vector<QVariant>& out) {
            for (const auto& c : s.controls) {
                if (c.role != ReportRole::Field) {
                    out.emplace_back();
                    continue;
                }
                const Parent& p = parents[gi];
                int pc = -1;
                for (int k = 0; k < p.names.size(); ++k)
                    if (p.names[k].compare(c.text, Qt::CaseInsensitive) == 0) pc = k;
                if (pc >= 0) {
                    out.push_back(p.row[static_cast<size_t>(pc)]);
                    continue;
                }
                const int col = g.rs->fieldIndex(c.text);
                if (col < 0) throw missing(c.text);
                out.push_back(g.rows.empty() ? QVariant() : g.rs->value(g.rows.front(), col));
            }
        };
        take(m_layout.groupHeader, g.gh);
        take(m_layout.groupFooter, g.gf);
    }
    m_rs = std::move(rs);
    m_hasData = true;
}

void ReportEngine::setLandscape(bool on) {
    if (on == m_landscape) return;
    m_landscape = on;
    m_bands.clear();
    m_pageStart.clear();
    m_done = false;
}

QVariant ReportEngine::fieldValue(Sec s, size_t ci, int group, long row) const {
    if (s == DT) {
        const int col = m_detailCol[ci];
        if (col < 0 || group < 0) return {};
        const Group& g = m_groups[static_cast<size_t>(group)];
        return g.rs->value(g.rows[static_cast<size_t>(row)], col);
    }
    if (isGroupSection(s) && group >= 0) {
        const Group& g = m_groups[static_cast<size_t>(group)];
        return (s == GH ? g.gh : g.gf)[ci];
    }
    return {};
}

QString ReportEngine::controlText(Sec s, size_t ci, int group, long row, int page) const {
    const ReportControl& c = section(s).controls[ci];
    if (c.role == ReportRole::Field) return CStr(fieldValue(s, ci, group, row));
    QString t = c.text;
    if (t.contains(u'%')) {
        t.replace(QStringLiteral("%i"), m_title);
        t.replace(QStringLiteral("%D"), m_date);
        t.replace(QStringLiteral("%p"), QString::number(page + 1));
    }
    return t;
}

// How much taller than designed a section is for one row: its growing fields wrap, and
// the section takes the tallest of them.
int ReportEngine::grow(Sec s, int group, long row) const {
    int extra = 0;
    const auto& controls = section(s).controls;
    for (size_t i = 0; i < controls.size(); ++i) {
        const ReportControl& c = controls[i];
        if (!c.canGrow) continue;
        const auto& lines = wrapped(controlText(s, i, group, row, 0), c);
        const int more = static_cast<int>(lines.size()) - std::max(1, c.lines);
        if (more > 0) extra = std::max(extra, more * lineStep(c));
    }
    return extra;
}

// ---- pagination ------------------------------------------------------------------------

double ReportEngine::scale() const {
    // A report wider than the sheet is drawn smaller, whole; its proportions stay.
    const double room = paperWidth() - 2 * kReportMargin;
    return m_layout.width > room ? room / m_layout.width : 1.0;
}

int ReportEngine::bodyHeight() const {
    const double room = (paperHeight() - 2 * kReportMargin) / scale();
    return std::max(1, static_cast<int>(room) - m_layout.pageHeader.height -
                           m_layout.pageFooter.height);
}

void ReportEngine::newPage() {
    m_pageStart.push_back(m_bands.size());
    m_y = 0;
}

// Places the next band; false at the end of the report.
bool ReportEngine::step() {
    if (m_pageStart.empty()) {
        m_g = 0;
        m_r = -1;
        newPage();
    }
    const bool grouped = !m_layout.groupBy.isEmpty();
    const int body = bodyHeight();
    auto place = [&](Sec s, int group, long row, int h, int keepWith) {
        if (m_y > 0 && m_y + h + keepWith > body) newPage();
        h = std::min(h, body - m_y); // a band taller than a page is cut at its foot
        m_bands.push_back({s, group, row, m_y, h});
        m_y += h;
    };
    while (m_g < static_cast<int>(m_groups.size())) {
        const Group& g = m_groups[static_cast<size_t>(m_g)];
        if (m_r == -1) {
            m_r = 0;
            if (grouped && m_layout.groupHeader.height > 0) {
                const int h = m_layout.groupHeader.height + grow(GH, m_g, -1);
                // A group heading does not stand alone at the foot of a page.
                const int first = g.rows.empty() ? 0 : m_layout.detail.height + grow(DT, m_g, 0);
                place(GH, m_g, -1, h, std::min(first, body - h));
                return true;
            }
        }
        if (m_r < static_cast<long>(g.rows.size())) {
            if (m_layout.detail.height > 0)
                place(DT, m_g, m_r, m_layout.detail.height + grow(DT, m_g, m_r), 0);
            ++m_r;
            return true;
        }
        const int gi = m_g++;
        m_r = -1;
        if (grouped && m_layout.groupFooter.height > 0) {
            place(GF, gi, -1, m_layout.groupFooter.height + grow(GF, gi, -1), 0);
            return true;
        }
    }
    m_done = true;
    return false;
}

bool ReportEngine::layoutSome(long rows) {
    while (!m_done && rows-- > 0) step();
    return m_done;
}

bool ReportEngine::ensurePage(int page) {
    if (!m_hasData || page < 0) return false;
    while (!m_done && static_cast<int>(m_pageStart.size()) <= page + 1) step();
    if (m_pageStart.empty()) step(); // an empty report still has its one page
    return page < static_cast<int>(m_pageStart.size());
}

int ReportEngine::pagesLaidOut() const {
    if (m_pageStart.empty()) return 0;
    return static_cast<int>(m_pageStart.size()) - (m_done ? 0 : 1);
}

int ReportEngine::pageCount() {
    if (!m_hasData) return 0;
    while (!m_done) step();
    return static_cast<int>(m_pageStart.size());
}

// ---- drawing ---------------------------------------------------------------------------

void ReportEngine::drawSection(QPainter& p, Sec s, int y, int h, int group, long row,
                               int page) const {
    const ReportSection& sec = section(s);
    const int extra = h - sec.height;
    // Which controls move down or stretch when the section grew: what stands below a
    // growing control moves, the cells that reach the section's foot stretch.
    int growBottom = sec.height;
    if (extra > 0)
        for (const auto& c : sec.controls)
            if (c.canGrow) growBottom = std::min(growBottom, c.top + c.height);
    for (size_t i = 0; i < sec.controls.size(); ++i) {
        const ReportControl& c = sec.controls[i];
        int top = c.top;
        int ch = c.height;
        if (extra > 0) {
            if (c.top >= growBottom)
                top += extra;
            else if (c.top + c.height >= sec.height || c.canGrow)
                ch += extra;
        }
        const QRectF cell(c.left, y + top, c.width, ch);
        if (c.role == ReportRole::Heading || (c.role == ReportRole::Field && s == DT))
            p.drawRect(cell);
        const QString text = controlText(s, i, group, row, page);
        if (text.isEmpty()) continue;
        const QFont f = font(c);
        const auto& lines = wrapped(text, c);
        const int lstep = lineStep(c);
        // A field that does not grow is cut at its cell: only the lines it holds print.
        const int fit = c.canGrow ? static_cast<int>(lines.size()) : std::max(1, c.lines);
        const int shown = std::min(static_cast<int>(lines.size()), fit);
        const double blockTop = y + top + (ch - shown * lstep) / 2.0;
        // Setting a font makes the painter resolve it again, even the one it holds.
        if (p.font() != f) p.setFont(f);
        for (int k = 0; k < shown; ++k) {
            const WrappedLine& ln = lines[static_cast<size_t>(k)];
            double x = c.left + kHPad;
            if (c.align == ReportAlign::Centre)
                x = c.left + (c.width - ln.width) / 2.0;
            else if (c.align == ReportAlign::Right)
                x = c.left + c.width - kHPad - ln.width;
            p.drawText(QPointF(x, blockTop + k * lstep + c.fontTwips * 1.03), ln.text);
        }
    }
}

void ReportEngine::render(QPainter& p, int page, double dpi) {
    if (!ensurePage(page)) return;
    const double s = scale();
    const double xOff = (paperWidth() - m_layout.width * s) / 2.0;
    p.save();
    p.scale(dpi / 1440.0, dpi / 1440.0);
    p.translate(xOff, kReportMargin);
    p.scale(s, s);
    QPen pen(Qt::black);
    pen.setWidthF(10);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    const int ph = m_layout.pageHeader.height;
    if (ph > 0) drawSection(p, PH, 0, ph, -1, -1, page);
    const size_t from = m_pageStart[static_cast<size_t>(page)];
    const size_t to = static_cast<size_t>(page) + 1 < m_pageStart.size()
                          ? m_pageStart[static_cast<size_t>(page) + 1]
                          : m_bands.size();
    for (size_t b = from; b < to; ++b) {
        const Band& band = m_bands[b];
        p.save();
        p.setClipRect(
            QRectF(-kReportMargin, ph + band.y, m_layout.width + 2 * kReportMargin, band.h));
        drawSection(p, band.sec, ph + band.y, band.h, band.group, band.row, page);
        p.restore();
    }
    const int pf = m_layout.pageFooter.height;
    if (pf > 0) drawSection(p, PF, ph + bodyHeight(), pf, -1, -1, page);
    p.restore();
}

QString ReportEngine::bandDump() {
    const int pages = pageCount();
    QString out;
    const int ph = m_layout.pageHeader.height;
    for (int pg = 0; pg < pages; ++pg) {
        out += QStringLiteral("page %1\n").arg(pg + 1);
        if (ph > 0) out += QStringLiteral("  pageHeader y=0 h=%1\n").arg(ph);
        const size_t from = m_pageStart[static_cast<size_t>(pg)];
        const size_t to =
            pg + 1 < pages ? m_pageStart[static_cast<size_t>(pg) + 1] : m_bands.size();
        for (size_t b = from; b < to; ++b) {
            const Band& band = m_bands[b];
            out += QStringLiteral("  %1 y=%2 h=%3")
                       .arg(sectionName(band.sec))
                       .arg(ph + band.y)
                       .arg(band.h);
            if (band.sec == DT)
                out += QStringLiteral(" group=%1 row=%2").arg(band.group).arg(band.row);
            else
                out += QStringLiteral(" group=%1").arg(band.group);
            out += u'\n';
        }
        if (m_layout.pageFooter.height > 0)
            out += QStringLiteral("  pageFooter y=%1 h=%2\n")
                       .arg(ph + bodyHeight())
                       .arg(m_layout.pageFooter.height);
    }
    return out;
}

// ---- the exported table ----------------------------------------------------------------

ReportSheet ReportEngine::sheet() const {
    ReportSheet sh;
    // Columns are the detail fields from left to right; a heading goes over the field it
    // overlaps most.
    std::vector<size_t> cols;
    for (size_t i = 0; i < m_layout.detail.controls.size(); ++i)
        if (m_layout.detail.controls[i].role == ReportRole::Field) cols.push_back(i);
    std::stable_sort(cols.begin(), cols.end(), [&](size_t a, size_t b) {
        return m_layout.detail.controls[a].left < m_layout.detail.controls[b].left;
    });
    for (size_t ci : cols) sh.columnWidths.push_back(m_layout.detail.controls[ci].width);
    const size_t n = std::max<size_t>(1, cols.size());
    auto columnOf = [&](const ReportControl& h) {
        size_t best = 0;
        int bestOverlap = -1;
        for (size_t k = 0; k < cols.size(); ++k) {
            const ReportControl& f = m_layout.detail.controls[cols[k]];
            const int overlap =
                std::min(h.left + h.width, f.left + f.width) - std::max(h.left, f.left);
            if (overlap > bestOverlap) {
                bestOverlap = overlap;
                best = k;
            }
        }
        return best;
    };
    auto addRow = [&](ReportSheet::Kind k, std::vector<QVariant> row) {
        sh.kinds.push_back(k);
        sh.rows.push_back(std::move(row));
    };
    auto byPlace = [](const std::vector<ReportControl>& cs) {
        std::vector<size_t> idx(cs.size());
        for (size_t i = 0; i < idx.size(); ++i) idx[i] = i;
        std::stable_sort(idx.begin(), idx.end(), [&](size_t a, size_t b) {
            return cs[a].top != cs[b].top ? cs[a].top < cs[b].top : cs[a].left < cs[b].left;
        });
        return idx;
    };
    // Titles and headings of a header section; a group's labels and fields make one line.
    auto header = [&](Sec s, int group) {
        const auto& cs = section(s).controls;
        QString line;
        std::vector<QVariant> headings(n);
        bool anyHeading = false;
        for (size_t i : byPlace(cs)) {
            const ReportControl& c = cs[i];
            if (c.role == ReportRole::PageInfo) continue;
            const QString text = controlText(s, i, group, -1, 0);
            if (c.role == ReportRole::Heading) {
                headings[columnOf(c)] = text;
                anyHeading = true;
            } else if (s == PH) {
                if (!text.isEmpty()) {
                    std::vector<QVariant> row(n);
                    row[0] = text;
                    addRow(ReportSheet::Title, std::move(row));
                }
            } else {
                line += text;
            }
        }
        if (!line.isEmpty()) {
            std::vector<QVariant> row(n);
            row[0] = line;
            addRow(ReportSheet::GroupTitle, std::move(row));
        }
        if (anyHeading) addRow(ReportSheet::Heading, std::move(headings));
    };
    header(PH, -1);
    const bool grouped = !m_layout.groupBy.isEmpty();
    for (size_t g = 0; g < m_groups.size(); ++g) {
        if (grouped) header(GH, static_cast<int>(g));
        const Group& grp = m_groups[g];
        for (size_t r = 0; r < grp.rows.size(); ++r) {
            std::vector<QVariant> row(n);
            for (size_t k = 0; k < cols.size(); ++k)
                row[k] = fieldValue(DT, cols[k], static_cast<int>(g), static_cast<long>(r));
            addRow(ReportSheet::Detail, std::move(row));
        }
    }
    return sh;
}

} // namespace vb
