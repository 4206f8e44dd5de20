#include "purchase/CaiGouprintfrm.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "query/reports.h"

#include <QApplication>
#include <QPushButton>

#include <memory>

namespace {

constexpr int kGridWidth = 4440;
constexpr int kGridHeight = 4200;

} // namespace

namespace caigouprint {

QString insertHead() {
    return QStringLiteral("Insert Into printCG (bookname,publisher,pubdate,price,zdcode,bookcount,"
                          "jine) Select bookname,publisher,") +
           QStringLiteral("pubdate,price,zdcode,bookcount,bookcount*price");
}

int16_t fillPrintCG(adodb::Connection& conn, const QString& insertSql) {
    // The table holds the last print of anyone: each print starts by emptying it.
    conn.Execute(QStringLiteral("Delete From printCG"));
    long affected = 0;
    conn.Execute(insertSql, &affected);
    const int16_t count = vb::CInt(static_cast<double>(affected));
    // Also on an empty selection, so that the report always has its total line.
    conn.Execute(QStringLiteral("Insert into printCG (bookname,bookcount,jine) Select '合  "
                                "计',sum(bookcount),sum(jine) From printCG"));
    return count;
}

QString title(int16_t count) {
    return QStringLiteral("图书采购定单（") + QString::number(count) + QStringLiteral("种）");
}

void showPrintCG(int16_t count) {
    // The program cannot turn the paper: the librarian does it at the printer.
    vb::MsgBox(QStringLiteral("请将打印机设置为A4横向打印！"), vb::vbInformation, vb::kMsgTitle);

    // From here on a failure is passed over: the table is filled, the report may show it.
    auto rs = std::make_shared<adodb::Recordset>();
    // A recordset that could not be read fails its end-of-file test, and the statement
    // after a failed test is the message.
    bool atEnd = true;
    {
        WaitPointer wait;
        adodb::Connection conn;
        vb::resume([&] { conn.Open(gConnStr); });
        vb::resume([&] {
            rs->Open(QStringLiteral("select bookname,publisher,pubdate,price,zdcode,bookcount,"
                                    "jine from printCG"),
                     conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        });
        vb::resume([&] { atEnd = rs->EOF_(); });
    }
    if (atEnd) {
        vb::MsgBox(QStringLiteral("没有符合条件的记录！"), vb::vbInformation, vb::kMsgTitle);
        return;
    }
    auto& report = vb::form<printCG>();
    vb::resume([&] { report.DataSource = rs; });
    vb::resume([&] { report.Title = title(count); });
    vb::resume([&] { report.landscape = true; });
    vb::resume([&] { report.Refresh(); });
    vb::resume([&] { report.Show(); });
}

WaitPointer::WaitPointer() {
    QApplication::setOverrideCursor(Qt::WaitCursor);
}
WaitPointer::~WaitPointer() {
    QApplication::restoreOverrideCursor();
}

} // namespace caigouprint

CaiGouprintfrm::CaiGouprintfrm() : vb::Form(QStringLiteral("CaiGouprintfrm")) {}

vb::FlexGrid* CaiGouprintfrm::Grid1() {
    return ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
}
QPushButton* CaiGouprintfrm::Command1(int index) {
    return ctl<QPushButton>(QStringLiteral("Command1"), index);
}

void CaiGouprintfrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("采购来源打印"));
    w->setFixedSize(vb::twips(kGridWidth), vb::twips(kGridHeight + 720));

    auto* grid =
        vb::control<vb::FlexGrid>(w, QStringLiteral("Grid1"), 0, 0, kGridWidth, kGridHeight);
    grid->setFixedCols(0);
    // The hint stands alone: double click and Enter have no action in this grid.
    grid->setToolTip(QStringLiteral("<双击>或<回车>“显示明细”"));

    const char16_t* const captions[2] = {u"&A  确定", u"&C  取消"};
    vb::buttonRow(w, QStringLiteral("Command1"), captions,
                  {720, 1800, kGridHeight + 180, 1215, 375}, this,
                  [this](int i) { Command1_Click(i); });
}

void CaiGouprintfrm::onLoad() {
    vb::FlexGrid* g = Grid1();
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(QStringLiteral("Select Distinct bookfrom as [采 购 来 源] From cgk"), conn,
                adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        g->bind(rs, false);
    }
    if (g->Rows() == 1) g->setRows(2);
    g->setRowHeight(0, 350);
    // Room for the vertical scroll bar only when the sources do not all fit.
    const int rowHeight = g->RowHeight(1);
    const bool allFit =
        rowHeight > 0 && (vb::toTwips(g->height()) - 350) / rowHeight > g->Rows() - 1;
    g->setColWidth(0, vb::toTwips(g->width()) - (allFit ? 80 : 360));
    g->setRow(1);
}

void CaiGouprintfrm::Command1_Click(int index) {
    if (index != 0) {
        Unload();
        return;
    }
    vb::FlexGrid* g = Grid1();
    int16_t count = 0;
    {
        caigouprint::WaitPointer wait;
        adodb::Connection conn;
        conn.Open(gConnStr);
        // The name goes in as it stands: a quote in it ends the program.
        count = caigouprint::fillPrintCG(
            conn, caigouprint::insertHead() + QStringLiteral(" From cgk Where bookfrom='") +
                      g->TextMatrix(g->Row(), 0) + QStringLiteral("' Order By cgkID"));
    }
    caigouprint::showPrintCG(count);
}
