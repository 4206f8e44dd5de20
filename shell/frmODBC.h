#pragma once
// frmODBC: the dialog that makes the connection profile. A named ODBC data source, or a
// driver and server; user, password and database; test and save.

#include "platform/adodb.h"
#include "platform/form.h"

#include <memory>

class QComboBox;
class QGroupBox;
class QLineEdit;

class frmODBC : public vb::Form {
    Q_OBJECT
public:
    frmODBC();
    bool isTopLevelForm() const override { return true; }

    // Fills the data-source and driver lists (run by Load).
    void GetDSNsAndDrivers();

    // The profile from what the dialog holds, as test and save build it.
    QString buildConnectString();
    // Message and title for a failed test, chosen by the provider's error text.
    struct Failure {
        QString text;
        QString title;
    };
    static Failure classifyFailure(const QString& description);

    void cboDSNList_Click();
    void cmdCeshi_Click();
    void CmdOk_Click();
    void CmdCancel_Click();

    // The test connection, held only while a test runs.
    std::unique_ptr<adodb::Connection> Con;

protected:
    void build(QWidget* w) override;
    void onLoad() override;

private:
    QString checkOdbcInput();
    QComboBox* combo(const char* name);
    QLineEdit* text(const char* name);
    QGroupBox* frame();
};
