#include "acceptance/YanShouBDD.h"

#include "acceptance/YanShouBDDfrm.h"
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

// Columns: 0 cgkid, 1 选定, 2 ISBN, 3 书名, 4 著者, 5 版本版次, 6 价格, 7 预定册数,
// 8 欠到册数, 9 补定册数
constexpr int kMark = 1;
constexpr int kShort = 8;
constexpr int kCount = 9;

} // namespace

YanShouBDD::YanShouBDD()
    : MarkGridForm(QStringLiteral("YanShouBDD"), QStringLiteral("补定单浏览"),
                   QStringLiteral("&B  补定"), QStringLiteral("补定"), {kMark, kCount, kShort}) {}

void YanShouBDD::build(QWidget* w) {
    MarkGridForm::build(w);
    vb::FlexGrid* grid = Grid1();
    // The selection spans the whole row here: no column decides what is edited.
    connect(grid, &vb::FlexGrid::RowColChange, this, [this] {
        if (!m_placing) highlightRow();
    });
    connect(grid, &vb::FlexGrid::GotFocus, this, [this] { highlightRow(); });
}

void YanShouBDD::highlightRow() {
    if (!isLoaded()) return;
    vb::FlexGrid* g = Grid1();
    // Setting Col collapses the range onto the current row; a range being extended with
    // Shift keeps its other end.
    const int rowSel = g->RowSel();
    g->setCol(0);
    g->setRowSel(rowSel);
    g->setColSel(g->Cols() - 1);
}

void YanShouBDD::gridFix() {
    vb::FlexGrid* g = Grid1();
    static constexpr int widths[] = {0, 520, 1395, 0, 1100, 930, 930, 930, 930, 930};
    for (int c = 0; c < 10; ++c)
        if (c != 3) g->setColWidth(c, widths[c]);
    const int width = vb::toTwips(g->width());
    const double fit = (vb::toTwips(g->height()) - 350) / static_cast<double>(g->RowHeight(1));
    g->setColWidth(3, width - 7665 - (fit > g->Rows() - 1 ? 80 : 360));
}

void YanShouBDD::Command1_Click(int index) {
    switch (index) {
    case 0:
        selectRange();
        break;
    case 1:
        if (vb::MsgBox(QStringLiteral("是否确定补定所选书目？（Y/N）"),
                       vb::vbYesNo + vb::vbInformation, vb::kMsgTitle) == vb::vbYes)
            saveBuDing();
        break;
    case 2:
        Unload();
        break;
    default:
        unselectRange();
        break;
    }
}

void YanShouBDD::editCellOpen() {
    vb::FlexGrid* g = Grid1();
    bool open = false;
    vb::resume([&] { open = rowEditable(); });
    if (!open) return;
    // Whichever column was clicked, only 补定册数 is edited.
    m_placing = true;
    vb::resume([&] { g->setCol(kCount); });
    openEditor(kCount);
    m_placing = false;
    editFlag = false;
    editCell[0] = static_cast<int16_t>(g->Row());
    editCell[1] = kCount;
}

int16_t YanShouBDD::newCgkId() {
    // Its own connection, outside the caller's transaction: ids drawn by a save that is
    // rolled back stay used.
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(QStringLiteral("Select Code From Global Where type='cgkid'"), conn,
            adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    const QString code = rs.text(0);
    const int16_t id = vb::CInt(code); // above 32767: overflow
    conn.Execute(QStringLiteral("Update global Set code='") + vb::CStr(vb::Val(code) + 1) +
                 QStringLiteral("' Where type='cgkid'"));
    return id;
}

void YanShouBDD::saveBuDing() {
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Transaction tx(conn);
    int16_t kinds = 0, copies = 0;
    vb::FlexGrid* g = Grid1();
    bool trapped = false;
    try {
        for (int r = g->Rows() - 1; r >= 1; --r) {
            if (g->TextMatrix(r, 0).isEmpty()) break;
            if (g->TextMatrix(r, kMark) != kChosen) continue;
            trapped = true;
            const QString id = g->TextMatrix(r, 0);
            // The old order counts as complete from now on.
            conn.Execute(QStringLiteral("Update cgk Set bookcount=yscount Where cgkid=") + id);
            const int16_t newId = newCgkId();
            const QString today = vb::Format(serverDate(), QStringLiteral("yyyy-mm-dd"));
            conn.Execute(
                QStringLiteral("Insert Into cgk (cgkid,bookname,author,zdcode,isbn,pubplace,"
                               "publisher,pubdate,edition,pages,") +
                QStringLiteral("lagclass,classcode,measure,docclass,bookcount,price,cgff,yddate,"
                               "status,bookfrom,cgname) Select ") +
                QString::number(newId) +
                QStringLiteral(",bookname,author,zdcode,isbn,pubplace,publisher,pubdate,edition,"
                               "pages,") +
                QStringLiteral("lagclass,classcode,measure,docclass,") + g->TextMatrix(r, kCount) +
                QStringLiteral(",price,'补定','") + today + QStringLiteral("',0,bookfrom,'") +
                gUserName + QStringLiteral("' From cgk Where cgkid=") + id);
            kinds = vb::CInt(kinds + 1.0);
            copies = vb::CInt(copies + vb::Val(g->TextMatrix(r, kCount)));
            if (r == 1) {
                for (int c = 0; c < g->Cols(); ++c) g->setTextMatrix(1, c, QString());
            } else {
                g->RemoveItem(r);
            }
        }
        tx.commit();
    } catch (const vb::VbError&) {
        if (!trapped) throw;
        tx.rollback();
        // No totals; the grid stays as far as the walk had come.
        vb::MsgBox(QStringLiteral("补定单操作失败，取消该操作。"), vb::vbCritical, vb::kMsgTitle);
        return;
    }
    if (kinds != 0)
        vb::MsgBox(QStringLiteral("补定书目成功。             ") + QStringLiteral("\r\n") +
                       QStringLiteral("补定种类：") + QString::number(kinds) +
                       QStringLiteral("；补定册数：") + QString::number(copies) +
                       QStringLiteral("。"),
                   vb::vbInformation, QStringLiteral("补定提示"));
    if (g->TextMatrix(1, 0).isEmpty() && g->Rows() == 2) {
        Unload();
        vb::form<YanShouBDDfrm>().Show(0);
    }
}
