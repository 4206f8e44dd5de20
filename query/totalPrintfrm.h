#pragma once
// totalPrintfrm (采购金额统计): picks one of the seven amount statistics and opens the
// query builder for it; the statistic itself runs when the builder's condition is taken.

#include "platform/form.h"

class QPushButton;
class QRadioButton;

class totalPrintfrm : public vb::Form {
    Q_OBJECT
public:
    totalPrintfrm();

    // The printType word of option `index` (0..6).
    static QString optionWord(int index);

    void Command1_Click(int index);

    QRadioButton* Option1(int index);
    QPushButton* Command1(int index);

protected:
    void build(QWidget* w) override;
};
