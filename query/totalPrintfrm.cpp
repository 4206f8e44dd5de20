#include "query/totalPrintfrm.h"

#include "platform/formkit.h"
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
    auto* frame = vb::control<QGroupBox>(w, QStringLiteral("Frame1"), 120, 60, 3960, 3660);
    // One group for the seven, which may all stay unchosen as the dialog opens.
    auto* group = new QButtonGroup(frame);
    for (int i = 0; i < kOptions; ++i) {
        group->addButton(
            vb::place(new QRadioButton(QString::fromUtf16(kOptionTable[i].caption), frame),
                      vb::ctlName(QStringLiteral("Option1"), i), 480, 240 + i * 480, 3000, 375),
            i);
    }
    const char16_t* const captions[2] = {u"&A  确定", u"&X  取消"};
    vb::buttonRow(w, QStringLiteral("Command1"), captions, {600, 1680, 3840, 1215, 375}, this,
                  [this](int i) { Command1_Click(i); });
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
