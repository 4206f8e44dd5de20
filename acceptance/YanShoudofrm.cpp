#include "acceptance/YanShoudofrm.h"

#include "acceptance/YanShoufrm.h"
#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
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

QString doubled(const QString& s) {
    return vb::Replace(s, QStringLiteral("'"), QStringLiteral("''"));
}
} // namespace

YanShoudofrm::YanShoudofrm() : vb::Form(QStringLiteral("YanShoudofrm")) {}

QLineEdit* YanShoudofrm::Text1() {
    return ctl<QLineEdit>(QStringLiteral("Text1"));
}

void YanShoudofrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("采购验收"));
    w->resize(vb::twips(5160), vb::twips(1980));

    vb::label(w, QStringLiteral("Label1"), QStringLiteral("请输入采购来源："), 240, 345, 1560, 255);

    auto* text = vb::control<QLineEdit>(w, QStringLiteral("Text1"), 1800, 300, 2640, 315);
    text->setMaxLength(30);
    vb::selectAllOnFocus(text);
    vb::enterAsTab(text);
    vb::onLostFocus(text, [text] { vb::trimText(text); });

    auto* pick = vb::commandButton(w, QStringLiteral("Command2"), QString(), 4440, 300, 315, 315,
                                   this, [this] { Command2_Click(); });
    pick->setToolTip(QStringLiteral("检索“采购来源”"));
    pick->setIcon(w->style()->standardIcon(QStyle::SP_ArrowDown));

    const char16_t* const captions[2] = {u"&A  确定", u"&X  取消"};
    vb::buttonRow(w, QStringLiteral("Command1"), captions, {1080, 1800, 1080, 1215, 375}, this,
                  [this](int i) { Command1_Click(i); });
}

void YanShoudofrm::Command2_Click() {
    const QString text = Text1()->text();
    QString sql = QStringLiteral("Select Distinct bookfrom From cgk Where status=0");
    if (!text.isEmpty())
        sql += QStringLiteral(" And bookfrom Like '%") + doubled(text) + QStringLiteral("%'");
    auto& list = vb::form<gysListfrm>();
    list.pTxt = Text1();
    list.tForm = this;
    list.loadData(sql);
    list.Show(0);
}

void YanShoudofrm::Command1_Click(int index) {
    if (index == 1) {
        Unload();
        return;
    }
    if (Text1()->text().isEmpty()) {
        vb::MsgBox(QStringLiteral("请输入'采购来源'以便验收。"), vb::vbCritical, vb::kMsgTitle);
        Text1()->setFocus();
        return;
    }
    openYanShouGrid();
}

bool YanShoudofrm::openYanShouGrid() {
    // The match on the source is exact, unlike the picker's.
    const QString sql =
        QStringLiteral("Select cgkid,convert(varchar(10),yddate,111) as [预定日期],'×' as "
                       "[选择],bookcount as [预定册数],0 as [验收册数],bookname as [书   名],"
                       "ISBN,edition as [版本版次],price as [价 格] From cgk Where status=0") +
        QStringLiteral(" And bookfrom='") + doubled(Text1()->text()) + u'\'' +
        QStringLiteral(" Order By yddate");
    {
        adodb::Connection conn;
        conn.Open(gConnStr);
        adodb::Recordset rs;
        rs.Open(sql, conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        if (rs.EOF_()) {
            vb::MsgBox(QStringLiteral("没有符合该条件的采购预定资料存在,取消该操作。"),
                       vb::vbInformation, vb::kMsgTitle);
            return false;
        }
    }
    // From here on a failing step is passed over and the next one runs.
    auto& grid = vb::form<YanShoufrm>();
    vb::resume([&] { grid.doLaiYuan = Text1()->text(); });
    vb::resume([&] { Text1()->clear(); });
    vb::resume([&] { grid.loadData(sql); });
    vb::resume([&] { grid.Show(0); });
    return true;
}
