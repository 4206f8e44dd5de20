#include "platform/flexgrid.h"

#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/form.h"
#include "platform/vb.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPalette>
#include <QScrollBar>

#include <algorithm>

namespace vb {

// ---- model -----------------------------------------------------------------------------
// With a fixed row, grid row 0 is the header row; the view shows it as its horizontal
// header, so it stays in place while the rows scroll, as the legacy grid's fixed row does,
// and model row r is grid row r + 1. With FixedRows 0 every grid row is a model row.

FlexGridModel::FlexGridModel(QObject* parent) : QAbstractTableModel(parent) {
    m_cells.assign(static_cast<size_t>(m_rows * m_cols), QString());
    m_colAlign.assign(static_cast<size_t>(m_cols), flexAlignGeneral);
}

int FlexGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : std::max(0, m_rows - off());
}

int FlexGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_cols;
}

namespace {
Qt::Alignment toQt(int align, bool numeric) {
    switch (align) {
    case flexAlignLeftTop:
        return Qt::AlignLeft | Qt::AlignTop;
    case flexAlignLeftCenter:
        return Qt::AlignLeft | Qt::AlignVCenter;
    case flexAlignLeftBottom:
        return Qt::AlignLeft | Qt::AlignBottom;
    case flexAlignCenterTop:
        return Qt::AlignHCenter | Qt::AlignTop;
    case flexAlignCenterCenter:
        return Qt::AlignCenter;
    case flexAlignCenterBottom:
        return Qt::AlignHCenter | Qt::AlignBottom;
    case flexAlignRightTop:
        return Qt::AlignRight | Qt::AlignTop;
    case flexAlignRightCenter:
        return Qt::AlignRight | Qt::AlignVCenter;
    case flexAlignRightBottom:
        return Qt::AlignRight | Qt::AlignBottom;
    default: // general: numbers right, text left
        return (numeric ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
    }
}
} // namespace

QVariant FlexGridModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const int r = index.row() + off();
    const int c = index.column();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::ToolTipRole:
        return text(r, c);
    case Qt::TextAlignmentRole: {
        int a = colAlignment(c);
        const long key = static_cast<long>(r) * m_cols + c;
        for (const auto& [k, v] : m_cellAlign)
            if (k == key) a = v;
        const QString& t = m_cells[static_cast<size_t>(key)];
        return QVariant::fromValue(toQt(a, a == flexAlignGeneral && IsNumeric(t)));
    }
    case Qt::BackgroundRole: {
        const bool fixed = r < m_fixedRows || c < m_fixedCols;
        if (fixed) return QApplication::palette().button();
        const bool selected = m_selR1 >= 0 && r >= std::min(m_selR1, m_selR2) &&
                              r <= std::max(m_selR1, m_selR2) && c >= std::min(m_selC1, m_selC2) &&
                              c <= std::max(m_selC1, m_selC2);
        if (selected) return QApplication::palette().highlight();
        return {};
    }
    case Qt::ForegroundRole: {
        const bool fixed = r < m_fixedRows || c < m_fixedCols;
        const bool selected = !fixed && m_selR1 >= 0 && r >= std::min(m_selR1, m_selR2) &&
                              r <= std::max(m_selR1, m_selR2) && c >= std::min(m_selC1, m_selC2) &&
                              c <= std::max(m_selC1, m_selC2);
        if (selected) return QApplication::palette().highlightedText();
        return {};
    }
    default:
        return {};
    }
}

QVariant FlexGridModel::headerData(int section, Qt::Orientation o, int role) const {
    if (o != Qt::Horizontal || section < 0 || section >= m_cols) return {};
    if (role == Qt::DisplayRole) return m_rows > 0 ? text(0, section) : QString();
    if (role == Qt::TextAlignmentRole) {
        const int a = colAlignment(section);
        return QVariant::fromValue(toQt(a == flexAlignGeneral ? flexAlignCenterCenter : a, false));
    }
    return {};
}

