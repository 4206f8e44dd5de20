#include "purchase/CaiGoufrm.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "purchase/CaiGoufindfrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "query/Findfrm.h"
#include "supplier/cgGYSdofrm.h"
#include "supplier/gysListfrm.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

namespace {

// The fields with a pick list, by cList index, and what each list offers.
constexpr int kListField[5] = {0, 10, 12, 13, 15};
const char16_t* const kListSql[5] = {
    u"select distinct names from (select publisher as names from cggys Union Select bookfrom as "
    u"names from cgk) AS T",
    u"Select Distinct measure From CCK",
    u"Select Distinct docclass From WXLX",
    u"Select Distinct code From Global Where type='language'",
    u"Select Distinct code From Global Where type='cgkcgff'",
};

int listIndexOf(int field) {
    for (int k = 0; k < 5; ++k)
        if (kListField[k] == field) return k;
    return -1;
}

} // namespace

CaiGoufrm::CaiGoufrm() : Form(QStringLiteral("CaiGoufrm")) {}
CaiGoufrm::~CaiGoufrm() = default;

void CaiGoufrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("采购订单"));
    // As wide as the duplicate check's grid was laid out for (it takes this form's size).
    w->resize(vb::twips(12000), vb::twips(5700));

    // Fields 0..9 on the left, 10..18 on the right; the tab order follows the index.
    constexpr int rowH = 420, labelW = 1200, fieldW = 4300, fieldH = 315;
    for (int i = 0; i < caigou::kFieldCount; ++i) {
        const int column = i < 10 ? 0 : 1;
        const int row = i < 10 ? i : i - 10;
        const int x = 150 + column * 5900;
        const int y = 180 + row * rowH;
        auto* label = vb::label(w, vb::ctlName(QStringLiteral("Label1"), i), caigou::fieldLabel(i),
                                x, y, labelW, fieldH);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        const bool hasList = listIndexOf(i) >= 0;
        auto* t =
            vb::control<QLineEdit>(w, vb::ctlName(QStringLiteral("Text1"), i), x + labelW + 60, y,
                                   hasList ? fieldW - 300 : fieldW, fieldH);
        if (caigou::maxLength(i) > 0) t->setMaxLength(caigou::maxLength(i));
        if (hasList) {
            auto* b =
                vb::control<QToolButton>(w, vb::ctlName(QStringLiteral("cList"), listIndexOf(i)),
                                         x + labelW + 60 + fieldW - 300, y, 300, fieldH);
            b->setArrowType(Qt::DownArrow);
            b->setFocusPolicy(Qt::NoFocus);
            const int k = listIndexOf(i);
            connect(b, &QToolButton::clicked, this, [this, k] { cList_Click(k); });
        }
        connect(t, &QLineEdit::textChanged, this, [this, i] { Text1_Change(i); });
        vb::enterAsTab(t);
        vb::onKeyPress(t, [this](int& ascii) { Text1_KeyPress(ascii); });
        vb::onKeyDown(t, [this, i](int& code, int shift) { Text1_KeyDown(i, code, shift); });
        vb::selectAllOnFocus(t);
        vb::onLostFocus(t, [this, i] { Text1_LostFocus(i); });
        t->installEventFilter(this); // input-method text is typing too
    }
    auto* check = vb::place(new QCheckBox(QStringLiteral("验收否"), w), QStringLiteral("Check1"),
                            150 + 5900 + labelW + 60, 180 + 9 * rowH, 1500, fieldH);
    check->setEnabled(false);

    const char16_t* const arrows[4] = {u"|<", u"<<", u">>", u">|"};
    const char16_t* const hints[4] = {u"第一条(Alt+F)", u"上一条(Alt+P)", u"下一条(Alt+N)",
                                      u"最后一条(Alt+L)"};
    const int buttonsTop = 180 + 10 * rowH + 300;
    const auto moves =
        vb::buttonRow(w, QStringLiteral("Command1"), arrows, {150, 480, buttonsTop, 450, 400}, this,
                      [this](int k) { Command1_Click(k); });
    for (int k = 0; k < 4; ++k) moves[k]->setToolTip(QString::fromUtf16(hints[k]));
    const char16_t* const commands[6] = {u"&A  增加", u"&Z 同批增加", u"&S  保存",
                                         u"&D  查找", u"&B  浏览",    u"&X  关闭"};
    int x = 6200;
    for (int i = 0; i < 6; ++i) {
        // Same-batch add was never finished: hidden, off the visible area.
        const bool unfinished = i == 1;
        auto* b = vb::commandButton(w, vb::ctlName(QStringLiteral("Command2"), i),
                                    QString::fromUtf16(commands[i]), unfinished ? -3000 : x,
                                    buttonsTop, 1100, 400, this, [this, i] { Command2_Click(i); });
        if (unfinished) {
            b->setEnabled(false);
            b->setVisible(false);
        } else {
            x += 1150;
        }
    }
    Command2(2)->setEnabled(false);
}

