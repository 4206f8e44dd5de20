#include "platform/maskedbox.h"

namespace vb {

namespace {
// The legacy mask letters in Qt's input-mask language.
QString toQtMask(const QString& mask, QChar prompt) {
    QString out;
    for (qsizetype i = 0; i < mask.size(); ++i) {
        const QChar c = mask[i];
        switch (c.unicode()) {
        case '#':
        case '9':
            out += u'9';
            break;
        case '?':
            out += u'a';
            break;
        case 'A':
        case 'a':
            out += u'n';
            break;
        case '&':
        case 'C':
            out += u'x';
            break;
        case '\\':
            if (i + 1 < mask.size()) out += u'\\' + QString(mask[++i]);
            break;
        default:
            // Qt's own mask letters must be quoted when they are literals here.
            if (QStringLiteral("AaNnXx90Dd#HhBb><![]{}\\").contains(c)) out += u'\\';
            out += c;
        }
    }
    return out + u';' + prompt;
}

bool isPlace(QChar c) {
    return c == u'#' || c == u'9' || c == u'?' || c == u'A' || c == u'a' || c == u'&' || c == u'C';
}
} // namespace

MaskEdBox::MaskEdBox(QWidget* parent) : QLineEdit(parent) {}

void MaskEdBox::applyMask() {
    if (m_mask.isEmpty()) {
        setInputMask(QString());
        return;
    }
    setInputMask(toQtMask(m_mask, m_prompt));
}

void MaskEdBox::setMask(const QString& mask) {
    m_mask = mask;
    applyMask();
}

void MaskEdBox::setPromptChar(QChar c) {
    const QString keep = ClipText();
    m_prompt = c;
    applyMask();
    setTextVb(keep);
}

QString MaskEdBox::Text() const {
    return m_mask.isEmpty() ? text() : displayText();
}

void MaskEdBox::setTextVb(const QString& t) {
    if (m_mask.isEmpty()) {
        setText(t);
        return;
    }
    // Walk mask and text together: literals in the text are skipped where the mask has
    // them, prompt characters leave the place blank.
    QString filled;
    qsizetype ti = 0;
    for (qsizetype mi = 0; mi < m_mask.size(); ++mi) {
        const QChar m = m_mask[mi];
        if (!isPlace(m)) {
            if (ti < t.size() && t[ti] == m) ++ti;
            filled += m;
            continue;
        }
        if (ti < t.size()) {
            const QChar c = t[ti++];
            filled += (c == m_prompt) ? u' ' : c;
        } else {
            filled += u' ';
        }
    }
    setText(filled);
}

QString MaskEdBox::ClipText() const {
    if (m_mask.isEmpty()) return text();
    const QString shown = displayText();
    QString out;
    for (qsizetype i = 0; i < shown.size() && i < m_mask.size(); ++i)
        if (isPlace(m_mask[i]) && shown[i] != m_prompt) out += shown[i];
    return out;
}

} // namespace vb
