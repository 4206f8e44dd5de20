#include "acceptance/YanShouBDDfrm.h"

#include "acceptance/YanShouBDD.h"
#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/events.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "supplier/gysListfrm.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>

namespace {
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
        vb::label(w, vb::ctlName(QStringLiteral("Label1"), i), QString::fromUtf16(labels[i]), 360,
                  top + 45, 1080, 255);
        auto* t = vb::control<QLineEdit>(w, vb::ctlName(QStringLiteral("Text1"), i), 1440, top,
                                         3000, 315);
        t->setMaxLength(lengths[i]);
        vb::selectAllOnFocus(t);
        vb::enterAsTab(t);
        vb::onLostFocus(t, [t] { vb::trimText(t); });
        auto* pick = vb::commandButton(w, vb::ctlName(QStringLiteral("Command2"), i), QString(),
                                       4440, top, 315, 315, this, [this, i] { Command2_Click(i); });
        pick->setToolTip(QString::fromUtf16(tips[i]));
        pick->setIcon(w->style()->standardIcon(QStyle::SP_ArrowDown));
    }
    const char16_t* const captions[2] = {u"&A  确定", u"&X  取消"};
    vb::buttonRow(w, QStringLiteral("Command1"), captions, {1080, 1800, 1500, 1215, 375}, this,
                  [this](int i) { Command1_Click(i); });
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
        vb::MsgBox(QStringLiteral("无效补定条件，取消该操作。"), vb::vbCritical, vb::kMsgTitle);
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
                       vb::kMsgTitle);
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
