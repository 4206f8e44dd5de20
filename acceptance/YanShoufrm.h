#pragma once
// YanShoufrm (采购验收管理): the open orders of one source. The grid is the working copy:
// "×"/"√" in column 2 marks a title chosen, columns 4 (count) and 8 (price) are edited in
// place on chosen rows, and nothing reaches the database until the voucher is confirmed
// and addYS writes every chosen row in one transaction.

#include "acceptance/markgrid.h"

#include <QString>

class YanShoufrm : public MarkGridForm {
    Q_OBJECT
public:
    YanShoufrm();

    QString doLaiYuan; // the source, set by YanShoudofrm

    void gridFix() override;
    // Writes the chosen rows. iFP and iSJ come quoted or as "NULL".
    void addYS(const QString& iBatch, double iJine, const QString& iFP, const QString& iSJ);

    void Command1_Click(int index) override;
    void editCellOpen() override;
    void beginYanShou();
};
