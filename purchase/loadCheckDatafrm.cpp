#include "purchase/loadCheckDatafrm.h"

#include "data/globals.h"
#include "data/publicHanshu.h"
#include "platform/Menu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/caigouRules.h"

#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <cmath>

namespace {

constexpr int kIsbnCol = 4;

QString today() {
    return vb::Format(serverDate(), QStringLiteral("YYYY-MM-DD"));
}

// The entry form, loaded: the search works for it, so it stands open behind this one.
CaiGoufrm& caiGou() {
    return vb::form<CaiGoufrm>();
}

// A new order on the entry form: adding mode, fields 1..18 cleared (the source stays).
void beginAdding() {
    CaiGoufrm& cg = caiGou();
    cg.addType = caigou::addAdding;
    for (int i = 1; i < caigou::kFieldCount; ++i) cg.Text1(i)->clear();
}

} // namespace

loadCheckDatafrm::loadCheckDatafrm() : Form(QStringLiteral("loadCheckDatafrm")) {}

void loadCheckDatafrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("检索结果"));
    w->resize(vb::twips(9300), vb::twips(5700));

    auto* grid = new vb::FlexGrid(w);
    grid->setObjectName(QStringLiteral("Grid1"));
    // The hint promises more than the form does; it is what the users have always read.
    grid->setToolTip(QStringLiteral("<双击>或<回车>“修改”、<Del>“删除”"));
    connect(grid, &vb::FlexGrid::MouseDown, this,
            [this](int button, int, int, int) { Grid1_MouseDown(button); });

    auto* frame = new QGroupBox(w);
    frame->setObjectName(QStringLiteral("Frame1"));
    auto* isbn = vb::place(new QRadioButton(QStringLiteral("ISBN(&1)"), frame),
                           vb::ctlName(QStringLiteral("Option1"), 1), 120, 240, 1100, 300);
    auto* title = vb::place(new QRadioButton(QStringLiteral("书名(&2)"), frame),
                            vb::ctlName(QStringLiteral("Option1"), 0), 1260, 240, 1100, 300);
    auto* text = vb::control<QLineEdit>(frame, QStringLiteral("Text1"), 2400, 230, 2700, 315);
    connect(title, &QRadioButton::clicked, this, [this] { Option1_Click(0); });
    connect(isbn, &QRadioButton::clicked, this, [this] { Option1_Click(1); });
    vb::selectAllOnFocus(text);
    vb::enterAsTab(text);
    vb::onLostFocus(text, [this] { Text1_LostFocus(); });

    const char16_t* const captions[4] = {u"&A  确定", u"&N  新增", u"&C  套录", u"&X  取消"};
    // Placed for the design size here; onResize keeps them off the bottom edge.
    const auto buttons =
        vb::buttonRow(w, QStringLiteral("Command1"), captions, {5550, 960, 5700 - 620, 900, 420},
                      this, [this](int k) { Command1_Click(k); });
    for (int k : {1, 2}) buttons[k]->setEnabled(false); // until a search finds rows
    onResize();
}

QLineEdit* loadCheckDatafrm::Text1() {
    return ctl<QLineEdit>(QStringLiteral("Text1"));
}
QRadioButton* loadCheckDatafrm::Option1(int index) {
    return ctl<QRadioButton>(QStringLiteral("Option1"), index);
}
QPushButton* loadCheckDatafrm::Command1(int index) {
    return ctl<QPushButton>(QStringLiteral("Command1"), index);
}
vb::FlexGrid* loadCheckDatafrm::Grid1() {
    return ctl<vb::FlexGrid>(QStringLiteral("Grid1"));
}

void loadCheckDatafrm::onLoad() {
    // Over the entry form, 400 twips lower, the same size.
    if (QWidget* cw = caiGou().window()) {
        const QPoint g = cw->mapToGlobal(QPoint(0, 0));
        window()->setGeometry(g.x(), g.y() + vb::twips(400), cw->width(), cw->height());
    }
    Option1(1)->setChecked(true);
    vb::FlexGrid* g = Grid1();
    g->setFormatString(QStringLiteral("IDs|状态|书   名|出 版 者|ISBN|版本、版次|册 数"));
    g->setRowHeight(0, 350);
    g->setColWidth(0, 0);
    centreColumns();
    g->setRow(1);
    g->setCol(0);
    g->setColSel(g->Cols() - 1);
}

void loadCheckDatafrm::onUnload() {
    vb::resume([] {
        if (vb::FormRegistry::exists<CaiGoufrm>() && caiGou().isLoaded())
            caiGou().Text1(0)->setFocus(Qt::OtherFocusReason);
    });
}

void loadCheckDatafrm::centreColumns() {
    vb::FlexGrid* g = Grid1();
    for (int c = 0; c < g->Cols(); ++c) g->setCellAlignment(0, c, vb::flexAlignCenterCenter);
    for (int c : {1, 4, 5}) g->setColAlignment(c, vb::flexAlignCenterCenter);
}

