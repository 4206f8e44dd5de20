#pragma once
// Shared by the purchase tests: a fresh database as the profile, a connection on it, and
// small helpers to type into a field and leave it as a user would.

#include "data/globals.h"
#include "platform/adodb.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QTest>

#include <memory>
#include <ostream>

class PurchaseDb : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        gConnStr = makeDatabase(false);
        gUserName = QStringLiteral("采购员甲");
        conn = std::make_unique<adodb::Connection>();
        conn->Open(gConnStr);
    }
    void TearDown() override {
        conn.reset();
        DbTest::TearDown();
    }
    QString q(const QString& sql) { return testsupport::querySqlite(dbPath(), sql); }
    void exec(const QString& sql) { testsupport::execSqlite(dbPath(), sql); }

    std::unique_ptr<adodb::Connection> conn;
};

using testsupport::settle;
using testsupport::typeText;
