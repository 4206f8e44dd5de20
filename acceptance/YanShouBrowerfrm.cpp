#include "acceptance/YanShouBrowerfrm.h"

#include "acceptance/YanShouBrowerdofrm.h"
#include "data/globals.h"
#include "platform/Menu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "query/Findfrm.h"
#include "query/reports.h"

#include <QPushButton>

#include <algorithm>
#include <memory>

namespace {

constexpr int kButtons = 4;
constexpr int kButtonWidth = 1215;
constexpr int kButtonHeight = 375;
// Columns 0 and 2..6, 8 have fixed widths; 1 and 7 share the rest.
constexpr int kFixedWidths = 5560;

const char16_t* const kCaptions[kButtons] = {u"&F  查找", u"&M 显示明细", u"&X  关闭", u"&P  打印"};

std::function<void()>& printerSetupHandler() {
    static std::function<void()> h;
    return h;
}

// The grouped reports read their table through the shaping provider.
QString shapedProfile() {
    return vb::Replace(gConnStr, QStringLiteral("MSDASQL"), QStringLiteral("MSDataShape"));
}

// The reading step of both prints: the paper message, then the print table by batch into
// the report. From the message on nothing stops the print with an error: a failed read
// counts as an empty one.
template <class Report>
void showShaped(const QString& paperMessage, const QString& select, bool landscape) {
    vb::resume([&] { vb::MsgBox(paperMessage, vb::vbInformation, vb::kMsgTitle); });
    auto rs = std::make_shared<adodb::Recordset>();
    vb::resume([&] {
        adodb::Connection conn;
        conn.Open(shapedProfile());
        rs->Open(QStringLiteral(" SHAPE {") + select +
                     QStringLiteral("}  AS myPrint COMPUTE myPrint BY 'batch'"),
                 conn, adodb::adOpenStatic, adodb::adLockReadOnly, adodb::adCmdText);
    });
    bool empty = true;
    vb::resume([&] { empty = !rs->isOpen() || rs->EOF_(); });
    if (empty) {
        vb::resume([&] {
            vb::MsgBox(QStringLiteral("没有符合条件的记录！"), vb::vbInformation, vb::kMsgTitle);
        });
        return;
    }
    vb::resume([&] {
        auto& r = vb::form<Report>();
        r.DataSource = rs;
        r.landscape = landscape;
        r.Refresh();
        r.Show();
    });
}

} // namespace

YanShouBrowerfrm::YanShouBrowerfrm() : vb::Form(QStringLiteral("YanShouBrowerfrm")) {}

void YanShouBrowerfrm::setPrinterSetupHandler(std::function<void()> handler) {
    printerSetupHandler() = std::move(handler);
}

vb::FlexGrid* YanShouBrowerfrm::Grid1() {
    return ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
}

void YanShouBrowerfrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("验收查询浏览"));
    w->resize(vb::twips(10530), vb::twips(6360));

    auto* grid = vb::control<vb::FlexGrid>(w, QStringLiteral("Grid1"), 0, 0, 10530, 5400);
    // cgkID stands in column 0, hidden; it is data, not a row header.
    grid->setFixedCols(0);
    grid->setToolTip(QStringLiteral("<双击>或<回车>“显示明细”"));

    vb::buttonRow(w, QStringLiteral("Command1"), kCaptions,
                  {240, 1680, 5500, kButtonWidth, kButtonHeight}, this,
                  [this](int i) { Command1_Click(i); });

    connect(grid, &vb::FlexGrid::DblClick, this, [this] { showDetail(); });
    connect(grid, &vb::FlexGrid::KeyDown, this, [this](int& key, int) {
        if (key == vb::vbKeyReturn) showDetail();
    });
    connect(grid, &vb::FlexGrid::MouseDown, this, [this](int button, int, int, int) {
        if (button == 2) gridMenu();
    });
}

void YanShouBrowerfrm::onLoad() {
    Move(0, 0, 10530, 6360);
    fixture_Where = QStringLiteral(" Where (status=1 or status=2)");
    total_Where = fixture_Where;
    orderby_String = QStringLiteral(" Order By batch ASC");

    // An empty list until 查找 gives a condition.
    vb::FlexGrid* grid = Grid1();
    grid->setFormatString(
        QStringLiteral("cgkID|书   名|著 者|卷次版本|价 格|册 数|批 号|采购来源|验收日期"));
    grid->setRows(2);
    grid->setRowHeight(0, 400);
    for (int c = 0; c < grid->Cols(); ++c) grid->setCellAlignment(0, c, vb::flexAlignCenterCenter);
    gridFix();
}

void YanShouBrowerfrm::onResize() {
    vb::resume([&] {
        const int top = ScaleHeight() - kButtonHeight - 50;
        vb::moveRowTo(*this, QStringLiteral("Command1"), kButtons, top);
        vb::FlexGrid* grid = Grid1();
        grid->setGeometry(0, grid->y(), vb::twips(ScaleWidth()),
                          std::max(0, vb::twips(top - 100) - grid->y()));
    });
    vb::resume([&] { gridFix(); });
}

