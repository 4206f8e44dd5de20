#include "acceptance/YanShouBrowerdofrm.h"

#include "acceptance/YanShouBrowerfrm.h"
#include "data/globals.h"
#include "data/publicHanshu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "purchase/caigouRules.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

namespace {

const QString kAskSave = QStringLiteral("该采购验收已经发生修改，是否保存修改？");
const QString kEmptyCaption = QStringLiteral("验收明细资料--空");

struct Field {
    const char16_t* label;
    const char* column; // saved to; the SELECT reads yscount for field 9
    int maxLen;         // 0: no limit
    bool quoted;
};

constexpr Field kField[YanShouBrowerdofrm::kFields] = {
    {u"书  名：", "bookname", 50, true},   {u"作  者：", "author", 30, true},
    {u"出版者：", "publisher", 30, true},  {u"  ISBN：", "isbn", 13, true},
    {u"征订号：", "zdcode", 20, true},     {u"页  码：", "pages", 0, false},
    {u"文献类型：", "docclass", 10, true}, {u"作品语种：", "lagclass", 15, true},
    {u"出版日期：", "pubdate", 0, true},   {u"册 数：", "bookcount", 0, false},
    {u"价 格：", "ysprice", 0, false},     {u"版 本：", "edition", 10, true},
    {u"尺 寸：", "measure", 10, true},
};

const char16_t* const kLabel2Empty[3] = {u"预定日期", u"验收日期", u"验 收 员"};

YanShouBrowerfrm& browser() {
    return vb::form<YanShouBrowerfrm>();
}

} // namespace

YanShouBrowerdofrm::YanShouBrowerdofrm() : vb::Form(QStringLiteral("YanShouBrowerdofrm")) {}

QString YanShouBrowerdofrm::saveColumn(int index) {
    return index >= 0 && index < kFields ? QString::fromLatin1(kField[index].column) : QString();
}

bool YanShouBrowerdofrm::quoted(int index) {
    return index >= 0 && index < kFields && kField[index].quoted;
}

QLineEdit* YanShouBrowerdofrm::Text1(int index) {
    return ctl<QLineEdit>(QStringLiteral("Text1"), index);
}
QLabel* YanShouBrowerdofrm::Label2(int index) {
    return ctl<QLabel>(QStringLiteral("Label2"), index);
}
QPushButton* YanShouBrowerdofrm::Command1(int index) {
    return ctl<QPushButton>(QStringLiteral("Command1"), index);
}
QPushButton* YanShouBrowerdofrm::Command2(int index) {
    return ctl<QPushButton>(QStringLiteral("Command2"), index);
}

void YanShouBrowerdofrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("验收明细资料"));
    w->resize(vb::twips(9360), vb::twips(4560));

    // Seven fields on the left, six on the right; the tab order follows the index.
    constexpr int rowH = 420, labelW = 1100, fieldH = 315;
    for (int i = 0; i < kFields; ++i) {
        const int column = i < 7 ? 0 : 1;
        const int row = i < 7 ? i : i - 7;
        const int x = 120 + column * 4620;
        const int y = 150 + row * rowH;
        auto* label = vb::label(w, vb::ctlName(QStringLiteral("Label1"), i),
                                QString::fromUtf16(kField[i].label), x, y, labelW, fieldH);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        auto* t = vb::control<QLineEdit>(w, vb::ctlName(QStringLiteral("Text1"), i),
                                         x + labelW + 60, y, 3300, fieldH);
        if (kField[i].maxLen > 0) t->setMaxLength(kField[i].maxLen);
        connect(t, &QLineEdit::textChanged, this, [this, i] { Text1_Change(i); });
        vb::enterAsTab(t);
        vb::selectAllOnFocus(t);
        // The focus also leaves a field when its window is torn down, by then perhaps
        // after the form object itself.
        vb::onLostFocus(t, [self = QPointer<YanShouBrowerdofrm>(this), i] {
            if (self && self->isLoaded()) self->Text1_LostFocus(i);
        });
    }
    // The record's fixed data, under the right column.
    for (int k = 0; k < 3; ++k)
        vb::label(w, vb::ctlName(QStringLiteral("Label2"), k), QString::fromUtf16(kLabel2Empty[k]),
                  4740 + 1160, 150 + (6 + k) * rowH, 3300, fieldH);

    const char16_t* const arrows[4] = {u"|<", u"<<", u">>", u">|"};
    const char16_t* const hints[4] = {u"第一条记录(Alt+F)", u"向前一条记录(Alt+P)",
                                      u"向后一条记录(Alt+N)", u"最后一条记录(Alt+L)"};
    const int buttonsTop = 150 + 9 * rowH + 60;
    const auto moves =
        vb::buttonRow(w, QStringLiteral("Command1"), arrows, {240, 500, buttonsTop, 450, 400}, this,
                      [this](int k) { Command1_Click(k); });
    for (int k = 0; k < 4; ++k) {
        moves[k]->setToolTip(QString::fromUtf16(hints[k]));
        moves[k]->setFocusPolicy(Qt::TabFocus);
    }
    const char16_t* const commands[2] = {u"&S   保存", u"&X   关闭"};
    vb::buttonRow(w, QStringLiteral("Command2"), commands, {6600, 1300, buttonsTop, 1200, 400},
                  this, [this](int k) { Command2_Click(k); });
    Command2(0)->setEnabled(false);
}

