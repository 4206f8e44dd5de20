#pragma once
// AboutFrm: the about box, modal.

#include "platform/form.h"

class AboutFrm : public vb::Form {
    Q_OBJECT
public:
    AboutFrm();
    bool isTopLevelForm() const override { return true; }

protected:
    void build(QWidget* w) override;
};
