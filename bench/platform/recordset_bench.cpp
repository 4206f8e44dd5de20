// Walking 100,000 rows through the Recordset (unixODBC, the SQLite3 driver, the compat
// extension) against a plain sqlite3 loop, and binding them to a FlexGrid; prints medians.
//   bench_recordset [rows] [runs]
#include "bench/bench.h"
#include "platform/flexgrid.h"

#include <QApplication>
#include <QTemporaryDir>

namespace {

const char* kSelect = "Select cgkid,bookname,author,publisher,isbn,price,bookcount,yddate From cgk";

// What a program that walks the rows by hand does: every column read as text.
long plainLoop(const QString& path) {
    sqlite3* db = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    orvane_compat_register(db);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, kSelect, -1, &st, nullptr);
    long n = 0;
    size_t bytes = 0; // a text is of no use without its length
    for (; sqlite3_step(st) == SQLITE_ROW; ++n)
        for (int c = 0; c < 8; ++c)
            if (sqlite3_column_text(st, c))
                bytes += static_cast<size_t>(sqlite3_column_bytes(st, c));
    sqlite3_finalize(st);
    sqlite3_close(db);
    return n + static_cast<long>(bytes % 1);
}

// Timed up to the walk's end: closing the connection and dropping the last run's rows not.
long recordsetWalk(const QString& profile, std::unique_ptr<adodb::Recordset>& keep, double& ms) {
    QElapsedTimer t;
    t.start();
    adodb::Connection conn;
    conn.Open(profile);
    auto rs = std::make_unique<adodb::Recordset>();
    rs->Open(QString::fromLatin1(kSelect), conn, adodb::adOpenDynamic, adodb::adLockOptimistic,
             adodb::adCmdText);
    long n = 0;
    for (; !rs->EOF_(); rs->MoveNext(), ++n)
        for (int c = 0; c < 8; ++c) (void)rs->value(c);
    ms = bench::ms(t);
    keep = std::move(rs);
    return n;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int runs = argc > 2 ? std::atoi(argv[2]) : 7;
    QTemporaryDir dir;
    const QString path = dir.path() + QStringLiteral("/bench.db");
    bench::exec(path,
                QStringLiteral("CREATE TABLE cgk (cgkid INTEGER PRIMARY KEY, bookname VARCHAR(100) "
                               "COLLATE VBTEXT, author VARCHAR(60), publisher VARCHAR(60), isbn "
                               "VARCHAR(20), price REAL, bookcount INTEGER, yddate DATETIME);"
                               "WITH RECURSIVE k(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM k WHERE "
                               "i<%1) INSERT INTO cgk SELECT i,'中国图书馆分类法研究 第'||i||'卷',"
                               "'王小波','清华大学出版社','7-302-12345-6',12.5+i%100,1+i%5,"
                               "'2003-01-31' FROM k")
                    .arg(rows));
    const QString profile = bench::profile(path);

    std::vector<double> plain, rset, bind;
    std::unique_ptr<adodb::Recordset> last;
    vb::FlexGrid grid;
    grid.resize(800, 600);
    grid.show();
    for (int r = 0; r < runs; ++r) {
        QElapsedTimer t;
        t.start();
        const long a = plainLoop(path);
        plain.push_back(bench::ms(t));
        const long b = recordsetWalk(profile, last, rset.emplace_back());
        if (a != rows || b != rows) {
            std::fprintf(stderr, "row counts differ: %ld %ld\n", a, b);
            return 1;
        }
        t.restart();
        grid.bind(*last);
        QApplication::processEvents(); // the first paint of the bound grid
        bind.push_back(bench::ms(t));
    }
    const double p = bench::median(plain), r = bench::median(rset), g = bench::median(bind);
    std::printf("rows %d, runs %d (medians)\n", rows, runs);
    std::printf("plain sqlite3 loop      %8.1f ms\n", p);
    std::printf("Recordset open + walk   %8.1f ms   ratio %.2fx (target within 3x)\n", r, r / p);
    std::printf("FlexGrid bind + paint   %8.1f ms   (target under 500 ms)\n", g);
    return 0;
}
