#include "platform/events.h"

#include "platform/runtime.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTimer>
#include <QWidget>

#include <vector>

namespace vb {

int keyCodeOf(const QKeyEvent* e) {
    const int k = e->key();
    if (k >= Qt::Key_A && k <= Qt::Key_Z) return 'A' + (k - Qt::Key_A);
    if (k >= Qt::Key_0 && k <= Qt::Key_9) return '0' + (k - Qt::Key_0);
    if (k >= Qt::Key_F1 && k <= Qt::Key_F24) return 112 + (k - Qt::Key_F1);
    switch (k) {
    case Qt::Key_Backspace:
        return vbKeyBack;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return vbKeyTab;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return vbKeyReturn;
    case Qt::Key_Escape:
        return vbKeyEscape;
    case Qt::Key_Space:
        return vbKeySpace;
    case Qt::Key_PageUp:
        return vbKeyPageUp;
    case Qt::Key_PageDown:
        return vbKeyPageDown;
    case Qt::Key_End:
        return vbKeyEnd;
    case Qt::Key_Home:
        return vbKeyHome;
    case Qt::Key_Left:
        return vbKeyLeft;
    case Qt::Key_Up:
        return vbKeyUp;
    case Qt::Key_Right:
        return vbKeyRight;
    case Qt::Key_Down:
        return vbKeyDown;
    case Qt::Key_Delete:
        return vbKeyDelete;
    case Qt::Key_Insert:
        return 45;
    case Qt::Key_Shift:
        return 16;
    case Qt::Key_Control:
        return 17;
    case Qt::Key_Alt:
        return 18;
    default:
        return k < 128 ? k : 0;
    }
}

int shiftOf(const QKeyEvent* e) {
    int s = 0;
    if (e->modifiers() & Qt::ShiftModifier) s |= vbShiftMask;
    if (e->modifiers() & Qt::ControlModifier) s |= vbCtrlMask;
    if (e->modifiers() & Qt::AltModifier) s |= vbAltMask;
    return s;
}

int keyAsciiOf(const QKeyEvent* e) {
    switch (e->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return 13;
    case Qt::Key_Escape:
        return 27;
    case Qt::Key_Backspace:
        return 8;
    case Qt::Key_Tab:
        return 0; // Tab moves the focus; controls never see it as a character
    default:
        break;
    }
    const QString t = e->text();
    if (t.isEmpty()) return 0;
    return t[0].unicode();
}

namespace {

// One filter per widget carrying the handlers that were attached to it.
class EventHub : public QObject {
public:
    explicit EventHub(QWidget* w) : QObject(w) {
        setObjectName(QStringLiteral("vb_eventhub"));
        w->installEventFilter(this);
    }

    static EventHub* of(QWidget* w) {
        for (QObject* c : w->children())
            if (auto* h = dynamic_cast<EventHub*>(c)) return h;
        return new EventHub(w);
    }

    std::vector<FocusHandler> gotFocus, lostFocus;
    std::vector<KeyDownHandler> keyDown;
    std::vector<KeyPressHandler> keyPress;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
        case QEvent::FocusIn:
        case QEvent::FocusOut: {
            // Window activation and popups are not focus changes of the control.
            const auto r = static_cast<QFocusEvent*>(event)->reason();
            if (r == Qt::ActiveWindowFocusReason || r == Qt::PopupFocusReason) break;
            const auto& list = event->type() == QEvent::FocusIn ? gotFocus : lostFocus;
            for (const auto& h : std::vector<FocusHandler>(list)) h();
            break;
        }
        case QEvent::KeyPress: {
            auto* ke = static_cast<QKeyEvent*>(event);
            if (!keyDown.empty()) {
                int code = keyCodeOf(ke);
                const int shift = shiftOf(ke);
                // A key without a legacy code (input-method text) is not a handler's to
                // swallow; only a code a handler set to 0 is.
                if (code != 0) {
                    for (const auto& h : std::vector<KeyDownHandler>(keyDown)) {
                        h(code, shift);
                        if (code == 0) return true;
                    }
                }
            }
            if (!keyPress.empty()) {
                int ascii = keyAsciiOf(ke);
                if (ascii != 0) {
                    for (const auto& h : std::vector<KeyPressHandler>(keyPress)) {
                        h(ascii);
                        if (ascii == 0) return true;
                    }
                }
            }
            break;
        }
        default:
            break;
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

void onGotFocus(QWidget* w, FocusHandler h) {
    EventHub::of(w)->gotFocus.push_back(std::move(h));
}
void onLostFocus(QWidget* w, FocusHandler h) {
    EventHub::of(w)->lostFocus.push_back(std::move(h));
}
void onKeyDown(QWidget* w, KeyDownHandler h) {
    EventHub::of(w)->keyDown.push_back(std::move(h));
}
void onKeyPress(QWidget* w, KeyPressHandler h) {
    EventHub::of(w)->keyPress.push_back(std::move(h));
}

void selectAllOnFocus(QWidget* w) {
    onGotFocus(w, [w] {
        // After the mouse press that gave the focus has placed the cursor.
        QTimer::singleShot(0, w, [w] {
            if (auto* le = qobject_cast<QLineEdit*>(w))
                le->selectAll();
            else if (auto* pe = qobject_cast<QPlainTextEdit*>(w))
                pe->selectAll();
        });
        if (auto* le = qobject_cast<QLineEdit*>(w)) le->selectAll();
    });
}

void enterAsTab(QWidget* w) {
    onKeyPress(w, [](int& ascii) {
        if (ascii == 13) {
            ascii = 0;
            sendTab();
        }
    });
}

} // namespace vb
