#pragma once
// gysListfrm: the drop-down list under a text field, like the list of a combo box, over the
// first column of any statement. It serves every pick list of the purchase form and the
// source lists of acceptance and replenishment. A pick writes into the target field (whose
// own Change marks it changed) and the list closes; Esc and losing the focus close it too.
//
// The calling order: set pTxt, set tForm, loadData(sql), Show(0).
//
// The grid's heading row stays hidden, so entry r of the list is grid row r + 1.

#include "platform/form.h"

#include <QLineEdit>
#include <QPointer>

namespace vb {
class FlexGrid;
}

class gysListfrm : public vb::Form {
    Q_OBJECT
public:
    gysListfrm();
    bool isTopLevelForm() const override { return true; }

    QPointer<QLineEdit> pTxt;  // where the pick goes; gives the list its place and width
    vb::Form* tForm = nullptr; // the target's form

    void loadData(const QString& sql);

    vb::FlexGrid* Grid1();
    // Entries in the list, and the chosen one (0-based).
    int listCount();
    int listRow();
    // At most three entries show at a time.
    int visibleRows();

    void Grid1_Click();
    void Grid1_KeyDown(int& keyCode, int shift);
    void Grid1_MouseMove(int button, int shift, int x, int y);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onActivate() override;

private:
    int m_visible = 1;
};
