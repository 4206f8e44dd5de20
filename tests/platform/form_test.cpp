// The one-instance form model: load on first touch, unload keeping members, modal shows,
// keys; and the pieces forms are built from: a row of buttons is one control array with the
// right index behind each click, placement converts twips, a field trimmed on leaving fires
// Change only when its text really changes.
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/form.h"
#include "platform/formkit.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QLockFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const char16_t* const kCaptions[3] = {u"&A  增加", u"&D  删除", u"&X  关闭"};

class SampleFrm : public vb::Form {
public:
    SampleFrm() : Form(u"SampleFrm"_s) {}
    // Public members, as forms take their arguments.
    QString doType;
    int loads = 0;
    int unloads = 0;
    bool refuseUnload = false;
    QStringList keys;
    std::vector<int> clicks;

protected:
    void build(QWidget* w) override {
        w->resize(vb::twips(6000), vb::twips(4000));
        for (int i = 0; i < 2; ++i)
            vb::control<QLineEdit>(w, vb::ctlName(u"Text1"_s, i), 150, 150 + 450 * i, 1500, 300)
                ->setText(u"design %1"_s.arg(i));
        // The last button closes the form.
        vb::buttonRow(w, u"Command1"_s, kCaptions, {240, 1680, 3000, 1215, 375}, this,
                      [this](int i) {
                          clicks.push_back(i);
                          if (i == 2) Unload();
                      });
        setKeyPreview(true);
    }
    void onLoad() override { ++loads; }
    bool queryUnload(int) override { return !refuseUnload; }
    void onUnload() override { ++unloads; }
    bool previewKeyDown(QKeyEvent* e) override {
        keys << QString::number(vb::keyCodeOf(e));
        return vb::keyCodeOf(e) == vb::vbKeyF2; // the form swallows F2
    }
};

TEST(FormModel, MemberSurvivesUnloadControlsReturnToDesignQueryUnloadMayCancel) {
    auto& f = vb::form<SampleFrm>();
    f.doType = u"caigou"_s; // a plain member does not load the form
    EXPECT_FALSE(f.isLoaded() || f.loads);
    auto* t = f.ctl<QLineEdit>(u"Text1"_s, 1); // touching a control loads
    EXPECT_TRUE(f.isLoaded() && f.loads == 1 && t->objectName() == u"Text1_1"_s);
    t->setText(u"typed"_s);
    EXPECT_TRUE(f.Unload());
    EXPECT_TRUE(!f.isLoaded() && f.unloads == 1 && f.doType == u"caigou"_s);
    EXPECT_EQ(f.ctl<QLineEdit>(u"Text1_1"_s)->text(), u"design 1"_s);
    EXPECT_EQ(f.loads, 2);
    EXPECT_EQ(vb::FormRegistry::byName(u"samplefrm"_s), &f);
    // QueryUnload may cancel; a missing control raises.
    f.refuseUnload = true;
    EXPECT_FALSE(f.Unload() || !f.isLoaded());
    f.refuseUnload = false;
    try {
        f.ctl<QLineEdit>(u"Text9_0"_s);
        ADD_FAILURE() << "a missing control must raise";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), vb::errObjectRequired);
    }
}

// A modal show returns when the form unloads (its button), hides (still loaded) or is
// closed by the close box (unloaded through QueryUnload).
TEST(FormModel, ModalShowReturnsOnUnloadHideAndTheCloseBox) {
    auto& f = vb::form<SampleFrm>();
    bool clicked = false;
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(f.isModalShowing() && f.isVisible());
        QTest::mouseClick(f.ctl<QPushButton>(u"Command1_2"_s), Qt::LeftButton);
        clicked = true;
    });
    f.Show(1); // suspended here until the button unloads the form
    EXPECT_TRUE(clicked);
    EXPECT_FALSE(f.isLoaded() || f.isModalShowing());
    QTimer::singleShot(0, [&] { f.Hide(); });
    f.Show(1);
    EXPECT_TRUE(f.isLoaded());
    QTimer::singleShot(0, [&] { f.window()->close(); });
    f.Show(1);
    EXPECT_FALSE(f.isLoaded());
    EXPECT_EQ(f.unloads, 2);
}

