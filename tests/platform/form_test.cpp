// The one-instance form model: load on first touch, unload keeping members, modal shows.
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/form.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QLockFile>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

class SampleFrm : public vb::Form {
public:
    SampleFrm() : Form(u"SampleFrm"_s) {}
    // Public members, as forms take their arguments.
    QString doType;
    int loads = 0;
    int unloads = 0;
    bool refuseUnload = false;
    QStringList keys;

protected:
    void build(QWidget* w) override {
        w->resize(vb::twips(4800), vb::twips(3600));
        for (int i = 0; i < 2; ++i) {
            auto* t = new QLineEdit(w);
            t->setObjectName(vb::ctlName(u"Text1"_s, i));
            t->setText(u"design %1"_s.arg(i));
            t->move(10, 10 + 30 * i);
        }
        auto* c = new QPushButton(u"&A  确定"_s, w);
        c->setObjectName(u"Command1_0"_s);
        c->move(10, 80);
        QObject::connect(c, &QPushButton::clicked, [this] { Unload(); });
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
    EXPECT_TRUE(f.isLoaded() && f.loads == 1);
    EXPECT_EQ(t->objectName(), u"Text1_1"_s);
    EXPECT_EQ(f.window()->objectName(), u"SampleFrm"_s);
    t->setText(u"typed"_s);

    EXPECT_TRUE(f.Unload());
    EXPECT_FALSE(f.isLoaded());
    EXPECT_EQ(f.unloads, 1);
    EXPECT_EQ(f.doType, u"caigou"_s); // members survive
    EXPECT_EQ(f.ctl<QLineEdit>(u"Text1_1"_s)->text(), u"design 1"_s);
    EXPECT_EQ(f.loads, 2);
    EXPECT_EQ(&vb::form<SampleFrm>(), &f);
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
    EXPECT_EQ(f.findControl(u"Text9_0"_s), nullptr);
}

// A modal show returns when the form unloads (its button), hides (still loaded) or is
// closed by the close box (unloaded through QueryUnload).
TEST(FormModel, ModalShowReturnsOnUnloadHideAndTheCloseBox) {
    auto& f = vb::form<SampleFrm>();
    bool clicked = false;
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(f.isModalShowing() && f.isVisible());
        QTest::mouseClick(f.ctl<QPushButton>(u"Command1_0"_s), Qt::LeftButton);
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

TEST(FormModel, KeyPreviewEnterAsTabAndFocusEventsWithoutActivation) {
    auto& f = vb::form<SampleFrm>();
    f.Show();
    auto* t = f.ctl<QLineEdit>(u"Text1_0"_s);
    t->clear();
    QTest::keyClick(t, Qt::Key_A);
    QTest::keyClick(t, Qt::Key_F2);
    EXPECT_EQ(f.keys, (QStringList{u"65"_s, u"113"_s}));
    EXPECT_EQ(t->text(), u"a"_s);
    // Enter sends Tab; LostFocus skips window activation.
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

TEST(FormModel, KeyDownHandlersSwallowOnlyWhatTheySetToZero) {
    QLineEdit e;
    int calls = 0;
    vb::onKeyDown(&e, [&](int& code, int) {
        ++calls;
        if (code == 'X') code = 0;
    });
    QTest::keyClick(&e, Qt::Key_X, Qt::NoModifier);
    EXPECT_EQ(e.text(), QString());
    QTest::keyClick(&e, Qt::Key_Y);
    EXPECT_EQ(e.text(), u"y"_s);
    // Text with no legacy key code (as an input method sends it) passes untouched.
    QKeyEvent ime(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, u"中"_s);
    QApplication::sendEvent(&e, &ime);
    EXPECT_EQ(e.text(), u"y中"_s);
    EXPECT_EQ(calls, 2);
}

TEST(FormModel, AnEscapingErrorGetsTheRuntimeBoxAndEndsTheProcess) {
    auto& f = vb::form<SampleFrm>();
    auto* c = f.ctl<QPushButton>(u"Command1_0"_s);
    QObject::disconnect(c, nullptr, nullptr, nullptr);
    QObject::connect(c, &QPushButton::clicked, [] { vb::CInt(40000.0); });
    QTest::mouseClick(c, Qt::LeftButton);
    EXPECT_EQ(testsupport::processEnds(), 1);
    ASSERT_FALSE(testsupport::boxes().calls().empty());
    EXPECT_EQ(std::pair(testsupport::boxes().last().prompt, testsupport::boxes().last().flags),
              std::pair(u"实时错误 '6':\r\n\r\n溢出"_s, int(vb::vbCritical)));
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
