// Every statistics generator over a full order table (32,767 orders, the most the 16-bit
// ids allow) on the embedded database through ODBC: 40 sources, 8 languages, 5 purchase
// ways, 23 classes and none, subscription numbers per title, two thirds accepted in
// vouchers of about 20 rows. Prints the time of each run, report handed over included.
#include "data/dbinit/dbinit.h"
#include "data/globals.h"
#include "data/sqlitecompat/orvane_compat.h"
#include "platform/msgbox.h"
#include "platform/report.h"
#include "query/tongji.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <cstdio>
#include <random>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int orders = argc > 1 ? std::atoi(argv[1]) : 32767;
    QTemporaryDir tmp;
    const QString path = tmp.path() + QStringLiteral("/bench.db");
    std::string error;
    if (!orvane::dbinit::createDatabase(path.toStdString(), false, &error)) {
        std::fprintf(stderr, "database: %s\n", error.c_str());
        return 1;
    }
    sqlite3* db = nullptr;
    sqlite3_open(path.toUtf8().constData(), &db);
    orvane_compat_register(db);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db,
                       "Insert Into cgk (cgkid,bookfrom,bookname,zdcode,classcode,lagclass,cgff,"
                       "price,bookcount,status,batch,ysprice,yscount,ysjine,ysdate) Values "
                       "(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
                       -1, &st, nullptr);
    std::mt19937 rng(7);
    const char* langs[] = {"中文", "英文", "日文", "俄文", "德文", "法文", "韩文", "其它"};
    const char* ways[] = {"预订", "现购", "邮购", "赠送", "交换"};
    const char letters[] = "ABCDEFGHIJKNOPQRSTUVXZ";
    for (int id = 1; id <= orders; ++id) {
        const int title = static_cast<int>(rng() % 24000);
        const std::string src = "书商" + std::to_string(rng() % 40);
        const std::string name = "书名" + std::to_string(title);
        const std::string zd = "03-" + std::to_string(title % 9000);
        char cls[16];
        std::snprintf(cls, sizeof cls, "%c%d", letters[title % 22], title % 97);
        const bool accepted = rng() % 3 != 0;
        const int copies = 1 + static_cast<int>(rng() % 5);
        const double price = 5 + static_cast<double>(rng() % 9000) / 100;
        sqlite3_bind_int(st, 1, id);
        sqlite3_bind_text(st, 2, src.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 3, name.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 4, zd.c_str(), -1, SQLITE_TRANSIENT);
        if (title % 50 == 0)
            sqlite3_bind_null(st, 5);
        else
            sqlite3_bind_text(st, 5, cls, -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 6, langs[title % 8], -1, SQLITE_STATIC);
        sqlite3_bind_text(st, 7, ways[id % 5], -1, SQLITE_STATIC);
        sqlite3_bind_double(st, 8, price);
        sqlite3_bind_int(st, 9, copies);
        sqlite3_bind_int(st, 10, accepted ? 1 : 0);
        if (accepted) {
            const std::string batch = std::to_string(id / 20);
            sqlite3_bind_text(st, 11, batch.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_bind_double(st, 12, price);
            sqlite3_bind_int(st, 13, copies);
            sqlite3_bind_double(st, 14, 1000 + id / 20);
            sqlite3_bind_text(st, 15, "2003-05-06", -1, SQLITE_STATIC);
        } else {
            for (int c = 11; c <= 15; ++c) sqlite3_bind_null(st, c);
        }
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);

    gConnStr = QStringLiteral("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
                   .arg(path, QStringLiteral(ORVANE_COMPAT_MODULE));
    vb::setMsgBoxProvider(std::make_shared<vb::ScriptedMsgBox>());
    std::printf("%d orders\n", orders);
    const QStringList only = argc > 2 ? QString::fromLocal8Bit(argv[2]).split(u',') : QStringList();
    for (const QString& t : tongji::printTypes()) {
        if (!only.isEmpty() && !only.contains(t)) continue;
        long rows = 0;
        QElapsedTimer timer;
        timer.start();
        tongji::run(t, QString(), QString(),
                    [&](vb::DataReport& r) { rows = r.DataSource ? r.DataSource->rowCount() : 0; });
        std::printf("%-11s %8.1f ms  %6ld rows read\n", qPrintable(t),
                    static_cast<double>(timer.nsecsElapsed()) / 1e6, rows);
    }
    return 0;
}
