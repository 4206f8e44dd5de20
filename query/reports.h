#pragma once
// The nine report layouts. Each is one object named as the report; see platform/report.h
// for how a caller hands it a recordset.

#include "platform/report.h"

#define ORVANE_REPORT(name)                                                                        \
    class name : public vb::DataReport {                                                           \
    public:                                                                                        \
        name();                                                                                    \
    };

ORVANE_REPORT(printCG)
ORVANE_REPORT(printMX)
ORVANE_REPORT(printLeibie)
ORVANE_REPORT(printJinECB)
ORVANE_REPORT(printJinEYFZ)
ORVANE_REPORT(printJinELV)
ORVANE_REPORT(printTotalJine)
ORVANE_REPORT(printYStotal)
ORVANE_REPORT(printYSmx)

#undef ORVANE_REPORT
