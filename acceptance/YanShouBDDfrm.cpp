#include "acceptance/YanShouBDDfrm.h"

#include "acceptance/YanShouBDD.h"
#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/events.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "supplier/gysListfrm.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>

namespace {
const QString kTitle = QStringLiteral("操作提示");
const QString kShort = QStringLiteral(" Where status=1 And bookcount>yscount");

QString doubled(const QString& s) {
    return vb::Replace(s, QStringLiteral("'"), QStringLiteral("''"));
}
} // namespace

YanShouBDDfrm::YanShouBDDfrm() : vb::Form(QStringLiteral("YanShouBDDfrm")) {}

QLineEdit* YanShouBDDfrm::Text1(int index) {
    return ctl<QLineEdit>(QStringLiteral("Text1"), index);
}

void YanShouBDDfrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("补 定 单"));
    w->resize(vb::twips(5160), vb::twips(2400));
    const char16_t* labels[2] = {u"批  号：", u"来  源："};
    const char16_t* tips[2] = {u"选择批号", u"选择来源"};
    const int lengths[2] = {20, 30};
    for (int i = 0; i < 2; ++i) {
        const int top = 300 + i * 480;
        auto* label = new QLabel(QString::fromUtf16(labels[i]), w);
        label->setObjectName(vb::ctlName(QStringLiteral("Label1"), i));
        label->setGeometry(vb::twips(360), vb::twips(top + 45), vb::twips(1080), vb::twips(255));
        auto* t = new QLineEdit(w);
        t->setObjectName(vb::ctlName(QStringLiteral("Text1"), i));
        t->setMaxLength(lengths[i]);
        t->setGeometry(vb::twips(1440), vb::twips(top), vb::twips(3000), vb::twips(315));
        vb::selectAllOnFocus(t);
        vb::enterAsTab(t);
        vb::onLostFocus(t, [t] {
            const QString trimmed = vb::Trim(t->text());
            if (trimmed != t->text()) t->setText(trimmed);
        });
        auto* pick = new QPushButton(w);
        pick->setObjectName(vb::ctlName(QStringLiteral("Command2"), i));
        pick->setToolTip(QString::fromUtf16(tips[i]));
        pick->setIcon(w->style()->standardIcon(QStyle::SP_ArrowDown));
        pick->setGeometry(vb::twips(4440), vb::twips(top), vb::twips(315), vb::twips(315));
        connect(pick, &QPushButton::clicked, this, [this, i] { Command2_Click(i); });
    }
    const char16_t* captions[2] = {u"&A  确定", u"&X  取消"};
    for (int i = 0; i < 2; ++i) {
        auto* b = new QPushButton(QString::fromUtf16(captions[i]), w);
        b->setObjectName(vb::ctlName(QStringLiteral("Command1"), i));
        b->setGeometry(vb::twips(1080 + i * 1800), vb::twips(1500), vb::twips(1215),
                       vb::twips(375));
        connect(b, &QPushButton::clicked, this, [this, i] { Command1_Click(i); });
    }
}

void YanShouBDDfrm::Command2_Click(int index) {
    // The other field does not narrow the list.
    const QString word = index == 0 ? QStringLiteral("batch") : QStringLiteral("bookfrom");
    const QString text = Text1(index)->text();
    QString sql = QStringLiteral("Select Distinct ") + word +
                  QStringLiteral(" From cgk Where status=1 And bookcount>yscount");
    if (!text.isEmpty())
        sql += QStringLiteral(" And ") + word + QStringLiteral(" Like '%") + doubled(text) +
               QStringLiteral("%'");
    auto& list = vb::form<gysListfrm>();
    list.pTxt = Text1(index);
    list.tForm = this;
    list.loadData(sql);
    list.Show(0);
}

void YanShouBDDfrm::Command1_Click(int index) {
    if (index == 1) {
        Unload();
        return;
    }
    if (Text1(0)->text().isEmpty() && Text1(1)->text().isEmpty()) {
        vb::MsgBox(QStringLiteral("无效补定条件，取消该操作。"), vb::vbCritical, kTitle);
        Text1(0)->setFocus();
        return;
    }
    openBuDingGrid();
}

bool YanShouBDDfrm::openBuDingGrid() {
    QString cond = kShort;
    if (!Text1(0)->text().isEmpty())
        cond += QStringLiteral(" And batch='") + doubled(Text1(0)->text()) + u'\'';
    if (!Text1(1)->text().isEmpty())
        cond += QStringLiteral(" And bookfrom='") + doubled(Text1(1)->text()) + u'\'';
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(QStringLiteral("Select cgkID From cgk") + cond, conn, adodb::adOpenDynamic,
                adodb::adLockOptimistic, adodb::adCmdText);
        if (rs.EOF_()) {
            vb::MsgBox(QStringLiteral("没有符合该条件的书目欠到，不需要补定单。"), vb::vbCritical,
                       kTitle);
            return false;
        }
    }
    auto& grid = vb::form<YanShouBDD>();
    grid.loadData(QStringLiteral("Select cgkid,'×' as [选定],ISBN,bookname as [书   名],author as "
                                 "[著 者],edition as [版本版次],") +
                  QStringLiteral("price as [价 格],bookcount as [预定册数],bookcount-yscount as "
                                 "[欠到册数],0 as [补定册数] From cgk") +
                  cond);
    grid.Show(0);
    return true;
}
