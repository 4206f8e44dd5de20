#pragma once
// publicHanshu: the shared routines, without state of their own.

#include <QDateTime>
#include <QString>
#include <QVariantList>

#include <cstdint>

namespace vb {
class Form;
}

// The current date and time by the database server's clock; the workstation's when the
// server cannot be asked (after a message box that says why).
QDateTime serverDate();

// The kind of a query field by its Chinese name: 0 text, 1 number, 2 date.
int16_t fieldKind(const QString& name);

// Writes one record into the grid Grid1 of `form`: into the current row when isEdit,
// else into the blank first row or a new last row. Empty values leave their cells alone.
void setGridRow(int isEdit, vb::Form& form, const QVariantList& values);
