#pragma once
// EditPassFrm: the logged-in user (gLoginName) replaces the password in LibUse.

#include "platform/form.h"

class QLineEdit;

class EditPassFrm : public vb::Form {
    Q_OBJECT
public:
    EditPassFrm();
    bool isTopLevelForm() const override { return true; }

    void CmdOk_Click();
    void CmdCancel_Click();

protected:
    void build(QWidget* w) override;

private:
    QLineEdit* Text1(int index);
};