void FlexGridModel::resize(int rows, int cols) {
    rows = std::max(0, rows);
    cols = std::max(0, cols);
    if (rows == m_rows && cols == m_cols) return;
    beginResetModel();
    std::vector<QString> cells(static_cast<size_t>(rows) * static_cast<size_t>(cols));
    for (int r = 0; r < std::min(rows, m_rows); ++r)
        for (int c = 0; c < std::min(cols, m_cols); ++c)
            cells[static_cast<size_t>(r * cols + c)] =
                std::move(m_cells[static_cast<size_t>(r * m_cols + c)]);
    m_cells = std::move(cells);
    if (cols != m_cols) m_cellAlign.clear();
    m_colAlign.resize(static_cast<size_t>(cols), flexAlignGeneral);
    m_rows = rows;
    m_cols = cols;
    endResetModel();
}

QString FlexGridModel::text(int row, int col) const {
    if (row < 0 || row >= m_rows || col < 0 || col >= m_cols) vb::raise(errSubscript);
    return m_cells[static_cast<size_t>(row * m_cols + col)];
}

void FlexGridModel::setText(int row, int col, const QString& t) {
    if (row < 0 || row >= m_rows || col < 0 || col >= m_cols) vb::raise(errSubscript);
    m_cells[static_cast<size_t>(row * m_cols + col)] = t;
    if (row < off()) {
        Q_EMIT headerDataChanged(Qt::Horizontal, col, col);
    } else {
        const QModelIndex i = index(row - off(), col);
        Q_EMIT dataChanged(i, i);
    }
}

void FlexGridModel::setRowTexts(int row, const QStringList& texts) {
    for (int c = 0; c < std::min<int>(m_cols, static_cast<int>(texts.size())); ++c)
        setText(row, c, texts[c]);
}

void FlexGridModel::insertRowAt(int row, const QStringList& texts) {
    if (row < 0 || row > m_rows) vb::raise(errSubscript);
    if (row < off()) {
        beginResetModel();
    } else {
        beginInsertRows(QModelIndex(), row - off(), row - off());
    }
    std::vector<QString> fresh(static_cast<size_t>(m_cols));
    for (int c = 0; c < std::min<int>(m_cols, static_cast<int>(texts.size())); ++c)
        fresh[static_cast<size_t>(c)] = texts[c];
    m_cells.insert(m_cells.begin() + static_cast<long>(row) * m_cols, fresh.begin(), fresh.end());
    ++m_rows;
    m_cellAlign.clear();
    if (row < off())
        endResetModel();
    else
        endInsertRows();
}

void FlexGridModel::removeRowAt(int row) {
    if (row < 0 || row >= m_rows) vb::raise(errSubscript);
    if (row < off())
        beginResetModel();
    else
        beginRemoveRows(QModelIndex(), row - off(), row - off());
    const auto first = m_cells.begin() + static_cast<long>(row) * m_cols;
    m_cells.erase(first, first + m_cols);
    --m_rows;
    m_cellAlign.clear();
    if (row < off())
        endResetModel();
    else
        endRemoveRows();
}

void FlexGridModel::resetData(int rows, int cols, std::vector<QString> cells) {
    beginResetModel();
    m_rows = rows;
    if (cols != m_cols) {
        m_colAlign.resize(static_cast<size_t>(cols), flexAlignGeneral);
        m_cols = cols;
    }
    m_cells = std::move(cells);
    m_cells.resize(static_cast<size_t>(rows) * static_cast<size_t>(cols));
    m_cellAlign.clear();
    endResetModel();
}

void FlexGridModel::setColAlignment(int col, int align) {
    if (col < 0 || col >= m_cols) vb::raise(errSubscript);
    m_colAlign[static_cast<size_t>(col)] = align;
    if (m_rows > off()) Q_EMIT dataChanged(index(0, col), index(m_rows - off() - 1, col));
    Q_EMIT headerDataChanged(Qt::Horizontal, col, col);
}

int FlexGridModel::colAlignment(int col) const {
    if (col < 0 || col >= m_cols) return flexAlignGeneral;
    return m_colAlign[static_cast<size_t>(col)];
}

