// Every statistics generator over 32,767 orders (the most the 16-bit ids allow) through
// ODBC: 40 sources, 8 languages, 5 ways, 22 classes and none, two thirds accepted in
// vouchers of 20 rows. Prints the time of each run, report handed over included.
//   bench_tongji [orders=32767] [printType,printType...]
#include "bench/bench.h"
#include "platform/report.h"
#include "query/tongji.h"

#include <QApplication>
#include <QTemporaryDir>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int orders = argc > 1 ? std::atoi(argv[1]) : 32767;
    QTemporaryDir tmp;
    const QString path = tmp.path() + QStringLiteral("/bench.db");
    bench::useDatabase(path);
    // Languages and ways are two characters each, cut from one string.
    bench::exec(path,
                QStringLiteral(
                    "WITH RECURSIVE k(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM k WHERE i<%1), "
                    "o AS (SELECT i, i*7919%24000 t, i*31%40 s, i%3<>0 a, 1+i%5 n, "
                    "5+i*104729%9000/100.0 p FROM k) "
                    "INSERT INTO cgk (cgkid,bookfrom,bookname,zdcode,classcode,lagclass,cgff,price,"
                    "bookcount,status,batch,ysprice,yscount,ysjine,ysdate) SELECT i,'书商'||s,"
                    "'书名'||t,'03-'||(t%9000),CASE WHEN t%50=0 THEN NULL ELSE "
                    "substr('ABCDEFGHIJKNOPQRSTUVXZ',t%22+1,1)||(t%97) END,"
                    "substr('中文英文日文俄文德文法文韩文其它',t%8*2+1,2),"
                    "substr('预订现购邮购赠送交换',i%5*2+1,2),p,n,a,"
                    "CASE WHEN a THEN CAST(i/20 AS TEXT) END,CASE WHEN a THEN p END,"
                    "CASE WHEN a THEN n END,CASE WHEN a THEN 1000.0+i/20 END,"
                    "CASE WHEN a THEN '2003-05-06' END FROM o")
                    .arg(orders));

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