void YanShouBrowerdofrm::onLoad() {
    setKeyPreview(true);
}

bool YanShouBrowerdofrm::anyFieldChanged() const {
    for (bool b : m_changed)
        if (b) return true;
    return false;
}

void YanShouBrowerdofrm::showEmpty() {
    m_state = kLoading;
    for (int i = 0; i < kFields; ++i) Text1(i)->clear();
    for (int k = 0; k < 3; ++k) Label2(k)->setText(QString::fromUtf16(kLabel2Empty[k]));
    setCaption(kEmptyCaption);
    m_changed.fill(false);
    Command2(0)->setEnabled(false);
}

void YanShouBrowerdofrm::loadDate(int16_t id) {
    m_state = kLoading;
    m_cgkid = id;
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(QStringLiteral("Select bookname,author,publisher,isbn,zdcode,pages,docclass,lagclass,"
                           "pubdate,yscount,ysprice,edition,measure,") +
                QStringLiteral("yddate,ysdate,ysname,batch,bookfrom From cgk Where cgkid=") +
                QString::number(id),
            conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    if (rs.EOF_()) {
        showEmpty();
    } else {
        for (int i = 0; i < kFields; ++i) {
            Text1(i)->setText(rs.isNull(i) ? QString() : rs.text(i));
            m_changed[static_cast<size_t>(i)] = false;
        }
        const QString day = QStringLiteral("yyyy-mm-dd");
        Label2(0)->setText(QStringLiteral("预定日期 ") + vb::Format(rs.value(13), day));
        Label2(1)->setText(QStringLiteral("验收日期 ") + vb::Format(rs.value(14), day));
        Label2(2)->setText(QStringLiteral("验 收 员 ") + rs.text(15));
        setCaption(QStringLiteral("验收明细资料--批号:") + rs.text(16) + QStringLiteral(";来源:") +
                   rs.text(17));
        Command2(0)->setEnabled(false);
    }
    m_state = kShown;
}

void YanShouBrowerdofrm::Text1_Change(int index) {
    if (m_state != kShown) return;
    m_changed[static_cast<size_t>(index)] = true;
    if (!Command2(0)->isEnabled()) Command2(0)->setEnabled(true);
}

void YanShouBrowerdofrm::focusBack(int index) {
    // After the focus has settled where the user moved it.
    QPointer<QLineEdit> t = Text1(index);
    QTimer::singleShot(0, t, [t] {
        if (t) t->setFocus(Qt::OtherFocusReason);
    });
}

void YanShouBrowerdofrm::Text1_LostFocus(int index) {
    if (m_state != kShown) return;
    QLineEdit* t = Text1(index);
    const QString trimmed = vb::trimText(t);
    if (trimmed.isEmpty()) return;
    switch (index) {
    case 3:
        isbnRule(t);
        break;
    case 5:
    case 9:
    case 10:
        if (!vb::IsNumeric(trimmed)) {
            vb::MsgBox(QStringLiteral("无效数字格式，取消该操作。"), vb::vbCritical, vb::kMsgTitle);
            t->clear();
            focusBack(index);
        } else {
            // Val reads from the left: "007" -> 7, "1,200" -> 1.
            const QString plain = vb::CStr(vb::Val(trimmed));
            if (plain != trimmed) t->setText(plain);
        }
        break;
    case 6:
    case 7: {
        // The code lists of the purchase record: 文献类型 in wxlx, 作品语种 in Global.
        const int ruleIndex = index == 6 ? 12 : 13;
        caigou::Record rec;
        rec[static_cast<size_t>(ruleIndex)] = trimmed;
        adodb::Connection conn;
        conn.Open(gConnStr);
        const caigou::LeaveResult r = caigou::leaveField(caigou::addEditing, ruleIndex, rec, conn);
        if (r.focus >= 0) {
            t->clear();
            focusBack(index);
        }
        break;
    }
    default:
        break;
    }
}

void YanShouBrowerdofrm::isbnRule(QLineEdit* t) {
    // No number formatting here: a bare number fails on its length.
    const QString verdict = checkIsbn(t->text());
    if (verdict != QStringLiteral("yes") &&
        vb::MsgBox(verdict + QStringLiteral("\r\n") +
                       QStringLiteral("是否使用该错误的ISBN号？(y/n)"),
                   vb::vbYesNo + vb::vbInformation, vb::kMsgTitle) != vb::vbYes) {
        t->clear();
        focusBack(3);
        return;
    }
    const QString prefix = caigou::isbnPrefix(t->text());
    if (prefix.isEmpty()) return;
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(QStringLiteral("Select C_CBS From cbk Where C_SBN='") + prefix + QStringLiteral("'"),
            conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    if (rs.EOF_()) return;
    // There is no place field on this form: the publisher alone is filled.
    if (rs.isNull(0)) vb::raise(94, QStringLiteral("无效使用 Null"));
    Text1(2)->setText(rs.text(0));
}

bool YanShouBrowerdofrm::checkInput() {
    static constexpr struct {
        int index;
        const char16_t* text;
    } required[] = {
        {0, u"图书采购'书  名'不能为空，取消该操作。"},
        {9, u"图书验收'册  数'不能为空，取消该操作。"},
        {10, u"图书验收'价  格'不能为空，取消该操作。"},
    };
    for (const auto& q : required) {
        if (!Text1(q.index)->text().isEmpty()) continue;
        vb::MsgBox(QString::fromUtf16(q.text), vb::vbCritical, vb::kMsgTitle);
        Text1(q.index)->setFocus(Qt::OtherFocusReason);
        return false;
    }
    return true;
}

void YanShouBrowerdofrm::save() {
    QString list;
    for (int i = 0; i < kFields; ++i) {
        if (!m_changed[static_cast<size_t>(i)]) continue;
        const QString text = Text1(i)->text();
        if (text.isEmpty()) {
            list += QStringLiteral(",") + saveColumn(i) + QStringLiteral("=Null");
        } else {
            const QString q = quoted(i) ? QStringLiteral("'") : QString();
            list += QStringLiteral(",") + saveColumn(i) + QStringLiteral("=") + q +
                    caigou::sqlText(text) + q;
        }
    }
    if (!list.isEmpty()) {
        adodb::Connection conn;
        conn.Open(gConnStr);
        conn.Execute(QStringLiteral("Update cgk Set ") + list.mid(1) +
                     QStringLiteral(" Where cgkid=") + QString::number(m_cgkid));
    }
    // The list row shows what was typed; a new search shows the columns as they are.
    vb::FlexGrid* grid = browser().Grid1();
    static constexpr int gridCol[][2] = {{1, 0}, {2, 1}, {3, 11}, {4, 10}, {5, 9}};
    for (const auto& c : gridCol) grid->setTextMatrix(listRow, c[0], Text1(c[1])->text());
    grid->setRow(listRow);
    grid->setCol(0);
    grid->setColSel(grid->Cols() - 1);

    Command2(0)->setEnabled(false);
    m_changed.fill(false);
}

bool YanShouBrowerdofrm::settleChanges() {
    if (!anyFieldChanged()) return true;
    if (vb::MsgBox(kAskSave, vb::vbYesNo + vb::vbInformation, vb::kMsgTitle) == vb::vbYes) {
        if (!checkInput()) return false;
        save();
    } else {
        m_changed.fill(false);
    }
    return true;
}

void YanShouBrowerdofrm::Command2_Click(int index) {
    if (index == 0) {
        if (checkInput()) save();
        return;
    }
    if (!settleChanges()) return;
    Unload();
}

void YanShouBrowerdofrm::Command1_Click(int index) {
    if (!settleChanges()) return;
    vb::FlexGrid* grid = browser().Grid1();
    const int rows = grid->Rows();
    int row = 0;
    switch (index) {
    case 0:
        row = 1;
        break;
    case 1:
        row = listRow - 1;
        break;
    case 2:
        row = listRow + 1;
        break;
    default:
        row = rows - 1;
        break;
    }
    // Past either end the form leaves the list; the next step in comes back to its end.
    if (row < 1) row = 0;
    if (row > rows - 1) row = rows;
    listRow = static_cast<int16_t>(row);
    if (row == 0 || row == rows) {
        showEmpty();
        return;
    }
    loadDate(vb::CInt(grid->TextMatrix(row, 0)));
}

bool YanShouBrowerdofrm::queryUnload(int mode) {
    // The close box loses nothing either: it asks as 关闭 does.
    if (mode == vb::vbFormControlMenu) return settleChanges();
    return true;
}

void YanShouBrowerdofrm::onUnload() {
    m_state = kLoading;
    m_changed.fill(false);
}

bool YanShouBrowerdofrm::previewKeyDown(QKeyEvent* e) {
    if (vb::shiftOf(e) != vb::vbAltMask) return false;
    switch (vb::keyCodeOf(e)) {
    case 70: // F
        Command1_Click(0);
        return true;
    case 80: // P
        Command1_Click(1);
        return true;
    case 78: // N
        Command1_Click(2);
        return true;
    case 76: // L
        Command1_Click(3);
        return true;
    default:
        return false;
    }
}
