#pragma once
// YanShouBrowerfrm (验收查询浏览): the accepted titles (status 1 or 2) under the condition
// that 查找 gave, one row a title; the detail opens on a filled row, and the two voucher
// prints run on the condition in force, not on what the grid shows.

#include "platform/form.h"
#include "query/queryReceiver.h"

#include <QString>

#include <functional>

class QKeyEvent;

namespace vb {
class FlexGrid;
}

class YanShouBrowerfrm : public vb::Form, public QueryReceiver {
    Q_OBJECT
public:
    YanShouBrowerfrm();

    // Findfrm hands the clauses over here ("cgkys"); nothing is read before that.
    void loadGridData(const QString& iiWhere, const QString& iiOrderby) override;
    void gridFix();

    // 查找, 显示明细, 关闭, 打印.
    void Command1_Click(int index);
    // 验收传票 into printYStotal, 验收明细 into printYSmx, each by batch.
    void printVoucher();
    void printDetail();

    vb::FlexGrid* Grid1();

    // 打印设置 is the frame's printer dialog; the frame installs it (the shell sits above
    // this library). Without it the entry does nothing.
    static void setPrinterSetupHandler(std::function<void()> handler);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onResize() override;

private:
    void showDetail();
    void gridMenu();
};
