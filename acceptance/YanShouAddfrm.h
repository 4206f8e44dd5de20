#pragma once
// YanShouAddfrm: the acceptance voucher. Opened modally by YanShoufrm with the totals in its
// caption and the proposed amount; takes batch, amount and invoice and/or receipt number
// and hands them to YanShoufrm::addYS.

#include "platform/form.h"

class QLineEdit;

class YanShouAddfrm : public vb::Form {
    Q_OBJECT
public:
    YanShouAddfrm();
    bool isTopLevelForm() const override { return true; }

    void Command1_Click(int index);
    void Text1_LostFocus(int index);

    QLineEdit* Text1(int index);

protected:
    void build(QWidget* w) override;
};
