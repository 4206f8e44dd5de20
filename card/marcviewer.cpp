#include "card/marcviewer.h"

#include "card/carddriver.h"
#include "card/marcreader.h"
#include "platform/formkit.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

MarcTextBox::MarcTextBox(QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    // A record text is one unbroken run: wrap it anywhere rather than scroll sideways.
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
}

void MarcTextBox::setText(const QString& text) {
    m_text = text;
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    // The signs cataloguers know from MARC editors, which the CJK fonts also carry.
    for (QChar& c : shown) {
        switch (c.unicode()) {
        case card::kRecordEnd:
            c = u'§';
            break;
        case card::kFieldEnd:
            c = u'¶';
            break;
        case card::kSubfield:
            c = u'‡';
            break;
        default:
            break;
        }
    }
    setPlainText(shown);
}

frmMarcKaPian::frmMarcKaPian() : vb::Form(QStringLiteral("frmMarcKaPian")) {}

void frmMarcKaPian::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("【灵巧marc编辑器】阅读MARC数据"));
    w->resize(vb::twips(10500), vb::twips(7800));

    auto* layout = new QVBoxLayout(w);
    auto* label2 = new QLabel(QStringLiteral("通用MARC阅读器"), w);
    label2->setObjectName(QStringLiteral("Label2"));
    QFont heading = label2->font();
    heading.setPointSize(heading.pointSize() + 6);
    heading.setBold(true);
    label2->setFont(heading);
    layout->addWidget(label2);

    auto* line1 = new QFrame(w);
    line1->setObjectName(QStringLiteral("Line1"));
    line1->setFrameShape(QFrame::HLine);
    line1->setFrameShadow(QFrame::Sunken);
    layout->addWidget(line1);

    auto* text1 = new MarcTextBox(w);
    text1->setObjectName(QStringLiteral("Text1"));
    QFont body = text1->font();
    body.setPointSize(body.pointSize() + 2);
    text1->setFont(body);
    layout->addWidget(text1, 1);

    // One control array; the handler goes by each button's Tag.
    static const struct {
        const char16_t* caption;
        const char16_t* tag;
    } buttons[] = {
        {u"&B 标准式", u"标准式"},
        {u"&K 卡片式", u"卡片式"},
        {u"&Z 字段式", u"字段式"},
        {u"&Q 返回", u"返回"},
    };
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (int i = 0; i < 4; ++i) {
        auto* b = vb::commandButton(w, vb::ctlName(QStringLiteral("cmdclick"), i),
                                    QString::fromUtf16(buttons[i].caption), this,
                                    [this, i] { cmdclick_Click(i); });
        b->setProperty("Tag", QString::fromUtf16(buttons[i].tag));
        row->addWidget(b);
    }
    layout->addLayout(row);
}

MarcTextBox* frmMarcKaPian::Text1() {
    return ctl<MarcTextBox>(QStringLiteral("Text1"));
}

void frmMarcKaPian::onLoad() {
    if (varSelect == QStringLiteral("标准")) {
        Text1()->setText(MarcShuju);
    } else {
        showKapian();
    }
}

// The record and the mode belong to one showing: a caller that shows the viewer again
// sets them again, and one that forgets gets an empty viewer, not the last record.
void frmMarcKaPian::onUnload() {
    MarcShuju.clear();
    varSelect.clear();
    cmdTag.clear();
}

void frmMarcKaPian::cmdclick_Click(int index) {
    cmdTag = ctl<QPushButton>(QStringLiteral("cmdclick"), index)->property("Tag").toString();
    if (cmdTag == QStringLiteral("标准式")) {
        Text1()->setEnabled(true);
        Text1()->setText(MarcShuju);
    } else if (cmdTag == QStringLiteral("卡片式")) {
        Text1()->setEnabled(true);
        showKapian();
    } else if (cmdTag == QStringLiteral("字段式")) {
        showZiduan(); // leaves Text1.Enabled as it is
    } else if (cmdTag == QStringLiteral("返回")) {
        Unload();
    }
}

void frmMarcKaPian::showZiduan() {
    // A refused record leaves the text box as it was.
    if (auto text = card::showZiduan(MarcShuju, card::msgBoxMessage)) Text1()->setText(*text);
}

void frmMarcKaPian::showKapian() {
    if (auto text = card::showKapian(MarcShuju, card::msgBoxMessage)) Text1()->setText(*text);
}
