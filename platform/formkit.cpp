#include "platform/formkit.h"

#include "platform/vb.h"

namespace vb {

void place(QWidget* c, int left, int top, int width, int height) {
    c->setGeometry(twips(left), twips(top), twips(width), twips(height));
}

QLabel* label(QWidget* parent, const QString& name, const QString& text, int left, int top,
              int width, int height) {
    return place(new QLabel(text, parent), name, left, top, width, height);
}

QPushButton* commandButton(QWidget* parent, const QString& name, const QString& caption) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    return b;
}

QPushButton* commandButton(QWidget* parent, const QString& name, const QString& caption, int left,
                           int top, int width, int height) {
    QPushButton* b = commandButton(parent, name, caption);
    place(b, left, top, width, height);
    return b;
}

std::vector<QPushButton*> buttonRow(QWidget* parent, const QString& base,
                                    std::span<const char16_t* const> captions, const ButtonRow& at,
                                    QObject* context, std::function<void(int)> onClick) {
    std::vector<QPushButton*> row;
    row.reserve(captions.size());
    for (int i = 0; i < static_cast<int>(captions.size()); ++i) {
        row.push_back(commandButton(parent, ctlName(base, i), QString::fromUtf16(captions[i]),
                                    at.left + i * at.step, at.top, at.width, at.height, context,
                                    [onClick, i] { onClick(i); }));
    }
    return row;
}

QString trimText(QLineEdit* t) {
    const QString trimmed = Trim(t->text());
    if (trimmed != t->text()) t->setText(trimmed);
    return trimmed;
}

void moveRowTo(Form& f, const QString& base, int count, int top) {
    for (int i = 0; i < count; ++i) {
        auto* b = f.ctl<QPushButton>(base, i);
        b->move(b->x(), twips(top));
    }
}

} // namespace vb
