#pragma once
// What the shell's tests share: clean process-wide strings, clicks as a user makes them.

#include "data/globals.h"
#include "tests/support/printto.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QTest>

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

inline void type(QLineEdit* e, const QString& text) {
    e->setText(text);
}

// An ODBC profile nothing can connect through.
inline QString brokenProfile() {
    return QStringLiteral("PROVIDER=MSDASQL;Driver=OrvaneNoSuchDriver;Server=x;UID=u;PWD=p;");
}

} // namespace shelltest
