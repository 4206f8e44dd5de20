// The entry form driven through its widgets: states, change tracking, save as INSERT and
// UPDATE, the counter in Global, navigation with its questions, keys, the fatal paths.
#include "platform/errors.h"
#include "purchase/CaiGoufindfrm.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "query/Findfrm.h"
#include "supplier/cgGYSdofrm.h"
#include "supplier/gysListfrm.h"
#include "tests/purchase/purchasetest.h"
#include "tests/shell/modalscript.h"

#include <QCheckBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

using testsupport::boxes;

const QString kAskSave = QStringLiteral("该采购资料已经发生修改，是否保存修改？");

class CaiGouForm : public PurchaseDb {
protected:
    void SetUp() override {
        PurchaseDb::SetUp();
        exec(QStringLiteral("INSERT INTO cggys (publisher) VALUES ('新华书店')"));
    }
    CaiGoufrm& f() { return vb::form<CaiGoufrm>(); }
    void open() {
        f().Show(0);
        ASSERT_TRUE(QTest::qWaitForWindowActive(f().window()));
    }
    // Types into a field that has the focus, then leaves it with Tab, as a user does.
    void type(int index, const QString& text) { testsupport::typeAndLeave(f().Text1(index), text); }
    void key(Qt::Key k, Qt::KeyboardModifiers m = Qt::NoModifier) {
        QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : f().window();
        QTest::keyClick(target, k, m);
        settle();
    }
    // An order as loadCheckDatafrm leaves the form: adding, then typed by the user.
    void enterOrder(const QString& title) {
        f().addType = caigou::addAdding;
        type(0, QStringLiteral("新华书店"));
        type(1, title);
        type(14, QStringLiteral("12.50"));
        type(15, QStringLiteral("现购"));
        type(16, QStringLiteral("2003-01-31"));
        type(17, QStringLiteral("3"));
    }
    void addRows(int n) {
        for (int i = 1; i <= n; ++i)
            exec(QStringLiteral(
                     "INSERT INTO cgk (cgkid,bookfrom,bookname,price,cgff,yddate,bookcount,status) "
                     "VALUES (%1,'新华书店','书%1',%1,'现购','2003-01-%2',1,%3)")
                     .arg(i * 10)
                     .arg(i, 2, 10, QLatin1Char('0'))
                     .arg(i == n ? 2 : 0));
    }
    QString counter() { return q(QStringLiteral("SELECT code FROM Global WHERE type='cgkid'")); }
};

TEST_F(CaiGouForm, FreshFormIsBlankAndRefusesTyping) {
    open();
    EXPECT_EQ(f().addType, caigou::addEmpty);
    EXPECT_EQ(f().caption(), QStringLiteral("采购订单"));
    EXPECT_FALSE(f().Command2(2)->isEnabled());
    EXPECT_FALSE(f().Command2(1)->isVisible());
    f().Text1(1)->setFocus();
    settle();
    typeText(f().Text1(1), QStringLiteral("abc"));
    EXPECT_EQ(f().Text1(1)->text(), QString());
    EXPECT_FALSE(f().Command2(2)->isEnabled());
    // Code can still write a field, but that is no change while the form is empty.
    f().Text1(2)->setText(QStringLiteral("x"));
    EXPECT_FALSE(f().anyFieldChanged());
}

TEST_F(CaiGouForm, ArrowOnAnEmptyTableGivesAnEditableBlankForm) {
    open();
    key(Qt::Key_N, Qt::AltModifier);
    EXPECT_EQ(f().caption(), QStringLiteral("采购定单-空"));
    EXPECT_EQ(f().addType, caigou::addEditing);
    EXPECT_EQ(f().cgkIDs(), 0);
    typeText(f().Text1(1), QStringLiteral("abc"));
    EXPECT_EQ(f().Text1(1)->text(), QStringLiteral("abc"));
    EXPECT_TRUE(f().Command2(2)->isEnabled());
}

