// The entry form driven through its widgets, walking its paths in a few scenarios: from a
// blank form through an INSERT to UPDATEs, the arrows with their questions, the questions
// before leaving a record, the supplier form for an unknown source, and the fatal saves.
#include "platform/errors.h"
#include "platform/maskedbox.h"
#include "purchase/CaiGoufindfrm.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "query/Findfrm.h"
#include "supplier/cgGYSdofrm.h"
#include "supplier/cgGYSfrm.h"
#include "supplier/gysListfrm.h"
#include "tests/shell/modalscript.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <utility>

namespace {

using testsupport::boxes;
using testsupport::settle;
using testsupport::shown;
using testsupport::texts;

const QString kAskSave = QStringLiteral("该采购资料已经发生修改，是否保存修改？");
const QString kBlank = QStringLiteral("采购定单-空");

class CaiGouForm : public testsupport::SessionDb {
protected:
    void SetUp() override {
        SessionDb::SetUp();
        exec(QStringLiteral("INSERT INTO cggys (publisher) VALUES ('新华书店')"));
    }
    CaiGoufrm& f() { return vb::form<CaiGoufrm>(); }
    void open() {
        f().Show(0);
        ASSERT_TRUE(QTest::qWaitForWindowActive(f().window()));
    }
    void type(int index, const QString& text) { testsupport::typeAndLeave(f().Text1(index), text); }
    void key(Qt::Key k, Qt::KeyboardModifiers m = Qt::NoModifier) {
        QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : f().window();
        QTest::keyClick(target, k, m);
        settle();
    }
    // An order as loadCheckDatafrm leaves the form: adding, then typed by the user.
    void enterOrder(const QString& title, const QString& price = QStringLiteral("12.50")) {
        f().addType = caigou::addAdding;
        type(0, QStringLiteral("新华书店"));
        type(1, title);
        type(14, price);
        type(15, QStringLiteral("现购"));
        type(16, QStringLiteral("2003-01-31"));
        type(17, QStringLiteral("3"));
    }
    // Orders 10, 20, 30 ... titled 书1, 书2 ...; the last one has status 2.
    void addRows(int n) {
        for (int i = 1; i <= n; ++i)
            exec(QStringLiteral(
                     "INSERT INTO cgk (cgkid,bookfrom,bookname,price,cgff,yddate,bookcount,status) "
                     "VALUES (%1,'新华书店','书%2',%1,'现购','2003-01-%3',1,%4)")
                     .arg(i * 10)
                     .arg(i)
                     .arg(i, 2, 10, QLatin1Char('0'))
                     .arg(i == n ? 2 : 0));
    }
    QString counter() { return q(QStringLiteral("SELECT code FROM Global WHERE type='cgkid'")); }
};

TEST_F(CaiGouForm, FromABlankFormThroughAnInsertToUpdatesOfChangedColumns) {
    exec(QStringLiteral("UPDATE Global SET code='40' WHERE type='cgkid'"));
    open();
    // Fresh: blank, typing refused, and a field written by code is no change.
    EXPECT_EQ(f().addType, caigou::addEmpty);
    EXPECT_EQ(f().caption(), QStringLiteral("采购订单"));
    EXPECT_FALSE(f().Command2(2)->isEnabled() || f().Command2(1)->isVisible());
    f().Text1(1)->setFocus();
    settle();
    testsupport::typeText(f().Text1(1), QStringLiteral("abc"));
    EXPECT_EQ(f().Text1(1)->text(), QString());
    f().Text1(2)->setText(QStringLiteral("x"));
    EXPECT_FALSE(f().anyFieldChanged());
    EXPECT_FALSE(f().Command2(2)->isEnabled());
    // Enter walks the fields in any state.
    f().Text1(3)->setFocus();
    settle();
    key(Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), f().Text1(4));
    // An arrow on an empty table: a blank form that takes typing.
    key(Qt::Key_N, Qt::AltModifier);
    EXPECT_EQ(f().caption() + QString::number(f().addType) + QString::number(f().cgkIDs()),
              kBlank + QString::number(caigou::addEditing) + u'0');
    testsupport::typeText(f().Text1(1), QStringLiteral("abc"));
    EXPECT_EQ(f().Text1(1)->text(), QStringLiteral("abc"));
    EXPECT_TRUE(f().Command2(2)->isEnabled());

