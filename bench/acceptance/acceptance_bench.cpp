// The two saves at their heaviest, N rows each: a voucher (server dates, updates in one
// transaction, grid rows removed) and a replenishment (updates, counter draws, inserts).

#include "acceptance/YanShouAddfrm.h"
#include "acceptance/YanShouBDD.h"
#include "acceptance/YanShouBDDfrm.h"
#include "acceptance/YanShoudofrm.h"
#include "acceptance/YanShoufrm.h"
#include "bench/bench.h"
#include "platform/flexgrid.h"
#include "platform/form.h"

#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const int n = argc > 1 ? std::atoi(argv[1]) : 1000;
    QTemporaryDir dir;
    const QString db = dir.path() + QStringLiteral("/bench.db");
    auto boxes = bench::useDatabase(db);
    // For each i an open order of the source, and a short accepted one of batch B-1.
    bench::exec(db,
                QStringLiteral(
                    "WITH RECURSIVE k(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM k WHERE i<%1) "
                    "INSERT INTO cgk (cgkid,bookfrom,bookname,isbn,edition,price,bookcount,yddate,"
                    "status) SELECT i,'新华书店','书名'||i,'7-02-000'||i||'-1','第1版',25.5,3,"
                    "'2004-03-01',0 FROM k;"
                    "WITH RECURSIVE k(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM k WHERE i<%1) "
                    "INSERT INTO cgk (cgkid,bookfrom,bookname,isbn,price,bookcount,yddate,status,"
                    "batch,yscount,ysprice) SELECT %1+i,'人民文学出版社','欠书'||i,'7-02-001'||i||"
                    "'-1',20,5,'2004-03-01',1,'B-1',2,20 FROM k;"
                    "Update global Set code='10000' Where type='cgkid'")
                    .arg(n));

    QElapsedTimer t;
    t.start();
    auto& dlg = vb::form<YanShoudofrm>();
    dlg.Text1()->setText(QStringLiteral("新华书店"));
    dlg.openYanShouGrid();
    auto& grid = vb::form<YanShoufrm>();
    const qint64 load = t.elapsed();
    grid.Grid1()->setRow(1);
    grid.Grid1()->setRowSel(grid.Grid1()->Rows() - 1);
    grid.selectRange();
    QTimer::singleShot(0, [] {
        auto& v = vb::form<YanShouAddfrm>();
        v.Text1(1)->setText(QStringLiteral("B-2"));
        v.Text1(3)->setText(QStringLiteral("FP-1"));
        v.Command1_Click(0);
    });
    t.restart();
    grid.beginYanShou();
    const qint64 voucher = t.elapsed();
    const bool emptied = !grid.isLoaded();

    t.restart();
    auto& bdd = vb::form<YanShouBDDfrm>();
    bdd.Text1(0)->setText(QStringLiteral("B-1"));
    bdd.openBuDingGrid();
    auto& bgrid = vb::form<YanShouBDD>();
    const qint64 bload = t.elapsed();
    bgrid.Grid1()->setRow(1);
    bgrid.Grid1()->setRowSel(bgrid.Grid1()->Rows() - 1);
    bgrid.selectRange();
    boxes->answer(vb::vbYes);
    t.restart();
    bgrid.Command1_Click(1);
    const qint64 buding = t.elapsed();

    std::printf("rows %d\nacceptance grid load   %7.3f s\n", n, load / 1000.0);
    std::printf(
        "voucher of %d rows   %7.3f s  (written %s, grid closed %s)\n", n, voucher / 1000.0,
        qPrintable(bench::first(QStringLiteral("Select count(*) From cgk Where batch='B-2'"))),
        emptied ? "yes" : "no");
    std::printf("replenishment load     %7.3f s\n", bload / 1000.0);
    std::printf(
        "replenishment of %d %7.3f s  (new rows %s)\n", n, buding / 1000.0,
        qPrintable(bench::first(QStringLiteral("Select count(*) From cgk Where cgff='补定'"))));
    vb::FormRegistry::destroyAll();
    return 0;
}
