#include "acceptance/markgrid.h"

#include "data/globals.h"
#include "platform/Menu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/vb.h"

#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace {
constexpr int kButtons = 4;
constexpr int kButtonHeight = 375;
} // namespace

MarkGridForm::MarkGridForm(const QString& name, const QString& caption, const QString& action,
                           const QString& menuWord, Columns columns)
    : vb::Form(name), m_columns(columns), m_caption(caption), m_action(action),
      m_menuWord(menuWord) {}

vb::FlexGrid* MarkGridForm::Grid1() {
    return ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
}

QLineEdit* MarkGridForm::Text1() {
    return ctl<QLineEdit>(QStringLiteral("Text1"));
}

std::pair<int, int> MarkGridForm::range(const vb::FlexGrid* g) {
    return {std::min(g->Row(), g->RowSel()), std::max(g->Row(), g->RowSel())};
}

QString MarkGridForm::plainNumber(const QString& text) {
    return vb::CStr(vb::Val(text));
}

bool MarkGridForm::keyAllowed(int keyAscii) {
    return (keyAscii >= '0' && keyAscii <= '9') || keyAscii == vb::vbKeyBack || keyAscii == 46;
}

void MarkGridForm::build(QWidget* w) {
    w->setWindowTitle(m_caption);
    w->resize(vb::twips(11400), vb::twips(6600));

    auto* grid = vb::control<vb::FlexGrid>(w, QStringLiteral("Grid1"), 0, 0, 11400, 6000);
    // The same words on both grids, although replenishment edits 补定册数.
    grid->setToolTip(QStringLiteral("<空格>选定、<Del>取消；<双击>或<回车>修改“验收册数”"));

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

    const std::u16string action = m_action.toStdU16String();
    const char16_t* const captions[kButtons] = {u"&A  选择", action.c_str(), u"&X  关闭",
                                                u"&C 取消选择"};
    vb::buttonRow(w, QStringLiteral("Command1"), captions, {360, 1800, 6120, 1215, kButtonHeight},
                  this, [this](int i) { Command1_Click(i); });

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

void MarkGridForm::onLoad() {
    Move(0, 0);
}

void MarkGridForm::onResize() {
    vb::resume([&] {
        vb::moveRowTo(*this, QStringLiteral("Command1"), kButtons,
                      ScaleHeight() - kButtonHeight - 50);
    });
    vb::resume([&] { Grid1()->resize(vb::twips(ScaleWidth()), Grid1()->height()); });
    vb::resume([&] {
        const int top = vb::toTwips(ctl<QPushButton>(QStringLiteral("Command1_0"))->y());
        Grid1()->resize(Grid1()->width(), std::max(0, vb::twips(top - 100)));
    });
    vb::resume([&] { gridFix(); });
}

void MarkGridForm::menuAt() {
    Menu menu;
    const int id =
        menu.rightMenu({QStringLiteral("选择"), QStringLiteral("-"), QStringLiteral("修改"),
                        QStringLiteral("-"), QStringLiteral("取消选择"), QStringLiteral("-"),
                        m_menuWord, QStringLiteral("-"), QStringLiteral("关闭")});
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

void MarkGridForm::loadData(const QString& sql) {
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

void MarkGridForm::selectRange() {
    vb::FlexGrid* g = Grid1();
    const auto [from, to] = range(g);
    for (int r = from; r <= to; ++r) {
        if (g->TextMatrix(r, m_columns.mark) != kNotChosen) continue;
        g->setTextMatrix(r, m_columns.mark, kChosen);
        g->setTextMatrix(r, m_columns.count, g->TextMatrix(r, m_columns.countFrom));
    }
}

void MarkGridForm::unselectRange() {
    vb::FlexGrid* g = Grid1();
    const auto [from, to] = range(g);
    for (int r = from; r <= to; ++r) {
        g->setTextMatrix(r, m_columns.mark, kNotChosen);
        g->setTextMatrix(r, m_columns.count, QStringLiteral("0"));
    }
}

bool MarkGridForm::rowEditable() {
    vb::FlexGrid* g = Grid1();
    const int row = g->Row();
    return !vb::Trim(g->TextMatrix(row, 0)).isEmpty() && row != 0 &&
           g->TextMatrix(row, m_columns.mark) != kNotChosen;
}

void MarkGridForm::openEditor(int col) {
    vb::FlexGrid* g = Grid1();
    QLineEdit* t = Text1();
    vb::resume([&] {
        const QRect cell = g->cellRect(g->Row(), col);
        t->setGeometry(g->x() + cell.x(), g->y() + cell.y() + vb::twips(10),
                       vb::twips(g->CellWidth() - 30), vb::twips(g->CellHeight() - 50));
    });
    vb::resume([&] { t->setText(g->TextMatrix(g->Row(), col)); });
    vb::resume([&] {
        t->show();
        t->raise();
        t->setFocus();
    });
}

void MarkGridForm::Text1_LostFocus() {
    if (!isLoaded()) return; // the window is going: no edit to keep
    QLineEdit* t = Text1();
    t->hide();
    const QString plain = plainNumber(t->text());
    if (plain != t->text()) t->setText(plain); // a change sets editFlag
    vb::FlexGrid* g = Grid1();
    if (editFlag) {
        const QString text = t->text();
        g->setTextMatrix(editCell[0], editCell[1], text);
        // A count of zero unchooses the title; a price of zero does not.
        if (editCell[1] == m_columns.count && text == QStringLiteral("0"))
            g->setTextMatrix(editCell[0], m_columns.mark, kNotChosen);
        t->clear();
    }
    editorLeft();
    g->setFocus();
}
