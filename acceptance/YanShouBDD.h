#pragma once
// YanShouBDD (补定单浏览): the titles accepted short, the twin of YanShoufrm. Column 1 holds
// the mark, column 9 the copies to order again (the only column edited). 补定 closes the
// shortfall on each chosen row and inserts a new open order for the copies of column 9.

#include "platform/form.h"

#include <cstdint>

class QLineEdit;
namespace vb {
class FlexGrid;
}

class YanShouBDD : public vb::Form {
    Q_OBJECT
public:
    YanShouBDD();

    bool editFlag = false;
    int16_t editCell[2] = {};

    void loadData(const QString& sql);
    void gridFix();

    void Command1_Click(int index);
    void selectRange();
    void unselectRange();
    void editCellOpen();
    void saveBuDing();
    void menuAt();

    vb::FlexGrid* Grid1();
    QLineEdit* Text1();

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onResize() override;

private:
    // The next cgkid from the counter in Global, on a connection of its own.
    int16_t newCgkId();
    void Text1_LostFocus();
    void highlightRow();
    bool m_placing = false; // the editor is being placed over column 9
};
