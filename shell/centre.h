#pragma once
// Places a top-level window in the middle of a rectangle (the screen, or the frame).

#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <QWidget>

namespace shellwin {

inline void centreOn(QWidget* w, const QRect& over) {
    w->move(over.x() + (over.width() - w->width()) / 2,
            over.y() + (over.height() - w->height()) / 2);
}

inline void centreOnScreen(QWidget* w) {
    QScreen* s = w->screen() ? w->screen() : QGuiApplication::primaryScreen();
    if (s) centreOn(w, s->availableGeometry());
}

} // namespace shellwin
