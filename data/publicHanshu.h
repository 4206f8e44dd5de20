#pragma once
// publicHanshu: the shared routines, without state of their own.

#include <QDateTime>
#include <QString>

#include <cstdint>

// The current date and time by the database server's clock; the workstation's when the
// server cannot be asked (after a message box that says why).
QDateTime serverDate();

// The kind of a query field by its Chinese name: 0 text, 1 number, 2 date.
int16_t fieldKind(const QString& name);

// "yes" when the hyphenated ISBN-10 is sound, else the message that says why (length,
// segments, digits, check digit). The check digit compares case-sensitively: "x" is wrong.
QString checkIsbn(const QString& text);

// A bare 10- or 13-digit number becomes a hyphenated ISBN-10 with a freshly computed check
// digit, the segments found by the shortest publisher prefix in cbk. Anything else (and a
// number without a known prefix) comes back without blanks but otherwise as it was.
QString formatIsbn(const QString& text);

// The ISBN-10 check character of nine digits ("0".."9" or "X"); empty when `nine` is not
// nine digits.
QString isbnCheckChar(const QString& nine);