TEST_F(CaiGouForm, SaveInsertsWithANewIdThenAChangeIsAnUpdateOfOnlyThatColumn) {
    const int first = counter().toInt();
    open();
    enterOrder(QStringLiteral("O'Brien传"));
    type(6, QStringLiteral("上海"));
    EXPECT_TRUE(f().fieldChanged(1));
    EXPECT_TRUE(f().Command2(2)->isEnabled());
    f().Command2(2)->click();
    settle();
    EXPECT_TRUE(boxes().calls().empty()) << boxes().prompts().join(u'|').toStdString();

    EXPECT_EQ(f().cgkIDs(), first);
    EXPECT_EQ(counter().toInt(), first + 1);
    EXPECT_EQ(f().caption(), QStringLiteral("采购定单-%1").arg(first));
    EXPECT_EQ(f().addType, caigou::addEditing);
    EXPECT_FALSE(f().Command2(2)->isEnabled());
    EXPECT_TRUE(f().Command2(1)->isEnabled());
    EXPECT_FALSE(f().Command2(1)->isVisible());
    const QString row = QStringLiteral(" FROM cgk WHERE cgkid=%1").arg(first);
    EXPECT_EQ(q(QStringLiteral("SELECT bookname") + row), QStringLiteral("O'Brien传"));
    EXPECT_EQ(q(QStringLiteral("SELECT price=12.5") + row), QStringLiteral("1"));
    EXPECT_EQ(q(QStringLiteral("SELECT status") + row), QStringLiteral("0"));
    EXPECT_EQ(q(QStringLiteral("SELECT cgname") + row), QStringLiteral("采购员甲"));
    // Empty fields are left out of the insert: NULL, not an empty text.
    EXPECT_EQ(q(QStringLiteral("SELECT author IS NULL") + row), QStringLiteral("1"));
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk WHERE status=0 AND cgkid=%1").arg(first)),
              QStringLiteral("1"));

    // Someone else changes the author meanwhile; our update must not send it back.
    exec(QStringLiteral("UPDATE cgk SET author='别处改的', bookname='别处改的' WHERE cgkid=%1")
             .arg(first));
    type(6, QString());                   // emptied: =Null
    type(1, QStringLiteral("X"));         // changed...
    type(1, QStringLiteral("O'Brien传")); // ...and restored: still a change
    EXPECT_TRUE(f().Command2(2)->isEnabled());
    f().Command2(2)->click();
    settle();
    EXPECT_EQ(q(QStringLiteral("SELECT author") + row), QStringLiteral("别处改的"));
    EXPECT_EQ(q(QStringLiteral("SELECT bookname") + row), QStringLiteral("O'Brien传"));
    EXPECT_EQ(q(QStringLiteral("SELECT pubplace IS NULL") + row), QStringLiteral("1"));
    EXPECT_EQ(counter().toInt(), first + 1); // an update draws no id
    EXPECT_FALSE(f().anyFieldChanged());
}

TEST_F(CaiGouForm, RulesRunOnLeavingAndTheirRewritesCountAsChanges) {
    open();
    f().addType = caigou::addAdding;
    type(11, QStringLiteral("tp312"));
    EXPECT_EQ(f().Text1(11)->text(), QStringLiteral("TP312"));
    type(9, QStringLiteral("007"));
    EXPECT_EQ(f().Text1(9)->text(), QStringLiteral("7"));
    EXPECT_TRUE(f().fieldChanged(9));
    // A refused number: the box, the field cleared and the focus back on it.
    type(14, QStringLiteral("十元"));
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("无效数字格式，取消该操作。"));
    EXPECT_EQ(f().Text1(14)->text(), QString());
    EXPECT_EQ(QApplication::focusWidget(), f().Text1(14));
    // The ISBN: formatted and the publisher filled.
    type(4, QStringLiteral("7500012340"));
    EXPECT_EQ(f().Text1(4)->text(), QStringLiteral("7-5000-1234-9"));
    EXPECT_EQ(f().Text1(5)->text(), QStringLiteral("中国大百科全书出版社"));
    EXPECT_TRUE(f().fieldChanged(5));
}