void YanShouBrowerfrm::loadGridData(const QString& iiWhere, const QString& iiOrderby) {
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(
        QStringLiteral("Select cgkID,bookname as [书   名],author as [著 者],edition as "
                       "[卷次版本],ysprice as [价 格],") +
            QStringLiteral("yscount as [册 数],batch as [批 号],bookfrom as "
                           "[采购来源],convert(varchar(10),ysdate,111) as [验收日期] From cgk") +
            iiWhere + iiOrderby,
        conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    vb::FlexGrid* grid = Grid1();
    grid->bind(rs);
    if (grid->Rows() == 1) grid->setRows(2);
    gridFix();
    grid->setRowHeight(0, 400);
    for (int c = 0; c < grid->Cols(); ++c) grid->setCellAlignment(0, c, vb::flexAlignCenterCenter);
    grid->setRow(1);
    grid->setCol(0);
    grid->setColSel(grid->Cols() - 1);
    total_Where = iiWhere;
    orderby_String = iiOrderby;
}

void YanShouBrowerfrm::gridFix() {
    vb::FlexGrid* grid = Grid1();
    static constexpr struct {
        int col;
        int width;
    } fixed[] = {{0, 0}, {2, 1100}, {3, 930}, {4, 750}, {5, 750}, {6, 930}, {8, 1100}};
    for (const auto& f : fixed)
        if (f.col < grid->Cols()) grid->setColWidth(f.col, f.width);
    // Columns 1 and 7 share what is left, less room for a scroll bar when the rows will
    // not all fit.
    const int width = vb::toTwips(grid->width());
    const int height = vb::toTwips(grid->height());
    const int rowHeight = std::max(1, grid->RowHeight(grid->Rows() > 1 ? 1 : 0));
    const bool fits = double(height - 350) / rowHeight > grid->Rows() - 1;
    const int share = std::max(0, vb::CLng(double(width - kFixedWidths - (fits ? 80 : 360)) / 2));
    if (grid->Cols() > 1) grid->setColWidth(1, share);
    if (grid->Cols() > 7) grid->setColWidth(7, share);
}

void YanShouBrowerfrm::showDetail() {
    vb::FlexGrid* grid = Grid1();
    const QString id = grid->TextMatrix(grid->Row(), 0);
    if (id.isEmpty()) return;
    auto& d = vb::form<YanShouBrowerdofrm>();
    d.listRow = static_cast<int16_t>(grid->Row());
    d.loadDate(vb::CInt(id));
    d.Show(1);
}

void YanShouBrowerfrm::gridMenu() {
    Menu menu;
    const int id = menu.rightMenu(
        {QStringLiteral("查找"), QStringLiteral("-"), QStringLiteral("明细"), QStringLiteral("-"),
         QStringLiteral("关闭"), QStringLiteral("-"), QStringLiteral("打印")});
    if (id == 1 || id == 3 || id == 5 || id == 7) Command1_Click((id - 1) / 2);
}

void YanShouBrowerfrm::Command1_Click(int index) {
    switch (index) {
    case 0: {
        auto& f = vb::form<Findfrm>();
        f.doType = QStringLiteral("cgkys");
        f.Show(1);
        break;
    }
    case 1:
        showDetail();
        break;
    case 2:
        Unload();
        break;
    case 3: {
        Menu menu;
        const int id = menu.rightMenu({QStringLiteral("验收传票"), QStringLiteral("-"),
                                       QStringLiteral("验收明细"), QStringLiteral("-"),
                                       QStringLiteral("打印设置")});
        if (id == 1)
            printVoucher();
        else if (id == 3)
            printDetail();
        else if (id == 5 && printerSetupHandler())
            printerSetupHandler()();
        break;
    }
    default:
        break;
    }
}

void YanShouBrowerfrm::printVoucher() {
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        conn.Execute(QStringLiteral("Delete From printYStotal"));
        // One line a source in each batch: titles, copies and money.
        conn.Execute(
            QStringLiteral("Insert Into printYStotal (batch,bookfrom,typecount,counts,jine) Select "
                           "'第 '+batch+' 批采购验收传票',bookfrom,count(bookname),") +
            QStringLiteral("sum(ic),sum(ip) From (Select batch,Bookfrom,bookname,sum(yscount) as "
                           "iC,") +
            QStringLiteral("sum(ysprice*yscount) as iP From cgk ") + total_Where +
            QStringLiteral(" Group By batch,bookfrom,bookname) AS TTT ") +
            QStringLiteral("Group By batch,bookfrom Order by batch,bookfrom"));
    }
    showShaped<printYStotal>(QStringLiteral("请将打印机设置为A4纵向(窄行)打印！"),
                             QStringLiteral("select batch,bookfrom,typecount,counts,jine from "
                                            "printYStotal"),
                             false);
}

void YanShouBrowerfrm::printDetail() {
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        conn.Execute(QStringLiteral("Delete From printYSmx"));
        conn.Execute(
            QStringLiteral("Insert Into printYSmx (batch,bookname,author,publisher,price,counts) "
                           "Select  '第 '+batch+' 批书目采购明细表',bookname,author,publisher,") +
            QStringLiteral("ysprice,sum(yscount) as iC From cgk ") + total_Where +
            QStringLiteral(" Group By batch,bookname,author,publisher,ysprice ") +
            QStringLiteral("Order by batch,bookname,author,publisher,ysprice"));
    }
    showShaped<printYSmx>(QStringLiteral("请将打印机设置为A4横向打印！"),
                          QStringLiteral("select batch,bookname,author,publisher,price,counts "
                                         "from printYSmx"),
                          true);
}
