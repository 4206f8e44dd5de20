#include "platform/Menu.h"

#include "platform/vb.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QMenu>

namespace {

Menu::Picker& picker() {
    static Menu::Picker p;
    return p;
}

QAction* showAtMouse(QMenu& menu) {
    return menu.exec(QCursor::pos());
}

} // namespace

Menu::Picker Menu::setPicker(Picker p) {
    Picker previous = std::move(picker());
    picker() = std::move(p);
    return previous;
}

Menu::Picker Menu::pickId(int id) {
    return [id](QMenu& menu) -> QAction* {
        for (QAction* a : menu.actions())
            if (a->data().toInt() == id && !a->isSeparator()) return a;
        return nullptr;
    };
}

Menu::Picker Menu::pickText(const QString& caption) {
    return [caption](QMenu& menu) -> QAction* {
        for (QAction* a : menu.actions())
            if (!a->isSeparator() && vb::Trim(a->text()) == caption) return a;
        return nullptr;
    };
}

int32_t Menu::rightMenu(const QStringList& items) {
    // Owned by the active window, so the popup closes with it and stays above it.
    QMenu menu(QApplication::activeWindow());
    // Ids are one-based positions; a separator takes an id of its own, and the callers
    // count on that (their entries lie at 1, 3, 5 ...).
    for (int i = 1; i <= items.size(); ++i) {
        const QString& item = items[i - 1];
        QAction* a =
            vb::Trim(item) == QStringLiteral("-") ? menu.addSeparator() : menu.addAction(item);
        a->setData(i);
    }
    QAction* chosen = picker() ? picker()(menu) : showAtMouse(menu);
    const int32_t id = chosen ? chosen->data().toInt() : 0;
    // The caption is fetched by position, id - 1: nothing is there for a dismissed menu.
    const QList<QAction*> actions = menu.actions();
    QString text;
    if (id >= 1 && id <= actions.size()) text = actions[id - 1]->text();
    m_selMenuString = vb::Trim(text);
    return id;
}
