#include "acceptance/YanShoufrm.h"

#include "acceptance/YanShouAddfrm.h"
#include "acceptance/YanShoudofrm.h"
#include "data/globals.h"
#include "data/publicHanshu.h"
#include "platform/Menu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/msgbox.h"
#include "platform/transaction.h"
#include "platform/vb.h"

#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace {

const QString kTitle = QStringLiteral("操作提示");
const QString kChosen = QStringLiteral("√");
const QString kNotChosen = QStringLiteral("×");
constexpr int kButtons = 4;
constexpr int kButtonHeight = 375;
// Columns: 0 cgkid, 1 预定日期, 2 选择, 3 预定册数, 4 验收册数, 5 书名, 6 ISBN, 7 版本版次, 8 价格
constexpr int kMark = 2;
constexpr int kOrdered = 3;
constexpr int kCount = 4;
constexpr int kPrice = 8;

} // namespace

YanShoufrm::YanShoufrm() : vb::Form(QStringLiteral("YanShoufrm")) {}

vb::FlexGrid* YanShoufrm::Grid1() {
    return ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
}

QLineEdit* YanShoufrm::Text1() {
    return ctl<QLineEdit>(QStringLiteral("Text1"));
}

std::pair<int, int> YanShoufrm::range(const vb::FlexGrid* g) {
    return {std::min(g->Row(), g->RowSel()), std::max(g->Row(), g->RowSel())};
}

QString YanShoufrm::plainNumber(const QString& text) {
    return vb::CStr(vb::Val(text));
}

bool YanShoufrm::keyAllowed(int keyAscii) {
    return (keyAscii >= '0' && keyAscii <= '9') || keyAscii == vb::vbKeyBack || keyAscii == 46;
}

void YanShoufrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("采购验收管理"));
    w->resize(vb::twips(11400), vb::twips(6600));

    auto* grid = new vb::FlexGrid(w);
    grid->setObjectName(QStringLiteral("Grid1"));
    grid->setToolTip(QStringLiteral("<空格>选定、<Del>取消；<双击>或<回车>修改“验收册数”"));
    grid->setGeometry(0, 0, vb::twips(11400), vb::twips(6000));

    auto* editor = new QLineEdit(w);
    editor->setObjectName(QStringLiteral("Text1"));
    editor->setFocusPolicy(Qt::ClickFocus); // no tab stop
    editor->hide();
    connect(editor, &QLineEdit::textChanged, this, [this] { editFlag = true; });
    vb::selectAllOnFocus(editor);
    vb::onKeyPress(editor, [this](int& key) {
        if (key == vb::vbKeyReturn) {
            key = 0;
            Grid1()->setFocus();
        } else if (!keyAllowed(key)) {
            key = 0;
        }
    });
    vb::onLostFocus(editor, [this] { Text1_LostFocus(); });

    const char16_t* captions[kButtons] = {u"&A  选择", u"&N  验收", u"&X  关闭", u"&C 取消选择"};
    for (int i = 0; i < kButtons; ++i) {
        auto* b = new QPushButton(QString::fromUtf16(captions[i]), w);
        b->setObjectName(vb::ctlName(QStringLiteral("Command1"), i));
        b->setGeometry(vb::twips(360 + i * 1800), vb::twips(6120), vb::twips(1215),
                       vb::twips(kButtonHeight));
        connect(b, &QPushButton::clicked, this, [this, i] { Command1_Click(i); });
    }

    connect(grid, &vb::FlexGrid::DblClick, this, [this] { editCellOpen(); });
    connect(grid, &vb::FlexGrid::KeyDown, this, [this](int& key, int) {
        if (key == vb::vbKeySpace)
            Command1_Click(0);
        else if (key == vb::vbKeyReturn)
            editCellOpen();
        else if (key == vb::vbKeyDelete)
            Command1_Click(3);
    });
    connect(grid, &vb::FlexGrid::KeyPress, this, [this](int& key) {
        if (key == vb::vbKeyReturn) editCellOpen();
    });
    connect(grid, &vb::FlexGrid::MouseDown, this, [this](int button, int, int, int) {
        if (button == 2) menuAt();
    });
    connect(grid, &vb::FlexGrid::Scroll, this, [this] { Text1()->hide(); });
}

void YanShoufrm::onLoad() {
    Move(0, 0);
}

