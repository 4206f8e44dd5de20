// The one-instance form model: load on first touch, unload keeping members, modal shows,
// keys; and the pieces forms are built from: a row of buttons is one control array with the
// right index behind each click, placement converts twips, a field trimmed on leaving fires
// Change only when its text really changes; the legacy grid over its table model.
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/events.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "platform/formkit.h"
#include "platform/runtime.h"
#include "platform/vb.h"
#include "tests/support/printto.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>
#include <vector>

using vb::FlexGrid;
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
    // QueryUnload may cancel.
    f.refuseUnload = true;
    EXPECT_FALSE(f.Unload() || !f.isLoaded());
    f.refuseUnload = false;
}

// A modal show returns when the form hides (still loaded) or is closed by the close box
// (unloaded through QueryUnload); the shell's scripted dialogs show it returning on Unload.
TEST(FormModel, ModalShowReturnsOnHideAndTheCloseBox) {
    auto& f = vb::form<SampleFrm>();
    QTimer::singleShot(0, [&] { f.Hide(); });
    f.Show(1);
    EXPECT_TRUE(f.isLoaded());
    QTimer::singleShot(0, [&] { f.window()->close(); });
    f.Show(1);
    EXPECT_FALSE(f.isLoaded() || f.isModalShowing());
    EXPECT_EQ(f.unloads, 1);
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

TEST(FormKit, ButtonRowIndexesTwipsTruncateAndClicksEndWithTheirForm) {
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
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(f.ctl<QPushButton>(u"Command1"_s, i)->geometry(), QRect(left[i], 240, 81, 25))
            << i;
    // A size of 14 twips is less than a pixel. A click no longer reaches a form that is gone.
    QWidget parent;
    auto* box = vb::control<QLineEdit>(&parent, u"Text1"_s, 14, 375, 1215, 4440);
    EXPECT_EQ(box->geometry(), QRect(0, 25, 81, 296));
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
    const std::tuple<QString, QString, int> cases[] = {{u"  新华书店 "_s, u"新华书店"_s, 1},
                                                       {u"新华书店"_s, u"新华书店"_s, 0},
                                                       {u"   "_s, QString(), 1}};
    for (const auto& [typed, left, changes] : cases) {
        QLineEdit box(typed);
        QSignalSpy changed(&box, &QLineEdit::textChanged);
        EXPECT_EQ(vb::trimText(&box), left);
        EXPECT_EQ(box.text(), left);
        EXPECT_EQ(changed.count(), changes) << typed.toStdString();
    }
}

// Rows 1..n, every third price NULL.
std::unique_ptr<adodb::Recordset> sampleRows(int n) {
    std::vector<std::vector<QVariant>> rows;
    for (int i = 0; i < n; ++i)
        rows.push_back({i + 1, u"书名%1"_s.arg(i), i % 3 == 0 ? QVariant() : QVariant(12.5 + i)});
    return adodb::Recordset::fromRows({u"cgkID"_s, u"书   名"_s, u"预定价格"_s}, std::move(rows));
}

struct Grid : FlexGrid {
    QAbstractItemModelTester tester{gridModel(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST(FlexGrid, FormatStringAddItemRemoveItemAndClear) {
    Grid g;
    g.setFormatString(u"IDs|^状态|<书   名|>册 数"_s);
    EXPECT_EQ(std::pair(g.Cols(), g.Rows()), std::pair(4, 2));
    EXPECT_EQ(g.TextMatrix(0, 2), u"书   名"_s);
    EXPECT_THROW(g.TextMatrix(5, 0), vb::VbError);
    g.AddItem(u"1\t甲\tx"_s);
    g.AddItem(u"0\t乙"_s, 1);
    EXPECT_EQ(g.Rows(), 4);
    EXPECT_EQ(g.TextMatrix(1, 1) + g.TextMatrix(3, 1), u"乙甲"_s);
    g.RemoveItem(1);
    g.RemoveItem(1);
    EXPECT_THROW(g.RemoveItem(1), vb::VbError); // the last non-fixed row stays
    g.setTextMatrix(1, 1, u"x"_s);
    g.Clear();
    EXPECT_EQ(g.TextMatrix(1, 1) + g.TextMatrix(0, 0), QString()); // the headings go too
}

TEST(FlexGrid, RowColSelectionKeysAndTheMouse) {
    FlexGrid g;
    g.setFormatString(u"a|b|c"_s);
    g.setRows(6);
    QSignalSpy rc(&g, &FlexGrid::RowColChange);
    g.setRow(3);
    EXPECT_EQ(g.RowSel(), 3); // setting Row collapses the selection
    g.setCol(0);
    g.setColSel(2);
    EXPECT_EQ(std::pair(g.ColSel(), int(rc.count())), std::pair(2, 2));
    EXPECT_THROW(g.setRow(9), vb::VbError);
    // Keys go to KeyDown first; a handler may swallow them.
    int seen = 0;
    QObject::connect(&g, &FlexGrid::KeyDown, [&](int& code, int) {
        seen = code;
        if (code == vb::vbKeyDown) code = 0;
    });
    g.setCol(1);
    QTest::keyClick(&g, Qt::Key_Down);
    EXPECT_EQ(std::pair(seen, g.Row()), std::pair(int(vb::vbKeyDown), 3));
    QTest::keyClick(&g, Qt::Key_Up);
    EXPECT_EQ(std::pair(seen, g.Row()), std::pair(int(vb::vbKeyUp), 2));
    // The right button reports itself but leaves the current cell; the left one moves it.
    g.resize(400, 300);
    g.show();
    g.setRow(1);
    std::vector<int> downs;
    QObject::connect(&g, &FlexGrid::MouseDown, [&](int b, int, int, int) { downs.push_back(b); });
    const QPoint cell = g.cellRect(4, 2).center() - g.viewport()->pos();
    QTest::mouseClick(g.viewport(), Qt::RightButton, {}, cell);
    EXPECT_EQ(std::pair(g.Row(), g.Col()), std::pair(1, 1));
    QTest::mouseClick(g.viewport(), Qt::LeftButton, {}, cell);
    EXPECT_EQ(std::pair(g.Row(), g.Col()), std::pair(4, 2));
    EXPECT_EQ(downs, (std::vector<int>{2, 1}));
}

TEST(FlexGrid, BindCopiesRowsWithNullsAsEmptyText) {
    Grid g;
    g.bind(*sampleRows(4));
    EXPECT_EQ(g.Rows(), 5);
    EXPECT_EQ(g.TextMatrix(0, 1), u"书   名"_s);
    EXPECT_EQ(g.TextMatrix(1, 2), QString()); // NULL
    EXPECT_EQ(g.TextMatrix(2, 2), u"13.5"_s);
    g.bind(*sampleRows(0)); // the header and one blank row
    EXPECT_EQ(g.Rows(), 2);
    EXPECT_EQ(g.TextMatrix(1, 1) + g.TextMatrix(0, 2), u"预定价格"_s);
}

} // namespace
