#pragma once
// The masked edit box: a line edit under a fixed mask ("####-##-##") whose text shows the
// prompt character in the places not filled and returns it in Text(): an empty date box
// reads "____-__-__" with prompt "_", "    -  -  " with a blank prompt. With no mask it is
// a plain text box.

#include <QLineEdit>

namespace vb {

class MaskEdBox : public QLineEdit {
    Q_OBJECT
public:
    explicit MaskEdBox(QWidget* parent = nullptr);

    // '#' a digit, '9' a digit or blank, '?' a letter, 'A' a letter or digit, '&' any
    // character, '\' quotes the next; anything else is a literal.
    void setMask(const QString& mask);
    QString Mask() const { return m_mask; }
    void setPromptChar(QChar c);
    QChar PromptChar() const { return m_prompt; }

    // The text with literals and prompt characters.
    QString Text() const;
    // Sets the text; with a mask the characters fill the free places from the left, and a
    // prompt character leaves its place empty.
    void setTextVb(const QString& t);
    // The typed characters only, without literals and prompts.
    QString ClipText() const;

private:
    void applyMask();
    QString m_mask;
    QChar m_prompt = u'_';
};

} // namespace vb
