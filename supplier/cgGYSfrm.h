#pragma once
// cgGYSfrm (采购来源管理): the suppliers of cggys in a grid; add and change go through
// cgGYSdofrm, delete happens here, 查找 asks Findfrm for a condition.

#include "platform/form.h"
#include "query/queryReceiver.h"

#include <QString>

namespace vb {
class FlexGrid;
}

class cgGYSfrm : public vb::Form, public QueryReceiver {
    Q_OBJECT
public:
    cgGYSfrm();

    // The arguments of the last loadGridData.
    QString lastCond;
    QString lastOrder;

    // Fills the grid from cggys with cond (with its own " Where ") and order.
    void loadGridData(const QString& cond, const QString& order) override;
    void gridFix();

    void Command1_Click(int index);
    void deleteRows();

    vb::FlexGrid* Grid1();

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onResize() override;
    bool previewKeyDown(QKeyEvent* e) override;
};
