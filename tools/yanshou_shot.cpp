// Pictures of the accepted items browser and of its edit form on a fresh demo database,
// for the README:
//   ASAN_OPTIONS=detect_leaks=0 xvfb-run -a build/bin/yanshou_shot docs
// writes docs/accepted-browser.png and docs/accepted-edit.png.

#include "acceptance/YanShouBrowerdofrm.h"
#include "acceptance/YanShouBrowerfrm.h"
#include "data/globals.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "platform/vb.h"
#include "tools/shot.h"

#include <QApplication>

#include <cstdio>

namespace {
bool shoot(QWidget* w, const QString& path) {
    return shot::save(w, path, "yanshou_shot");
}
} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: yanshou_shot <folder>\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const shot::DemoDatabase db("yanshou_shot", QStringLiteral("admin"));
    if (!db.ok()) return 1;

    auto& b = vb::form<YanShouBrowerfrm>();
    b.Show(0);
    // What 查找 hands over for the first batches, in batch order.
    b.loadGridData(b.fixture_Where + QStringLiteral(" AND (batch<='3')"), b.orderby_String);
    bool ok = shoot(b.window(), out + QStringLiteral("/accepted-browser.png"));
    if (ok) {
        auto& d = vb::form<YanShouBrowerdofrm>();
        b.Grid1()->setRow(2);
        d.listRow = 2;
        d.loadDate(vb::CInt(b.Grid1()->TextMatrix(2, 0)));
        d.Show(0);
        ok = shoot(d.window(), out + QStringLiteral("/accepted-edit.png"));
    }
    vb::FormRegistry::destroyAll();
    return ok ? 0 : 1;
}
