#include "purchase/CaiGoufindfrm.h"

#include "data/globals.h"
#include "platform/Menu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "purchase/CaiGouprintfrm.h"
#include "query/Findfrm.h"

#include <QPushButton>

#include <algorithm>
#include <cmath>

namespace {

// Design size of the form and of its buttons, in twips.
constexpr int kFormWidth = 11760;
constexpr int kFormHeight = 6150;
constexpr int kButtonWidth = 1215;
constexpr int kButtonHeight = 375;
// The buttons stand this far above the bottom edge, the grid ends this far above them.
constexpr int kButtonsFromBottom = 525;
constexpr int kGridGap = 100;

const char16_t* const kCaptions[4] = {u"&F  查找", u"&D   删除", u"&X  关闭", u"&P  打印"};

// Fixed widths by column; 0 hides the id, -1 marks the two columns that share the rest.
constexpr int kWidths[21] = {0,    810, 1100, -1,  1100, 930, 930, -1,  930, 930, 930,
                             1800, 930, 1330, 930, 930,  600, 600, 930, 930, 600};
// Sum of the fixed widths of columns 1, 2, 4, 5, 6, 8 and 9: what fills the visible width
// beside columns 3 and 7.
constexpr int kFixedVisible = 6730;

} // namespace

CaiGoufindfrm::CaiGoufindfrm() : vb::Form(QStringLiteral("CaiGoufindfrm")) {}

vb::FlexGrid* CaiGoufindfrm::Grid1() {
    return ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
}
QPushButton* CaiGoufindfrm::Command1(int index) {
    return ctl<QPushButton>(QStringLiteral("Command1"), index);
}

void CaiGoufindfrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("采购查询管理"));
    w->resize(vb::twips(kFormWidth), vb::twips(kFormHeight));

    const int buttonsTop = kFormHeight - kButtonsFromBottom;
    auto* grid = vb::control<vb::FlexGrid>(w, QStringLiteral("Grid1"), 0, 0, kFormWidth,
                                           buttonsTop - kGridGap);
    grid->setFixedCols(0);

    vb::buttonRow(w, QStringLiteral("Command1"), kCaptions,
                  {240, 1560, buttonsTop, kButtonWidth, kButtonHeight}, this,
                  [this](int i) { Command1_Click(i); });

    connect(grid, &vb::FlexGrid::KeyDown, this, [this](int& key, int) {
        if (key == vb::vbKeyDelete) Command1_Click(1);
    });
    connect(grid, &vb::FlexGrid::MouseDown, this, [this](int button, int, int, int) {
        if (button != 2) return;
        Menu menu;
        const int id =
            menu.rightMenu({QStringLiteral("查找"), QStringLiteral("-"), QStringLiteral("删除"),
                            QStringLiteral("-"), QStringLiteral("关闭"), QStringLiteral("-"),
                            QStringLiteral("打印")});
        // The entries stand at 1, 3, 5 and 7, separators counted.
        if (id == 1 || id == 3 || id == 5 || id == 7) Command1_Click((id - 1) / 2);
    });
}

void CaiGoufindfrm::onLoad() {
    lastOrder = QStringLiteral(" Order By status ASC,yddate");
    vb::FlexGrid* g = Grid1();
    g->setFormatString(
        QStringLiteral("cgkID|状态|预定日期|书   名|著 者|预定价格|预定册数|采购来源|采购方式|"
                       "采 购 员|出 版 地|出 版 者|出版日期|ISBN|预分类|卷次版本|开本|页码|"
                       "征 订 号|文献类型|语种"));
    g->setRows(2);
    g->setRowHeight(0, 400);
    gridFix();
    for (int c = 0; c < g->Cols(); ++c) g->setCellAlignment(0, c, vb::flexAlignCenterCenter);
    g->setRow(1);
    g->setCol(0);
    g->setColSel(g->Cols() - 1);
}

void CaiGoufindfrm::onResize() {
    vb::resume([&] {
        const int top = ScaleHeight() - kButtonsFromBottom;
        vb::moveRowTo(*this, QStringLiteral("Command1"), 4, top);
        Grid1()->setGeometry(0, 0, vb::twips(ScaleWidth()), std::max(0, vb::twips(top - kGridGap)));
        gridFix();
    });
}