    addRows(3);
    // The rules run on leaving: what they rewrite counts as a change, and a refused value
    // takes the focus back.
    f().addType = caigou::addAdding;
    type(9, QStringLiteral("007"));
    EXPECT_EQ(f().Text1(9)->text(), QStringLiteral("7"));
    EXPECT_TRUE(f().fieldChanged(9));
    type(14, QStringLiteral("十元"));
    EXPECT_EQ(shown(), QStringLiteral("无效数字格式，取消该操作。#16"));
    EXPECT_EQ(f().Text1(14)->text(), QString());
    EXPECT_EQ(QApplication::focusWidget(), f().Text1(14));
    boxes().clear();

    // 保存: an INSERT with an id drawn from Global, empty fields left out (NULL).
    enterOrder(QStringLiteral("O'Brien传"));
    type(6, QStringLiteral("上海"));
    f().Command2(2)->click();
    settle();
    EXPECT_TRUE(boxes().calls().empty()) << boxes().prompts().join(u'|').toStdString();
    EXPECT_EQ(QString::number(f().cgkIDs()) + u'/' + counter() + u'/' + f().caption(),
              QStringLiteral("40/41/采购定单-40"));
    EXPECT_EQ(f().addType, caigou::addEditing);
    EXPECT_FALSE(f().Command2(2)->isEnabled() || f().Command2(1)->isVisible());
    EXPECT_TRUE(f().Command2(1)->isEnabled());
    const QString row = QStringLiteral(" FROM cgk WHERE cgkid=40");
    EXPECT_EQ(q(QStringLiteral("SELECT bookname||'|'||(price=12.5)||'|'||status||'|'||cgname||'|'||"
                               "(zdcode IS NULL)||'|'||pages") +
                row),
              QStringLiteral("O'Brien传|1|0|采购员甲|1|7"));

    // Someone else changes the author meanwhile; our UPDATE must not send it back.
    exec(QStringLiteral("UPDATE cgk SET author='别处改的', bookname='别处改的' WHERE cgkid=40"));
    type(6, QString());                   // emptied: =Null
    type(1, QStringLiteral("X"));         // changed...
    type(1, QStringLiteral("O'Brien传")); // ...and restored: still a change
    f().Command2(2)->click();
    settle();
    EXPECT_EQ(q(QStringLiteral("SELECT author||'|'||bookname||'|'||(pubplace IS NULL)") + row),
              QStringLiteral("别处改的|O'Brien传|1"));
    EXPECT_EQ(counter(), QStringLiteral("41")); // an update draws no id
    EXPECT_FALSE(f().anyFieldChanged());

    // After a save the arrows walk only the orders in play: 30 (status 2) is passed over.
    f().Command1(0)->click();
    EXPECT_EQ(f().cgkIDs(), 10);
    f().Command1(3)->click();
    EXPECT_EQ(f().cgkIDs(), 40);
    f().Command1(1)->click();
    EXPECT_EQ(f().cgkIDs(), 20);
}

TEST_F(CaiGouForm, ArrowsAskBeforeLeavingAChangeAndStepPastTheEnds) {
    addRows(3); // 10, 20 open; 30 has status 2, yet the first walk takes every order
    exec(QStringLiteral("UPDATE cgk SET batch='B001' WHERE cgkid=10"));
    open();
    key(Qt::Key_F, Qt::AltModifier);
    EXPECT_EQ(f().caption() + u'|' + texts(f(), {16, 14, 18}),
              QStringLiteral("采购定单-10|2003-01-01|10|B001"));
    EXPECT_TRUE(f().ctl<QCheckBox>(QStringLiteral("Check1"))->isChecked());

    // Yes with a fault: the save's box, no move; fixed and Yes: saved, yet still no move.
    f().Text1(14)->setText(QString());
    boxes().answer(vb::vbYes);
    f().Command1(2)->click();
    settle();
    EXPECT_EQ(shown(), kAskSave + QStringLiteral("#68\n图书采购'估 价'不能为空，取消该操作。#16"));
    EXPECT_EQ(f().cgkIDs(), 10);
    EXPECT_TRUE(f().saveFailed());
    f().Text1(14)->setText(QStringLiteral("15"));
    boxes().clear();
    boxes().answer(vb::vbYes);
    f().Command1(2)->click();
    settle();
    EXPECT_EQ(boxes().prompts(), QStringList{kAskSave});
    EXPECT_EQ(q(QStringLiteral("SELECT price=15 FROM cgk WHERE cgkid=10")), QStringLiteral("1"));
    EXPECT_EQ(f().cgkIDs(), 10);
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
    EXPECT_EQ(q(QStringLiteral("SELECT bookname FROM cgk WHERE cgkid=20")), QStringLiteral("书2"));
    boxes().clear();

    // Past either end: the blank state, and back.
    f().Command1(2)->click();
    EXPECT_EQ(f().caption(), kBlank);
    f().Command1(1)->click();
    EXPECT_EQ(f().cgkIDs(), 30);
    f().Command1(0)->click();
    f().Command1(1)->click();
    EXPECT_EQ(f().caption() + QString::number(f().addType) + QString::number(f().cgkIDs()) +
                  f().Text1(1)->text(),
              kBlank + QString::number(caigou::addEditing) + u'0');
    f().Command1(2)->click();
    EXPECT_EQ(f().cgkIDs(), 10);
    EXPECT_TRUE(boxes().calls().empty());

    // 保存 on the blank form past the end changes nothing.
    f().Command1(3)->click();
    f().Command1(2)->click();
    ASSERT_EQ(f().caption(), kBlank);
    const std::pair<int, const char*> typed[] = {{0, "新华书店"}, {1, "无处可去"},    {14, "1"},
                                                 {15, "现购"},    {16, "2003-01-01"}, {17, "1"}};
    for (const auto& [index, text] : typed) f().Text1(index)->setText(QString::fromUtf8(text));
    f().Command2(2)->click();
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk")), QStringLiteral("3"));
}