QLineEdit* CaiGoufrm::Text1(int index) {
    return ctl<QLineEdit>(QStringLiteral("Text1"), index);
}
QPushButton* CaiGoufrm::Command1(int index) {
    return ctl<QPushButton>(QStringLiteral("Command1"), index);
}
QPushButton* CaiGoufrm::Command2(int index) {
    return ctl<QPushButton>(QStringLiteral("Command2"), index);
}

void CaiGoufrm::onLoad() {
    setKeyPreview(true);
    addType = caigou::addEmpty;
    m_conn = std::make_unique<adodb::Connection>();
    m_conn->Open(gConnStr);
    m_idList = std::make_unique<adodb::Recordset>();
    m_idList->Open(QStringLiteral("Select cgkID From cgk Order by cgkid"), *m_conn,
                   adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
}

void CaiGoufrm::onUnload() {
    // No question here: the close box drops changes; only 关闭 asks.
    m_idList.reset();
    m_conn.reset();
    addType = caigou::addClosed;
    m_cgkIDs = 0;
    m_fieldChanged.fill(false);
    m_saveFailed = false;
}

bool CaiGoufrm::anyFieldChanged() const {
    for (bool b : m_fieldChanged)
        if (b) return true;
    return false;
}

void CaiGoufrm::clearChanged() {
    m_fieldChanged.fill(false);
}

caigou::Record CaiGoufrm::record() {
    caigou::Record r;
    for (int i = 0; i < caigou::kFieldCount; ++i) r[static_cast<size_t>(i)] = Text1(i)->text();
    return r;
}

void CaiGoufrm::setRecord(const caigou::Record& rec) {
    // Only what a rule rewrote is written back, so only that fires Change.
    for (int i = 0; i < caigou::kFieldCount; ++i)
        if (Text1(i)->text() != rec[static_cast<size_t>(i)])
            Text1(i)->setText(rec[static_cast<size_t>(i)]);
}

void CaiGoufrm::focusField(int index) {
    QLineEdit* t = Text1(index);
    t->setEnabled(true);
    t->setFocus(Qt::OtherFocusReason);
}

void CaiGoufrm::Text1_Change(int index) {
    if (index == 18 || !editing()) return;
    m_fieldChanged[static_cast<size_t>(index)] = true;
    if (!Command2(2)->isEnabled()) Command2(2)->setEnabled(true);
}

void CaiGoufrm::Text1_LostFocus(int index) {
    if (!editing() || !m_conn) return;
    caigou::Record rec = record();
    const caigou::LeaveResult r = caigou::leaveField(addType, index, rec, *m_conn);
    setRecord(rec);
    if (r.addSource) {
        const QString source = rec[0];
        // The supplier form in its mode for this form, with the name proposed; each step
        // goes on past an error.
        auto& add = vb::form<cgGYSdofrm>();
        vb::resume([&] { add.Unload(); });
        vb::resume([&] { add.gysMode = 2; });
        vb::resume([&] { add.Text1(0)->setText(source); });
        vb::resume([&] { add.Show(0); });
    }
    if (r.focus >= 0) {
        // After the focus has settled on the field the user moved to.
        QPointer<QLineEdit> t = Text1(r.focus);
        QTimer::singleShot(0, t, [t] {
            if (t) t->setFocus(Qt::OtherFocusReason);
        });
    }
}

void CaiGoufrm::Text1_KeyPress(int& keyAscii) {
    // Enter was turned into Tab before this; outside adding and editing nothing is typed.
    if (!editing()) keyAscii = 0;
}

void CaiGoufrm::Text1_KeyDown(int index, int& keyCode, int /*shift*/) {
    if (!editing()) return;
    if (keyCode != vb::vbKeyUp && keyCode != vb::vbKeyDown) return;
    const int k = listIndexOf(index);
    if (k < 0) return;
    keyCode = 0;
    cList_Click(k);
}

bool CaiGoufrm::eventFilter(QObject* watched, QEvent* event) {
    // Text committed by an input method never comes as a key press; outside adding and
    // editing it is refused like any other typing.
    if (event->type() == QEvent::InputMethod && !editing() &&
        watched->objectName().startsWith(u"Text1_"))
        return true;
    return Form::eventFilter(watched, event);
}

bool CaiGoufrm::previewKeyDown(QKeyEvent* e) {
    if (vb::shiftOf(e) != vb::vbAltMask) return false;
    switch (vb::keyCodeOf(e)) {
    case 'F':
        Command1_Click(0);
        return true;
    case 'P':
        Command1_Click(1);
        return true;
    case 'N':
        Command1_Click(2);
        return true;
    case 'L':
        Command1_Click(3);
        return true;
    default:
        return false;
    }
}

bool CaiGoufrm::checkInput() {
    const caigou::CheckResult r = caigou::checkInput(record());
    if (!r.ok) focusField(r.focus);
    return r.ok;
}

void CaiGoufrm::showRecord() {
    for (int i = 0; i <= 17; ++i) Text1(i)->clear();
    clearChanged();
    addType = caigou::addEmpty;
    m_cgkIDs = 0;
    Text1(18)->clear();
    Command2(2)->setEnabled(false);
    if (!m_idList || m_idList->EOF_() || m_idList->BOF()) {
        setCaption(QStringLiteral("采购定单-空"));
        return;
    }
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(
        QStringLiteral(
            "Select cgkid,bookfrom,bookname,author,zdcode,ISBN,publisher,pubplace,pubdate,edition,"
            "pages,measure,") +
            QStringLiteral(
                "classcode,docclass,lagclass,price,cgff,convert(varchar(10),yddate,111) as "
                "R1,bookcount,batch ") +
            QStringLiteral("From cgk Where cgkid=") + m_idList->text(0),
        conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    m_cgkIDs = vb::CInt(rs.text(0)); // the 16-bit key: past 32767 this overflows
    for (int i = 0; i < caigou::kFieldCount; ++i)
        if (!rs.isNull(i + 1)) Text1(i)->setText(rs.text(i + 1));
    if (!Text1(16)->text().isEmpty()) {
        if (const auto d = vb::CDate(Text1(16)->text()))
            Text1(16)->setText(vb::Format(*d, QStringLiteral("yyyy-mm-dd")));
    }
    ctl<QCheckBox>(QStringLiteral("Check1"))->setChecked(!Text1(18)->text().isEmpty());
    addType = caigou::addEditing;
    clearChanged();
    Command2(2)->setEnabled(false);
    setCaption(QStringLiteral("采购定单-") + QString::number(m_cgkIDs));
}

void CaiGoufrm::Command1_Click(int index) {
    // Errors are ignored throughout the navigation.
    if (anyFieldChanged()) {
        int answer = vb::vbNo;
        vb::resume([&] {
            answer = vb::MsgBox(QStringLiteral("该采购资料已经发生修改，是否保存修改？"),
                                vb::vbYesNo + vb::vbInformation, vb::kMsgTitle);
        });
        if (answer == vb::vbYes) {
            vb::resume([&] { Command2_Click(2); });
            // Stays set until a navigation gets through: see the end of this handler.
            if (m_saveFailed) return;
        }
    }
    vb::resume([&] {
        if (!m_idList) return;
        switch (index) {
        case 0:
            m_idList->MoveFirst();
            break;
        case 1:
            m_idList->MovePrevious();
            break;
        case 2:
            m_idList->MoveNext();
            break;
        default:
            m_idList->MoveLast();
        }
    });
    vb::resume([&] { showRecord(); });
    vb::resume([&] { Command2(2)->setEnabled(false); });
    addType = caigou::addEditing;
    m_saveFailed = false;
}

void CaiGoufrm::Command2_Click(int index) {
    if (index != 2 && anyFieldChanged()) {
        if (vb::MsgBox(QStringLiteral("该采购资料已经发生修改，是否保存修改？"),
                       vb::vbYesNo + vb::vbInformation, vb::kMsgTitle) == vb::vbYes) {
            if (!checkInput()) return;
            if (addType == caigou::addAdding)
                addCaiGou();
            else if (addType == caigou::addEditing)
                updateCaiGou();
            Command2(2)->setEnabled(false);
        }
    }
    switch (index) {
    case 0: {
        auto& check = vb::form<loadCheckDatafrm>();
        check.Unload();
        check.Show(1);
        break;
    }
    case 1:
        break;
    case 2:
        if (!checkInput()) {
            m_saveFailed = true;
            return;
        }
        if (addType == caigou::addAdding)
            addCaiGou();
        else if (addType == caigou::addEditing)
            updateCaiGou();
        Command2(2)->setEnabled(false);
        break;
    case 3: {
        auto& find = vb::form<Findfrm>();
        find.doType = QStringLiteral("caigou");
        find.Show(1);
        break;
    }
    case 4: {
        // A fresh browser on the last query of this form.
        auto& browser = vb::form<CaiGoufindfrm>();
        browser.Unload();
        browser.Show(0);
        browser.loadGridData(m_lastCond, m_lastOrder);
        break;
    }
    case 5:
        Unload();
        break;
    default:
        break;
    }
}

void CaiGoufrm::newCgkId() {
    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(QStringLiteral("Select Code From Global Where type='cgkid'"), conn,
            adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    const QString code = rs.text(0); // no counter row: no current record, nothing written
    m_cgkIDs = vb::CInt(code);       // past 32767: overflow, before the counter moves
    conn.Execute(QStringLiteral("Update global Set code='") + vb::CStr(vb::CDbl(code) + 1) +
                 QStringLiteral("' Where type='cgkid'"));
}

void CaiGoufrm::addCaiGou() {
    using caigou::sqlText;
    QString columns = QStringLiteral("Insert Into cgk (bookfrom");
    QString values = QStringLiteral(" Values ('") + sqlText(Text1(0)->text()) + QStringLiteral("'");
    for (int i = 1; i <= 17; ++i) {
        const QString t = Text1(i)->text();
        if (t.isEmpty()) continue;
        columns += QStringLiteral(",") + caigou::fieldName(static_cast<int16_t>(i));
        if (caigou::isNumberField(i))
            values += QStringLiteral(",") + sqlText(t);
        else
            values += QStringLiteral(",'") + sqlText(t) + QStringLiteral("'");
    }
    newCgkId();
    columns += QStringLiteral(",cgkid,cgname)");
    values += QStringLiteral(",") + QString::number(m_cgkIDs) + QStringLiteral(",'") + gUserName +
              QStringLiteral("')");
    m_conn->Execute(columns + values);

    // From now on the arrows walk the orders still in play.
    auto ids = std::make_unique<adodb::Recordset>();
    ids->Open(QStringLiteral("Select cgkID From cgk Where status=0 OR status=1 Order by cgkid"),
              *m_conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    m_idList = std::move(ids);
    m_idList->MoveLast();

    Text1(18)->clear();
    addType = caigou::addEditing;
    clearChanged();
    Command2(1)->setEnabled(true);
    setCaption(QStringLiteral("采购定单-") + QString::number(m_cgkIDs));
}

void CaiGoufrm::updateCaiGou() {
    QString list;
    for (int i = 0; i <= 17; ++i) {
        if (!m_fieldChanged[static_cast<size_t>(i)]) continue;
        const QString t = Text1(i)->text();
        const QString column = caigou::fieldName(static_cast<int16_t>(i));
        if (t.isEmpty()) {
            list += QStringLiteral(",") + column + QStringLiteral("=Null");
        } else {
            const QString q = caigou::isNumberField(i) ? QString() : QStringLiteral("'");
            list += QStringLiteral(",") + column + QStringLiteral("=") + q + caigou::sqlText(t) + q;
        }
    }
    if (!list.isEmpty())
        m_conn->Execute(QStringLiteral("Update cgk Set ") + list.mid(1) +
                        QStringLiteral(" Where cgkid=") + QString::number(m_cgkIDs));
    Command2(2)->setEnabled(false);
    clearChanged();
}

void CaiGoufrm::loadGridData(const QString& iiWhere, const QString& iiOrderby) {
    window(); // loads the form (and its own connection) first
    auto conn = std::make_unique<adodb::Connection>();
    conn->Open(gConnStr);
    auto ids = std::make_unique<adodb::Recordset>();
    ids->Open(QStringLiteral("Select cgkID From cgk ") + iiWhere +
                  QStringLiteral(" Order by cgkid"),
              *conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    m_idList = std::move(ids);
    m_conn = std::move(conn);
    addType = caigou::addEmpty;
    for (int i = 0; i <= 17; ++i) Text1(i)->clear();
    clearChanged();
    Text1(18)->clear();
    m_cgkIDs = 0;
    m_saveFailed = false;
    m_lastCond = iiWhere;
    m_lastOrder = iiOrderby;
}

void CaiGoufrm::cList_Click(int index) {
    if (!editing() || index < 0 || index > 4) return;
    auto& list = vb::form<gysListfrm>();
    list.Unload(); // a list still open elsewhere goes; the new one drops under its own field
    list.pTxt = Text1(kListField[index]);
    list.tForm = this;
    list.loadData(QString::fromUtf16(kListSql[index]));
    list.Show(0);
}