void FlexGridModel::setCellAlignment(int row, int col, int align) {
    if (row < 0 || row >= m_rows || col < 0 || col >= m_cols) vb::raise(errSubscript);
    const long key = static_cast<long>(row) * m_cols + col;
    for (auto& [k, v] : m_cellAlign)
        if (k == key) {
            v = align;
            return;
        }
    m_cellAlign.emplace_back(key, align);
    if (row >= off()) Q_EMIT dataChanged(index(row - off(), col), index(row - off(), col));
}

void FlexGridModel::setSelectionRect(int r1, int c1, int r2, int c2) {
    const int o1 = std::min(m_selR1, m_selR2), o2 = std::max(m_selR1, m_selR2);
    m_selR1 = r1;
    m_selC1 = c1;
    m_selR2 = r2;
    m_selC2 = c2;
    const int lo = std::max(off(), std::min({o1 < 0 ? r1 : o1, r1, r2}));
    const int hi = std::min(m_rows - 1, std::max({o2, r1, r2}));
    if (hi >= lo && m_cols > 0)
        Q_EMIT dataChanged(index(lo - off(), 0), index(hi - off(), m_cols - 1));
}

// ---- view ------------------------------------------------------------------------------

FlexGrid::FlexGrid(QWidget* parent) : QTableView(parent), m_model(new FlexGridModel(this)) {
    setModel(m_model);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(twips(255) + 1);
    verticalHeader()->setMinimumSectionSize(0);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setMinimumSectionSize(0);
    horizontalHeader()->setDefaultSectionSize(twips(975));
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setMouseTracking(true);
    setRow(1);
    setCol(1);
}

void FlexGrid::setRows(int n) {
    m_model->resize(n, m_model->cols());
    if (m_row >= n) m_row = std::max(0, n - 1);
    if (m_rowSel >= n) m_rowSel = std::max(0, n - 1);
    syncSelection();
}

void FlexGrid::setCols(int n) {
    m_model->resize(m_model->rows(), n);
    if (m_col >= n) m_col = std::max(0, n - 1);
    if (m_colSel >= n) m_colSel = std::max(0, n - 1);
    syncSelection();
}

void FlexGrid::setFixedRows(int n) {
    m_model->setFixedRows(n);
    horizontalHeader()->setVisible(n > 0);
    viewport()->update();
}

void FlexGrid::setFixedCols(int n) {
    m_model->setFixedCols(n);
    viewport()->update();
}

void FlexGrid::setCurrent(int row, int col, bool extend) {
    const bool changed = row != m_row || col != m_col;
    m_row = row;
    m_col = col;
    if (!extend) {
        m_rowSel = row;
        m_colSel = col;
    }
    syncSelection();
    if (changed) Q_EMIT RowColChange();
}

void FlexGrid::setRow(int r) {
    if (r < 0 || r >= Rows()) vb::raise(errSubscript, QStringLiteral("下标越界"));
    setCurrent(r, m_col, false);
}

void FlexGrid::setCol(int c) {
    if (c < 0 || c >= Cols()) vb::raise(errSubscript, QStringLiteral("下标越界"));
    setCurrent(m_row, c, false);
}

void FlexGrid::setRowSel(int r) {
    if (r < 0 || r >= Rows()) vb::raise(errSubscript);
    m_rowSel = r;
    syncSelection();
}

void FlexGrid::setColSel(int c) {
    if (c < 0 || c >= Cols()) vb::raise(errSubscript);
    m_colSel = c;
    syncSelection();
}

void FlexGrid::syncSelection() {
    if (Rows() == 0 || Cols() == 0) {
        m_model->setSelectionRect(-1, -1, -1, -1);
        return;
    }
    m_model->setSelectionRect(m_row, m_col, m_rowSel, m_colSel);
}

int FlexGrid::TopRow() const {
    const int r = rowAt(0);
    const int o = m_model->off();
    return r < 0 ? (Rows() > o ? o : 0) : r + o;
}

void FlexGrid::setTopRow(int r) {
    const int o = m_model->off();
    if (r < o || r >= Rows()) return;
    scrollTo(m_model->index(r - o, 0), QAbstractItemView::PositionAtTop);
}

