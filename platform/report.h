#pragma once
// The report engine's face to the forms, as the legacy DataReport had it: a report is one
// form-like object named as the report; the caller fills a print table, hands the
// recordset over and shows it.
//
//     auto rs = std::make_shared<adodb::Recordset>();
//     rs->Open(sql, conn);
//     auto& r = vb::form<printCG>();
//     r.DataSource = rs;          // flat, or shaped (grouped reports)
//     r.Title = u"图书采购定单（3种）"_s;
//     r.landscape = true;         // as the caller's paper message said
//     r.Refresh();
//     r.Show();                   // non-modal preview in the frame
//
// Headless output (tests, the command-line report tool, the preview's own buttons) goes
// through exportPdf / exportXlsx / exportCsv, which raise vb::VbError with a readable
// message when the target cannot be written and leave no half-written file behind.

#include "platform/adodb.h"
#include "platform/form.h"

#include <QString>

#include <memory>

namespace vb {

class DataReport : public Form {
    Q_OBJECT
public:
    explicit DataReport(const QString& name);
    ~DataReport() override;

    // What the report shows: a flat recordset, or a shaped one whose parent rows are the
    // groups and whose child recordsets ("myPrint") are the detail rows.
    std::shared_ptr<adodb::Recordset> DataSource;
    // Printed wherever a label holds "%i".
    QString Title;
    // Page orientation the preview and the exports start with.
    bool landscape = false;

    // Lays the pages out again from DataSource and Title.
    void Refresh();
    int pageCount();

    void exportPdf(const QString& path);
    void exportXlsx(const QString& path);
    void exportCsv(const QString& path);

protected:
    void build(QWidget* w) override;
};

} // namespace vb
