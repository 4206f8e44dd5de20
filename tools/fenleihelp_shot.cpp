// Saves a picture of the classification help with class T picked, as an operator sees it:
//   ASAN_OPTIONS=detect_leaks=0 xvfb-run -a build/bin/fenleihelp_shot docs/classification-help.png
// (the X platform's D-Bus link leaks a buffer at exit that is not ours).
// Reads the fenlei.Qvx that lies beside this program, like the client does.

#include "classify/fenleihelp.h"
#include "classify/fenleireader.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "tools/shot.h"

#include <QApplication>
#include <QTest>

#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: fenleihelp_shot <out.png>\n");
        return 2;
    }
    auto& f = vb::form<fenleihelp>();
    f.Load();
    f.Hide();
    f.Show(0);
    if (!QTest::qWaitForWindowExposed(f.window())) {
        std::fprintf(stderr, "fenleihelp_shot: the window did not show\n");
        return 1;
    }

    auto* g1 = f.ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
    int t = -1;
    for (int r = 0; r < g1->Rows(); ++r)
        if (classify::classLetter(g1->TextMatrix(r, 1)) == QLatin1Char('T')) t = r;
    if (t < 0) {
        std::fprintf(stderr, "fenleihelp_shot: no class T in fenlei.Qvx\n");
        return 1;
    }
    const QRect cell = g1->cellRect(t, 1);
    QTest::mouseClick(g1->viewport(), Qt::LeftButton, {}, cell.center() - g1->viewport()->pos());
    QTest::qWait(200);

    const bool saved = shot::save(f.window(), QString::fromLocal8Bit(argv[1]), "fenleihelp_shot");
    // Forms go before the application object does.
    vb::FormRegistry::destroyAll();
    return saved ? 0 : 1;
}
