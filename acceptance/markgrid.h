#pragma once
// The marked grid that acceptance (YanShoufrm) and replenishment (YanShouBDD) both work in:
// a grid whose rows are chosen with "√" and unchosen with "×", one number edited in place
// through a hidden text box, four buttons (选择, the form's action, 关闭, 取消选择) along the
// bottom, and the same keys, popup and resizing. Each form says what its action, columns and
// editing are.

#include "platform/form.h"

#include <QString>

#include <cstdint>
#include <utility>

class QLineEdit;
namespace vb {
class FlexGrid;
}

class MarkGridForm : public vb::Form {
    Q_OBJECT
public:
    // The marks of column `mark`.
    static inline const QString kChosen = QStringLiteral("√");
    static inline const QString kNotChosen = QStringLiteral("×");

    // The columns the grid works on: the mark, the count that is edited, and the one a
    // newly chosen row takes its count from.
    struct Columns {
        int mark;
        int count;
        int countFrom;
    };

    bool editFlag = false;    // the editor's text was changed
    int16_t editCell[2] = {}; // row and column under the editor

    // Binds the rows of `sql` and puts the cursor on the first, whole row selected.
    void loadData(const QString& sql);
    virtual void gridFix() = 0;
    // 0 choose, 1 the form's action, 2 close, 3 unchoose.
    virtual void Command1_Click(int index) = 0;
    virtual void editCellOpen() = 0;
    void menuAt();
    // Chooses the rows between Row and RowSel; a row chosen already keeps its count.
    void selectRange();
    // Unchooses them, their count back to 0.
    void unselectRange();

    vb::FlexGrid* Grid1();
    QLineEdit* Text1();

    // The rows between Row and RowSel, smaller first.
    static std::pair<int, int> range(const vb::FlexGrid* g);
    // The plain decimal form of the text's leading number: "" and "." give "0".
    static QString plainNumber(const QString& text);
    // The editor's key filter: digits, Backspace and the point.
    static bool keyAllowed(int keyAscii);

protected:
    // `action` is button 1's caption, `menuWord` the popup's entry for it.
    MarkGridForm(const QString& name, const QString& caption, const QString& action,
                 const QString& menuWord, Columns columns);

    void build(QWidget* w) override;
    void onLoad() override;
    void onResize() override;
    // Puts the editor over column `col` of the current row with the cell's text, and gives
    // it the focus; each step passes over its own error.
    void openEditor(int col);
    // The current row holds a title and is chosen: its numbers may be edited.
    bool rowEditable();
    // What the form does once the editor has been left, before the grid takes the focus.
    virtual void editorLeft() {}

private:
    // The editor's number goes into its cell; a count of 0 unchooses the row.
    void Text1_LostFocus();

    Columns m_columns;
    QString m_caption;
    QString m_action;
    QString m_menuWord;
};