void loadCheckDatafrm::onResize() {
    // Buttons and the search frame keep their distance from the bottom; the grid takes
    // the rest, 100 above the buttons.
    vb::resume([&] {
        QWidget* w = window();
        const int width = vb::toTwips(w->width());
        const int height = vb::toTwips(w->height());
        const int buttonsTop = height - 620;
        vb::place(w->findChild<QGroupBox*>(QStringLiteral("Frame1")), 60, height - 860, 5300, 760);
        for (int k = 0; k < 4; ++k) vb::place(Command1(k), 5550 + k * 960, buttonsTop, 900, 420);
        vb::place(Grid1(), 0, 0, width, buttonsTop - 100);
        gridFix();
    });
}

void loadCheckDatafrm::gridFix() {
    vb::FlexGrid* g = Grid1();
    const double w = vb::toTwips(g->width());
    static constexpr int parts[6] = {0, 1260, 3075, 3120, 1740, 1380};
    g->setColWidth(0, 0);
    int sum = 0;
    for (int c = 1; c <= 5; ++c) {
        const int cw = static_cast<int>(std::lround(w * parts[c] / 11940.0));
        g->setColWidth(c, cw);
        sum += cw;
    }
    // Room for the vertical scroll bar only when the rows do not all fit.
    const int rowH = g->Rows() > 1 ? g->RowHeight(1) : 255;
    const int fitting = rowH > 0 ? (vb::toTwips(g->height()) - 350) / rowH : 0;
    const bool allFit = fitting > g->Rows() - 1;
    g->setColWidth(6, static_cast<int>(w) - sum - (allFit ? 80 : 360));
}

void loadCheckDatafrm::Text1_LostFocus() {
    QLineEdit* t = Text1();
    const QString s = vb::trimText(t);
    // A bare number is hyphenated as the user leaves; no check digit test here.
    if (!s.isEmpty() && Option1(1)->isChecked()) {
        const QString f = formatIsbn(s);
        if (f != s) t->setText(f);
    }
}

void loadCheckDatafrm::Option1_Click(int /*index*/) {
    vb::resume([&] {
        Text1()->clear();
        Text1()->setFocus(Qt::OtherFocusReason);
    });
}

void loadCheckDatafrm::Command1_Click(int index) {
    switch (index) {
    case 0: {
        if (Text1()->text().isEmpty()) {
            vb::MsgBox(QStringLiteral("请输入查询条件，取消该操作。"), vb::vbCritical,
                       vb::kMsgTitle);
            Text1()->setFocus(Qt::OtherFocusReason);
            return;
        }
        searchKind = Option1(0)->isChecked() ? 0 : 1;
        searchText = vb::Trim(Text1()->text());
        const QString t = caigou::sqlText(searchText);
        if (searchKind == 0)
            loadData(QStringLiteral(" Where bookname Like '%") + t + QStringLiteral("%'"));
        else
            loadData(QStringLiteral(" Where ISBN ='") + t + QStringLiteral("'"));
        break;
    }
    case 1:
        newOrder();
        break;
    case 2:
        copyRecord();
        break;
    default:
        Unload();
    }
}

void loadCheckDatafrm::loadData(const QString& where) {
    const QString sql =
        QStringLiteral("Select ZSKID as IDs,'已编目' as 状态,bookname AS [书   名],publisher as "
                       "[出 版 者],ISBN,"
                       "edition as [版本、版次],bookcount as [册 数] ") +
        QStringLiteral("From ZSK") + where +
        QStringLiteral(" Union Select cgkid as IDs,fieldsname as 状态,bookname AS ") +
        QStringLiteral("[书   名],publisher as [出 版 者],ISBN,edition as [版本、版次],bookcount "
                       "as [册 数] From CGK "
                       "Left Join cgkStatus On fieldsstatus=status ") +
        where + QStringLiteral(" AND (status=0 OR status=1) ") +
        QStringLiteral(" union Select ZSKID as IDs,'套录库' as 状态,bookname AS [书   "
                       "名],publisher as [出 版 者],"
                       "ISBN,edition as [版本、版次],'' as [册 数] ") +
        QStringLiteral("From taolutable") + where + QStringLiteral(" Order By 状态");
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(sql, conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        Grid1()->bind(rs, false);
    }
    // The bound headings are the query's column names. SQL Server names the bare ISBN
    // column as the statement writes it, SQLite by its declared name "isbn": the heading
    // is put back so that it reads the same on both.
    if (Grid1()->Cols() > kIsbnCol) Grid1()->setTextMatrix(0, kIsbnCol, QStringLiteral("ISBN"));
    // From here on errors are ignored.
    vb::FlexGrid* g = Grid1();
    if (g->Rows() == 1) {
        emptyPath();
        return;
    }
    vb::resume([&] {
        Command1(1)->setEnabled(true);
        Command1(2)->setEnabled(true);
    });
    vb::resume([&] { gridFix(); });
    vb::resume([&] { centreColumns(); });
    vb::resume([&] {
        g->setRow(1);
        g->setCol(0);
        g->setColSel(g->Cols() - 1);
    });
    vb::resume([&] { g->setFocus(Qt::OtherFocusReason); });
    vb::resume([&] { Command1(0)->setEnabled(true); });
}

