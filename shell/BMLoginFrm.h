#pragma once
// BMLoginFrm: the gate of the program. Makes the first real connection, checks name and
// password against LibUse and the right to this subsystem, and starts the main frame.
// It is also where a wrong connection profile is found and repaired.

#include "platform/form.h"

#include <cstdint>

class QLineEdit;

class BMLoginFrm : public vb::Form {
    Q_OBJECT
public:
    BMLoginFrm();
    bool isTopLevelForm() const override { return true; }

    // The handlers, public so the frame's tests can drive them like a click.
    void cmdLogin_Click();
    void cmdExit_Click();
    void Image3_Click();

protected:
    void build(QWidget* w) override;
    void onLoad() override;

private:
    QLineEdit* txtInName();
    QLineEdit* txtInPassword();

    // Wrong name-or-password answers only; connection failures and refused rights don't count.
    int16_t loginCount = 0;
};
