#include "purchase/CaiGoufindDatefrm.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/formkit.h"
#include "platform/maskedbox.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "purchase/CaiGouprintfrm.h"
#include "purchase/caigouRules.h"

#include <QLabel>
#include <QPushButton>

CaiGoufindDatefrm::CaiGoufindDatefrm() : vb::Form(QStringLiteral("CaiGoufindDatefrm")) {}

QString CaiGoufindDatefrm::emptyDate() {
    return QStringLiteral("    -  -  ");
}

vb::MaskEdBox* CaiGoufindDatefrm::lDate(int index) {
    return ctl<vb::MaskEdBox>(QStringLiteral("lDate"), index);
}
QPushButton* CaiGoufindDatefrm::Command1(int index) {
    return ctl<QPushButton>(QStringLiteral("Command1"), index);
}

void CaiGoufindDatefrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("采购打印（按日期）"));
    w->setFixedSize(vb::twips(4800), vb::twips(2160));

    vb::label(w, QStringLiteral("Label1"), QStringLiteral("请输入需打印日期："), 360, 240, 3600,
              285);
    vb::label(w, QStringLiteral("Label2"), QStringLiteral("-"), 2115, 660, 300, 285)
        ->setAlignment(Qt::AlignCenter);

    for (int i = 0; i < 2; ++i) {
        auto* d = vb::control<vb::MaskEdBox>(w, vb::ctlName(QStringLiteral("lDate"), i),
                                             360 + i * 2055, 600, 1695, 345);
        d->setMask(QStringLiteral("####-##-##"));
        d->setPromptChar(u' ');
        // The first box takes the focus as the window comes up, which selects nothing: the
        // cursor must stand at the first place, not behind the mask, for typing to go in.
        d->setCursorPosition(0);
        vb::selectAllOnFocus(d);
        vb::enterAsTab(d);
        vb::onLostFocus(d, [this, i] { lDate_LostFocus(i); });
    }

    const char16_t* const captions[2] = {u"&A  确定", u"&X  取消"};
    vb::buttonRow(w, QStringLiteral("Command1"), captions, {720, 1920, 1380, 1215, 375}, this,
                  [this](int i) { Command1_Click(i); });
}

void CaiGoufindDatefrm::lDate_LostFocus(int index) {
    vb::MaskEdBox* d = lDate(index);
    // A box left half filled is no date either: it goes back to empty.
    if (d->Text() == emptyDate() || vb::IsDate(d->Text())) return;
    vb::MsgBox(QStringLiteral("无效日期时间格式，取消该操作。"), vb::vbCritical, vb::kMsgTitle);
    d->setTextVb(emptyDate());
    d->setFocus(Qt::OtherFocusReason);
}

void CaiGoufindDatefrm::Command1_Click(int index) {
    if (index != 0) {
        Unload();
        return;
    }
    printSpan();
}

void CaiGoufindDatefrm::printSpan() {
    vb::Err().Clear();
    try {
        // Both dates are needed; their order is not tested (a reversed span selects nothing).
        for (int i = 0; i < 2; ++i) {
            if (lDate(i)->Text() == emptyDate()) {
                vb::MsgBox(QStringLiteral("请输入打印查找日期，取消该操作。"), vb::vbCritical,
                           vb::kMsgTitle);
                lDate(i)->setFocus(Qt::OtherFocusReason);
                return;
            }
        }
        int16_t count = 0;
        {
            caigouprint::WaitPointer wait;
            adodb::Connection conn;
            conn.Open(gConnStr);
            // The dates compare as typed: an end date reaches only orders of its midnight.
            count = caigouprint::fillPrintCG(
                conn, caigouprint::insertHead() + QStringLiteral(" From cgk Where yddate>='") +
                          caigou::sqlText(lDate(0)->Text()) + QStringLiteral("' And yddate<='") +
                          caigou::sqlText(lDate(1)->Text()) + QStringLiteral("' Order By yddate"));
        }
        caigouprint::showPrintCG(count);
    } catch (const vb::VbError& e) {
        vb::Err().Number = e.number();
        vb::Err().Description = e.description();
        vb::Err().Source = e.source();
    }
    // Also what went wrong while the report was read and shown, which was passed over there.
    if (vb::Err().Number != 0)
        vb::MsgBox(QStringLiteral("操作过程出现错误，错误原因如下：\r\n") + vb::Err().Description,
                   vb::vbInformation, vb::kMsgTitle);
}
