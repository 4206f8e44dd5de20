// The one-instance form model: load on first touch, unload keeping members, modal shows.
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/form.h"
#include "platform/msgbox.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QLockFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

class SampleFrm : public vb::Form {
public:
    SampleFrm() : Form(QStringLiteral("SampleFrm")) {}
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
            t->setObjectName(vb::ctlName(QStringLiteral("Text1"), i));
            t->setText(QStringLiteral("design %1").arg(i));
            t->move(10, 10 + 30 * i);
        }
        auto* c = new QPushButton(QStringLiteral("&A  确定"), w);
        c->setObjectName(QStringLiteral("Command1_0"));
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

TEST(FormModel, MemberSurvivesUnloadWhileControlsReturnToDesign) {
    auto& f = vb::form<SampleFrm>();
    f.doType = QStringLiteral("caigou"); // a plain member does not load the form
    EXPECT_FALSE(f.isLoaded());
    EXPECT_EQ(f.loads, 0);

    auto* t = f.ctl<QLineEdit>(QStringLiteral("Text1"), 1); // touching a control loads
    EXPECT_TRUE(f.isLoaded());
    EXPECT_EQ(f.loads, 1);
    EXPECT_EQ(t->objectName(), QStringLiteral("Text1_1"));
    EXPECT_EQ(f.window()->objectName(), QStringLiteral("SampleFrm"));
    t->setText(QStringLiteral("typed"));

    EXPECT_TRUE(f.Unload());
    EXPECT_FALSE(f.isLoaded());
    EXPECT_EQ(f.unloads, 1);
    EXPECT_EQ(f.doType, QStringLiteral("caigou"));
    EXPECT_EQ(f.ctl<QLineEdit>(QStringLiteral("Text1_1"))->text(), QStringLiteral("design 1"));
    EXPECT_EQ(f.loads, 2);
    EXPECT_EQ(&vb::form<SampleFrm>(), &f);
    EXPECT_EQ(vb::FormRegistry::byName(QStringLiteral("samplefrm")), &f);
}

TEST(FormModel, QueryUnloadMayCancelAndMissingControlsRaise) {
    auto& f = vb::form<SampleFrm>();
    f.Load();
    f.refuseUnload = true;
    EXPECT_FALSE(f.Unload());
    EXPECT_TRUE(f.isLoaded());
    f.refuseUnload = false;
    try {
        f.ctl<QLineEdit>(QStringLiteral("Text9_0"));
        ADD_FAILURE() << "a missing control must raise";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), vb::errObjectRequired);
    }
    EXPECT_EQ(f.findControl(QStringLiteral("Text9_0")), nullptr);
}

TEST(FormModel, ModalShowReturnsOnUnload) {
    auto& f = vb::form<SampleFrm>();
    bool clicked = false;
    QTimer::singleShot(0, [&] {
        EXPECT_TRUE(f.isModalShowing());
        EXPECT_TRUE(f.isVisible());
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command1_0")), Qt::LeftButton);
        clicked = true;
    });
    f.Show(1); // suspended here until the button unloads the form
    EXPECT_TRUE(clicked);
    EXPECT_FALSE(f.isLoaded());
    EXPECT_FALSE(f.isModalShowing());
}

TEST(FormModel, ModalShowReturnsOnHideAndOnTheCloseBox) {
    auto& f = vb::form<SampleFrm>();
    QTimer::singleShot(0, [&] { f.Hide(); });
    f.Show(1);
    EXPECT_TRUE(f.isLoaded()); // hidden, not unloaded
    QTimer::singleShot(0, [&] { f.window()->close(); });
    f.Show(1);
    EXPECT_FALSE(f.isLoaded()); // the close box unloads through QueryUnload
    EXPECT_EQ(f.unloads, 1);
}

TEST(FormModel, KeyPreviewSeesKeysFirstAndMaySwallowThem) {
    auto& f = vb::form<SampleFrm>();
    f.Show();
    auto* t = f.ctl<QLineEdit>(QStringLiteral("Text1_0"));
    t->clear();
    QTest::keyClick(t, Qt::Key_A);
    QTest::keyClick(t, Qt::Key_F2);
    EXPECT_EQ(f.keys, (QStringList{QStringLiteral("65"), QStringLiteral("113")}));
    EXPECT_EQ(t->text(), QStringLiteral("a"));
}

