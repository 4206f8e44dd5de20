#include "supplier/cgGYSdofrm.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/formkit.h"
#include "platform/gridrow.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "supplier/cgGYSfrm.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace {

const QString kAddCaption = QStringLiteral("增加供应商资料");
const QString kChangeCaption = QStringLiteral("修改供应商资料");

struct FieldDef {
    const char* column;
    const char16_t* label;
    int maxLength;
};
constexpr FieldDef kFields[9] = {
    {"publisher", u"单位名称：", 30}, {"pubplace", u"所在城市：", 10},
    {"address", u"通讯地址：", 30},   {"zipcode", u"邮政编码：", 6},
    {"tel", u"  电  话：", 15},       {"fax", u"  传  真：", 15},
    {"email", u"电子邮件：", 15},     {"web", u"  网  址：", 15},
    {"pubclass", u"  类  型：", 0},
};

QString stopBoxText(const vb::VbError& e) {
    return QStringLiteral("错误") + QString::number(e.number()) + u':' + e.description() +
           QStringLiteral("。");
}

} // namespace

cgGYSdofrm::cgGYSdofrm() : vb::Form(QStringLiteral("cgGYSdofrm")) {}

QString cgGYSdofrm::fieldName(int index) {
    return QString::fromLatin1(kFields[index].column);
}

QLineEdit* cgGYSdofrm::Text1(int index) {
    return ctl<QLineEdit>(QStringLiteral("Text1"), index);
}

QComboBox* cgGYSdofrm::Combo1() {
    return ctl<QComboBox>(QStringLiteral("Combo1"));
}

void cgGYSdofrm::build(QWidget* w) {
    w->resize(vb::twips(5640), vb::twips(4800));
    const int left = 360, labelWidth = 1200, boxLeft = 1620, boxHeight = 315, step = 420;
    for (int i = 0; i < 9; ++i) {
        const int top = 240 + i * step;
        auto* lab =
            vb::label(w, vb::ctlName(QStringLiteral("Label1"), i),
                      QString::fromUtf16(kFields[i].label), left, top + 45, labelWidth, 255);
        lab->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        if (i == 8) break;
        const int width = kFields[i].maxLength >= 30 ? 3600 : 2400;
        auto* t = vb::control<QLineEdit>(w, vb::ctlName(QStringLiteral("Text1"), i), boxLeft, top,
                                         width, boxHeight);
        t->setMaxLength(kFields[i].maxLength);
        connect(t, &QLineEdit::textChanged, this, [this, i] { fieldChange(i); });
        vb::selectAllOnFocus(t);
        vb::enterAsTab(t);
        vb::onLostFocus(t, [this, i] { Text1_LostFocus(i); });
    }
    auto* combo = vb::control<QComboBox>(w, QStringLiteral("Combo1"), boxLeft, 240 + 8 * step, 2400,
                                         boxHeight);
    combo->addItems({QStringLiteral("出版商"), QStringLiteral("销售商")});
    combo->setCurrentIndex(-1);
    vb::enterAsTab(combo);
    // A list-only box has no Change of its own: picking a type raises no change flag.

    const char16_t* const captions[3] = {u"&A  保存增加", u"&S   保存", u"&X   关闭"};
    vb::buttonRow(w, QStringLiteral("Command1"), captions, {600, 1620, 4080, 1335, 375}, this,
                  [this](int i) { Command1_Click(i); });
}

void cgGYSdofrm::onLoad() {
    setCaption(gysMode == 0 || gysMode == 2 ? kAddCaption : kChangeCaption);
}

void cgGYSdofrm::onUnload() {
    oldName.clear();
    checkedName.clear();
    gysMode = 6;
}

void cgGYSdofrm::fieldChange(int index) {
    if (gysMode == 1) fieldChanged[static_cast<size_t>(index)] = true;
}

void cgGYSdofrm::loadData() {
    auto cell = [](int col) {
        vb::FlexGrid* grid = vb::form<cgGYSfrm>().Grid1();
        return grid->TextMatrix(grid->Row(), col);
    };
    for (int i = 0; i < 8; ++i)
        vb::resume([&] {
            // A longer text from the table is taken whole (the name is the key of the
            // UPDATE); the length limits only what is typed beyond it.
            const QString text = cell(i);
            QLineEdit* t = Text1(i);
            t->setMaxLength(std::max(kFields[i].maxLength, static_cast<int>(text.size())));
            t->setText(text);
        });
    vb::resume([&] {
        QComboBox* c = Combo1();
        c->setCurrentIndex(c->findText(cell(8), Qt::MatchExactly));
    });
    vb::resume([&] {
        oldName = Text1(0)->text();
        checkedName = oldName;
    });
    vb::resume([&] { setCaption(kChangeCaption); });
    fieldChanged.fill(false);
}

