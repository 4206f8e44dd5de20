#include "acceptance/YanShoudofrm.h"

#include "acceptance/YanShoufrm.h"
#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
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

    auto* label = new QLabel(QStringLiteral("请输入采购来源："), w);
    label->setObjectName(QStringLiteral("Label1"));
    label->setGeometry(vb::twips(240), vb::twips(345), vb::twips(1560), vb::twips(255));

    auto* text = new QLineEdit(w);
    text->setObjectName(QStringLiteral("Text1"));
    text->setMaxLength(30);
    text->setGeometry(vb::twips(1800), vb::twips(300), vb::twips(2640), vb::twips(315));
    vb::selectAllOnFocus(text);
    vb::enterAsTab(text);
    vb::onLostFocus(text, [text] {
        QLineEdit* t = text;
        const QString trimmed = vb::Trim(t->text());
        if (trimmed != t->text()) t->setText(trimmed);
    });

    auto* pick = new QPushButton(w);
    pick->setObjectName(QStringLiteral("Command2"));
    pick->setToolTip(QStringLiteral("检索“采购来源”"));
    pick->setIcon(w->style()->standardIcon(QStyle::SP_ArrowDown));
    pick->setGeometry(vb::twips(4440), vb::twips(300), vb::twips(315), vb::twips(315));
    connect(pick, &QPushButton::clicked, this, [this] { Command2_Click(); });

    const char16_t* captions[2] = {u"&A  确定", u"&X  取消"};
    for (int i = 0; i < 2; ++i) {
        auto* b = new QPushButton(QString::fromUtf16(captions[i]), w);
        b->setObjectName(vb::ctlName(QStringLiteral("Command1"), i));
        b->setGeometry(vb::twips(1080 + i * 1800), vb::twips(1080), vb::twips(1215),
                       vb::twips(375));
        connect(b, &QPushButton::clicked, this, [this, i] { Command1_Click(i); });
    }
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
        vb::MsgBox(QStringLiteral("请输入'采购来源'以便验收。"), vb::vbCritical, kTitle);
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
                       vb::vbInformation, kTitle);
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
