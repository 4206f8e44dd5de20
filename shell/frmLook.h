#pragma once
// frmLook: the start screen shown above the frame after a good login.

#include "platform/form.h"

class frmLook : public vb::Form {
    Q_OBJECT
public:
    frmLook();
    bool isTopLevelForm() const override { return true; }

protected:
    void build(QWidget* w) override;
};
