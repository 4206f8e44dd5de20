#pragma once
// The small pieces every form is built from: the title of its message boxes, a control
// placed in twips, a command button wired to its Click, and a row of buttons that makes
// one control array. Forms keep their own sizes; these only say them once.

#include "platform/form.h"
#include "platform/msgbox.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QString>

#include <functional>
#include <span>
#include <vector>

namespace vb {

// Geometry in twips, as the form was laid out.
void place(QWidget* c, int left, int top, int width, int height);

// Names and places a control made by the caller; returns it for further setting up.
template <class W> W* place(W* c, const QString& name, int left, int top, int width, int height) {
    c->setObjectName(name);
    place(c, left, top, width, height);
    return c;
}

// A new control of type W on `parent`, named and placed.
template <class W>
W* control(QWidget* parent, const QString& name, int left, int top, int width, int height) {
    return place(new W(parent), name, left, top, width, height);
}

QLabel* label(QWidget* parent, const QString& name, const QString& text, int left, int top,
              int width, int height);

// A command button, for a form that lays it out itself. The caption carries its access key
// as "&X". (How Enter presses it is the form model's: see Form::Load.)
QPushButton* commandButton(QWidget* parent, const QString& name, const QString& caption);

// The same, its Click running `onClick` for as long as `context` (the form) lives.
template <class F>
QPushButton* commandButton(QWidget* parent, const QString& name, const QString& caption,
                           QObject* context, F onClick) {
    QPushButton* b = commandButton(parent, name, caption);
    QObject::connect(b, &QPushButton::clicked, context, std::move(onClick));
    return b;
}

// A command button placed in twips.
QPushButton* commandButton(QWidget* parent, const QString& name, const QString& caption, int left,
                           int top, int width, int height);

template <class F>
QPushButton* commandButton(QWidget* parent, const QString& name, const QString& caption, int left,
                           int top, int width, int height, QObject* context, F onClick) {
    QPushButton* b = commandButton(parent, name, caption, context, std::move(onClick));
    place(b, left, top, width, height);
    return b;
}

// Where the buttons of a row stand, in twips: the first at `left`, each next one `step`
// further right, all at `top` with one size.
struct ButtonRow {
    int left;
    int step;
    int top;
    int width;
    int height;
};

// A control array of command buttons in a row, `base`_0, `base`_1, ..., one a caption. A
// click hands its index to `onClick`, as a control array's Click does.
std::vector<QPushButton*> buttonRow(QWidget* parent, const QString& base,
                                    std::span<const char16_t* const> captions, const ButtonRow& at,
                                    QObject* context, std::function<void(int)> onClick);

// Trims the blanks off a text box, as a field does when it is left, and returns the text. A
// text with none is not set again: that would fire Change where nothing changed.
QString trimText(QLineEdit* t);

// Moves `count` members of a control array to `top` twips, each keeping its left: a form's
// buttons following the bottom edge as the window is resized.
void moveRowTo(Form& f, const QString& base, int count, int top);

} // namespace vb
