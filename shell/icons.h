#pragma once
// The shell's pictures, drawn with QPainter so that they need no image plug-in and stay
// sharp at any size: the toolbar's icons, the login's pictures and the start screen.

#include <QIcon>
#include <QPixmap>
#include <QString>

namespace shellicons {

// Toolbar and menu icons by name: "caigou", "browse", "print", "yanshou", "ysbrowse",
// "buding", "fenlei", "mingxi", "jine", "exit", "datasource", "app". Unknown names give
// an empty icon.
QIcon icon(const QString& name);
QPixmap pixmap(const QString& name, int size);
// The login's banner and the start screen's picture.
QPixmap banner(int width, int height);
QPixmap startPicture(int width, int height);

} // namespace shellicons
