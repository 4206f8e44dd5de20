#pragma once
// CaiGouprintfrm (采购来源打印): the purchase sources of cgk in a grid; 确定 prints the orders
// of the chosen source as an order list and the form stays open for the next one.
//
// The order list itself (the print table printCG, its total row and the report) is shared
// by this form, the date form and the purchase browser: see caigouprint below.

#include "platform/form.h"

#include <QString>

#include <cstdint>

class QPushButton;

namespace adodb {
class Connection;
}
namespace vb {
class FlexGrid;
}

namespace caigouprint {

// The head of the statement that fills printCG; each caller adds its own tail.
QString insertHead();
// Empties printCG, runs the caller's insert, adds the "合  计" row. Returns the number of
// orders inserted, as the 16-bit count the title shows (an overflow above 32767).
int16_t fillPrintCG(adodb::Connection& conn, const QString& insertSql);
// "图书采购定单（n种）"
QString title(int16_t count);
// The paper message, then, with errors passed over, printCG read back and shown through the
// printCG report with the title; "没有符合条件的记录！" when nothing can be read.
void showPrintCG(int16_t count);

// The hourglass while a print works; the default pointer again when it goes.
class WaitPointer {
public:
    WaitPointer();
    ~WaitPointer();
    WaitPointer(const WaitPointer&) = delete;
    WaitPointer& operator=(const WaitPointer&) = delete;
};

} // namespace caigouprint

class CaiGouprintfrm : public vb::Form {
    Q_OBJECT
public:
    CaiGouprintfrm();

    // 确定 prints for the source in the current row, 取消 unloads.
    void Command1_Click(int index);

    vb::FlexGrid* Grid1();
    QPushButton* Command1(int index);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
};
