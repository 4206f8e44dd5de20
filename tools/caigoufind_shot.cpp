// Saves pictures of the purchase browser over all demo orders, the source print form and
// the date print form with a span typed in:
//   ASAN_OPTIONS=detect_leaks=0 xvfb-run -a build/bin/caigoufind_shot browser.png source.png
//   dates.png

#include "platform/form.h"
#include "platform/maskedbox.h"
#include "purchase/CaiGoufindDatefrm.h"
#include "purchase/CaiGoufindfrm.h"
#include "purchase/CaiGouprintfrm.h"
#include "tools/shot.h"

#include <QApplication>

#include <cstdio>

namespace {
bool shoot(vb::Form& f, const char* path) {
    f.Show(0);
    return shot::save(f.window(), QString::fromLocal8Bit(path), "caigoufind_shot");
}
} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: caigoufind_shot <browser.png> <source.png> <dates.png>\n");
        return 2;
    }
    const shot::DemoDatabase db("caigoufind_shot", QStringLiteral("admin"));
    if (!db.ok()) return 1;

    auto& browser = vb::form<CaiGoufindfrm>();
    browser.Show(0);
    browser.loadGridData(QString(), browser.lastOrder);
    bool ok = shoot(browser, argv[1]);
    browser.Unload();
    ok = shoot(vb::form<CaiGouprintfrm>(), argv[2]) && ok;
    auto& dates = vb::form<CaiGoufindDatefrm>();
    dates.lDate(0)->setTextVb(QStringLiteral("2003-01-01"));
    dates.lDate(1)->setTextVb(QStringLiteral("2003-06-30"));
    ok = shoot(dates, argv[3]) && ok;
    vb::FormRegistry::destroyAll(); // before the application goes
    return ok ? 0 : 1;
}