void cgGYSdofrm::Text1_LostFocus(int index) {
    QLineEdit* t = Text1(index);
    const QString text = vb::trimText(t);
    if (index != 0 || text.isEmpty()) return;
    const bool test = gysMode == 1 ? text != oldName && text != checkedName
                                   : (gysMode == 0 || gysMode == 2) && text != checkedName;
    if (!test) return;

    adodb::Connection conn;
    conn.Open(gConnStr);
    adodb::Recordset rs;
    rs.Open(QStringLiteral("Select publisher From cggys Where publisher='") +
                vb::Replace(text, QStringLiteral("'"), QStringLiteral("''")) + u'\'',
            conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    if (rs.EOF_()) {
        checkedName = text;
        return;
    }
    vb::MsgBox(QStringLiteral("单位名称'") + text + QStringLiteral("'已经存在，取消该操作。"),
               vb::vbCritical, vb::kMsgTitle);
    t->clear();
    checkedName.clear();
    t->setFocus();
}

bool cgGYSdofrm::checkInput() {
    struct Need {
        QWidget* w;
        QString text;
        const char16_t* message;
    };
    const Need needs[] = {
        {Text1(0), Text1(0)->text(), u"‘单位名称’输入不能为空，取消该操作。"},
        {Text1(1), Text1(1)->text(), u"‘所在城市’输入不能为空，取消该操作。"},
        {Text1(2), Text1(2)->text(), u"‘通讯地址’输入不能为空，取消该操作。"},
        {Combo1(), Combo1()->currentText(), u"‘类型’输入不能为空，取消该操作。"},
    };
    for (const Need& n : needs) {
        if (!n.text.isEmpty()) continue;
        vb::MsgBox(QString::fromUtf16(n.message), vb::vbCritical, vb::kMsgTitle);
        n.w->setFocus();
        return false;
    }
    return true;
}

void cgGYSdofrm::Command1_Click(int index) {
    if (index == 2) {
        Unload();
        return;
    }
    if (!checkInput()) return;
    if (gysMode == 0 || gysMode == 2)
        addGYS(index);
    else if (gysMode == 1)
        updateGYS(index);
}

void cgGYSdofrm::addGYS(int index) {
    try {
        auto dq = [](const QString& s) {
            return vb::Replace(s, QStringLiteral("'"), QStringLiteral("''"));
        };
        QString columns = QStringLiteral("Insert Into cggys (publisher");
        QString values = QStringLiteral(" Values('") + dq(Text1(0)->text()) + u'\'';
        for (int k = 1; k < 8; ++k) {
            const QString text = Text1(k)->text();
            if (text.isEmpty()) continue;
            columns += u',' + fieldName(k);
            values += QStringLiteral(",'") + dq(text) + u'\'';
        }
        columns += QStringLiteral(",pubclass)");
        values += QStringLiteral(",'") + Combo1()->currentText() + QStringLiteral("')");

        long affected = 0;
        {
            adodb::Connection conn;
            conn.Open(gConnStr);
            conn.Execute(columns + values, &affected);
        }
        if (affected != 1) {
            vb::MsgBox(QStringLiteral("供应商资料添加出错，取消该操作。"), vb::vbCritical,
                       vb::kMsgTitle);
            return;
        }
        if (gysMode == 2) {
            // The purchase form asked for this supplier: back to its source field.
            vb::resume([] {
                vb::Form* caigou = vb::FormRegistry::byName(QStringLiteral("CaiGoufrm"));
                QWidget* source = caigou ? caigou->findControl(QStringLiteral("Text1_0")) : nullptr;
                if (!source) vb::raise(vb::errObjectRequired);
                source->setFocus();
            });
            vb::resume([this] { Unload(); });
            return;
        }
        setGridRow(0, vb::form<cgGYSfrm>(), gridRow());
        afterSave(index);
    } catch (const vb::VbError& e) {
        vb::MsgBox(stopBoxText(e), vb::vbCritical, QStringLiteral("添加错误"));
    }
}

void cgGYSdofrm::updateGYS(int index) {
    try {
        QString list;
        for (int k = 0; k < 9; ++k) {
            if (!fieldChanged[static_cast<size_t>(k)]) continue;
            const QString value = k == 8 ? Combo1()->currentText() : Text1(k)->text();
            // The new text goes in as typed, quotes and all.
            list += u',' + fieldName(k) + QStringLiteral("='") + value + u'\'';
        }
        if (!list.isEmpty()) {
            long affected = 0;
            {
                adodb::Connection conn;
                conn.Open(gConnStr);
                conn.Execute(QStringLiteral("Update cggys  Set ") + list.mid(1) +
                                 QStringLiteral(" Where publisher='") + oldName + u'\'',
                             &affected);
            }
            if (affected != 1) {
                vb::MsgBox(QStringLiteral("供应商资料修改出错，取消该操作。"), vb::vbCritical,
                           vb::kMsgTitle);
                return;
            }
            setGridRow(1, vb::form<cgGYSfrm>(), gridRow());
        }
        afterSave(index);
    } catch (const vb::VbError& e) {
        vb::MsgBox(stopBoxText(e), vb::vbCritical, QStringLiteral("添加错误"));
    }
}

QVariantList cgGYSdofrm::gridRow() {
    QVariantList row;
    for (int k = 0; k < 8; ++k) row << Text1(k)->text();
    row << Combo1()->currentText();
    return row;
}

void cgGYSdofrm::afterSave(int index) {
    if (index != 0)
        Unload();
    else
        clearForNext();
}

void cgGYSdofrm::clearForNext() {
    // A new record gets the design limits back, whatever the record before needed.
    for (int i = 0; i < 8; ++i)
        vb::resume([&] {
            Text1(i)->clear();
            Text1(i)->setMaxLength(kFields[i].maxLength);
        });
    gysMode = 0;
    oldName.clear();
    checkedName.clear();
    vb::resume([&] { setCaption(kAddCaption); });
    vb::resume([&] { Text1(0)->setFocus(); });
}
