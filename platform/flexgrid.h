#pragma once
// The legacy flex grid: a QTableView over a plain table model with the grid's surface.
// Row 0 is the fixed header row (from FormatString); column 0 may be a fixed column.
// Sizes in twips. Binding copies a Recordset's rows into the model: 100,000 rows bind
// in one reset, never as item objects.

#include <QAbstractTableModel>
#include <QTableView>

#include <functional>
#include <vector>

namespace adodb {
class Recordset;
}

namespace vb {

enum GridAlign : int {
    flexAlignLeftTop = 0,
    flexAlignLeftCenter = 1,
    flexAlignLeftBottom = 2,
    flexAlignCenterTop = 3,
    flexAlignCenterCenter = 4,
    flexAlignCenterBottom = 5,
    flexAlignRightTop = 6,
    flexAlignRightCenter = 7,
    flexAlignRightBottom = 8,
    flexAlignGeneral = 9,
};

class FlexGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit FlexGridModel(QObject* parent = nullptr);
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation o, int role) const override;

    // All rows including the fixed row 0.
    int rows() const { return m_rows; }
    int cols() const { return m_cols; }
    void resize(int rows, int cols);
    QString text(int row, int col) const;
    void setText(int row, int col, const QString& text);
    void setRowTexts(int row, const QStringList& texts);
    void insertRowAt(int row, const QStringList& texts);
    void removeRowAt(int row);
    // Replace everything below the header by `data` (row-major, cols wide).
    void resetData(int rows, int cols, std::vector<QString> cells);
    void setColAlignment(int col, int align);
    int colAlignment(int col) const;
    void setCellAlignment(int row, int col, int align);
    // A fixed row is shown as the view's header; without one, row 0 is a row like any.
    void setFixedRows(int n) {
        beginResetModel();
        m_fixedRows = n;
        endResetModel();
    }
    int off() const { return m_fixedRows > 0 ? 1 : 0; }
    void setFixedCols(int n) { m_fixedCols = n; }
    int fixedRows() const { return m_fixedRows; }
    int fixedCols() const { return m_fixedCols; }
    // The selection the grid paints (Row..RowSel, Col..ColSel).
    void setSelectionRect(int r1, int c1, int r2, int c2);

private:
    int m_rows = 2;
    int m_cols = 2;
    int m_fixedRows = 1;
    int m_fixedCols = 1;
    std::vector<QString> m_cells; // row-major
    std::vector<int> m_colAlign;
    std::vector<std::pair<long, int>> m_cellAlign; // (row*cols+col, align), sparse
    int m_selR1 = -1, m_selC1 = -1, m_selR2 = -1, m_selC2 = -1;
};

class FlexGrid : public QTableView {
    Q_OBJECT
public:
    explicit FlexGrid(QWidget* parent = nullptr);

    FlexGridModel* gridModel() const { return m_model; }

    int Rows() const { return m_model->rows(); }
    void setRows(int n);
    int Cols() const { return m_model->cols(); }
    void setCols(int n);
    int FixedRows() const { return m_model->fixedRows(); }
    void setFixedRows(int n);
    int FixedCols() const { return m_model->fixedCols(); }
    void setFixedCols(int n);

    // Current cell; setting Row or Col moves the current cell and collapses RowSel/ColSel
    // onto it, as the legacy grid does.
    int Row() const { return m_row; }
    void setRow(int r);
    int Col() const { return m_col; }
    void setCol(int c);
    int RowSel() const { return m_rowSel; }
    void setRowSel(int r);
    int ColSel() const { return m_colSel; }
    void setColSel(int c);
    int TopRow() const;
    void setTopRow(int r);

    QString TextMatrix(int row, int col) const;
    void setTextMatrix(int row, int col, const QString& text);
    QString Text() const { return TextMatrix(m_row, m_col); }
    void setText(const QString& t) { setTextMatrix(m_row, m_col, t); }

    // "<a|^b|>c": '<' left, '^' centre, '>' right; sets Cols and the header texts of row 0.
    // A part after ';' gives the fixed column's texts, as the legacy grid reads it.
    void setFormatString(const QString& fmt);
    QString FormatString() const { return m_formatString; }

    int ColWidth(int col) const; // twips
    void setColWidth(int col, int twips);
    int RowHeight(int row) const; // twips
    void setRowHeight(int row, int twips);
    void setColAlignment(int col, int align);
    int ColAlignment(int col) const;
    void setCellAlignment(int row, int col, int align);

    // AddItem: tab-separated cell texts; at the end, or before `index`.
    void AddItem(const QString& tabbedTexts, int index = -1);
    void RemoveItem(int index);
    // Clears every text, headers too; keeps the size.
    void Clear();

    // Copies the recordset's rows below the header: Rows = rows + 1 (an empty bind keeps one
    // blank row under the header when keepBlankRow), Cols from the field count (+1 when a
    // fixed column is present), header texts from the field names.
    void bind(const adodb::Recordset& rs, bool keepBlankRow = true);

    // Geometry of a cell in pixels relative to the grid, for the in-grid editors.
    QRect cellRect(int row, int col) const;
    int CellLeft() const;
    int CellTop() const;
    int CellWidth() const;
    int CellHeight() const;
    // Whole width of the columns in twips and the client width of the grid in twips.
    int totalColWidth() const;
    int clientWidth() const;
    bool verticalScrollVisible() const;

Q_SIGNALS:
    void Click();
    void DblClick();
    void KeyDown(int& keyCode, int shift);
    void KeyPress(int& keyAscii);
    void MouseDown(int button, int shift, int x, int y);
    void MouseUp(int button, int shift, int x, int y);
    void MouseMove(int button, int shift, int x, int y);
    void RowColChange();
    void Scroll();
    void LostFocus();
    void GotFocus();

protected:
    void keyPressEvent(QKeyEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void syncSelection();
    void setCurrent(int row, int col, bool extend);

    FlexGridModel* m_model;
    QString m_formatString;
    int m_row = 1, m_col = 1, m_rowSel = 1, m_colSel = 1;
};

// QLineEdit with a "####-##-##" style mask. Text() shows "_" in unfilled places, as the
// forms compare it; ClipText() gives the typed characters only.
class MaskEdBox;

} // namespace vb
