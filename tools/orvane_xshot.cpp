// orvane-xshot: a picture of the X display, taken once the screen has settled.
//   orvane-xshot OUT.png [--timeout SECONDS] [--differs-from PNG] [--crop]
//   orvane-xshot --size PNG     prints WIDTHxHEIGHT of a picture
// Waits until two grabs a moment apart are the same and show more than the bare root
// (and, with --differs-from, differ from that picture), then saves. --crop cuts the
// picture to the part that is not the root's background.
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

// The root's colour: what most corners show (a window may sit in one of them).
QRgb background(const QImage& img) {
    const QRgb c[] = {img.pixel(0, 0), img.pixel(img.width() - 1, 0),
                      img.pixel(0, img.height() - 1), img.pixel(img.width() - 1, img.height() - 1)};
    for (QRgb a : c)
        if (std::count(std::begin(c), std::end(c), a) >= 2) return a;
    return c[3];
}

bool bare(const QImage& img) {
    const QRgb bg = background(img);
    for (int y = 0; y < img.height(); y += 7)
        for (int x = 0; x < img.width(); x += 7)
            if (img.pixel(x, y) != bg) return false;
    return true;
}

QRect content(const QImage& img) {
    const QRgb bg = background(img);
    int l = img.width(), t = img.height(), r = -1, b = -1;
    for (int y = 0; y < img.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(img.constScanLine(y));
        for (int x = 0; x < img.width(); ++x) {
            if (line[x] == bg) continue;
            l = std::min(l, x);
            r = std::max(r, x);
            t = std::min(t, y);
            b = std::max(b, y);
        }
    }
    return r < 0 ? img.rect() : QRect(QPoint(l, t), QPoint(r, b));
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--size") == 0) {
        // The size of a picture, for scripts: WIDTHxHEIGHT.
        const QImage img(QString::fromLocal8Bit(argv[2]));
        if (img.isNull()) return 1;
        std::printf("%dx%d\n", img.width(), img.height());
        return 0;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr,
                     "usage: orvane-xshot OUT.png [--timeout S] [--differs-from PNG] [--crop]\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    int timeout = 20;
    bool crop = false;
    QImage before;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--timeout") == 0 && i + 1 < argc)
            timeout = std::atoi(argv[++i]);
        else if (std::strcmp(argv[i], "--differs-from") == 0 && i + 1 < argc)
            before =
                QImage(QString::fromLocal8Bit(argv[++i])).convertToFormat(QImage::Format_RGB32);
        else if (std::strcmp(argv[i], "--crop") == 0)
            crop = true;
    }
    QScreen* screen = QGuiApplication::primaryScreen();
    QElapsedTimer clock;
    clock.start();
    QImage last;
    bool settled = false;
    while (clock.elapsed() < timeout * 1000) {
        QImage img = screen->grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32);
        if (!img.isNull() && !bare(img) && img == last) {
            const QImage cut = crop ? img.copy(content(img)) : img;
            if (before.isNull() || cut != before) {
                last = img;
                settled = true;
                break;
            }
        }
        last = img;
        QThread::msleep(400);
    }
    if (last.isNull()) {
        std::fprintf(stderr, "orvane-xshot: nothing to grab\n");
        return 1;
    }
    const QImage pic = crop ? last.copy(content(last)) : last;
    if (!pic.save(out)) {
        std::fprintf(stderr, "orvane-xshot: cannot write %s\n", argv[1]);
        return 1;
    }
    if (!settled) std::fprintf(stderr, "orvane-xshot: the screen did not settle\n");
    return settled ? 0 : 1;
}
