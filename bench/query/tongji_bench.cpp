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
    QString sql = QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,zdcode,classcode,"
                                 "lagclass,cgff,price,bookcount,status,batch,ysprice,yscount,"
                                 "ysjine,ysdate) Values ");
    for (int id = 1; id <= orders; ++id) {
        const int title = static_cast<int>(rng() % 24000);
        const unsigned src = rng() % 40;
        const bool accepted = rng() % 3 != 0;
        const int copies = 1 + static_cast<int>(rng() % 5);
        // Written with all its digits, the price reads back as the same double.
        const QString price = QString::number(5 + static_cast<double>(rng() % 9000) / 100, 'g', 17);
        const QString cls =
            title % 50 == 0
                ? QStringLiteral("NULL")
                : QStringLiteral("'%1%2'").arg(QChar(letters[title % 22])).arg(title % 97);
        sql += QStringLiteral("%1(%2,'书商%3','书名%4','03-%5',%6,'%7','%8',%9,%10,%11,")
                   .arg(id > 1 ? QStringLiteral(",") : QString())
                   .arg(id)
                   .arg(src)
                   .arg(title)
                   .arg(title % 9000)
                   .arg(cls, QString::fromUtf8(langs[title % 8]), QString::fromUtf8(ways[id % 5]),
                        price)
                   .arg(copies)
                   .arg(accepted ? 1 : 0);
        sql += accepted ? QStringLiteral("'%1',%2,%3,%4.0,'2003-05-06')")
                              .arg(id / 20)
                              .arg(price)
                              .arg(copies)
                              .arg(1000 + id / 20)
                        : QStringLiteral("NULL,NULL,NULL,NULL,NULL)");
    }
    bench::exec(path, sql);

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
