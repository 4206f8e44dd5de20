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
#include <QVariant>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
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

// Runs `script`, then `insert` for i = 1..n with the values row(i) gives (a null QVariant
// is NULL), in one transaction straight through sqlite3 with the compat functions.
inline void insertRows(const QString& path, const QString& script, const char* insert = nullptr,
                       int n = 0, const std::function<std::vector<QVariant>(int)>& row = {}) {
    sqlite3* db = nullptr;
    sqlite3_open(path.toUtf8().constData(), &db);
    orvane_compat_register(db);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_exec(db, script.toUtf8().constData(), nullptr, nullptr, nullptr);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, insert, -1, &st, nullptr);
    for (int i = 1; i <= n; ++i) {
        const std::vector<QVariant> values = row(i);
        for (int k = 1; k <= static_cast<int>(values.size()); ++k) {
            const QVariant& v = values[static_cast<size_t>(k - 1)];
            if (v.isNull()) {
                sqlite3_bind_null(st, k);
            } else if (v.typeId() == QMetaType::Double) {
                sqlite3_bind_double(st, k, v.toDouble());
            } else if (v.typeId() == QMetaType::Int) {
                sqlite3_bind_int(st, k, v.toInt());
            } else {
                const QByteArray text = v.toString().toUtf8();
                sqlite3_bind_text(st, k, text.constData(), -1, SQLITE_TRANSIENT);
            }
        }
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
}

} // namespace bench