TEST(FormModel, EnterSendsTabAndFocusEventsSkipWindowActivation) {
    auto& f = vb::form<SampleFrm>();
    f.Show();
    QWidget* w = f.window();
    w->activateWindow();
    auto* a = f.ctl<QLineEdit>(QStringLiteral("Text1_0"));
    auto* b = f.ctl<QLineEdit>(QStringLiteral("Text1_1"));
    int lost = 0;
    vb::onLostFocus(a, [&] { ++lost; });
    vb::enterAsTab(a);
    a->setFocus(Qt::OtherFocusReason);
    QApplication::processEvents();
    QTest::keyClick(a, Qt::Key_Return);
    QApplication::processEvents(); // the Tab is queued, as SendKeys queues it
    EXPECT_TRUE(b->hasFocus());
    EXPECT_EQ(lost, 1);
    QFocusEvent activation(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(a, &activation);
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
    EXPECT_EQ(e.text(), QStringLiteral("y"));
    // Text with no legacy key code (as an input method sends it) passes untouched.
    QKeyEvent ime(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QStringLiteral("中"));
    QApplication::sendEvent(&e, &ime);
    EXPECT_EQ(e.text(), QStringLiteral("y中"));
    EXPECT_EQ(calls, 2);
}

TEST(FormModel, AnEscapingErrorGetsTheRuntimeBoxAndEndsTheProcess) {
    auto& f = vb::form<SampleFrm>();
    auto* c = f.ctl<QPushButton>(QStringLiteral("Command1_0"));
    QObject::disconnect(c, nullptr, nullptr, nullptr);
    QObject::connect(c, &QPushButton::clicked, [] { vb::CInt(40000.0); });
    QTest::mouseClick(c, Qt::LeftButton);
    EXPECT_EQ(testsupport::processEnds(), 1);
    ASSERT_FALSE(testsupport::boxes().calls().empty());
    EXPECT_EQ(testsupport::boxes().last().prompt, QStringLiteral("实时错误 '6':\r\n\r\n溢出"));
    EXPECT_EQ(testsupport::boxes().last().flags, vb::vbCritical);
}

TEST(MsgBoxes, ScriptedAnswersAndDefaults) {
    auto& box = testsupport::boxes();
    box.answer(vb::vbNo);
    EXPECT_EQ(vb::MsgBox(QStringLiteral("q"), 68, QStringLiteral("操作提示")), vb::vbNo);
    EXPECT_EQ(vb::MsgBox(QStringLiteral("q2"), 4 + 256), vb::vbNo); // second button by default
    EXPECT_EQ(vb::MsgBox(QStringLiteral("q3"), 4), vb::vbYes);
    ASSERT_EQ(box.calls().size(), 3u);
    EXPECT_EQ(box.calls()[0].title, QStringLiteral("操作提示"));
    EXPECT_EQ(box.calls()[1].title, vb::appTitle());
}

TEST(Settings, StoreKeepsApplicationSectionKey) {
    QTemporaryDir dir;
    vb::setSettingsPath(dir.path());
    EXPECT_EQ(vb::GetSetting(QStringLiteral("Orvane文献系统"), QStringLiteral("Setting"),
                             QStringLiteral("OrvanePass"), QStringLiteral("NotExsists")),
              QStringLiteral("NotExsists"));
    const QString profile = QStringLiteral("PROVIDER=MSDASQL;DSN=x;UID=a;PWD=p;q;");
    vb::SaveSetting(QStringLiteral("Orvane文献系统"), QStringLiteral("Setting"),
                    QStringLiteral("OrvanePass"), profile);
    EXPECT_EQ(vb::GetSetting(QStringLiteral("Orvane文献系统"), QStringLiteral("Setting"),
                             QStringLiteral("OrvanePass"), QStringLiteral("NotExsists")),
              profile);
    vb::SaveSetting(QStringLiteral("Orvane文献系统"), QStringLiteral("Setting"),
                    QStringLiteral("OrvanePass"), QString());
    EXPECT_EQ(vb::GetSetting(QStringLiteral("Orvane文献系统"), QStringLiteral("Setting"),
                             QStringLiteral("OrvanePass"), QStringLiteral("NotExsists")),
              QString()); // an empty value is not the default
}

TEST(SingleInstance, ALiveHolderIsAnotherInstance) {
    const QString key = QStringLiteral("orvane-test-%1").arg(QCoreApplication::applicationPid());
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
