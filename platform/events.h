#pragma once
// VB-style control events over Qt: GotFocus/LostFocus without the activation and popup
// reasons (a box opened in LostFocus must not fire another LostFocus), KeyPress and
// KeyDown that may swallow the key, Change on every text change, Enter sending Tab.

#include <QObject>

#include <functional>

class QWidget;
class QKeyEvent;

namespace vb {

// Key codes as the forms test them (KeyCode of KeyDown, KeyAscii of KeyPress).
enum KeyCodes : int {
    vbKeyBack = 8,
    vbKeyTab = 9,
    vbKeyReturn = 13,
    vbKeyEscape = 27,
    vbKeySpace = 32,
    vbKeyPageUp = 33,
    vbKeyPageDown = 34,
    vbKeyEnd = 35,
    vbKeyHome = 36,
    vbKeyLeft = 37,
    vbKeyUp = 38,
    vbKeyRight = 39,
    vbKeyDown = 40,
    vbKeyDelete = 46,
    vbKeyF2 = 113,
};
// Shift argument bits.
enum ShiftBits : int { vbShiftMask = 1, vbCtrlMask = 2, vbAltMask = 4 };

// The legacy key code of a Qt key event (letters as upper-case ASCII, digits, F-keys...).
int keyCodeOf(const QKeyEvent* e);
int shiftOf(const QKeyEvent* e);
// KeyAscii of a key press: the character's code (13 for Enter, 27 for Esc, 8 for Back),
// 0 when the key gives no character.
int keyAsciiOf(const QKeyEvent* e);

using FocusHandler = std::function<void()>;
// keyCode may be set to 0 to swallow the key.
using KeyDownHandler = std::function<void(int& keyCode, int shift)>;
using KeyPressHandler = std::function<void(int& keyAscii)>;

void onGotFocus(QWidget* w, FocusHandler h);
void onLostFocus(QWidget* w, FocusHandler h);
void onKeyDown(QWidget* w, KeyDownHandler h);
void onKeyPress(QWidget* w, KeyPressHandler h);
// GotFocus selects the whole text (line edits).
void selectAllOnFocus(QWidget* w);
// Enter in the widget sends a Tab keystroke.
void enterAsTab(QWidget* w);

} // namespace vb
