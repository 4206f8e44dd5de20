#include "platform/gridrow.h"

#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/form.h"

void setGridRow(int isEdit, vb::Form& form, const QVariantList& values) {
    auto* grid = qobject_cast<vb::FlexGrid*>(form.findControl(QStringLiteral("Grid1")));
    if (!grid) vb::raise(438, QStringLiteral("对象不支持该属性或方法"));
    int row;
    if (isEdit) {
        row = grid->Row();
    } else if (grid->TextMatrix(1, 0).isEmpty()) {
        row = 1; // the first data row is still the blank one
    } else {
        grid->AddItem(QString());
        row = grid->Rows() - 1;
    }
    for (int i = 0; i < values.size(); ++i) {
        const QVariant& v = values[i];
        if (v.isNull() || v.toString().isEmpty()) continue; // an emptied field keeps its old text
        grid->setTextMatrix(row, i, v.toString());
    }
    grid->setRow(row);
    grid->setCol(0);
    grid->setColSel(grid->Cols() - 1);
    if (!isEdit) grid->setTopRow(row);
}
