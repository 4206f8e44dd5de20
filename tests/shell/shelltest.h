#pragma once
// What the shell's tests share: clean process-wide strings, clicks as a user makes them,
// a profile that cannot connect.

#include "data/globals.h"
#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using testsupport::boxes;
using namespace Qt::StringLiterals;

namespace shelltest {

inline void resetGlobals() {
    gConnStr.clear();
    gServer.clear();
    gDatabase.clear();
    gUserName.clear();
    gLoginName.clear();
}

// A real mouse click, delivered through the application (where an escaping error and the
// recorded process end are caught, as in the client).
inline void click(QAbstractButton* b) {
    QTest::mouseClick(b, Qt::LeftButton);
}

// An ODBC profile nothing can connect through.
inline QString brokenProfile() {
    return QStringLiteral("PROVIDER=MSDASQL;Driver=OrvaneNoSuchDriver;Server=x;UID=u;PWD=p;");
}

} // namespace shelltest
