// Saves a picture of the order entry form with a record of the demo data, as an operator
// sees it after |<, and optionally one of the duplicate check after a title search:
//   ASAN_OPTIONS=detect_leaks=0 xvfb-run -a build/bin/caigou_shot docs/purchase-entry.png
//   [check.png]
// The demo database is made in a temporary folder.

#include "data/dbinit/dbinit.h"
#include "data/globals.h"
#include "platform/form.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"

#include <QApplication>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: caigou_shot <out.png> [check.png]\n");
        return 2;
    }
    QTemporaryDir tmp;
    const QString db = tmp.path() + QStringLiteral("/demo.db");
    std::string error;
    if (!orvane::dbinit::createDatabase(db.toStdString(), true, &error)) {
        std::fprintf(stderr, "caigou_shot: %s\n", error.c_str());
        return 1;
    }
    gConnStr = QStringLiteral("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
                   .arg(db, QStringLiteral(ORVANE_COMPAT_MODULE));
    gUserName = QStringLiteral("admin");

    auto& f = vb::form<CaiGoufrm>();
    f.Show(0);
    if (!QTest::qWaitForWindowExposed(f.window())) {
        std::fprintf(stderr, "caigou_shot: the window did not show\n");
        return 1;
    }
    f.Command1(0)->click();
    // A record with a full set of fields makes the better picture.
    for (int i = 0; i < 50 && (f.Text1(4)->text().isEmpty() || f.Text1(2)->text().isEmpty()); ++i)
        f.Command1(2)->click();
    f.Text1(1)->setFocus();
    QTest::qWait(200);

    bool saved = f.window()->grab().save(QString::fromLocal8Bit(argv[1]));
    if (argc == 3) {
        auto& d = vb::form<loadCheckDatafrm>();
        d.Show(0);
        if (!QTest::qWaitForWindowExposed(d.window())) return 1;
        d.Option1(0)->setChecked(true);
        d.Text1()->setText(f.Text1(1)->text().left(2));
        d.Command1_Click(0);
        QTest::qWait(200);
        saved = saved && d.window()->grab().save(QString::fromLocal8Bit(argv[2]));
    }
    vb::FormRegistry::destroyAll();
    if (!saved) {
        std::fprintf(stderr, "caigou_shot: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
