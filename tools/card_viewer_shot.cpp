// Saves a picture of the card viewer showing the card of our made-up record:
//   xvfb-run -a card_viewer_shot docs/card-viewer.png

#include "card/marcviewer.h"
#include "platform/form.h"
#include "tests/card/cardrecords.h"
#include "tools/shot.h"

#include <QApplication>

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
    const bool saved = shot::save(f.window(), QString::fromLocal8Bit(argv[1]), "card_viewer_shot");
    vb::FormRegistry::destroyAll(); // the windows go before the application does
    return saved ? 0 : 1;
}