void loadCheckDatafrm::emptyPath() {
    // Nothing found: straight into a new order with what was typed.
    vb::resume([&] { beginAdding(); });
    CaiGoufrm& cg = caiGou();
    if (searchKind == 1) {
        vb::resume([&] { cg.Text1(4)->setText(searchText); });
        vb::resume([&] {
            const QString prefix = caigou::isbnPrefix(Text1()->text());
            if (prefix.isEmpty()) vb::raise(vb::errInvalidCall);
            adodb::Connection conn;
            conn.Open(gConnStr);
            adodb::Recordset rs;
            rs.Open(QStringLiteral("Select C_CBD,C_CBS From cbk Where C_SBN='") +
                        caigou::sqlText(prefix) + QStringLiteral("'"),
                    conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
            if (!rs.EOF_()) {
                cg.Text1(5)->setText(rs.text(QStringLiteral("C_CBS")));
                cg.Text1(6)->setText(rs.text(QStringLiteral("C_CBD")));
            }
        });
    } else {
        vb::resume([&] { cg.Text1(1)->setText(searchText); });
    }
    vb::resume([&] { cg.Text1(16)->setText(today()); });
    vb::resume([&] { Unload(); });
    vb::resume([&] { cg.Text1(0)->setFocus(Qt::OtherFocusReason); });
    // The source follows the publisher here (empty after a title search): that is how
    // this path always worked.
    vb::resume([&] { cg.Text1(0)->setText(cg.Text1(5)->text()); });
}

void loadCheckDatafrm::newOrder() {
    // A further order next to what was found: the source of the last record stays, so a
    // run of orders from one source needs it typed once.
    beginAdding();
    CaiGoufrm& cg = caiGou();
    if (searchKind == 1)
        cg.Text1(4)->setText(searchText);
    else
        cg.Text1(1)->setText(searchText);
    cg.Text1(16)->setText(today());
    Unload();
    cg.Text1(0)->setFocus(Qt::OtherFocusReason);
}

void loadCheckDatafrm::copyRecord() {
    vb::FlexGrid* g = Grid1();
    const QString status = g->TextMatrix(g->Row(), 1);
    const QString id = g->TextMatrix(g->Row(), 0);
    QString sql;
    bool order = false;
    if (status == QStringLiteral("已编目")) {
        sql = QStringLiteral(
                  "Select "
                  "bookname,author,isbn,publisher,pubplace,pubdate,edition,pages,measure,classcode,"
                  "docclass ") +
              QStringLiteral("From ZSK Where ZSKID=") + id;
    } else if (status == QStringLiteral("预定中") || status == QStringLiteral("已验收")) {
        sql = QStringLiteral(
                  "Select "
                  "bookfrom,bookname,author,zdcode,isbn,publisher,pubplace,pubdate,edition,pages,"
                  "measure,classcode,") +
              QStringLiteral("docclass,lagclass,price,cgff From CGK Where cgkid=") + id;
        order = true;
    } else if (status == QStringLiteral("套录库")) {
        sql = QStringLiteral(
                  "Select "
                  "bookname,author,isbn,publisher,pubplace,pubdate,edition,pages,measure,classcode,"
                  "docclass ") +
              QStringLiteral("From taolutable Where ZSKID=") + id;
    }
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    // A status text none of the four has no statement, and opening nothing fails.
    if (sql.isEmpty()) vb::raise(3709, QStringLiteral("对象关闭或无效时，不允许操作。"));
    rs.Open(sql, conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    if (rs.EOF_()) {
        vb::MsgBox(QStringLiteral("数据操作过程中错误，取消该操作。"), vb::vbCritical,
                   vb::kMsgTitle);
        return;
    }
    beginAdding();
    CaiGoufrm& cg = caiGou();
    for (int i = 0; i < rs.fieldCount(); ++i) {
        if (rs.isNull(i)) continue;
        const int target = order ? i : (i < 2 ? i + 1 : i + 2);
        cg.Text1(target)->setText(rs.text(i));
    }
    // From here on errors are ignored.
    vb::resume([&] { cg.Text1(16)->setText(today()); });
    vb::resume([&] { Unload(); });
    // Whatever the copy brought as source, the publisher takes its place.
    vb::resume([&] { cg.Text1(0)->setText(cg.Text1(5)->text()); });
    vb::resume([&] { cg.Text1(0)->setFocus(Qt::OtherFocusReason); });
}

void loadCheckDatafrm::Grid1_MouseDown(int button) {
    if (button != 2) return;
    Menu menu;
    const int id = menu.rightMenu(
        {QStringLiteral("&C  套录"), QStringLiteral("-"), QStringLiteral("&X  取消")});
    if (id == 1)
        Command1_Click(2);
    else if (id == 3)
        Unload();
}
