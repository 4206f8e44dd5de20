#pragma once
// YanShoudofrm (采购验收): names the source whose open orders are to be accepted. The
// picker lists sources by part of their name; the search itself takes the whole name.

#include "platform/form.h"

class QLineEdit;

class YanShoudofrm : public vb::Form {
    Q_OBJECT
public:
    YanShoudofrm();

    void Command1_Click(int index);
    void Command2_Click();
    // Lists the open orders of the source in YanShoufrm; false when there are none.
    bool openYanShouGrid();

    QLineEdit* Text1();

protected:
    void build(QWidget* w) override;
};
