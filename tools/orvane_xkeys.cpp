// orvane-xkeys: types into the X display as a keyboard would (the XTest extension,
// loaded at run time so the program needs no X headers).
//   orvane-xkeys ARG...   each ARG is text typed as it stands (any characters: those
//                         the keyboard map lacks, Chinese for one, are put on spare
//                         keys first), or one of these in braces:
//     {Tab} {Return} {Down} ...  a key by its X name
//     {Ctrl+g} {Alt+a} ...       a key with modifiers held (Ctrl, Alt, Shift)
//     {sleep:MS}                 waits
//     {click:X,Y}                moves the pointer there and clicks the left button
//     {wait:TITLE} {gone:TITLE}  waits (up to 20 s, else fails) until a shown top-level
//                                window has that title, or none has; TITLE ending in "*"
//                                matches titles that begin with the rest
//     {none:TITLE}               fails at once if a shown window has that title
//     {focus:TITLE}              gives that window the keyboard, as a window manager does
//                                when the dialog over it closes (Xvfb runs none)
// The pointer goes to the middle of the screen first, where the program's window is.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLibrary>
#include <QString>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace {
using Display = void;
using Window = unsigned long;
using Atom = unsigned long;
using KeySym = unsigned long;

// Xlib's XWindowAttributes, field for field (a stable part of its ABI).
struct WindowAttributes {
    int x, y, width, height, border_width, depth;
    void* visual;
    Window root;
    int c_class, bit_gravity, win_gravity, backing_store;
    unsigned long backing_planes, backing_pixel;
    int save_under;
    unsigned long colormap;
    int map_installed, map_state;
    long all_event_masks, your_event_mask, do_not_propagate_mask;
    int override_redirect;
    void* screen;
};
constexpr int IsViewable = 2;

// A window may go between listing the tree and asking about it: such errors are expected
// and must not end the program, as Xlib's own handler would.
using ErrorHandler = int (*)(Display*, void*);
int ignoreError(Display*, void*) {
    return 0;
}

struct X {
    ErrorHandler (*setErrorHandler)(ErrorHandler);
    Display* (*open)(const char*);
    int (*close)(Display*);
    int (*flush)(Display*);
    int (*sync)(Display*, int);
    KeySym (*keysym)(const char*);
    unsigned char (*keycode)(Display*, KeySym);
    int (*defScreen)(Display*);
    int (*width)(Display*, int);
    int (*height)(Display*, int);
    Window (*rootWindow)(Display*, int);
    int (*queryTree)(Display*, Window, Window*, Window*, Window**, unsigned int*);
    int (*attributes)(Display*, Window, WindowAttributes*);
    Atom (*internAtom)(Display*, const char*, int);
    int (*property)(Display*, Window, Atom, long, long, int, Atom, Atom*, int*, unsigned long*,
                    unsigned long*, unsigned char**);
    int (*free)(void*);
    int (*displayKeycodes)(Display*, int*, int*);
    KeySym* (*keyboardMapping)(Display*, unsigned char, int, int*);
    int (*changeKeyboardMapping)(Display*, int, int, KeySym*, int);
    int (*setInputFocus)(Display*, Window, int, unsigned long);
    int (*raise)(Display*, Window);
    int (*fakeKey)(Display*, unsigned int, int, unsigned long);
    int (*fakeMotion)(Display*, int, int, int, unsigned long);
    int (*fakeButton)(Display*, unsigned int, int, unsigned long);
};

template <typename F> bool bind(QLibrary& lib, F& f, const char* name) {
    f = reinterpret_cast<F>(lib.resolve(name));
    return f != nullptr;
}

class Keyboard {
public:
    Keyboard(const X& x, Display* d) : m_x(x), m_d(d) {}
    ~Keyboard() {
        // Give the borrowed keys back, once the client has read what was typed on them.
        if (m_spare.empty()) return;
        QThread::msleep(200);
        for (const auto& [sym, code] : m_spare) {
            KeySym none[2] = {0, 0};
            m_x.changeKeyboardMapping(m_d, code, 2, none, 1);
        }
        m_x.sync(m_d, 0);
    }

    bool tap(unsigned char code) {
        m_x.fakeKey(m_d, code, 1, 0);
        m_x.fakeKey(m_d, code, 0, 0);
        m_x.flush(m_d);
        QThread::msleep(40);
        return true;
    }

    // A key by its X name, with modifiers held around it.
    bool named(const QByteArray& chord) {
        QList<QByteArray> parts = chord.split('+');
        const QByteArray name = parts.takeLast();
        std::vector<unsigned char> held;
        for (const QByteArray& m : parts) {
            const char* sym = m == "Ctrl"    ? "Control_L"
                              : m == "Alt"   ? "Alt_L"
                              : m == "Shift" ? "Shift_L"
                                             : nullptr;
            const unsigned char code = sym ? m_x.keycode(m_d, m_x.keysym(sym)) : 0;
            if (!code) {
                std::fprintf(stderr, "orvane-xkeys: no modifier %s\n", m.constData());
                return false;
            }
            held.push_back(code);
        }
        const unsigned char code = m_x.keycode(m_d, m_x.keysym(name.constData()));
        if (!code) {
            std::fprintf(stderr, "orvane-xkeys: no key for %s\n", name.constData());
            return false;
        }
        for (unsigned char h : held) m_x.fakeKey(m_d, h, 1, 0);
        m_x.fakeKey(m_d, code, 1, 0);
        m_x.fakeKey(m_d, code, 0, 0);
        for (auto h = held.rbegin(); h != held.rend(); ++h) m_x.fakeKey(m_d, *h, 0, 0);
        m_x.flush(m_d);
        QThread::msleep(40);
        return true;
    }

