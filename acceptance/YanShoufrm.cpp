#include "acceptance/YanShoufrm.h"

#include "acceptance/YanShouAddfrm.h"
#include "acceptance/YanShoudofrm.h"
#include "data/globals.h"
#include "data/publicHanshu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/transaction.h"
#include "platform/vb.h"

#include <QLineEdit>

namespace {

// Columns: 0 cgkid, 1 预定日期, 2 选择, 3 预定册数, 4 验收册数, 5 书名, 6 ISBN, 7 版本版次, 8 价格
constexpr int kMark = 2;
constexpr int kOrdered = 3;
constexpr int kCount = 4;
constexpr int kPrice = 8;

} // namespace

YanShoufrm::YanShoufrm()
    : MarkGridForm(QStringLiteral("YanShoufrm"), QStringLiteral("采购验收管理"),
                   QStringLiteral("&N  验收"), QStringLiteral("验收"), {kMark, kCount, kOrdered}) {}

void YanShoufrm::gridFix() {
    vb::FlexGrid* g = Grid1();
    static constexpr int widths[] = {0, 1440, 520, 930, 930, 0, 1395, 930, 930};
    for (int c = 0; c < 9; ++c)
        if (c != 5) g->setColWidth(c, widths[c]);
    // The title takes what the others leave, less room for a scroll bar when the rows
    // do not all fit.
    const int width = vb::toTwips(g->width());
    const double fit = (vb::toTwips(g->height()) - 350) / static_cast<double>(g->RowHeight(1));
    g->setColWidth(5, width - 7075 - (fit > g->Rows() - 1 ? 80 : 360));
}

void YanShoufrm::Command1_Click(int index) {
    switch (index) {
    case 0:
        selectRange();
        break;
    case 1:
        beginYanShou();
        break;
    case 2:
        Unload();
        break;
    default:
        unselectRange();
        break;
    }
}

void YanShoufrm::editCellOpen() {
    // Errors pass: a double click on an empty grid does nothing visible.
    vb::FlexGrid* g = Grid1();
    bool open = false;
    vb::resume([&] { open = rowEditable() && (g->Col() == kCount || g->Col() == kPrice); });
    if (!open) return;
    openEditor(g->Col());
    editFlag = false; // loading the text is no change
    editCell[0] = static_cast<int16_t>(g->Row());
    editCell[1] = static_cast<int16_t>(g->Col());
}

void YanShoufrm::beginYanShou() {
    vb::FlexGrid* g = Grid1();
    int16_t kinds = 0, ordered = 0, accepted = 0;
    double amount = 0;
    for (int r = 1; r < g->Rows(); ++r) {
        if (g->TextMatrix(r, 0).isEmpty()) break;
        if (g->TextMatrix(r, kMark) != kChosen) continue;
        // Each running sum is a 16-bit integer, rounded half to even when stored.
        kinds = vb::CInt(kinds + 1.0);
        ordered = vb::CInt(ordered + vb::Val(g->TextMatrix(r, kOrdered)));
        accepted = vb::CInt(accepted + vb::Val(g->TextMatrix(r, kCount)));
        amount += vb::Val(g->TextMatrix(r, kCount)) * vb::Val(g->TextMatrix(r, kPrice));
    }
    if (kinds == 0 || accepted == 0) return;
    auto& voucher = vb::form<YanShouAddfrm>();
    voucher.setCaption(QStringLiteral("采购验收--种类:") + QString::number(kinds) +
                       QStringLiteral(";采购册数:") + QString::number(ordered) +
                       QStringLiteral(";验收册数:") + QString::number(accepted));
    voucher.Text1(0)->setText(doLaiYuan);
    voucher.Text1(2)->setText(vb::Format(amount, QStringLiteral("0.00")));
    voucher.Show(1);
}

void YanShoufrm::addYS(const QString& iBatch, double iJine, const QString& iFP,
                       const QString& iSJ) {
    // Opening and beginning are not trapped: their failure is the runtime's error.
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Transaction tx(conn);
    vb::FlexGrid* g = Grid1();
    bool trapped = false; // the trap is set at the first chosen row
    try {
        // Downward, because rows go from the grid as they are written.
        for (int r = g->Rows() - 1; r >= 1; --r) {
            if (g->TextMatrix(r, 0).isEmpty()) break;
            if (g->TextMatrix(r, kMark) != kChosen) continue;
            trapped = true;
            const QString today = vb::Format(serverDate(), QStringLiteral("yyyy-mm-dd"));
            // The batch and the codes go in as typed: a quote in them fails the voucher.
            conn.Execute(QStringLiteral("Update cgk Set ysname='") + gUserName +
                         QStringLiteral("',ysdate='") + today + QStringLiteral("',batch='") +
                         iBatch + QStringLiteral("',ysprice=") + g->TextMatrix(r, kPrice) +
                         QStringLiteral(",yscount=") + g->TextMatrix(r, kCount) +
                         QStringLiteral(",fpcode=") + iFP + QStringLiteral(",sjcode=") + iSJ +
                         QStringLiteral(",ysjine=") + vb::CStr(iJine) +
                         QStringLiteral(",status=1 Where cgkid=") + g->TextMatrix(r, 0));
            if (r == 1) {
                // The grid's last data row cannot go: it stays, blank.
                for (int c = 0; c < g->Cols(); ++c) g->setTextMatrix(1, c, QString());
            } else {
                g->RemoveItem(r);
            }
        }
        tx.commit();
    } catch (const vb::VbError&) {
        if (!trapped) throw;
        tx.rollback();
        vb::MsgBox(QStringLiteral("采购验收操作失败，取消该操作。"), vb::vbCritical, vb::kMsgTitle);
        return;
    }
    if (g->TextMatrix(1, 0).isEmpty() && g->Rows() == 2) {
        // Nothing left of this source: back to the dialog for the next one.
        Unload();
        vb::form<YanShoudofrm>().Show(0);
    }
}
