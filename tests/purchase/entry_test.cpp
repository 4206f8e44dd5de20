// The entry form driven through its widgets, walking its paths in a few scenarios: from a
// blank form through an INSERT to UPDATEs, the arrows with their questions, the questions
// before leaving a record, the supplier form for an unknown source, the fatal saves; the
// duplicate check (the union over holdings, orders and the copy-cataloguing source, Copy by
// the row's status text, the popup, the ways into a new order) and the drop-down pick list.
#include "data/publicHanshu.h"
#include "platform/Menu.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "supplier/cgGYSdofrm.h"
#include "supplier/gysListfrm.h"
#include "tests/shell/modalscript.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTest>

#include <utility>

namespace {

using testsupport::boxes;
using testsupport::cells;
using testsupport::settle;
using testsupport::shown;
using testsupport::texts;

const QString kAskSave = QStringLiteral("该采购资料已经发生修改，是否保存修改？");
const QString kIsbn = QStringLiteral("7-5000-1234-9");
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
    // A whole order, typed and left field by field, or (typed=false) written without the rules.
    void enterOrder(const QString& title, bool typed = true) {
        const std::pair<int, QString> fields[] = {
            {0, QStringLiteral("新华书店")},    {1, title},
            {14, QStringLiteral("12.50")},      {15, QStringLiteral("现购")},
            {16, QStringLiteral("2003-01-31")}, {17, QStringLiteral("3")}};
        for (const auto& [index, text] : fields) {
            if (typed)
                type(index, text);
            else
                f().Text1(index)->setText(text);
        }
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
    QString state() {
        return f().caption() + u'/' + QString::number(f().addType) + u'/' +
               QString::number(f().cgkIDs());
    }
    gysListfrm& list() { return vb::form<gysListfrm>(); }
    // The pick list under the author field, with the first upTo of five entries.
    void drop(int upTo) {
        exec(QStringLiteral("CREATE TABLE IF NOT EXISTS picks AS WITH RECURSIVE c(n) AS (SELECT 1 "
                            "UNION ALL SELECT n+1 FROM c WHERE n<5) SELECT n, '第'||n||'项' AS v "
                            "FROM c"));
        list().pTxt = f().Text1(2);
        list().tForm = &f();
        EXPECT_FALSE(list().isLoaded()); // setting the members loads nothing
        list().loadData(QStringLiteral("SELECT v FROM picks WHERE n<=%1 ORDER BY n").arg(upTo));
        list().Show(0);
        settle();
    }
    loadCheckDatafrm& d() { return vb::form<loadCheckDatafrm>(); }
    void search(const QString& text, bool byTitle) {
        d().Option1(byTitle ? 0 : 1)->setChecked(true);
        d().Text1()->setText(text);
        d().Command1_Click(0);
        settle();
    }
    // One title in all three places, and as orders 7, 8, 9 in states 0, 1, 2.
    void seed() {
        exec(QStringLiteral("INSERT INTO ZSK (ZSKID,bookname,author,isbn,publisher,edition,"
                            "docclass,bookcount) VALUES (5,'红楼梦','曹雪芹','%1','人民文学出版社',"
                            "'第1版','普通图书',4)")
                 .arg(kIsbn));
        exec(QStringLiteral("INSERT INTO taolutable (ZSKID,bookname,author,isbn,publisher) VALUES "
                            "(5,'红楼梦(套录)','曹雪芹','%1','作家出版社')")
                 .arg(kIsbn));
        for (int status : {0, 1, 2})
            exec(QStringLiteral(
                     "INSERT INTO cgk (cgkid,bookfrom,bookname,author,zdcode,isbn,"
                     "publisher,pubplace,price,cgff,yddate,bookcount,status,batch) "
                     "VALUES (%1,'新华书店','红楼梦%1','曹雪芹','Z1','%2','人民文学出版社',"
                     "'北京',%1,'现购','2003-01-01',2,%3,'B9')")
                     .arg(status + 7)
                     .arg(kIsbn)
                     .arg(status));
    }
    int rowOf(const QString& status) {
        return static_cast<int>(testsupport::gridColumn(d().Grid1(), 1).indexOf(status)) + 1;
    }
    QString today() { return serverDate().date().toString(QStringLiteral("yyyy-MM-dd")); }
};

TEST_F(CaiGouForm, FromABlankFormThroughAnInsertToUpdatesOfChangedColumns) {
    exec(QStringLiteral("UPDATE Global SET code='40' WHERE type='cgkid'"));
    open();
    // Fresh: typing refused, and a field written by code is no change.
    EXPECT_EQ(f().addType, caigou::addEmpty);
    f().Text1(1)->setFocus();
    settle();
    testsupport::typeText(f().Text1(1), QStringLiteral("abc"));
    EXPECT_EQ(f().Text1(1)->text(), QString());
    f().Text1(2)->setText(QStringLiteral("x"));
    EXPECT_FALSE(f().anyFieldChanged() || f().Command2(2)->isEnabled());
    // An arrow on an empty table: a blank form that takes typing.
    key(Qt::Key_N, Qt::AltModifier);
    EXPECT_EQ(state(), kBlank + QStringLiteral("/%1/0").arg(caigou::addEditing));
    testsupport::typeText(f().Text1(1), QStringLiteral("abc"));
    EXPECT_EQ(f().Text1(1)->text(), QStringLiteral("abc"));

    addRows(3);
    // The rules run on leaving, and what they rewrite counts as a change.
    f().addType = caigou::addAdding;
    type(9, QStringLiteral("007"));
    EXPECT_EQ(f().Text1(9)->text(), QStringLiteral("7"));
    EXPECT_TRUE(f().fieldChanged(9));

    // 保存: an INSERT with an id drawn from Global, empty fields left out (NULL).
    enterOrder(QStringLiteral("O'Brien传"));
    type(6, QStringLiteral("上海"));
    f().Command2(2)->click();
    settle();
    EXPECT_TRUE(boxes().calls().empty()) << boxes().prompts().join(u'|').toStdString();
    EXPECT_EQ(state() + u'/' + counter(),
              QStringLiteral("采购定单-40/%1/40/41").arg(caigou::addEditing));
    EXPECT_FALSE(f().Command2(2)->isEnabled());
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
    for (const auto& [button, id] : {std::pair{0, 10}, {3, 40}, {1, 20}}) {
        f().Command1(button)->click();
        EXPECT_EQ(f().cgkIDs(), id) << button;
    }
}

TEST_F(CaiGouForm, ArrowsAddAndCloseAskBeforeLeavingAChangeAndArrowsStepPastTheEnds) {
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

    // Past either end: the blank state, and back, without a question.
    const std::pair<int, int> steps[] = {{2, 0}, {1, 30}, {0, 10}, {1, 0}, {2, 10}};
    for (const auto& [button, id] : steps) {
        f().Command1(button)->click();
        EXPECT_EQ(state(), id ? QStringLiteral("采购定单-%1/%2/%1").arg(id).arg(f().addType)
                              : kBlank + QStringLiteral("/%1/0").arg(caigou::addEditing))
            << button;
    }
    EXPECT_TRUE(boxes().calls().empty());

    // 增加 and 关闭 ask too; on No the duplicate check comes up and, cancelled, leaves the
    // change; Yes saves.
    f().Command1(0)->click();
    f().Text1(2)->setText(QStringLiteral("改了"));
    boxes().answer(vb::vbNo);
    ModalScript script;
    script.on<loadCheckDatafrm>([](loadCheckDatafrm& d) {
        EXPECT_TRUE(d.Option1(1)->isChecked()); // by ISBN first
        d.Command1(3)->click();
    });
    f().Command2(0)->click();
    EXPECT_EQ(boxes().prompts(), QStringList{kAskSave});
    EXPECT_EQ(f().addType, caigou::addEditing);
    EXPECT_EQ(q(QStringLiteral("SELECT author IS NULL FROM cgk WHERE cgkid=10")),
              QStringLiteral("1"));
    EXPECT_TRUE(script.done() && f().fieldChanged(2));

    boxes().answer(vb::vbYes);
    f().Command2(5)->click();
    EXPECT_FALSE(f().isLoaded());
    EXPECT_EQ(q(QStringLiteral("SELECT author FROM cgk WHERE cgkid=10")), QStringLiteral("改了"));
    EXPECT_EQ(f().addType, caigou::addClosed);
}

TEST_F(CaiGouForm, PickListAndUnknownSourceThroughTheSupplierForm) {
    open();
    // Esc and focus loss keep the text; a click or Space picks.
    f().Text1(2)->setText(QStringLiteral("原值"));
    drop(5);
    QTest::keyClick(list().Grid1(), Qt::Key_Escape);
    EXPECT_FALSE(list().isLoaded());
    drop(3);
    list().Grid1()->clearFocus();
    settle();
    EXPECT_FALSE(list().isLoaded());
    EXPECT_EQ(f().Text1(2)->text(), QStringLiteral("原值"));
    drop(5);
    QTest::keyClick(list().Grid1(), Qt::Key_Space);
    EXPECT_EQ(f().Text1(2)->text(), QStringLiteral("第1项"));

    drop(3);
    vb::FlexGrid* g = list().Grid1();
    const QRect second = g->visualRect(g->model()->index(1, 0));
    QTest::mouseMove(g->viewport(), second.center());
    QTest::mouseClick(g->viewport(), Qt::LeftButton, {}, second.center());
    settle();
    EXPECT_EQ(f().Text1(2)->text(), QStringLiteral("第2项"));
    EXPECT_FALSE(list().isLoaded());

    // The pick list drops down only while adding or editing; a pick is a change the rules
    // see only when the field is left.
    f().Text1(10)->setFocus();
    settle();
    key(Qt::Key_Down);
    EXPECT_FALSE(list().isLoaded());
    f().addType = caigou::addAdding;
    f().Text1(10)->setFocus();
    settle();
    key(Qt::Key_Down);
    ASSERT_TRUE(list().isLoaded());
    EXPECT_EQ(list().listCount(), 10); // the book sizes
    QTest::keyClick(list().Grid1(), Qt::Key_Return);
    EXPECT_FALSE(list().isLoaded());
    EXPECT_FALSE(f().Text1(10)->text().isEmpty());
    EXPECT_TRUE(f().fieldChanged(10) && f().Command2(2)->isEnabled());
    EXPECT_TRUE(boxes().calls().empty());

    f().Text1(1)->setFocus(); // where the user moves on to
    boxes().answer(vb::vbYes);
    type(0, QStringLiteral("未列书店"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    auto& d = vb::form<cgGYSdofrm>();
    ASSERT_TRUE(d.isVisible());
    EXPECT_EQ(QString::number(d.gysMode) + d.Text1(0)->text(), QStringLiteral("2未列书店"));
    QApplication::setActiveWindow(d.window());
    settle();
    testsupport::typeAndLeave(d.Text1(1), QStringLiteral("南京"));
    testsupport::typeAndLeave(d.Text1(2), QStringLiteral("中山路"));
    d.Combo1()->setCurrentIndex(0);
    // 保存增加 closes the form in this mode.
    testsupport::click(d, QStringLiteral("Command1_0"));
    EXPECT_EQ(q(QStringLiteral("SELECT pubplace FROM cggys WHERE publisher='未列书店'")),
              QStringLiteral("南京"));
    EXPECT_FALSE(d.isLoaded());
    QApplication::setActiveWindow(f().window());
    settle();
    EXPECT_EQ(QApplication::focusWidget(), f().Text1(0)); // handed back to the source
    boxes().clear();
    type(0, QStringLiteral("未列书店"));
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(CaiGouForm, DuplicateCheckSearchShowsEveryPlaceAndCopyTakesTheRowByItsStatus) {
    open();
    // An empty box never reaches the database.
    gConnStr = QStringLiteral("PROVIDER=MSDASQL;DSN=orvane_no_such_source;");
    search(QString(), false);
    EXPECT_EQ(shown(), QStringLiteral("请输入查询条件，取消该操作。#16"));
    EXPECT_EQ(testsupport::processEnds(), 0);
    gConnStr = profile();
    seed();

    // A bare number is hyphenated as the box is left.
    d().Show(0);
    d().Option1(1)->setChecked(true);
    d().Text1()->setFocus();
    settle();
    testsupport::typeText(d().Text1(), QStringLiteral(" 7500012345 "));
    d().Command1(0)->setFocus();
    settle();
    EXPECT_EQ(d().Text1()->text(), kIsbn);

    // By ISBN: the holding, the copy source, and the two orders in play.
    search(kIsbn, false);
    EXPECT_EQ(d().searchKind, 1);
    QStringList states = testsupport::gridColumn(d().Grid1(), 1);
    states.sort();
    EXPECT_EQ(states, cells("套录库,已编目,已验收,预定中"));
    EXPECT_EQ(d().Grid1()->TextMatrix(rowOf(QStringLiteral("套录库")), 6) + u'|' +
                  d().Grid1()->TextMatrix(rowOf(QStringLiteral("已编目")), 6),
              QStringLiteral("|4"));
    // By title: contained anywhere.
    search(QStringLiteral("楼梦"), true);
    EXPECT_EQ(d().searchKind, 0);
    EXPECT_TRUE(testsupport::gridColumn(d().Grid1(), 2).contains(QStringLiteral("红楼梦(套录)")));
    EXPECT_EQ(d().Grid1()->Rows(), 5);

    // Copy by status: orders carry an order number and a price; the count and the batch are
    // the user's to give; the source is the publisher even after a copy of an order.
    const char16_t* cases[][2] = {
        // status; title|author|zdcode|isbn|price|edition|count|batch
        {u"已编目", u"红楼梦|曹雪芹||7-5000-1234-9||第1版||"},
        {u"套录库", u"红楼梦(套录)|曹雪芹||7-5000-1234-9||||"},
        {u"预定中", u"红楼梦7|曹雪芹|Z1|7-5000-1234-9|7|||"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(QString::fromUtf16(c[0]).toStdString());
        f().Text1(17)->setText(QStringLiteral("5"));
        search(kIsbn, false);
        ASSERT_GT(rowOf(QString::fromUtf16(c[0])), 0);
        d().Grid1()->setRow(rowOf(QString::fromUtf16(c[0])));
        d().Command1(2)->click();
        EXPECT_FALSE(d().isLoaded());
        EXPECT_EQ(f().addType, caigou::addAdding);
        EXPECT_EQ(texts(f(), {1, 2, 3, 4, 14, 8, 17, 18}), QString::fromUtf16(c[1]));
        EXPECT_EQ(texts(f(), {0, 16}), f().Text1(5)->text() + u'|' + today());
    }
    EXPECT_EQ(texts(f(), {12, 15}), QStringLiteral("|现购")); // the order had no document type

    // The popup's 复制 copies the current row, not the one under the mouse.
    f().addType = caigou::addEmpty;
    search(kIsbn, false);
    Menu::Picker old = Menu::setPicker(Menu::pickId(1));
    vb::FlexGrid* g = d().Grid1();
    const int current = rowOf(QStringLiteral("已编目"));
    g->setRow(current);
    const int other = current == 1 ? 2 : 1;
    QTest::mouseClick(g->viewport(), Qt::RightButton, {},
                      g->cellRect(other, 2).center() - g->viewport()->pos());
    Menu::setPicker(old);
    EXPECT_EQ(g->Row(), current);
    EXPECT_EQ(f().addType, caigou::addAdding);
    EXPECT_EQ(f().Text1(1)->text(), QStringLiteral("红楼梦"));
}

TEST_F(CaiGouForm, DuplicateCheckWaysIntoANewOrder) {
    open();
    // No hit for an ISBN: publisher, place, and the publisher as source; the date of today.
    f().Text1(0)->setText(QStringLiteral("旧来源"));
    f().Text1(9)->setText(QStringLiteral("99"));
    search(kIsbn, false);
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(f().addType, caigou::addAdding);
    EXPECT_EQ(texts(f(), {4, 5, 6, 0, 9, 16}),
              kIsbn + QStringLiteral("|中国大百科全书出版社|北京|中国大百科全书出版社||") +
                  today());
    EXPECT_EQ(QApplication::focusWidget(), f().Text1(0));
    EXPECT_TRUE(f().Command2(2)->isEnabled());

    // No hit for a title (its quote doubled in the search): the source left empty.
    f().Text1(0)->setText(QStringLiteral("旧来源"));
    search(QStringLiteral("O'Brien"), true);
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_EQ(texts(f(), {1, 0, 4}), QStringLiteral("O'Brien||"));
}

// A failing INSERT ends the process after the id was drawn (a gap); an id above 32767
// overflows before the counter moves. The price is typed without leaving the field, so
// never checked.
TEST_F(CaiGouForm, AFatalSaveEndsTheProcessAndSavesNothing) {
    const struct {
        const char* counter; // set before, "" to keep the database's
        const char* price;
        const char16_t* box; // the start of the run-time error box
        int drawn;
    } cases[] = {{"", "12元", u"实时错误 '", 1},
                 {"32768", "12.50", u"实时错误 '6':\r\n\r\n溢出", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.price);
        if (*c.counter)
            exec(QStringLiteral("UPDATE Global SET code='%1' WHERE type='cgkid'").arg(c.counter));
        const int first = counter().toInt();
        const int ends = testsupport::processEnds();
        open();
        f().addType = caigou::addAdding;
        enterOrder(QStringLiteral("坏订单"));
        f().Text1(14)->setText(QString::fromUtf8(c.price));
        QTest::mouseClick(f().Command2(2), Qt::LeftButton);
        EXPECT_EQ(testsupport::processEnds(), ends + 1);
        EXPECT_TRUE(boxes().last().prompt.startsWith(QString::fromUtf16(c.box)))
            << boxes().last().prompt.toStdString();
        EXPECT_EQ(counter().toInt(), first + c.drawn);
        EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk")), QStringLiteral("0"));
        vb::FormRegistry::destroyAll();
    }
}

} // namespace