// The form sees keys first and may swallow them; a control's KeyDown swallows only what it
// sets to zero; Enter sends Tab; LostFocus skips window activation.
TEST(FormModel, KeyPreviewKeyDownEnterAsTabAndFocusEvents) {
    auto& f = vb::form<SampleFrm>();
    f.Show();
    auto* t = f.ctl<QLineEdit>(u"Text1_0"_s);
    t->clear();
    QTest::keyClick(t, Qt::Key_A);
    QTest::keyClick(t, Qt::Key_F2);
    EXPECT_EQ(f.keys, (QStringList{u"65"_s, u"113"_s}));
    EXPECT_EQ(t->text(), u"a"_s);
    int calls = 0;
    vb::onKeyDown(t, [&](int& code, int) {
        ++calls;
        if (code == 'X') code = 0;
    });
    QTest::keyClick(t, Qt::Key_X);
    QTest::keyClick(t, Qt::Key_Y);
    // Text with no legacy key code (as an input method sends it) passes untouched.
    QKeyEvent ime(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, u"中"_s);
    QApplication::sendEvent(t, &ime);
    EXPECT_EQ(t->text(), u"ay中"_s);
    EXPECT_EQ(calls, 2);
    f.window()->activateWindow();
    int lost = 0;
    vb::onLostFocus(t, [&] { ++lost; });
    vb::enterAsTab(t);
    t->setFocus(Qt::OtherFocusReason);
    QApplication::processEvents();
    QTest::keyClick(t, Qt::Key_Return);
    QApplication::processEvents(); // the Tab is queued, as SendKeys queues it
    EXPECT_TRUE(f.ctl<QLineEdit>(u"Text1_1"_s)->hasFocus());
    EXPECT_EQ(lost, 1);
    QFocusEvent activation(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(t, &activation);
    EXPECT_EQ(lost, 1);
}

TEST(FormModel, AnEscapingErrorGetsTheRuntimeBoxAndEndsTheProcess) {
    auto* c = vb::form<SampleFrm>().ctl<QPushButton>(u"Command1_0"_s);
    QObject::disconnect(c, nullptr, nullptr, nullptr);
    QObject::connect(c, &QPushButton::clicked, [] { vb::CInt(40000.0); });
    QTest::mouseClick(c, Qt::LeftButton);
    EXPECT_EQ(testsupport::processEnds(), 1);
    ASSERT_FALSE(testsupport::boxes().calls().empty());
    EXPECT_EQ(std::pair(testsupport::boxes().last().prompt, testsupport::boxes().last().flags),
              std::pair(u"实时错误 '6':\r\n\r\n溢出"_s, int(vb::vbCritical)));
}

TEST(FormKit, ButtonRowIsOneControlArrayAndEachClickHandsItsOwnIndex) {
    auto& f = vb::form<SampleFrm>();
    // Clicked out of order, so a shared or shifted index cannot pass; the last one closes
    // the form, and the next touch loads it again.
    for (int i : {2, 0, 1, 2}) f.ctl<QPushButton>(u"Command1"_s, i)->click();
    EXPECT_EQ(f.clicks, (std::vector<int>{2, 0, 1, 2}));
    EXPECT_EQ(f.window()->findChild<QPushButton*>(u"Command1_3"_s), nullptr);
    // 240 twips from the left, one every 1680, 15 twips to the pixel; following the bottom
    // edge moves the row down and keeps every button's left.
    const int left[3] = {16, 128, 240};
    vb::moveRowTo(f, u"Command1"_s, 3, 3600);
    for (int i = 0; i < 3; ++i) {
        auto* b = f.ctl<QPushButton>(u"Command1"_s, i);
        EXPECT_EQ(b->geometry(), QRect(left[i], 240, 81, 25)) << i;
        EXPECT_EQ(b->text(), QString::fromUtf16(kCaptions[i])) << i;
    }
    vb::FormRegistry::destroyAll();
}

// A size of 14 twips is less than a pixel; 375 is 25 exactly, 345 is 23. A click no longer
// reaches a form that is gone.
TEST(FormKit, PlacementTruncatesTwipsAndClicksEndWithTheirForm) {
    QWidget parent;
    auto* box = vb::control<QLineEdit>(&parent, u"Text1"_s, 14, 375, 1215, 4440);
    EXPECT_EQ(box->objectName(), u"Text1"_s);
    EXPECT_EQ(box->geometry(), QRect(0, 25, 81, 296));
    auto* label = vb::label(&parent, u"Label1_2"_s, u"批  号："_s, 360, 345, 1080, 255);
    EXPECT_EQ(label->geometry(), QRect(24, 23, 72, 17));
    int clicks = 0;
    auto context = std::make_unique<QObject>();
    auto* b = vb::commandButton(&parent, u"cmdLogin"_s, u"登 陆（&G）"_s, 2460, 3240, 1260, 420,
                                context.get(), [&] { ++clicks; });
    b->click();
    context.reset();
    b->click();
    EXPECT_EQ(clicks, 1);
}

TEST(FormKit, TrimmingOnLeaveFiresChangeOnlyWhenBlanksGo) {
    // Trim takes blanks only: a tab stays.
    const std::tuple<QString, QString, int> cases[] = {{u"  新华书店 "_s, u"新华书店"_s, 1},
                                                       {u"新华书店"_s, u"新华书店"_s, 0},
                                                       {u"   "_s, QString(), 1},
                                                       {QString(), QString(), 0},
                                                       {u"\t新华 "_s, u"\t新华"_s, 1}};
    for (const auto& [typed, left, changes] : cases) {
        QLineEdit box(typed);
        QSignalSpy changed(&box, &QLineEdit::textChanged);
        EXPECT_EQ(vb::trimText(&box), left);
        EXPECT_EQ(box.text(), left);
        EXPECT_EQ(changed.count(), changes) << typed.toStdString();
    }
}

TEST(SingleInstance, ALiveHolderIsAnotherInstance) {
    const QString key = u"orvane-test-%1"_s.arg(QCoreApplication::applicationPid());
    {
        QLockFile holder(vb::instanceLockPath(key)); // stands for the first copy
        ASSERT_TRUE(holder.tryLock(0));
        EXPECT_TRUE(vb::PrevInstance(key));
    }
    EXPECT_FALSE(vb::PrevInstance(key)); // free again: this process takes it
    EXPECT_FALSE(vb::PrevInstance(key)); // and keeps it
    QLockFile second(vb::instanceLockPath(key));
    EXPECT_FALSE(second.tryLock(0));
    vb::releaseInstanceLock();
    EXPECT_TRUE(second.tryLock(0));
}

} // namespace