QString FlexGrid::TextMatrix(int row, int col) const {
    return m_model->text(row, col);
}
void FlexGrid::setTextMatrix(int row, int col, const QString& text) {
    m_model->setText(row, col, text);
}

void FlexGrid::setFormatString(const QString& fmt) {
    m_formatString = fmt;
    QString colsPart = fmt;
    QString rowsPart;
    const qsizetype semi = fmt.indexOf(u';');
    if (semi >= 0) {
        colsPart = fmt.left(semi);
        rowsPart = fmt.mid(semi + 1);
    }
    const QStringList cols = colsPart.split(u'|');
    setCols(static_cast<int>(cols.size()));
    if (Rows() < 1) setRows(2);
    for (int c = 0; c < cols.size(); ++c) {
        QString t = cols[c];
        int align = flexAlignLeftCenter;
        if (t.startsWith(u'<')) {
            t.remove(0, 1);
        } else if (t.startsWith(u'^')) {
            align = flexAlignCenterCenter;
            t.remove(0, 1);
        } else if (t.startsWith(u'>')) {
            align = flexAlignRightCenter;
            t.remove(0, 1);
        }
        m_model->setColAlignment(c, align);
        m_model->setText(0, c, t);
        // The legacy grid sizes each column to its heading.
        const int w = fontMetrics().horizontalAdvance(t) + 12;
        setColumnWidth(c, std::max(w, twips(300)));
    }
    if (!rowsPart.isEmpty()) {
        const QStringList rows = rowsPart.split(u'|');
        if (Rows() < rows.size()) setRows(static_cast<int>(rows.size()));
        for (int r = 0; r < rows.size(); ++r)
            if (!rows[r].isEmpty()) m_model->setText(r, 0, rows[r]);
    }
}

int FlexGrid::ColWidth(int col) const {
    if (col < 0 || col >= Cols()) vb::raise(errSubscript);
    return isColumnHidden(col) ? 0 : toTwips(columnWidth(col));
}

void FlexGrid::setColWidth(int col, int tw) {
    if (col < 0 || col >= Cols()) vb::raise(errSubscript);
    if (tw <= 0) {
        setColumnHidden(col, true);
        return;
    }
    setColumnHidden(col, false);
    setColumnWidth(col, twips(tw));
}

int FlexGrid::RowHeight(int row) const {
    if (row < 0 || row >= Rows()) vb::raise(errSubscript);
    const int o = m_model->off();
    if (row < o) return toTwips(horizontalHeader()->height());
    return toTwips(rowHeight(row - o));
}

void FlexGrid::setRowHeight(int row, int tw) {
    if (row < 0 || row >= Rows()) vb::raise(errSubscript);
    const int o = m_model->off();
    if (row < o) {
        horizontalHeader()->setFixedHeight(twips(tw));
        return;
    }
    QTableView::setRowHeight(row - o, twips(tw));
}

void FlexGrid::setColAlignment(int col, int align) {
    m_model->setColAlignment(col, align);
}
int FlexGrid::ColAlignment(int col) const {
    return m_model->colAlignment(col);
}
void FlexGrid::setCellAlignment(int row, int col, int align) {
    m_model->setCellAlignment(row, col, align);
}

void FlexGrid::AddItem(const QString& tabbedTexts, int index) {
    const QStringList texts = tabbedTexts.split(u'\t');
    const int at = index < 0 ? Rows() : index;
    m_model->insertRowAt(at, texts);
}

void FlexGrid::RemoveItem(int index) {
    // The legacy grid refuses to remove its last non-fixed row.
    if (Rows() - 1 <= FixedRows() && index >= FixedRows())
        vb::raise(30015, QStringLiteral("无法删除最后一个非固定行"));
    m_model->removeRowAt(index);
    if (m_row >= Rows()) m_row = Rows() - 1;
    if (m_rowSel >= Rows()) m_rowSel = Rows() - 1;
    syncSelection();
}

