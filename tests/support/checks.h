#pragma once
// One-line checks for the form tests: every box shown, a form's fields, the focused control.

#include "tests/support/testsupport.h"

#include <QApplication>
#include <QLineEdit>

#include <initializer_list>

namespace testsupport {

// Every box shown since the last clear, one "prompt#flags" line each ("" when none).
inline QString shown() {
    QStringList out;
    for (const auto& c : boxes().calls()) out << c.prompt + u'#' + QString::number(c.flags);
    return out.join(u'\n');
}
// The texts of the form's Text1 fields, joined by '|'.
template <class F> QString texts(F& f, std::initializer_list<int> fields) {
    QStringList out;
    for (int i : fields) out << f.Text1(i)->text();
    return out.join(u'|');
}
// The object name of the control that has the focus ("" when none).
inline QString focusName() {
    return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
}

} // namespace testsupport