TEST_F(CaiGouForm, UnknownSourceYesOpensTheSupplierFormWithTheName) {
    open();
    f().addType = caigou::addAdding;
    boxes().answer(vb::vbYes);
    type(0, QStringLiteral("无名书店"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    auto& add = vb::form<cgGYSdofrm>();
    ASSERT_TRUE(add.isVisible());
    EXPECT_EQ(add.gysMode, 2);
    EXPECT_EQ(add.Text1(0)->text(), QStringLiteral("无名书店"));
}

TEST_F(CaiGouForm, NavigationAsksAndAFailedSaveHoldsTheNextArrowToo) {
    addRows(3); // 10, 20 open; 30 has status 2 but the first list walks every order
    open();
    key(Qt::Key_F, Qt::AltModifier);
    EXPECT_EQ(f().cgkIDs(), 10);
    EXPECT_EQ(f().caption(), QStringLiteral("采购定单-10"));
    EXPECT_EQ(f().Text1(16)->text(), QStringLiteral("2003-01-01"));
    EXPECT_EQ(f().Text1(14)->text(), QStringLiteral("10"));

    f().Text1(14)->setText(QString()); // no price
    boxes().answer(vb::vbYes);
    f().Command1(2)->click();
    settle();
    EXPECT_EQ(boxes().calls()[0].prompt, kAskSave);
    EXPECT_EQ(boxes().calls()[0].flags, 68);
    EXPECT_EQ(boxes().calls()[1].prompt, QStringLiteral("图书采购'估 价'不能为空，取消该操作。"));
    EXPECT_EQ(f().cgkIDs(), 10);
    EXPECT_TRUE(f().saveFailed());

    f().Text1(14)->setText(QStringLiteral("15"));
    boxes().clear();
    boxes().answer(vb::vbYes);
    f().Command1(2)->click();
    settle();
    EXPECT_EQ(boxes().prompts(), QStringList{kAskSave});
    EXPECT_EQ(q(QStringLiteral("SELECT price=15 FROM cgk WHERE cgkid=10")), QStringLiteral("1"));
    EXPECT_EQ(f().cgkIDs(), 10); // saved, yet it did not move
    EXPECT_TRUE(f().saveFailed());

    f().Command1(2)->click();
    settle();
    EXPECT_EQ(f().cgkIDs(), 20);
    EXPECT_FALSE(f().saveFailed());

    // No: the change is dropped and the arrow moves.
    f().Text1(1)->setText(QStringLiteral("丢掉"));
    boxes().answer(vb::vbNo);
    key(Qt::Key_L, Qt::AltModifier);
    EXPECT_EQ(f().cgkIDs(), 30);
    EXPECT_EQ(q(QStringLiteral("SELECT bookname FROM cgk WHERE cgkid=20")), QStringLiteral("书20"));
}

TEST_F(CaiGouForm, SteppingPastEitherEndShowsTheEmptyStateAndComesBack) {
    addRows(2);
    open();
    f().Command1(0)->click();
    f().Command1(1)->click();
    EXPECT_EQ(f().caption(), QStringLiteral("采购定单-空"));
    EXPECT_EQ(f().cgkIDs(), 0);
    EXPECT_EQ(f().addType, caigou::addEditing);
    EXPECT_EQ(f().Text1(1)->text(), QString());
    f().Command1(2)->click();
    EXPECT_EQ(f().cgkIDs(), 10);
    f().Command1(3)->click();
    f().Command1(2)->click();
    EXPECT_EQ(f().caption(), QStringLiteral("采购定单-空"));
    f().Command1(1)->click();
    EXPECT_EQ(f().cgkIDs(), 20);
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(CaiGouForm, AfterASaveTheArrowsWalkOnlyOrdersInPlay) {
    addRows(3); // 30 has status 2
    exec(QStringLiteral("UPDATE Global SET code='40' WHERE type='cgkid'"));
    open();
    enterOrder(QStringLiteral("新书"));
    f().Command2(2)->click();
    settle();
    const int id = f().cgkIDs();
    EXPECT_EQ(id, 40);
    f().Command1(0)->click();
    EXPECT_EQ(f().cgkIDs(), 10);
    f().Command1(3)->click();
    EXPECT_EQ(f().cgkIDs(), id);
    f().Command1(1)->click();
    EXPECT_EQ(f().cgkIDs(), 20); // 30 is no longer reached
}

TEST_F(CaiGouForm, SaveOnTheBlankFormPastTheEndChangesNothing) {
    addRows(1);
    open();
    f().Command1(2)->click(); // past the only record
    ASSERT_EQ(f().caption(), QStringLiteral("采购定单-空"));
    f().Text1(0)->setText(QStringLiteral("新华书店"));
    f().Text1(1)->setText(QStringLiteral("无处可去"));
    f().Text1(14)->setText(QStringLiteral("1"));
    f().Text1(15)->setText(QStringLiteral("现购"));
    f().Text1(16)->setText(QStringLiteral("2003-01-01"));
    f().Text1(17)->setText(QStringLiteral("1"));
    f().Command2(2)->click();
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk WHERE bookname='无处可去'")),
              QStringLiteral("0"));
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk")), QStringLiteral("1"));
}

TEST_F(CaiGouForm, AddAsksFirstAndWithNoOpensTheCheckKeepingTheFlags) {
    addRows(1);
    open();
    f().Command1(0)->click();
    f().Text1(2)->setText(QStringLiteral("改了"));
    boxes().answer(vb::vbNo);
    ModalScript script;
    script.on<loadCheckDatafrm>([this](loadCheckDatafrm& d) {
        EXPECT_EQ(boxes().prompts(), QStringList{kAskSave});
        d.Command1(3)->click();
    });
    f().Command2(0)->click();
    EXPECT_TRUE(script.done());
    EXPECT_TRUE(f().fieldChanged(2));
    EXPECT_EQ(f().addType, caigou::addEditing);
    EXPECT_EQ(q(QStringLiteral("SELECT author IS NULL FROM cgk WHERE cgkid=10")),
              QStringLiteral("1"));
}

TEST_F(CaiGouForm, BatchTicksTheAcceptedBox) {
    addRows(1);
    exec(QStringLiteral("UPDATE cgk SET batch='B001' WHERE cgkid=10"));
    open();
    f().Command1(0)->click();
    EXPECT_EQ(f().Text1(18)->text(), QStringLiteral("B001"));
    EXPECT_TRUE(f().ctl<QCheckBox>(QStringLiteral("Check1"))->isChecked());
}

TEST_F(CaiGouForm, ChangedRecordAndCloseAsksAndNoKeepsTheFlags) {
    addRows(1);
    open();
    f().Command1(0)->click();
    f().Text1(2)->setText(QStringLiteral("新著者"));
    boxes().answer(vb::vbNo);
    // 查找 asks first; on No the query builder comes up with the changes kept.
    bool finding = false;
    QTimer::singleShot(0, [&] {
        auto& find = vb::form<Findfrm>();
        finding = find.isModalShowing();
        find.Unload();
    });
    f().Command2(3)->click();
    EXPECT_TRUE(finding);
    EXPECT_EQ(boxes().calls()[0].prompt, kAskSave);
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_TRUE(f().fieldChanged(2));
    boxes().answer(vb::vbYes);
    f().Command2(5)->click();
    EXPECT_FALSE(f().isLoaded());
    EXPECT_EQ(q(QStringLiteral("SELECT author FROM cgk WHERE cgkid=10")), QStringLiteral("新著者"));
    EXPECT_EQ(f().addType, caigou::addClosed);
}

TEST_F(CaiGouForm, LoadGridDataNarrowsTheWalkAndShowsNothingYet) {
    addRows(3);
    open();
    f().Command1(0)->click();
    f().loadGridData(QStringLiteral(" Where bookname='书20'"), QStringLiteral(" Order By price"));
    EXPECT_EQ(f().addType, caigou::addEmpty);
    EXPECT_EQ(f().cgkIDs(), 0);
    EXPECT_EQ(f().Text1(1)->text(), QString());
    EXPECT_EQ(f().caption(), QStringLiteral("采购定单-10")); // kept
    EXPECT_EQ(f().lastOrder(), QStringLiteral(" Order By price"));
    f().Command2(4)->click();
    EXPECT_EQ(vb::form<CaiGoufindfrm>().lastCond, QStringLiteral(" Where bookname='书20'"));
    EXPECT_EQ(vb::form<CaiGoufindfrm>().lastOrder, QStringLiteral(" Order By price"));
    f().Command1(0)->click();
    EXPECT_EQ(f().cgkIDs(), 20);
    f().Command1(2)->click(); // the only match was 20
    EXPECT_EQ(f().caption(), QStringLiteral("采购定单-空"));
}

TEST_F(CaiGouForm, ArrowKeysOpenThePickListOnlyWhileEditing) {
    open();
    f().Text1(10)->setFocus();
    settle();
    key(Qt::Key_Down);
    EXPECT_FALSE(vb::FormRegistry::exists<gysListfrm>() && vb::form<gysListfrm>().isLoaded());
    f().addType = caigou::addAdding;
    f().Text1(10)->setFocus();
    settle();
    key(Qt::Key_Down);
    ASSERT_TRUE(vb::form<gysListfrm>().isLoaded());
    EXPECT_EQ(vb::form<gysListfrm>().pTxt, f().Text1(10));
    EXPECT_EQ(vb::form<gysListfrm>().listCount(), 10); // the ten book sizes
    vb::form<gysListfrm>().Unload();
}

TEST_F(CaiGouForm, FailedInsertEndsTheProcessAndLeavesAGapInTheCounter) {
    const int first = counter().toInt();
    open();
    enterOrder(QStringLiteral("坏价格"));
    f().Text1(14)->setText(QStringLiteral("12元")); // never left, so never checked
    QTest::mouseClick(f().Command2(2), Qt::LeftButton);
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("实时错误 '")));
    EXPECT_EQ(counter().toInt(), first + 1);
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk")), QStringLiteral("0"));
}

TEST_F(CaiGouForm, IdAbove32767OverflowsBeforeTheCounterMoves) {
    exec(QStringLiteral("UPDATE Global SET code='32768' WHERE type='cgkid'"));
    open();
    enterOrder(QStringLiteral("太多"));
    QTest::mouseClick(f().Command2(2), Qt::LeftButton);
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("实时错误 '6':\r\n\r\n溢出"));
    EXPECT_EQ(counter(), QStringLiteral("32768"));
}

TEST_F(CaiGouForm, EnterWalksTheFieldsInAnyState) {
    open();
    f().Text1(3)->setFocus();
    settle();
    key(Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f().Text1(4));
}

} // namespace
