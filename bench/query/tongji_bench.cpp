// Every statistics generator over a full order table (32,767 orders, the most the 16-bit
// ids allow) on the embedded database through ODBC: 40 sources, 8 languages, 5 purchase
// ways, 23 classes and none, subscription numbers per title, two thirds accepted in
// vouchers of about 20 rows. Prints the time of each run, report handed over included.
//   bench_tongji [orders=32767] [printType,printType...]
#include "bench/bench.h"
#include "platform/report.h"
#include "query/tongji.h"

#include <QApplication>
#include <QTemporaryDir>

#include <random>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int orders = argc > 1 ? std::atoi(argv[1]) : 32767;
    QTemporaryDir tmp;
    const QString path = tmp.path() + QStringLiteral("/bench.db");
    bench::useDatabase(path);
    std::mt19937 rng(7);
    const char* langs[] = {"中文", "英文", "日文", "俄文", "德文", "法文", "韩文", "其它"};
    const char* ways[] = {"预订", "现购", "邮购", "赠送", "交换"};
    const char letters[] = "ABCDEFGHIJKNOPQRSTUVXZ";
    bench::insertRows(
        path, {},
        "Insert Into cgk (cgkid,bookfrom,bookname,zdcode,classcode,lagclass,cgff,price,bookcount,"
        "status,batch,ysprice,yscount,ysjine,ysdate) Values (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
        orders, [&](int id) {
            const int title = static_cast<int>(rng() % 24000);
            const QString src = QStringLiteral("书商%1").arg(rng() % 40);
            const bool accepted = rng() % 3 != 0;
            const int copies = 1 + static_cast<int>(rng() % 5);
            const double price = 5 + static_cast<double>(rng() % 9000) / 100;
            const QVariant cls =
                title % 50 == 0
                    ? QVariant()
                    : QVariant(QString(QChar(letters[title % 22])) + QString::number(title % 97));
            std::vector<QVariant> row{id,
                                      src,
                                      QStringLiteral("书名%1").arg(title),
                                      QStringLiteral("03-%1").arg(title % 9000),
                                      cls,
                                      langs[title % 8],
                                      ways[id % 5],
                                      price,
                                      copies,
                                      accepted ? 1 : 0};
            if (accepted)
                row.insert(row.end(), {QString::number(id / 20), price, copies,
                                       static_cast<double>(1000 + id / 20), "2003-05-06"});
            else
                row.resize(15);
            return row;
        });

    std::printf("%d orders\n", orders);
    const QStringList only = argc > 2 ? QString::fromLocal8Bit(argv[2]).split(u',') : QStringList();
    for (const QString& t : tongji::printTypes()) {
        if (!only.isEmpty() && !only.contains(t)) continue;
        long rows = 0;
        QElapsedTimer timer;
        timer.start();
        tongji::run(t, QString(), QString(),
                    [&](vb::DataReport& r) { rows = r.DataSource ? r.DataSource->rowCount() : 0; });
        std::printf("%-11s %8.1f ms  %6ld rows read\n", qPrintable(t), bench::ms(timer), rows);
    }
    return 0;
}
