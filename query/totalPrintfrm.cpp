#include "query/totalPrintfrm.h"

#include "query/Findfrm.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>

namespace {

constexpr int kOptions = 7;

struct Option {
    const char16_t* caption;
    const char16_t* word;
};
const Option kOptionTable[kOptions] = {
    {u"按“学科类别”", u"tclasscode"}, {u"按“图书来源”", u"tbookfrom"},
    {u"按“征 订 号”", u"tzdcode"},    {u"按“采购方式”", u"tcgff"},
    {u"按“作品语种”", u"tlagclass"},  {u"验收书率统计", u"tyscount"},
    {u"付款情况统计", u"tjine"},
};

} // namespace

totalPrintfrm::totalPrintfrm() : vb::Form(QStringLiteral("totalPrintfrm")) {}

QString totalPrintfrm::optionWord(int index) {
    if (index < 0 || index >= kOptions) return QString();
    return QString::fromUtf16(kOptionTable[index].word);
}

QRadioButton* totalPrintfrm::Option1(int index) {
    return ctl<QRadioButton>(QStringLiteral("Option1"), index);
}

QPushButton* totalPrintfrm::Command1(int index) {
    return ctl<QPushButton>(QStringLiteral("Command1"), index);
}

void totalPrintfrm::build(QWidget* w) {
    w->setWindowTitle(QStringLiteral("采购金额统计"));
    w->setFixedSize(vb::twips(4200), vb::twips(4455));
    auto* frame = new QGroupBox(w);
    frame->setObjectName(QStringLiteral("Frame1"));
    frame->setGeometry(vb::twips(120), vb::twips(60), vb::twips(3960), vb::twips(3660));
    // One group for the seven, which may all stay unchosen as the dialog opens.
    auto* group = new QButtonGroup(frame);
    for (int i = 0; i < kOptions; ++i) {
        auto* o = new QRadioButton(QString::fromUtf16(kOptionTable[i].caption), frame);
        o->setObjectName(vb::ctlName(QStringLiteral("Option1"), i));
        o->setGeometry(vb::twips(480), vb::twips(240 + i * 480), vb::twips(3000), vb::twips(375));
        group->addButton(o, i);
    }
    const char16_t* const captions[2] = {u"&A  确定", u"&X  取消"};
    for (int i = 0; i < 2; ++i) {
        auto* b = new QPushButton(QString::fromUtf16(captions[i]), w);
        b->setObjectName(vb::ctlName(QStringLiteral("Command1"), i));
        b->setGeometry(vb::twips(600 + i * 1680), vb::twips(3840), vb::twips(1215), vb::twips(375));
        connect(b, &QPushButton::clicked, this, [this, i] { Command1_Click(i); });
    }
}

void totalPrintfrm::Command1_Click(int index) {
    if (index == 1) {
        Unload();
        return;
    }
    for (int i = 0; i < kOptions; ++i) {
        if (!Option1(i)->isChecked()) continue;
        // Set before the show loads it: the builder picks its dictionary by doType.
        auto& f = vb::form<Findfrm>();
        f.printType = optionWord(i);
        f.doType = QStringLiteral("totaltotal");
        // The dialog stays open behind the builder.
        f.Show(1);
        return;
    }
}
