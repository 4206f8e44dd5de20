#pragma once
// The right-button popup of the grid forms. rightMenu() shows the captions at the mouse
// and returns the one-based position of the chosen entry, separators counted ("-" makes
// one), or 0 when the menu was dismissed; SelMenuString is the chosen caption, trimmed.
//
// The menu is shown by a picker that tests replace, as they replace the message boxes.

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>

class QAction;
class QMenu;

class Menu {
public:
    // Shows the built menu and returns the chosen entry, nullptr when dismissed.
    using Picker = std::function<QAction*(QMenu& menu)>;

    QString SelMenuString() const { return m_selMenuString; }
    int32_t rightMenu(const QStringList& items);

    // Replaces how the popup is shown; nullptr restores the real one (at the mouse).
    // Returns the previous picker.
    static Picker setPicker(Picker picker);
    // A picker for tests: takes the entry with this one-based id (0 dismisses).
    static Picker pickId(int id);
    // A picker for tests: takes the first entry whose caption, trimmed, is this text.
    static Picker pickText(const QString& caption);

private:
    QString m_selMenuString;
};