void YanShoufrm::onResize() {
    vb::resume([&] {
        for (int i = 0; i < kButtons; ++i) {
            auto* b = ctl<QPushButton>(QStringLiteral("Command1"), i);
            b->move(b->x(), vb::twips(ScaleHeight() - kButtonHeight - 50));
        }
    });
    vb::resume([&] { Grid1()->resize(vb::twips(ScaleWidth()), Grid1()->height()); });
    vb::resume([&] {
        const int top = vb::toTwips(ctl<QPushButton>(QStringLiteral("Command1_0"))->y());
        Grid1()->resize(Grid1()->width(), std::max(0, vb::twips(top - 100)));
    });
    vb::resume([&] { gridFix(); });
}

void YanShoufrm::menuAt() {
    Menu menu;
    const int id =
        menu.rightMenu({QStringLiteral("选择"), QStringLiteral("-"), QStringLiteral("修改"),
                        QStringLiteral("-"), QStringLiteral("取消选择"), QStringLiteral("-"),
                        QStringLiteral("验收"), QStringLiteral("-"), QStringLiteral("关闭")});
    switch (id) {
    case 1:
        Command1_Click(0);
        break;
    case 3:
        editCellOpen();
        break;
    case 5:
        Command1_Click(3);
        break;
    case 7:
        Command1_Click(1);
        break;
    case 9:
        Command1_Click(2);
        break;
    default:
        break;
    }
}

void YanShoufrm::loadData(const QString& sql) {
    vb::FlexGrid* g = Grid1();
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(sql, conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        g->bind(rs); // the grid keeps its own copy
    }
    gridFix();
    g->setRowHeight(0, 350);
    g->setRow(1);
    g->setCol(0);
    g->setColSel(g->Cols() - 1);
}

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

void YanShoufrm::selectRange() {
    vb::FlexGrid* g = Grid1();
    const auto [from, to] = range(g);
    for (int r = from; r <= to; ++r) {
        if (g->TextMatrix(r, kMark) != kNotChosen) continue; // a chosen row keeps its count
        g->setTextMatrix(r, kMark, kChosen);
        g->setTextMatrix(r, kCount, g->TextMatrix(r, kOrdered));
    }
}

void YanShoufrm::unselectRange() {
    vb::FlexGrid* g = Grid1();
    const auto [from, to] = range(g);
    for (int r = from; r <= to; ++r) {
        g->setTextMatrix(r, kMark, kNotChosen);
        g->setTextMatrix(r, kCount, QStringLiteral("0"));
    }
}

void YanShoufrm::editCellOpen() {
    // Errors pass: a double click on an empty grid does nothing visible.
    vb::FlexGrid* g = Grid1();
    bool open = false;
    vb::resume([&] {
        const int row = g->Row();
        open = !vb::Trim(g->TextMatrix(row, 0)).isEmpty() && row != 0 &&
               g->TextMatrix(row, kMark) != kNotChosen &&
               (g->Col() == kCount || g->Col() == kPrice);
    });
    if (!open) return;
    QLineEdit* t = Text1();
    vb::resume([&] {
        const QRect cell = g->cellRect(g->Row(), g->Col());
        t->setGeometry(g->x() + cell.x(), g->y() + cell.y() + vb::twips(10),
                       vb::twips(g->CellWidth() - 30), vb::twips(g->CellHeight() - 50));
    });
    vb::resume([&] { t->setText(g->TextMatrix(g->Row(), g->Col())); });
    vb::resume([&] {
        t->show();
        t->raise();
        t->setFocus();
    });
    editFlag = false; // loading the text is no change
    editCell[0] = static_cast<int16_t>(g->Row());
    editCell[1] = static_cast<int16_t>(g->Col());
}

void YanShoufrm::Text1_LostFocus() {
    if (!isLoaded()) return; // the window is going: no edit to keep
    QLineEdit* t = Text1();
    t->hide();
    const QString plain = plainNumber(t->text());
    if (plain != t->text()) t->setText(plain); // a change sets editFlag
    if (editFlag) {
        vb::FlexGrid* g = Grid1();
        const QString text = t->text();
        g->setTextMatrix(editCell[0], editCell[1], text);
        // A count of zero unchooses the title; a price of zero does not.
        if (editCell[1] == kCount && text == QStringLiteral("0"))
            g->setTextMatrix(editCell[0], kMark, kNotChosen);
        t->clear();
    }
    Grid1()->setFocus();
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
        vb::MsgBox(QStringLiteral("采购验收操作失败，取消该操作。"), vb::vbCritical, kTitle);
        return;
    }
    if (g->TextMatrix(1, 0).isEmpty() && g->Rows() == 2) {
        // Nothing left of this source: back to the dialog for the next one.
        Unload();
        vb::form<YanShoudofrm>().Show(0);
    }
}
