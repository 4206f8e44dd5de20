#include "supplier/gysListfrm.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"

#include <QHeaderView>
#include <QScrollBar>

#include <algorithm>

gysListfrm::gysListfrm() : Form(QStringLiteral("gysListfrm")) {}

void gysListfrm::build(QWidget* w) {
    // A popup closes when the user clicks anywhere else, as a drop-down list does.
    w->setWindowFlags(Qt::Popup | Qt::FramelessWindowHint);
    auto* g = new vb::FlexGrid(w);
    g->setObjectName(QStringLiteral("Grid1"));
    g->setToolTip(QStringLiteral("<点击>/<回车>/<空格>“选定”;<Esc>“取消”"));
    g->setFixedCols(0);
    g->setCols(1);
    g->horizontalHeader()->hide();
    g->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    g->move(0, 0);
    connect(g, &vb::FlexGrid::Click, this, [this] { Grid1_Click(); });
    connect(g, &vb::FlexGrid::KeyDown, this, [this](int& k, int s) { Grid1_KeyDown(k, s); });
    connect(g, &vb::FlexGrid::MouseMove, this,
            [this](int b, int s, int x, int y) { Grid1_MouseMove(b, s, x, y); });
    connect(g, &vb::FlexGrid::LostFocus, this, [this] { Unload(); });
}

vb::FlexGrid* gysListfrm::Grid1() {
    return ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
}

void gysListfrm::onLoad() {
    // Just under the target field, as wide as it.
    QWidget* w = window();
    vb::FlexGrid* g = Grid1();
    if (pTxt) {
        w->move(pTxt->mapToGlobal(QPoint(0, pTxt->height())));
        w->resize(pTxt->width(), w->height());
        g->resize(pTxt->width(), g->height());
    }
    g->setColWidth(0, vb::toTwips(g->width()));
    w->resize(w->width(), g->height());
}

void gysListfrm::onActivate() {
    if (isLoaded()) Grid1()->setFocus(Qt::OtherFocusReason);
}

void gysListfrm::loadData(const QString& sql) {
    vb::FlexGrid* g = Grid1(); // loads the form, with pTxt and tForm already set
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(sql, conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        g->setCols(1);
        g->bind(rs, true); // an empty result still gives one (empty) entry
    }
    g->setColAlignment(0, vb::flexAlignLeftCenter);
    if (listCount() < 1) g->setRows(2);
    g->setRow(1);
    const int n = listCount();
    m_visible = n < 4 ? n : 3;
    g->setVerticalScrollBarPolicy(n < 4 ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAlwaysOn);
    const int rowPx = g->rowHeight(0);
    g->resize(g->width(), m_visible * rowPx + 2 * g->frameWidth());
    // The entry stays readable beside the scroll bar.
    const int barPx = n < 4 ? 0 : g->verticalScrollBar()->sizeHint().width();
    g->setColumnWidth(0, std::max(1, g->width() - 2 * g->frameWidth() - barPx));
    window()->resize(window()->width(), g->height());
}

int gysListfrm::listCount() {
    return Grid1()->Rows() - 1;
}

int gysListfrm::listRow() {
    return Grid1()->Row() - 1;
}

int gysListfrm::visibleRows() {
    return m_visible;
}

void gysListfrm::Grid1_Click() {
    // The pick itself ignores errors: a target that went away takes nothing.
    vb::resume([&] {
        const QString t = Grid1()->Text();
        if (pTxt) pTxt->setText(t);
    });
    Unload();
}

void gysListfrm::Grid1_KeyDown(int& keyCode, int /*shift*/) {
    if (keyCode == vb::vbKeyReturn || keyCode == vb::vbKeySpace) {
        keyCode = 0;
        Grid1_Click();
    } else if (keyCode == vb::vbKeyEscape) {
        keyCode = 0;
        Unload();
    }
}

void gysListfrm::Grid1_MouseMove(int /*button*/, int /*shift*/, int /*x*/, int y) {
    if (!isLoaded()) return;
    vb::FlexGrid* g = Grid1();
    const int rowTw = std::max(1, g->RowHeight(1));
    // The grid's own coordinates: the first entry starts below the frame.
    const int top = vb::toTwips(g->frameWidth());
    int r = (y - top) / rowTw + (g->TopRow() - 1);
    r = std::clamp(r, 0, listCount() - 1);
    g->setRow(r + 1);
    g->setRowSel(r + 1);
}
