#pragma once
// YanShoufrm (采购验收管理): the open orders of one source. The grid is the working copy:
// "×"/"√" in column 2 marks a title chosen, columns 4 (count) and 8 (price) are edited in
// place on chosen rows, and nothing reaches the database until the voucher is confirmed
// and addYS writes every chosen row in one transaction.

#include "platform/form.h"

#include <QString>

#include <cstdint>
#include <utility>

class QLineEdit;
namespace vb {
class FlexGrid;
}

class YanShoufrm : public vb::Form {
    Q_OBJECT
public:
    YanShoufrm();

    QString doLaiYuan;        // the source, set by YanShoudofrm
    bool editFlag = false;    // the editor's text was changed
    int16_t editCell[2] = {}; // row and column under the editor

    void loadData(const QString& sql);
    void gridFix();
    // Writes the chosen rows. iFP and iSJ come quoted or as "NULL".
    void addYS(const QString& iBatch, double iJine, const QString& iFP, const QString& iSJ);

    void Command1_Click(int index);
    void selectRange();
    void unselectRange();
    void editCellOpen();
    void beginYanShou();
    void menuAt();

    vb::FlexGrid* Grid1();
    QLineEdit* Text1();

    // Shared with the replenishment grid, its twin.
    // The rows between Row and RowSel, smaller first.
    static std::pair<int, int> range(const vb::FlexGrid* g);
    // The plain decimal form of the text's leading number: "" and "." give "0".
    static QString plainNumber(const QString& text);
    // The editor's key filter: digits, Backspace and the point.
    static bool keyAllowed(int keyAscii);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onResize() override;

private:
    void Text1_LostFocus();
};