    // One character. Lower-case letters and digits have their own keys; anything else goes
    // on a spare key mapped to its keysym alone, so no shift state is involved.
    bool character(char32_t c) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            const char name[2] = {static_cast<char>(c), 0};
            return named(name);
        }
        const KeySym sym = c < 0x100 ? c : 0x1000000 + c;
        auto found = m_spare.find(sym);
        if (found == m_spare.end()) {
            const std::optional<unsigned char> code = spareKey();
            if (!code) {
                std::fprintf(stderr, "orvane-xkeys: no spare key left\n");
                return false;
            }
            KeySym both[2] = {sym, sym};
            m_x.changeKeyboardMapping(m_d, *code, 2, both, 1);
            m_x.sync(m_d, 0);
            // The client reloads its keyboard map on the notice of the change.
            QThread::msleep(60);
            found = m_spare.emplace(sym, *code).first;
        }
        return tap(found->second);
    }

private:
    // A keycode with no symbol on it, not one handed out before.
    std::optional<unsigned char> spareKey() {
        int lo = 0, hi = 0;
        m_x.displayKeycodes(m_d, &lo, &hi);
        int per = 0;
        KeySym* map = m_x.keyboardMapping(m_d, static_cast<unsigned char>(lo), hi - lo + 1, &per);
        if (!map) return std::nullopt;
        std::optional<unsigned char> result;
        for (int code = hi; code >= lo && !result; --code) {
            bool empty = true;
            for (int i = 0; i < per; ++i)
                if (map[(code - lo) * per + i] != 0) empty = false;
            bool used = false;
            for (const auto& [sym, c] : m_spare)
                if (c == code) used = true;
            if (empty && !used) result = static_cast<unsigned char>(code);
        }
        m_x.free(map);
        return result;
    }

    const X& m_x;
    Display* m_d;
    std::map<KeySym, unsigned char> m_spare;
};

// The shown top-level windows (children of the root: there is no window manager to wrap
// them) by title.
std::vector<std::pair<QString, Window>> shownWindows(const X& x, Display* d, Window root) {
    std::vector<std::pair<QString, Window>> shown;
    Window r = 0, parent = 0, *children = nullptr;
    unsigned int n = 0;
    if (!x.queryTree(d, root, &r, &parent, &children, &n)) return shown;
    const Atom netName = x.internAtom(d, "_NET_WM_NAME", 0);
    const Atom utf8 = x.internAtom(d, "UTF8_STRING", 0);
    for (unsigned int i = 0; i < n; ++i) {
        WindowAttributes a{};
        if (!x.attributes(d, children[i], &a) || a.map_state != IsViewable) continue;
        Atom type = 0;
        int format = 0;
        unsigned long items = 0, after = 0;
        unsigned char* data = nullptr;
        if (x.property(d, children[i], netName, 0, 1024, 0, utf8, &type, &format, &items, &after,
                       &data) == 0 &&
            data) {
            shown.emplace_back(QString::fromUtf8(reinterpret_cast<const char*>(data),
                                                 static_cast<qsizetype>(items)),
                               children[i]);
            x.free(data);
        }
    }
    if (children) x.free(children);
    return shown;
}

QStringList shownTitles(const X& x, Display* d, Window root) {
    QStringList titles;
    for (const auto& [title, w] : shownWindows(x, d, root)) titles << title;
    return titles;
}

