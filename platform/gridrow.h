#pragma once
// Writing one record into the grid Grid1 of any form that has one.

#include <QVariantList>

namespace vb {
class Form;
}

// Writes `values` into Grid1 of `form`: into the current row when isEdit, else into the
// blank first row or a new last row, which is scrolled into view. An empty or NULL value
// leaves its cell as it was. A form without Grid1 raises error 438 into the caller's trap.
void setGridRow(int isEdit, vb::Form& form, const QVariantList& values);
