// Pictures of the five acceptance forms on a fresh demo database, for the README:
//   ASAN_OPTIONS=detect_leaks=0 xvfb-run -a build/bin/acceptance_shot docs
// writes docs/acceptance-source.png, acceptance-grid.png, acceptance-voucher.png,
// replenish-condition.png and replenish-grid.png.

#include "acceptance/YanShouAddfrm.h"
#include "acceptance/YanShouBDD.h"
#include "acceptance/YanShouBDDfrm.h"
#include "acceptance/YanShoudofrm.h"
#include "acceptance/YanShoufrm.h"
#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/flexgrid.h"
#include "tools/shot.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <algorithm>

#include <cstdio>

namespace {

bool shoot(QWidget* w, const QString& path) {
    return shot::save(w, path, "acceptance_shot", true);
}

QString first(const QString& sql) {
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(sql, conn);
    return rs.EOF_() ? QString() : rs.text(0);
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: acceptance_shot <folder>\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const shot::DemoDatabase db("acceptance_shot", QStringLiteral("王丽"));
    if (!db.ok()) return 1;

    // The source with the most open orders, and the batch with the most shortfalls.
    const QString source = first(QStringLiteral(
        "Select bookfrom From cgk Where status=0 Group By bookfrom Order By count(*) Desc"));
    const QString batch =
        first(QStringLiteral("Select batch From cgk Where status=1 And "
                             "bookcount>yscount Group By batch Order By count(*) Desc"));

    auto& dlg = vb::form<YanShoudofrm>();
    dlg.Show(0);
    dlg.Text1()->setText(source);
    bool ok = shoot(dlg.window(), out + QStringLiteral("/acceptance-source.png"));

    auto& frm = vb::form<YanShoufrm>();
    if (ok && dlg.openYanShouGrid()) {
        vb::FlexGrid* g = frm.Grid1();
        g->setRow(2);
        g->setRowSel(std::min(5, g->Rows() - 1));
        frm.selectRange();
        g->setTextMatrix(3, 4, QStringLiteral("1")); // one copy came short
        g->setTextMatrix(4, 8, QStringLiteral("32.5"));
        g->setRow(4);
        g->setCol(4);
        ok = shoot(frm.window(), out + QStringLiteral("/acceptance-grid.png"));
    }
    if (ok) {
        // The voucher as 验收 opens it, shown without its modal loop for the picture.
        auto& v = vb::form<YanShouAddfrm>();
        QTimer::singleShot(0, [&] {
            v.Text1(1)->setText(QStringLiteral("2004-061"));
            v.Text1(3)->setText(QStringLiteral("No.00731542"));
            ok = shoot(v.window(), out + QStringLiteral("/acceptance-voucher.png"));
            v.Command1_Click(1);
        });
        frm.beginYanShou();
    }
    auto& bdd = vb::form<YanShouBDDfrm>();
    if (ok) {
        bdd.Show(0);
        bdd.Text1(0)->setText(batch);
        ok = shoot(bdd.window(), out + QStringLiteral("/replenish-condition.png"));
    }
    if (ok && bdd.openBuDingGrid()) {
        auto& b = vb::form<YanShouBDD>();
        vb::FlexGrid* g = b.Grid1();
        g->setRow(1);
        g->setRowSel(std::min(3, g->Rows() - 1));
        b.selectRange();
        g->setTextMatrix(2, 9, QStringLiteral("1"));
        ok = shoot(b.window(), out + QStringLiteral("/replenish-grid.png"));
    }
    vb::FormRegistry::destroyAll();
    return ok ? 0 : 1;
}
