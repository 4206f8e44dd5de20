// Placeholder until the report engine lands (see report.h for the interface).
#include "platform/report.h"

#include "platform/errors.h"

#include <QWidget>

namespace vb {

DataReport::DataReport(const QString& name) : Form(name) {}
DataReport::~DataReport() = default;

void DataReport::build(QWidget* w) {
    w->resize(800, 600);
}

void DataReport::Refresh() {
    window();
}

int DataReport::pageCount() {
    return 0;
}

void DataReport::exportPdf(const QString&) {
    throw VbError(5, QStringLiteral("report engine not built"));
}
void DataReport::exportXlsx(const QString&) {
    throw VbError(5, QStringLiteral("report engine not built"));
}
void DataReport::exportCsv(const QString&) {
    throw VbError(5, QStringLiteral("report engine not built"));
}

} // namespace vb