bool titleMatches(const QString& title, const QString& pattern) {
    return pattern.endsWith(u'*') ? title.startsWith(pattern.chopped(1)) : title == pattern;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QLibrary x11(QStringLiteral("X11"), 6);
    QLibrary xtst(QStringLiteral("Xtst"), 6);
    if (!x11.load() || !xtst.load()) {
        std::fprintf(stderr, "orvane-xkeys: libX11 or libXtst is missing\n");
        return 1;
    }
    X x{};
    const bool all =
        bind(x11, x.setErrorHandler, "XSetErrorHandler") && bind(x11, x.open, "XOpenDisplay") &&
        bind(x11, x.close, "XCloseDisplay") && bind(x11, x.flush, "XFlush") &&
        bind(x11, x.sync, "XSync") && bind(x11, x.keysym, "XStringToKeysym") &&
        bind(x11, x.keycode, "XKeysymToKeycode") && bind(x11, x.defScreen, "XDefaultScreen") &&
        bind(x11, x.width, "XDisplayWidth") && bind(x11, x.height, "XDisplayHeight") &&
        bind(x11, x.rootWindow, "XRootWindow") && bind(x11, x.queryTree, "XQueryTree") &&
        bind(x11, x.attributes, "XGetWindowAttributes") && bind(x11, x.internAtom, "XInternAtom") &&
        bind(x11, x.property, "XGetWindowProperty") && bind(x11, x.free, "XFree") &&
        bind(x11, x.displayKeycodes, "XDisplayKeycodes") &&
        bind(x11, x.keyboardMapping, "XGetKeyboardMapping") &&
        bind(x11, x.changeKeyboardMapping, "XChangeKeyboardMapping") &&
        bind(x11, x.setInputFocus, "XSetInputFocus") && bind(x11, x.raise, "XRaiseWindow") &&
        bind(xtst, x.fakeKey, "XTestFakeKeyEvent") &&
        bind(xtst, x.fakeMotion, "XTestFakeMotionEvent") &&
        bind(xtst, x.fakeButton, "XTestFakeButtonEvent");
    if (!all) {
        std::fprintf(stderr, "orvane-xkeys: X11 functions not found\n");
        return 1;
    }
    x.setErrorHandler(ignoreError);
    Display* d = x.open(nullptr);
    if (!d) {
        std::fprintf(stderr, "orvane-xkeys: cannot open the display\n");
        return 1;
    }
    const int s = x.defScreen(d);
    const Window root = x.rootWindow(d, s);
    x.fakeMotion(d, s, x.width(d, s) / 2, x.height(d, s) / 2, 0);
    x.flush(d);
    int status = 0;
    {
        Keyboard kb(x, d);
        for (int i = 1; i < argc && status == 0; ++i) {
            const QByteArray arg(argv[i]);
            const bool braced = arg.size() > 2 && arg.startsWith('{') && arg.endsWith('}');
            const QByteArray inner = braced ? arg.mid(1, arg.size() - 2) : QByteArray();
            if (braced && inner.startsWith("sleep:")) {
                QThread::msleep(inner.mid(6).toULong());
            } else if (braced && inner.startsWith("click:")) {
                const QList<QByteArray> xy = inner.mid(6).split(',');
                if (xy.size() != 2) {
                    std::fprintf(stderr, "orvane-xkeys: %s is not {click:X,Y}\n", argv[i]);
                    status = 2;
                    break;
                }
                x.fakeMotion(d, s, xy[0].toInt(), xy[1].toInt(), 0);
                x.fakeButton(d, 1, 1, 0);
                x.fakeButton(d, 1, 0, 0);
                x.flush(d);
                QThread::msleep(100);
            } else if (braced && (inner.startsWith("wait:") || inner.startsWith("gone:"))) {
                const bool present = inner.startsWith("wait:");
                const QString pattern = QString::fromUtf8(inner.mid(5));
                QElapsedTimer t;
                t.start();
                for (;;) {
                    const QStringList titles = shownTitles(x, d, root);
                    const bool there =
                        std::any_of(titles.begin(), titles.end(),
                                    [&](const QString& w) { return titleMatches(w, pattern); });
                    if (there == present) break;
                    if (t.elapsed() > 20000) {
                        std::fprintf(stderr, "orvane-xkeys: %s: shown windows: %s\n", argv[i],
                                     qPrintable(titles.join(QStringLiteral(" | "))));
                        status = 3;
                        break;
                    }
                    QThread::msleep(50);
                }
                QThread::msleep(100); // the window takes its focus and paints
            } else if (braced && inner.startsWith("none:")) {
                const QString pattern = QString::fromUtf8(inner.mid(5));
                const QStringList titles = shownTitles(x, d, root);
                if (std::any_of(titles.begin(), titles.end(),
                                [&](const QString& w) { return titleMatches(w, pattern); })) {
                    std::fprintf(stderr, "orvane-xkeys: %s: shown windows: %s\n", argv[i],
                                 qPrintable(titles.join(QStringLiteral(" | "))));
                    status = 3;
                }
            } else if (braced && inner.startsWith("focus:")) {
                const QString pattern = QString::fromUtf8(inner.mid(6));
                Window target = 0;
                for (const auto& [title, w] : shownWindows(x, d, root))
                    if (titleMatches(title, pattern)) target = w;
                if (!target) {
                    std::fprintf(stderr, "orvane-xkeys: %s: no such window: %s\n", argv[i],
                                 qPrintable(shownTitles(x, d, root).join(QStringLiteral(" | "))));
                    status = 3;
                    break;
                }
                x.raise(d, target);
                x.setInputFocus(d, target, 2 /* RevertToParent */, 0 /* CurrentTime */);
                x.sync(d, 0);
                QThread::msleep(100);
            } else if (braced) {
                if (!kb.named(inner)) status = 1;
            } else {
                for (char32_t c : QString::fromUtf8(arg).toUcs4())
                    if (!kb.character(c)) {
                        status = 1;
                        break;
                    }
            }
        }
    }
    x.close(d);
    return status;
}
