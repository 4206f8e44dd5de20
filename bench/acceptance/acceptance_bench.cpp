// The two saves at their heaviest: a voucher of N chosen rows (N server dates, N updates in
// one transaction, N rows removed from the grid) and a replenishment of N rows (N updates,
// N counter draws on their own connections, N inserts). Prints the seconds of each phase.

#include "acceptance/YanShouAddfrm.h"
#include "acceptance/YanShouBDD.h"
#include "acceptance/YanShouBDDfrm.h"
#include "acceptance/YanShoudofrm.h"
#include "acceptance/YanShoufrm.h"
#include "data/dbinit/dbinit.h"
#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "platform/msgbox.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <memory>

namespace {

void fill(int n) {
    adodb::Connection conn;
    conn.Open(gConnStr);
    conn.Execute(QStringLiteral("Delete From cgk"));
    conn.BeginTrans();
    for (int i = 1; i <= n; ++i) {
        // An open order of the source, and a short accepted one of batch B-1.
        conn.Execute(QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,isbn,edition,price,"
                                    "bookcount,yddate,status) Values (%1,'新华书店','书名%1',"
                                    "'7-02-000%1-1','第1版',25.5,3,'2004-03-01',0)")
                         .arg(i));
        conn.Execute(
            QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,isbn,price,bookcount,"
                           "yddate,status,batch,yscount,ysprice) Values (%1,'人民文学出版社',"
                           "'欠书%1','7-02-001%1-1',20,5,'2004-03-01',1,'B-1',2,20)")
                .arg(n + i));
    }
    conn.CommitTrans();
    conn.Execute(QStringLiteral("Update global Set code='10000' Where type='cgkid'"));
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const int n = argc > 1 ? std::atoi(argv[1]) : 1000;
    QTemporaryDir dir;
    const QString db = dir.path() + QStringLiteral("/bench.db");
    std::string error;
    if (!orvane::dbinit::createDatabase(db.toStdString(), false, &error)) {
        std::fprintf(stderr, "bench_acceptance: %s\n", error.c_str());
        return 1;
    }
    gConnStr = QStringLiteral("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
                   .arg(db, QStringLiteral(ORVANE_COMPAT_MODULE));
    gUserName = QStringLiteral("bench");
    auto boxes = std::make_shared<vb::ScriptedMsgBox>();
    vb::setMsgBoxProvider(boxes);
    fill(n);

    QElapsedTimer t;
    // Acceptance: search, choose all, voucher.
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

    // Replenishment: search by batch, choose all, 补定.
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

    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(QStringLiteral("Select (Select count(*) From cgk Where status=1 And batch='B-2'),"
                           "(Select count(*) From cgk Where cgff='补定')"),
            conn);
    std::printf("rows %d\n", n);
    std::printf("acceptance grid load   %7.3f s\n", load / 1000.0);
    std::printf("voucher of %d rows   %7.3f s  (written %s, grid closed %s)\n", n, voucher / 1000.0,
                qPrintable(rs.text(0)), emptied ? "yes" : "no");
    std::printf("replenishment load     %7.3f s\n", bload / 1000.0);
    std::printf("replenishment of %d %7.3f s  (new rows %s; %s)\n", n, buding / 1000.0,
                qPrintable(rs.text(1)),
                qPrintable(boxes->calls().empty() ? QString() : boxes->last().prompt.simplified()));
    vb::FormRegistry::destroyAll();
    return 0;
}
