#pragma once
// YanShouBDDfrm (补 定 单): narrows the titles accepted short by batch, by source or by both
// (each matched whole) and lists them in YanShouBDD.

#include "platform/form.h"

class QLineEdit;

class YanShouBDDfrm : public vb::Form {
    Q_OBJECT
public:
    YanShouBDDfrm();

    void Command1_Click(int index);
    void Command2_Click(int index);
    bool openBuDingGrid();

    QLineEdit* Text1(int index);

protected:
    void build(QWidget* w) override;
};
