#pragma once
// What the shell's tests share: clean process-wide strings and a profile that cannot
// connect.

#include "data/globals.h"
#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

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

// An ODBC profile nothing can connect through.
inline QString brokenProfile() {
    return QStringLiteral("PROVIDER=MSDASQL;Driver=OrvaneNoSuchDriver;Server=x;UID=u;PWD=p;");
}

} // namespace shelltest
