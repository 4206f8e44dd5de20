// Placeholder until the report engine and its layouts land: the objects exist so that the
// generators and the print forms can be built against them.
#include "query/reports.h"

#define ORVANE_REPORT_IMPL(name)                                                                   \
    name::name() : vb::DataReport(QStringLiteral(#name)) {}

ORVANE_REPORT_IMPL(printCG)
ORVANE_REPORT_IMPL(printMX)
ORVANE_REPORT_IMPL(printLeibie)
ORVANE_REPORT_IMPL(printJinECB)
ORVANE_REPORT_IMPL(printJinEYFZ)
ORVANE_REPORT_IMPL(printJinELV)
ORVANE_REPORT_IMPL(printTotalJine)
ORVANE_REPORT_IMPL(printYStotal)
ORVANE_REPORT_IMPL(printYSmx)
