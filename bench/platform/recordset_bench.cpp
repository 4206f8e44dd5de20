// Opening and walking 100,000 rows through the Recordset (unixODBC, the SQLite3 ODBC
// driver, the compat extension) against a plain sqlite3 loop over the same file, and
// binding the rows to a FlexGrid. Run by hand:
//   bench_recordset [rows] [runs]
// Prints the median of each and the ratio.
#include "data/sqlitecompat/orvane_compat.h"
#include "platform/adodb.h"
#include "platform/flexgrid.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

const char* kSelect = "Select cgkid,bookname,author,publisher,isbn,price,bookcount,yddate From cgk";

void makeFile(const QString& path, int rows) {
    sqlite3* db = nullptr;
    sqlite3_open(path.toUtf8().constData(), &db);
    orvane_compat_register(db);
    sqlite3_exec(
        db,
        "CREATE TABLE cgk (cgkid INTEGER PRIMARY KEY, bookname VARCHAR(100) COLLATE VBTEXT, author "
        "VARCHAR(60), "
        "publisher VARCHAR(60), isbn VARCHAR(20), price REAL, bookcount INTEGER, yddate DATETIME)",
        nullptr, nullptr, nullptr);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, "INSERT INTO cgk VALUES (?,?,?,?,?,?,?,?)", -1, &st, nullptr);
    for (int i = 1; i <= rows; ++i) {
        const QByteArray name = QStringLiteral("中国图书馆分类法研究 第%1卷").arg(i).toUtf8();
        sqlite3_bind_int(st, 1, i);
        sqlite3_bind_text(st, 2, name.constData(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 3, "王小波", -1, SQLITE_STATIC);
        sqlite3_bind_text(st, 4, "清华大学出版社", -1, SQLITE_STATIC);
        sqlite3_bind_text(st, 5, "7-302-12345-6", -1, SQLITE_STATIC);
        sqlite3_bind_double(st, 6, 12.5 + i % 100);
        sqlite3_bind_int(st, 7, 1 + i % 5);
        sqlite3_bind_text(st, 8, "2003-01-31", -1, SQLITE_STATIC);
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
}

// What a program that walks the rows by hand does: every column read as text.
double plainLoop(const QString& path, long* count) {
    QElapsedTimer t;
    t.start();
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    orvane_compat_register(db);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, kSelect, -1, &st, nullptr);
    long n = 0;
    size_t bytes = 0;
    while (sqlite3_step(st) == SQLITE_ROW) {
        for (int c = 0; c < 8; ++c) {
            const unsigned char* v = sqlite3_column_text(st, c);
            if (v) bytes += static_cast<size_t>(sqlite3_column_bytes(st, c));
        }
        ++n;
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    *count = n + static_cast<long>(bytes % 1);
    return static_cast<double>(t.nsecsElapsed()) / 1e6;
}

double recordsetWalk(const QString& profile, long* count, std::unique_ptr<adodb::Recordset>* keep) {
    QElapsedTimer t;
    t.start();
    adodb::Connection conn;
    conn.Open(profile);
    auto rs = std::make_unique<adodb::Recordset>();
    rs->Open(QString::fromLatin1(kSelect), conn, adodb::adOpenDynamic, adodb::adLockOptimistic,
             adodb::adCmdText);
    long n = 0;
    while (!rs->EOF_()) {
        for (int c = 0; c < 8; ++c) (void)rs->value(c);
        rs->MoveNext();
        ++n;
    }
    *count = n;
    const double ms = static_cast<double>(t.nsecsElapsed()) / 1e6;
    if (keep) *keep = std::move(rs);
    return ms;
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int runs = argc > 2 ? std::atoi(argv[2]) : 7;
    QTemporaryDir dir;
    const QString path = dir.path() + QStringLiteral("/bench.db");
    makeFile(path, rows);
    const QString profile =
        QString::fromLocal8Bit(
            qgetenv("BENCH_PROFILE").isEmpty()
                ? QByteArray("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
                : qgetenv("BENCH_PROFILE"))
            .arg(path, QStringLiteral(ORVANE_COMPAT_MODULE));

    std::vector<double> plain, rset, bind;
    std::unique_ptr<adodb::Recordset> last;
    vb::FlexGrid grid;
    grid.resize(800, 600);
    grid.show();
    for (int r = 0; r < runs; ++r) {
        long a = 0, b = 0;
        plain.push_back(plainLoop(path, &a));
        rset.push_back(recordsetWalk(profile, &b, &last));
        if (a != rows || b != rows) {
            std::fprintf(stderr, "row counts differ: %ld %ld\n", a, b);
            return 1;
        }
        QElapsedTimer t;
        t.start();
        grid.bind(*last);
        QApplication::processEvents(); // the first paint of the bound grid
        bind.push_back(static_cast<double>(t.nsecsElapsed()) / 1e6);
    }
    const double p = median(plain), r = median(rset), g = median(bind);
    std::printf("rows %d, runs %d (medians)\n", rows, runs);
    std::printf("plain sqlite3 loop      %8.1f ms\n", p);
    std::printf("Recordset open + walk   %8.1f ms   ratio %.2fx (target within 3x)\n", r, r / p);
    std::printf("FlexGrid bind + paint   %8.1f ms   (target under 500 ms)\n", g);
    return 0;
}
