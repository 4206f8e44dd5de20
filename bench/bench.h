#pragma once
// What the benchmarks share: the clock, medians, a scratch database made by the database
// tool or filled straight through sqlite3, and the ODBC profile the client would use for it.

#include "data/dbinit/dbinit.h"
#include "data/globals.h"
#include "data/sqlitecompat/orvane_compat.h"
#include "platform/adodb.h"
#include "platform/msgbox.h"

#include <QElapsedTimer>
#include <QFileInfo>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace bench {

inline double ms(const QElapsedTimer& t) {
    return static_cast<double>(t.nsecsElapsed()) / 1e6;
}

inline double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

inline QString profile(const QString& path) {
    return QStringLiteral("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
        .arg(path, QStringLiteral(ORVANE_COMPAT_MODULE));
}

// Makes the tool's database at path unless one is there, makes it the program's
// connection and answers every box (none may wait for a person); exits on failure.
inline std::shared_ptr<vb::ScriptedMsgBox> useDatabase(const QString& path,
                                                       const orvane::dbinit::Options& o = {}) {
    std::string error;
    if (!QFileInfo::exists(path) &&
        !orvane::dbinit::createDatabase(path.toStdString(), o, &error)) {
        std::fprintf(stderr, "database: %s\n", error.c_str());
        std::exit(1);
    }
    gConnStr = profile(path);
    gUserName = QStringLiteral("bench");
    auto boxes = std::make_shared<vb::ScriptedMsgBox>();
    vb::setMsgBoxProvider(boxes);
    return boxes;
}

// The first cell of a statement's result on the program's connection ("" for none).
inline QString first(const QString& sql) {
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(sql, conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    return rs.EOF_() ? QString() : rs.text(0);
}

// Runs a script in one transaction straight through sqlite3 with the compat functions
// (no ODBC in between: this only makes the data); exits on failure.
inline void exec(const QString& path, const QString& script) {
    sqlite3* db = nullptr;
    sqlite3_open(path.toUtf8().constData(), &db);
    orvane_compat_register(db);
    char* error = nullptr;
    const QByteArray sql = (QStringLiteral("BEGIN;") + script + QStringLiteral(";COMMIT")).toUtf8();
    if (sqlite3_exec(db, sql.constData(), nullptr, nullptr, &error) != SQLITE_OK) {
        std::fprintf(stderr, "data: %s\n", error);
        std::exit(1);
    }
    sqlite3_close(db);
}

} // namespace bench
