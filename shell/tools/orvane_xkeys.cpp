// orvane-xkeys: types into the X display as a keyboard would (the XTest extension,
// loaded at run time so the program needs no X headers).
//   orvane-xkeys ARG...   each ARG is text typed as it stands, or a key name in braces:
//                         {Tab} {Return} {BackSpace} {Escape} ...; {sleep:MS} waits;
//                         {click:X,Y} moves the pointer there and clicks the left button.
// The pointer goes to the middle of the screen first, where the program's window is.
#include <QCoreApplication>
#include <QLibrary>
#include <QThread>

#include <cstdio>

namespace {
using Display = void;
using XOpenDisplayFn = Display* (*)(const char*);
using XCloseDisplayFn = int (*)(Display*);
using XFlushFn = int (*)(Display*);
using XStringToKeysymFn = unsigned long (*)(const char*);
using XKeysymToKeycodeFn = unsigned char (*)(Display*, unsigned long);
using XDefaultScreenFn = int (*)(Display*);
using XDisplaySizeFn = int (*)(Display*, int);
using XTestFakeKeyEventFn = int (*)(Display*, unsigned int, int, unsigned long);
using XTestFakeMotionEventFn = int (*)(Display*, int, int, int, unsigned long);
using XTestFakeButtonEventFn = int (*)(Display*, unsigned int, int, unsigned long);
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QLibrary x11(QStringLiteral("X11"), 6);
    QLibrary xtst(QStringLiteral("Xtst"), 6);
    if (!x11.load() || !xtst.load()) {
        std::fprintf(stderr, "orvane-xkeys: libX11 or libXtst is missing\n");
        return 1;
    }
    auto open = reinterpret_cast<XOpenDisplayFn>(x11.resolve("XOpenDisplay"));
    auto close = reinterpret_cast<XCloseDisplayFn>(x11.resolve("XCloseDisplay"));
    auto flush = reinterpret_cast<XFlushFn>(x11.resolve("XFlush"));
    auto keysym = reinterpret_cast<XStringToKeysymFn>(x11.resolve("XStringToKeysym"));
    auto keycode = reinterpret_cast<XKeysymToKeycodeFn>(x11.resolve("XKeysymToKeycode"));
    auto defScreen = reinterpret_cast<XDefaultScreenFn>(x11.resolve("XDefaultScreen"));
    auto width = reinterpret_cast<XDisplaySizeFn>(x11.resolve("XDisplayWidth"));
    auto height = reinterpret_cast<XDisplaySizeFn>(x11.resolve("XDisplayHeight"));
    auto key = reinterpret_cast<XTestFakeKeyEventFn>(xtst.resolve("XTestFakeKeyEvent"));
    auto motion = reinterpret_cast<XTestFakeMotionEventFn>(xtst.resolve("XTestFakeMotionEvent"));
    auto button = reinterpret_cast<XTestFakeButtonEventFn>(xtst.resolve("XTestFakeButtonEvent"));
    if (!open || !close || !flush || !keysym || !keycode || !defScreen || !width || !height ||
        !key || !motion || !button) {
        std::fprintf(stderr, "orvane-xkeys: X11 functions not found\n");
        return 1;
    }
    Display* d = open(nullptr);
    if (!d) {
        std::fprintf(stderr, "orvane-xkeys: cannot open the display\n");
        return 1;
    }
    const int s = defScreen(d);
    motion(d, s, width(d, s) / 2, height(d, s) / 2, 0);
    flush(d);
    auto press = [&](const QByteArray& name) {
        const unsigned char code = keycode(d, keysym(name.constData()));
        if (!code) {
            std::fprintf(stderr, "orvane-xkeys: no key for %s\n", name.constData());
            return false;
        }
        key(d, code, 1, 0);
        key(d, code, 0, 0);
        flush(d);
        QThread::msleep(40);
        return true;
    };
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg.startsWith("{sleep:") && arg.endsWith('}')) {
            QThread::msleep(arg.mid(7, arg.size() - 8).toULong());
        } else if (arg.startsWith("{click:") && arg.endsWith('}')) {
            const QList<QByteArray> xy = arg.mid(7, arg.size() - 8).split(',');
            if (xy.size() != 2) {
                std::fprintf(stderr, "orvane-xkeys: %s is not {click:X,Y}\n", argv[i]);
                return 2;
            }
            motion(d, s, xy[0].toInt(), xy[1].toInt(), 0);
            button(d, 1, 1, 0);
            button(d, 1, 0, 0);
            flush(d);
            QThread::msleep(100);
        } else if (arg.startsWith('{') && arg.endsWith('}')) {
            if (!press(arg.mid(1, arg.size() - 2))) return 1;
        } else {
            for (char c : arg)
                if (!press(QByteArray(1, c))) return 1;
        }
    }
    close(d);
    return 0;
}
