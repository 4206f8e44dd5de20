// The pieces forms are built from: a row of buttons is one control array with the right
// index behind each click, placement converts twips, a field trimmed on leaving fires Change
// only when its text really changes.
#include "platform/form.h"
#include "platform/formkit.h"
#include "tests/support/printto.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

namespace {

const char16_t* const kCaptions[3] = {u"&A  增加", u"&D  删除", u"&X  关闭"};

class RowFrm : public vb::Form {
public:
    RowFrm() : Form(QStringLiteral("RowFrm")) {}
    std::vector<int> clicks;

protected:
    void build(QWidget* w) override {
        w->resize(vb::twips(6000), vb::twips(4000));
        vb::buttonRow(w, QStringLiteral("Command1"), kCaptions, {240, 1680, 3000, 1215, 375}, this,
                      [this](int i) { clicks.push_back(i); });
    }
};

TEST(FormKit, ButtonRowIsOneControlArrayAndEachClickHandsItsOwnIndex) {
    auto& f = vb::form<RowFrm>();
    // Clicked out of order, so a shared or shifted index cannot pass.
    for (int i : {2, 0, 1, 2}) f.ctl<QPushButton>(QStringLiteral("Command1"), i)->click();
    EXPECT_EQ(f.clicks, (std::vector<int>{2, 0, 1, 2}));

    struct Expect {
        int x;
        QString text;
    };
    // 240, 1920 and 3600 twips from the left, 15 twips to the pixel.
    const Expect expect[3] = {{16, QStringLiteral("&A  增加")},
                              {128, QStringLiteral("&D  删除")},
                              {240, QStringLiteral("&X  关闭")}};
    for (int i = 0; i < 3; ++i) {
        auto* b = f.ctl<QPushButton>(QStringLiteral("Command1"), i);
        EXPECT_EQ(b->geometry(), QRect(expect[i].x, 200, 81, 25)) << i;
        EXPECT_EQ(b->text(), expect[i].text) << i;
    }
    EXPECT_EQ(f.window()->findChild<QPushButton*>(QStringLiteral("Command1_3")), nullptr);

    // Following the bottom edge moves the row down and keeps every button's left.
    vb::moveRowTo(f, QStringLiteral("Command1"), 3, 3600);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(f.ctl<QPushButton>(QStringLiteral("Command1"), i)->pos(),
                  QPoint(expect[i].x, 240))
            << i;
    vb::FormRegistry::destroyAll();
}

TEST(FormKit, PlacementTruncatesTwipsToWholePixels) {
    QWidget parent;
    // A size of 14 twips is less than a pixel; 375 is 25 exactly, 1215 is 81, 4440 is 296.
    auto* box = vb::control<QLineEdit>(&parent, QStringLiteral("Text1"), 14, 375, 1215, 4440);
    EXPECT_EQ(box->objectName(), QStringLiteral("Text1"));
    EXPECT_EQ(box->geometry(), QRect(0, 25, 81, 296));
    auto* label = vb::label(&parent, QStringLiteral("Label1_2"), QStringLiteral("批  号："), 360,
                            345, 1080, 255);
    EXPECT_EQ(label->text(), QStringLiteral("批  号："));
    EXPECT_EQ(label->geometry(), QRect(24, 23, 72, 17));
}

TEST(FormKit, AClickNoLongerReachesAFormThatIsGone) {
    QWidget parent;
    int clicks = 0;
    auto context = std::make_unique<QObject>();
    auto* b = vb::commandButton(&parent, QStringLiteral("cmdLogin"), QStringLiteral("登 陆（&G）"),
                                2460, 3240, 1260, 420, context.get(), [&] { ++clicks; });
    b->click();
    context.reset();
    b->click();
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(b->geometry(), QRect(164, 216, 84, 28));
}

TEST(FormKit, TrimmingOnLeaveFiresChangeOnlyWhenBlanksGo) {
    struct Case {
        const char16_t* typed;
        const char16_t* left;
        int changes;
    };
    // Trim takes blanks only: a tab stays.
    const Case cases[] = {{u"  新华书店 ", u"新华书店", 1},
                          {u"新华书店", u"新华书店", 0},
                          {u"   ", u"", 1},
                          {u"", u"", 0},
                          {u"\t新华 ", u"\t新华", 1}};
    for (const Case& c : cases) {
        QLineEdit box(QString::fromUtf16(c.typed));
        QSignalSpy changed(&box, &QLineEdit::textChanged);
        EXPECT_EQ(vb::trimText(&box), QString::fromUtf16(c.left));
        EXPECT_EQ(box.text(), QString::fromUtf16(c.left));
        EXPECT_EQ(changed.count(), c.changes) << QString::fromUtf16(c.typed).toStdString();
    }
}

} // namespace
