#pragma once
// How a QString shows in a failing assertion: quoted, as UTF-8, with the MARC separators
// (characters 29, 30, 31) drawn as ␝ ␞ ␟ so that a misplaced one can be seen.

#include <QString>

#include <ostream>

inline void PrintTo(const QString& s, std::ostream* os) {
    QString shown = s;
    for (QChar& c : shown) {
        if (c.unicode() >= 29 && c.unicode() <= 31) c = QChar(char16_t(c.unicode() + 0x2400));
    }
    *os << '"' << shown.toStdString() << '"';
}
