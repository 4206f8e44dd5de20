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
    bool editFlag = false;    // the editor's text was changed
    int16_t editCell[2] = {}; // row and column under the editor

    // Binds the rows of `sql` and puts the cursor on the first, whole row selected.
    void loadData(const QString& sql);
    virtual void gridFix() = 0;
    // 0 choose, 1 the form's action, 2 close, 3 unchoose.
    virtual void Command1_Click(int index) = 0;
    virtual void editCellOpen() = 0;
    void menuAt();

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
                 const QString& menuWord);

    void build(QWidget* w) override;
    void onLoad() override;
    void onResize() override;
    virtual void Text1_LostFocus() = 0;

private:
    QString m_caption;
    QString m_action;
    QString m_menuWord;
};
