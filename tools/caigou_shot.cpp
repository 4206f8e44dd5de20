// Saves a picture of the order entry form with a record of the demo data, as an operator
// sees it after |<, and optionally one of the duplicate check after a title search:
//   ASAN_OPTIONS=detect_leaks=0 xvfb-run -a build/bin/caigou_shot docs/purchase-entry.png
//   [check.png]

#include "platform/form.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "tools/shot.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: caigou_shot <out.png> [check.png]\n");
        return 2;
    }
    const shot::DemoDatabase db("caigou_shot", QStringLiteral("admin"));
    if (!db.ok()) return 1;

    auto& f = vb::form<CaiGoufrm>();
    f.Show(0);
    if (!QTest::qWaitForWindowExposed(f.window())) return 1;
    f.Command1(0)->click();
    // A record with a full set of fields makes the better picture.
    for (int i = 0; i < 50 && (f.Text1(4)->text().isEmpty() || f.Text1(2)->text().isEmpty()); ++i)
        f.Command1(2)->click();
    f.Text1(1)->setFocus();
    bool saved = shot::save(f.window(), QString::fromLocal8Bit(argv[1]), "caigou_shot");
    if (argc == 3) {
        auto& d = vb::form<loadCheckDatafrm>();
        d.Show(0);
        d.Option1(0)->setChecked(true);
        d.Text1()->setText(f.Text1(1)->text().left(2));
        d.Command1_Click(0);
        saved = saved && shot::save(d.window(), QString::fromLocal8Bit(argv[2]), "caigou_shot");
    }
    vb::FormRegistry::destroyAll();
    return saved ? 0 : 1;
}
