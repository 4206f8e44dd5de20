#pragma once
// CaiGoufindDatefrm (采购打印（按日期）): prints the orders of a span of order dates as an
// order list, sorted by date. The form stays open for the next span.

#include "platform/form.h"

#include <QString>

class QPushButton;

namespace vb {
class MaskEdBox;
}

class CaiGoufindDatefrm : public vb::Form {
    Q_OBJECT
public:
    CaiGoufindDatefrm();

    // What an empty date box reads.
    static QString emptyDate();

    // 确定 prints for the span lDate(0) .. lDate(1), 取消 unloads.
    void Command1_Click(int index);

    vb::MaskEdBox* lDate(int index);
    QPushButton* Command1(int index);

protected:
    void build(QWidget* w) override;

private:
    void lDate_LostFocus(int index);
    void printSpan();
};
