#pragma once
// YanShouBDD (补定单浏览): the titles accepted short, the twin of YanShoufrm. Column 1 holds
// the mark, column 9 the copies to order again (the only column edited). 补定 closes the
// shortfall on each chosen row and inserts a new open order for the copies of column 9.

#include "acceptance/markgrid.h"

class YanShouBDD : public MarkGridForm {
    Q_OBJECT
public:
    YanShouBDD();

    void gridFix() override;

    void Command1_Click(int index) override;
    void editCellOpen() override;
    void saveBuDing();

protected:
    void build(QWidget* w) override;
    void editorLeft() override { highlightRow(); }

private:
    // The next cgkid from the counter in Global, on a connection of its own.
    int16_t newCgkId();
    void highlightRow();
    bool m_placing = false; // the editor is being placed over column 9
};
