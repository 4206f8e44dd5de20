#include "supplier/cgGYSfrm.h"

#include "data/globals.h"
#include "platform/Menu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "query/Findfrm.h"
#include "supplier/cgGYSdofrm.h"

#include <QKeyEvent>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int kButtons = 6;
constexpr int kButtonWidth = 1215;
constexpr int kButtonHeight = 375;

const char16_t* const kCaptions[kButtons] = {u"&A  增加", u"&D  删除", u"&U  修改",
                                             u"&F  查找", u"&P  打印", u"&X  关闭"};

} // namespace

cgGYSfrm::cgGYSfrm() : vb::Form(QStringLiteral("cgGYSfrm")) {}

vb::FlexGrid* cgGYSfrm::Grid1() {
    return ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
}

void cgGYSfrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("采购来源管理"));
    w->resize(vb::twips(10530), vb::twips(6360));

    auto* grid = vb::control<vb::FlexGrid>(w, QStringLiteral("Grid1"), 0, 0, 10530, 5400);
    grid->setFixedCols(0);
    grid->setToolTip(QStringLiteral("<双击>或<回车>“修改”、<Del>“删除”"));

    vb::buttonRow(w, QStringLiteral("Command1"), kCaptions,
                  {240, 1680, 5500, kButtonWidth, kButtonHeight}, this,
                  [this](int i) { Command1_Click(i); });

    connect(grid, &vb::FlexGrid::DblClick, this, [this] { Command1_Click(2); });
    connect(grid, &vb::FlexGrid::KeyDown, this, [this](int& key, int) {
        if (key == vb::vbKeyReturn) Command1_Click(2);
    });
    connect(grid, &vb::FlexGrid::MouseDown, this, [this](int button, int, int, int) {
        if (button != 2) return;
        Menu menu;
        const int id =
            menu.rightMenu({QStringLiteral("增加"), QStringLiteral("-"), QStringLiteral("删除"),
                            QStringLiteral("修改"), QStringLiteral("-"), QStringLiteral("查找"),
                            QStringLiteral("打印"), QStringLiteral("-"), QStringLiteral("关闭")});
        switch (id) {
        case 1:
            Command1_Click(0);
            break;
        case 3:
            Command1_Click(1);
            break;
        case 4:
            Command1_Click(2);
            break;
        case 6:
            Command1_Click(3);
            break;
        case 7:
            Command1_Click(4);
            break;
        case 9:
            Command1_Click(5);
            break;
        default:
            break;
        }
    });
}

void cgGYSfrm::onLoad() {
    setKeyPreview(true);
    Move(0, 0, 10530, 6360);
    lastOrder = QStringLiteral(" Order By pubclass DESC");
    QString cond = lastCond;
    QString order = lastOrder;
    loadGridData(cond, order);
    gridFix();
}

void cgGYSfrm::onResize() {
    vb::resume([&] {
        const int sw = ScaleWidth();
        const int sh = ScaleHeight();
        const int top = sh - kButtonHeight - 50;
        vb::moveRowTo(*this, QStringLiteral("Command1"), kButtons, top);
        vb::FlexGrid* grid = Grid1();
        grid->setGeometry(0, grid->y(), vb::twips(sw),
                          std::max(0, vb::twips(top - 100) - grid->y()));
    });
}

bool cgGYSfrm::previewKeyDown(QKeyEvent* e) {
    if (vb::keyCodeOf(e) == vb::vbKeyDelete) {
        Command1_Click(1);
        return true;
    }
    return false;
}

void cgGYSfrm::loadGridData(const QString& cond, const QString& order) {
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(QStringLiteral("Select publisher as [名  称],pubplace as [所在城市],address as [地  "
                           "址],zipcode as [邮 编],") +
                QStringLiteral("tel as [联系电话],fax as [传  真],email as [电子邮件],web as "
                               "[网  址],pubclass as [类 型] ") +
                QStringLiteral("From cggys") + cond + order,
            conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    vb::FlexGrid* grid = Grid1();
    grid->bind(rs);
    if (grid->Rows() == 1) grid->setRows(2);
    grid->setRowHeight(0, 400);
    grid->setRow(1);
    grid->setCol(0);
    grid->setColSel(grid->Cols() - 1);
    lastCond = cond;
    lastOrder = order;
}

void cgGYSfrm::gridFix() {
    static constexpr int widths[] = {2445, 885, 2425, 690, 1200, 1200, 1525, 1525, 735};
    vb::FlexGrid* grid = Grid1();
    for (int i = 0; i < 9 && i < grid->Cols(); ++i) grid->setColWidth(i, widths[i]);
}

void cgGYSfrm::Command1_Click(int index) {
    switch (index) {
    case 0: {
        auto& f = vb::form<cgGYSdofrm>();
        vb::resume([&] { f.Unload(); });
        vb::resume([&] { f.gysMode = 0; });
        vb::resume([&] { f.Show(0); });
        break;
    }
    case 1:
        deleteRows();
        break;
    case 2: {
        vb::FlexGrid* grid = Grid1();
        if (grid->TextMatrix(grid->Row(), 0).isEmpty()) break;
        auto& f = vb::form<cgGYSdofrm>();
        f.gysMode = 1;
        f.loadData();
        f.Show(0);
        break;
    }
    case 3: {
        auto& f = vb::form<Findfrm>();
        f.doType = QStringLiteral("cggys");
        f.Show(1);
        break;
    }
    case 4:
        break; // printing the suppliers has never had an action
    default:
        Unload();
        break;
    }
}

void cgGYSfrm::deleteRows() {
    vb::FlexGrid* grid = Grid1();
    const int row = grid->Row();
    const int rowSel = grid->RowSel();
    if (grid->TextMatrix(row, 0).isEmpty() && grid->TextMatrix(rowSel, 0).isEmpty()) return;
    if (vb::MsgBox(QStringLiteral("是否确定删除所选择的来源资料，是否继续？"),
                   vb::vbYesNo + vb::vbCritical, vb::kMsgTitle) == vb::vbNo)
        return;

    adodb::Connection conn;
    conn.Open(gConnStr);
    // From the bottom up, so that removing a row does not move the rows still to come.
    for (int i = std::max(row, rowSel); i >= std::min(row, rowSel); --i) {
        // The name goes in as it stands: a quote in it makes the statement fail.
        conn.Execute(QStringLiteral("Delete From cggys Where publisher='") +
                     grid->TextMatrix(i, 0) + u'\'');
        if (grid->Rows() == 2) {
            for (int c = 0; c < grid->Cols(); ++c) grid->setTextMatrix(1, c, QString());
        } else {
            grid->RemoveItem(i);
        }
    }
}