TEST_F(CaiGouForm, AddFindBrowseAndCloseAskFirstAndNoKeepsTheChanges) {
    addRows(3);
    open();
    f().Command1(0)->click();
    f().Text1(2)->setText(QStringLiteral("改了"));
    // 增加 asks; on No the duplicate check comes up and, cancelled, leaves the change.
    boxes().answer({vb::vbNo, vb::vbNo, vb::vbNo});
    ModalScript script;
    script.on<loadCheckDatafrm>([](loadCheckDatafrm& d) { d.Command1(3)->click(); });
    // 查找 asks too; on No the query builder comes up, first cancelled, then 书名 包含 "书".
    script.on<Findfrm>([](Findfrm& find) { find.Unload(); });
    script.on<Findfrm>([](Findfrm& find) {
        EXPECT_EQ(find.doType, QStringLiteral("caigou"));
        auto* fields = find.ctl<QListWidget>(QStringLiteral("LFields"));
        fields->setCurrentRow(
            fields->row(fields->findItems(QStringLiteral("书名"), Qt::MatchExactly).value(0)));
        auto* op = find.ctl<QComboBox>(QStringLiteral("cFuhao"));
        op->setCurrentIndex(op->findText(QStringLiteral("包含")));
        find.ctl<vb::MaskEdBox>(QStringLiteral("lSql"))->setTextVb(QStringLiteral("书"));
        QTest::mouseClick(find.ctl<QPushButton>(QStringLiteral("Command3")), Qt::LeftButton);
        QTest::mouseClick(find.ctl<QPushButton>(QStringLiteral("Command1_1")), Qt::LeftButton);
    });
    f().Command2(0)->click();
    EXPECT_EQ(boxes().prompts(), QStringList{kAskSave});
    EXPECT_TRUE(f().fieldChanged(2));
    EXPECT_EQ(f().addType, caigou::addEditing);
    EXPECT_EQ(q(QStringLiteral("SELECT author IS NULL FROM cgk WHERE cgkid=10")),
              QStringLiteral("1"));
    f().Command2(3)->click();
    settle();
    EXPECT_TRUE(f().fieldChanged(2));
    f().Command2(3)->click();
    settle();
    EXPECT_TRUE(script.done());
    EXPECT_EQ(boxes().prompts(), (QStringList{kAskSave, kAskSave, kAskSave}));
    // The query narrows the walk and shows nothing yet; the next arrow steps from the first
    // match to the second.
    EXPECT_EQ(f().lastCond(), QStringLiteral(" Where bookname Like '%书%'"));
    EXPECT_EQ(f().caption() + QString::number(f().addType) + QString::number(f().cgkIDs()),
              QStringLiteral("采购定单-10") + QString::number(caigou::addEmpty) + u'0'); // kept
    f().Command1(2)->click();
    EXPECT_EQ(f().cgkIDs(), 20);

    f().loadGridData(QStringLiteral(" Where bookname='书2'"), QStringLiteral(" Order By price"));
    EXPECT_EQ(f().Text1(1)->text(), QString());
    EXPECT_EQ(f().lastOrder(), QStringLiteral(" Order By price"));
    // 浏览 opens the browser on the form's last query.
    f().Command2(4)->click();
    EXPECT_EQ(vb::form<CaiGoufindfrm>().lastCond + vb::form<CaiGoufindfrm>().lastOrder,
              QStringLiteral(" Where bookname='书2' Order By price"));
    f().Command1(0)->click();
    EXPECT_EQ(f().cgkIDs(), 20);
    f().Command1(2)->click(); // the only match
    EXPECT_EQ(f().caption(), kBlank);

    // Closing with a change asks; Yes saves.
    f().Command1(1)->click();
    f().Text1(2)->setText(QStringLiteral("新著者"));
    boxes().answer(vb::vbYes);
    f().Command2(5)->click();
    EXPECT_FALSE(f().isLoaded());
    EXPECT_EQ(q(QStringLiteral("SELECT author FROM cgk WHERE cgkid=20")), QStringLiteral("新著者"));
    EXPECT_EQ(f().addType, caigou::addClosed);
}