void CaiGoufindfrm::gridFix() {
    vb::FlexGrid* g = Grid1();
    const int rowHeight = g->Rows() > 1 ? g->RowHeight(1) : 0;
    const bool allFit =
        rowHeight > 0 && (vb::toTwips(g->height()) - 350) / rowHeight > g->Rows() - 1;
    // Halves of an odd rest round to even, as the grid's width property takes them.
    const double rest = (vb::toTwips(g->width()) - kFixedVisible - (allFit ? 80 : 360)) / 2.0;
    const int shared = std::max(0, static_cast<int>(std::nearbyint(rest)));
    for (int c = 0; c < 21 && c < g->Cols(); ++c)
        g->setColWidth(c, kWidths[c] < 0 ? shared : kWidths[c]);
}

void CaiGoufindfrm::loadGridData(const QString& cond, const QString& order) {
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(QStringLiteral("Select cgkID,fieldsname as [状态],convert(varchar(10),yddate,111) "
                               "as [预定日期],") +
                    QStringLiteral("bookname as [书   名],author as [著 者],price as [预定价格],"
                                   "bookcount as [预定册数],bookfrom as [采购来源],") +
                    QStringLiteral("cgff as [采购方式],cgname as [采 购 员],pubplace as [出 版 "
                                   "地],publisher as [出 版 者],pubdate as [出版日期],") +
                    QStringLiteral("ISBN,classcode as [预分类],edition as [卷次版本],measure as "
                                   "[开本],pages as [页码],zdcode as [征 订 号],") +
                    QStringLiteral("docclass as [文献类型],lagclass as [语种] From cgk Left Join "
                                   "cgkStatus On fieldsstatus=status ") +
                    cond + order,
                conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        Grid1()->bind(rs, false);
    }
    vb::FlexGrid* g = Grid1();
    if (g->Rows() == 1) g->setRows(2);
    gridFix();
    g->setRowHeight(0, 400);
    g->setRow(1);
    g->setCol(0);
    g->setColSel(g->Cols() - 1);
    lastCond = cond;
    lastOrder = order;
}

void CaiGoufindfrm::Command1_Click(int index) {
    switch (index) {
    case 0: {
        auto& f = vb::form<Findfrm>();
        f.doType = QStringLiteral("cgk");
        f.Show(1);
        break;
    }
    case 1:
        deleteRows();
        break;
    case 2:
        Unload();
        break;
    case 3:
        printList();
        break;
    default:
        break;
    }
}

void CaiGoufindfrm::deleteRows() {
    vb::FlexGrid* g = Grid1();
    const int row = g->Row();
    const int rowSel = g->RowSel();
    if (g->TextMatrix(row, 0).isEmpty() && g->TextMatrix(rowSel, 0).isEmpty()) return;
    if (vb::MsgBox(QStringLiteral("    是否确定删除所选采购资料？\r\n"
                                  "该操作将永久删除记录，是否继续？(Y/N)  "),
                   vb::vbYesNo + vb::vbCritical, vb::kMsgTitle) == vb::vbNo)
        return;

    adodb::Connection conn;
    conn.Open(gConnStr);
    // From the bottom up, so that removing a row does not move the rows still to come.
    // Accepted orders go like open ones.
    for (int i = std::max(row, rowSel); i >= std::min(row, rowSel); --i) {
        conn.Execute(QStringLiteral("Delete From cgk Where cgkid=") + g->TextMatrix(i, 0));
        if (g->Rows() == 2) {
            for (int c = 0; c < g->Cols(); ++c) g->setTextMatrix(1, c, QString());
        } else {
            g->RemoveItem(i);
        }
    }
}

void CaiGoufindfrm::printList() {
    int16_t count = 0;
    {
        caigouprint::WaitPointer wait;
        adodb::Connection conn;
        conn.Open(gConnStr);
        // lastCond may only name columns of cgk: the statement does not join cgkStatus.
        count = caigouprint::fillPrintCG(conn, caigouprint::insertHead() +
                                                   QStringLiteral(" as j1 From cgk ") + lastCond +
                                                   lastOrder);
    }
    caigouprint::showPrintCG(count);
}