void FlexGrid::Clear() {
    for (int r = 0; r < Rows(); ++r)
        for (int c = 0; c < Cols(); ++c) m_model->setText(r, c, QString());
}

void FlexGrid::bind(const adodb::Recordset& rs, bool keepBlankRow) {
    const int fieldCount = rs.fieldCount();
    const int offset = FixedCols() > 0 && Cols() == fieldCount + 1 ? 1 : 0;
    const int cols = fieldCount + offset;
    const long n = rs.rowCount();
    const int rows = static_cast<int>(std::max<long>(n, keepBlankRow ? 1 : 0)) + 1;
    std::vector<QString> cells(static_cast<size_t>(rows) * static_cast<size_t>(cols));
    for (int c = 0; c < fieldCount; ++c) cells[static_cast<size_t>(c + offset)] = rs.fieldName(c);
    for (long r = 0; r < n; ++r) {
        QString* out = &cells[static_cast<size_t>((r + 1) * cols + offset)];
        for (int c = 0; c < fieldCount; ++c) {
            const QVariant v = rs.value(r, c);
            if (v.isNull()) continue;
            switch (v.typeId()) {
            case QMetaType::QString:
                out[c] = v.toString();
                break;
            case QMetaType::Int:
            case QMetaType::LongLong:
                out[c] = QString::number(v.toLongLong());
                break;
            default:
                out[c] = CStr(v);
            }
        }
    }
    m_model->resetData(rows, cols, std::move(cells));
    m_row = m_rowSel = rows > 1 ? 1 : 0;
    m_col = m_colSel = std::min(m_col, cols - 1);
    syncSelection();
}

QRect FlexGrid::cellRect(int row, int col) const {
    if (row < 0 || row >= Rows() || col < 0 || col >= Cols()) return {};
    const int x = columnViewportPosition(col) + viewport()->x();
    const int w = columnWidth(col);
    const int o = m_model->off();
    if (row < o) return QRect(x, horizontalHeader()->y(), w, horizontalHeader()->height());
    const int y = rowViewportPosition(row - o) + viewport()->y();
    return QRect(x, y, w, QTableView::rowHeight(row - o));
}

int FlexGrid::CellLeft() const {
    return toTwips(cellRect(m_row, m_col).x());
}
int FlexGrid::CellTop() const {
    return toTwips(cellRect(m_row, m_col).y());
}
int FlexGrid::CellWidth() const {
    return toTwips(cellRect(m_row, m_col).width());
}
int FlexGrid::CellHeight() const {
    return toTwips(cellRect(m_row, m_col).height());
}

int FlexGrid::totalColWidth() const {
    int w = 0;
    for (int c = 0; c < Cols(); ++c)
        if (!isColumnHidden(c)) w += columnWidth(c);
    return toTwips(w);
}

int FlexGrid::clientWidth() const {
    return toTwips(viewport()->width());
}

bool FlexGrid::verticalScrollVisible() const {
    return verticalScrollBar()->isVisible();
}

namespace {
int buttonOf(Qt::MouseButton b) {
    switch (b) {
    case Qt::LeftButton:
        return 1;
    case Qt::RightButton:
        return 2;
    case Qt::MiddleButton:
        return 4;
    default:
        return 0;
    }
}
int buttonsOf(Qt::MouseButtons b) {
    return (b & Qt::LeftButton ? 1 : 0) | (b & Qt::RightButton ? 2 : 0) |
           (b & Qt::MiddleButton ? 4 : 0);
}
int shiftOfMods(Qt::KeyboardModifiers m) {
    return (m & Qt::ShiftModifier ? 1 : 0) | (m & Qt::ControlModifier ? 2 : 0) |
           (m & Qt::AltModifier ? 4 : 0);
}
} // namespace

