#pragma once
// CaiGoufindfrm (采购查询管理): the orders of cgk in one wide read-only grid with their status
// names. The list is narrowed through Findfrm (target "cgk"), orders are deleted from here,
// and the list prints as an order through printCG. Records are not edited here.

#include "platform/form.h"
#include "query/queryReceiver.h"

#include <QString>

class QPushButton;

namespace vb {
class FlexGrid;
}

class CaiGoufindfrm : public vb::Form, public QueryReceiver {
    Q_OBJECT
public:
    CaiGoufindfrm();

    // The arguments of the last loadGridData, and what the print selects. Load sets the
    // order to " Order By status ASC,yddate", which only a print before the first load uses.
    QString lastCond;
    QString lastOrder;

    // cond with its own " Where ", order with its own " Order By ".
    void loadGridData(const QString& cond, const QString& order) override;
    // Columns 3 and 7 share what the fixed widths leave, less room for the scroll bar when
    // the rows do not all fit.
    void gridFix();

    // 查找, 删除, 关闭, 打印.
    void Command1_Click(int index);

    vb::FlexGrid* Grid1();
    QPushButton* Command1(int index);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onResize() override;

private:
    void deleteRows();
    void printList();
};