TEST_F(CaiGouForm, UnknownSourceIsAddedThroughTheSupplierFormAndPassesAfterwards) {
    open();
    // The pick list drops down only while adding or editing.
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

    f().Text1(1)->setFocus(); // where the user moves on to
    boxes().answer(vb::vbYes);
    type(0, QStringLiteral("未列书店"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    auto& d = vb::form<cgGYSdofrm>();
    ASSERT_TRUE(d.isVisible());
    EXPECT_EQ(QString::number(d.gysMode) + d.caption() + d.Text1(0)->text(),
              QStringLiteral("2增加供应商资料未列书店"));
    QApplication::setActiveWindow(d.window());
    settle();
    testsupport::typeAndLeave(d.Text1(1), QStringLiteral("南京"));
    testsupport::typeAndLeave(d.Text1(2), QStringLiteral("中山路"));
    d.Combo1()->setCurrentIndex(0);
    // 保存增加 closes too in this mode, and no supplier grid is touched.
    testsupport::click(d, QStringLiteral("Command1_0"));
    EXPECT_EQ(q(QStringLiteral("SELECT pubplace FROM cggys WHERE publisher='未列书店'")),
              QStringLiteral("南京"));
    EXPECT_FALSE(d.isLoaded());
    EXPECT_FALSE(vb::FormRegistry::exists<cgGYSfrm>() && vb::form<cgGYSfrm>().isLoaded());
    QApplication::setActiveWindow(f().window());
    settle();
    EXPECT_EQ(QApplication::focusWidget(), f().Text1(0)); // handed back to the source
    EXPECT_EQ(f().Text1(0)->text(), QStringLiteral("未列书店"));
    boxes().clear();
    type(0, QStringLiteral("未列书店"));
    EXPECT_TRUE(boxes().calls().empty());
}

struct FailedSave {
    const char* name;
    const char* counter; // set before, "" to keep the database's
    const char* price;   // typed without leaving the field, so never checked
    const char16_t* box; // the start of the run-time error box
    int drawn;           // ids the counter moved by
};
class FatalSave : public CaiGouForm, public ::testing::WithParamInterface<FailedSave> {};

// A failing INSERT ends the process after the id was drawn (a gap); an id above 32767
// overflows before the counter moves.
TEST_P(FatalSave, EndsTheProcessAndSavesNothing) {
    const FailedSave& c = GetParam();
    if (*c.counter)
        exec(QStringLiteral("UPDATE Global SET code='%1' WHERE type='cgkid'").arg(c.counter));
    const int first = counter().toInt();
    const int rows = q(QStringLiteral("SELECT count(*) FROM cgk")).toInt();
    open();
    enterOrder(QStringLiteral("坏订单"));
    f().Text1(14)->setText(QString::fromUtf8(c.price));
    QTest::mouseClick(f().Command2(2), Qt::LeftButton);
    EXPECT_EQ(testsupport::processEnds(), 1);
    EXPECT_TRUE(boxes().last().prompt.startsWith(QString::fromUtf16(c.box)))
        << boxes().last().prompt.toStdString();
    EXPECT_EQ(counter().toInt(), first + c.drawn);
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk")).toInt(), rows);
}
INSTANTIATE_TEST_SUITE_P(Cases, FatalSave,
                         ::testing::Values(FailedSave{"BadPrice", "", "12元", u"实时错误 '", 1},
                                           FailedSave{"IdAbove32767", "32768", "12.50",
                                                      u"实时错误 '6':\r\n\r\n溢出", 0}),
                         [](const auto& p) { return std::string(p.param.name); });

} // namespace