void FlexGrid::keyPressEvent(QKeyEvent* e) {
    int code = keyCodeOf(e);
    if (code != 0) {
        Q_EMIT KeyDown(code, shiftOf(e));
        if (code == 0) return;
    }
    int ascii = keyAsciiOf(e);
    if (ascii != 0) {
        Q_EMIT KeyPress(ascii);
        if (ascii == 0) return;
    }
    const int firstRow = std::min(FixedRows(), Rows() - 1);
    const int firstCol = std::min(FixedCols(), Cols() - 1);
    int r = m_row, c = m_col;
    switch (code) {
    case vbKeyUp:
        r = std::max(firstRow, r - 1);
        break;
    case vbKeyDown:
        r = std::min(Rows() - 1, r + 1);
        break;
    case vbKeyLeft:
        c = std::max(firstCol, c - 1);
        break;
    case vbKeyRight:
        c = std::min(Cols() - 1, c + 1);
        break;
    case vbKeyHome:
        c = firstCol;
        break;
    case vbKeyEnd:
        c = Cols() - 1;
        break;
    case vbKeyPageUp:
        r = std::max(firstRow, r - std::max(1, viewport()->height() / std::max(1, rowHeight(0))));
        break;
    case vbKeyPageDown:
        r = std::min(Rows() - 1, r + std::max(1, viewport()->height() / std::max(1, rowHeight(0))));
        break;
    default:
        QTableView::keyPressEvent(e);
        return;
    }
    if (r != m_row || c != m_col) {
        setCurrent(r, c, (e->modifiers() & Qt::ShiftModifier) != 0);
        if (r >= m_model->off()) scrollTo(m_model->index(r - m_model->off(), c));
    }
}

void FlexGrid::mousePressEvent(QMouseEvent* e) {
    const QPoint p = e->position().toPoint();
    const QModelIndex i = indexAt(p);
    // Only the left button moves the current cell: the right one opens the popup over the
    // row that was current.
    if (i.isValid() && e->button() == Qt::LeftButton) {
        const int r = i.row() + m_model->off();
        const int c = i.column();
        if (r >= FixedRows() && c >= FixedCols())
            setCurrent(r, c, (e->modifiers() & Qt::ShiftModifier) != 0);
        else if (c < FixedCols() && r >= FixedRows())
            setCurrent(r, m_col, false);
    }
    setFocus(Qt::MouseFocusReason);
    const QPoint g = mapFromGlobal(e->globalPosition().toPoint());
    Q_EMIT MouseDown(buttonOf(e->button()), shiftOfMods(e->modifiers()), toTwips(g.x()),
                     toTwips(g.y()));
}

void FlexGrid::mouseReleaseEvent(QMouseEvent* e) {
    const QPoint g = mapFromGlobal(e->globalPosition().toPoint());
    Q_EMIT MouseUp(buttonOf(e->button()), shiftOfMods(e->modifiers()), toTwips(g.x()),
                   toTwips(g.y()));
    if (e->button() == Qt::LeftButton) Q_EMIT Click();
}

void FlexGrid::mouseDoubleClickEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton) Q_EMIT DblClick();
}

void FlexGrid::mouseMoveEvent(QMouseEvent* e) {
    const QPoint g = mapFromGlobal(e->globalPosition().toPoint());
    if ((e->buttons() & Qt::LeftButton)) {
        const QModelIndex i = indexAt(e->position().toPoint());
        if (i.isValid() && i.row() + m_model->off() >= FixedRows() && i.column() >= FixedCols()) {
            m_rowSel = i.row() + m_model->off();
            m_colSel = i.column();
            syncSelection();
        }
    }
    Q_EMIT MouseMove(buttonsOf(e->buttons()), shiftOfMods(e->modifiers()), toTwips(g.x()),
                     toTwips(g.y()));
}

void FlexGrid::focusInEvent(QFocusEvent* e) {
    QTableView::focusInEvent(e);
    if (e->reason() != Qt::ActiveWindowFocusReason && e->reason() != Qt::PopupFocusReason)
        Q_EMIT GotFocus();
}

void FlexGrid::focusOutEvent(QFocusEvent* e) {
    QTableView::focusOutEvent(e);
    if (e->reason() != Qt::ActiveWindowFocusReason && e->reason() != Qt::PopupFocusReason)
        Q_EMIT LostFocus();
}

void FlexGrid::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    Q_EMIT Scroll();
}

} // namespace vb
