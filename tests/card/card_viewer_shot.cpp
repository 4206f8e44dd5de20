// Saves a picture of the card viewer showing the card of our made-up record:
//   xvfb-run -a card_viewer_shot docs/card-viewer.png

#include "cardrecords.h"

#include "card/marcviewer.h"
#include "platform/form.h"

#include <QApplication>
#include <QPixmap>
#include <QTest>

#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: card_viewer_shot <out.png>\n");
        return 2;
    }
    auto& f = vb::form<frmMarcKaPian>();
    f.MarcShuju = cardtest::workedRecord();
    f.varSelect = QString();
    f.Show(0);
    if (!QTest::qWaitForWindowExposed(f.window())) {
        std::fprintf(stderr, "card_viewer_shot: the window was not shown\n");
        return 1;
    }
    QTest::qWait(200);
    if (!f.window()->grab().save(QString::fromLocal8Bit(argv[1]))) {
        std::fprintf(stderr, "card_viewer_shot: cannot write %s\n", argv[1]);
        return 1;
    }
    vb::FormRegistry::destroyAll(); // the windows go before the application does
    return 0;
}
