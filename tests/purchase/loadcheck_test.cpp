// The duplicate check: the union over holdings, orders and the copy-cataloguing source, Copy
// by the row's status text, the popup, the grid's widths, and the ways into a new order.
#include "data/publicHanshu.h"
#include "platform/Menu.h"
#include "platform/flexgrid.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "tests/shell/modalscript.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

namespace {

using testsupport::boxes;
using testsupport::cells;
using testsupport::settle;
using testsupport::shown;
using testsupport::texts;

const QString kIsbn = QStringLiteral("7-5000-1234-9");

class LoadCheck : public testsupport::SessionDb {
protected:
    void SetUp() override {
        SessionDb::SetUp();
        cg().Show(0);
        ASSERT_TRUE(QTest::qWaitForWindowActive(cg().window()));
    }
    CaiGoufrm& cg() { return vb::form<CaiGoufrm>(); }
    loadCheckDatafrm& d() { return vb::form<loadCheckDatafrm>(); }
    void search(const QString& text, bool byTitle) {
        d().Option1(byTitle ? 0 : 1)->setChecked(true);
        d().Text1()->setText(text);
        d().Command1_Click(0);
        settle();
    }
    // One title in all three places, and as orders 7, 8, 9 in states 0, 1, 2.
    void seed() {
        exec(QStringLiteral("INSERT INTO ZSK (ZSKID,bookname,author,isbn,publisher,pubplace,"
                            "pubdate,edition,pages,measure,classcode,docclass,bookcount) VALUES "
                            "(5,'红楼梦','曹雪芹','%1','人民文学出版社','北京','1982','第1版',"
                            "1606,'32开','I242.4','普通图书',4)")
                 .arg(kIsbn));
        exec(QStringLiteral("INSERT INTO taolutable (ZSKID,bookname,author,isbn,publisher,"
                            "pubplace,pubdate,edition,pages,measure,classcode,docclass) VALUES "
                            "(5,'红楼梦(套录)','曹雪芹','%1','作家出版社','北京','2006',NULL,800,"
                            "'16开','I242.4','普通图书')")
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

TEST_F(LoadCheck, SearchShowsEveryPlaceAndCopyTakesTheRowByItsStatus) {
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
    // The headings are the statement's on every database, the bare ISBN column too.
    QStringList headings;
    for (int c = 0; c < d().Grid1()->Cols(); ++c) headings << d().Grid1()->TextMatrix(0, c);
    EXPECT_EQ(headings, cells("IDs,状态,书   名,出 版 者,ISBN,版本、版次,册 数"));
    EXPECT_EQ(d().Grid1()->TextMatrix(rowOf(QStringLiteral("套录库")), 6) + u'|' +
                  d().Grid1()->TextMatrix(rowOf(QStringLiteral("已编目")), 6),
              QStringLiteral("|4"));
    EXPECT_TRUE(d().Command1(1)->isEnabled() && d().Command1(2)->isEnabled());
    EXPECT_EQ(QPoint(d().Grid1()->Row(), d().Grid1()->ColSel()), QPoint(1, 6));
    // By title: contained anywhere.
    search(QStringLiteral("楼梦"), true);
    EXPECT_EQ(d().searchKind, 0);
    EXPECT_TRUE(testsupport::gridColumn(d().Grid1(), 2).contains(QStringLiteral("红楼梦(套录)")));
    EXPECT_EQ(d().Grid1()->Rows(), 5);

    // The last column takes what the others leave, less 80, or 360 once rows are hidden.
    d().Show(0);
    settle();
    vb::FlexGrid* g = d().Grid1();
    EXPECT_EQ(g->ColWidth(0), 0);
    auto rest = [g] {
        int used = 0;
        for (int c = 0; c < 6; ++c) used += g->ColWidth(c);
        return vb::toTwips(g->width()) - used - g->ColWidth(6);
    };
    EXPECT_NEAR(rest(), 80, 60); // seven columns, each to a whole pixel
    d().window()->resize(d().window()->width(), vb::twips(1500));
    settle();
    EXPECT_NEAR(rest(), 360, 60);

    // Copy by status: orders carry an order number and a price; the count and the batch are
    // the user's to give; the source is the publisher even after a copy of an order.
    const char16_t* cases[][2] = {
        // status; title|author|zdcode|isbn|price|edition|count|batch
        {u"已编目", u"红楼梦|曹雪芹||7-5000-1234-9||第1版||"},
        {u"套录库", u"红楼梦(套录)|曹雪芹||7-5000-1234-9||||"},
        {u"预定中", u"红楼梦7|曹雪芹|Z1|7-5000-1234-9|7|||"},
        {u"已验收", u"红楼梦8|曹雪芹|Z1|7-5000-1234-9|8|||"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(QString::fromUtf16(c[0]).toStdString());
        cg().Text1(17)->setText(QStringLiteral("5"));
        search(kIsbn, false);
        ASSERT_GT(rowOf(QString::fromUtf16(c[0])), 0);
        d().Grid1()->setRow(rowOf(QString::fromUtf16(c[0])));
        d().Command1(2)->click();
        EXPECT_FALSE(d().isLoaded());
        EXPECT_EQ(cg().addType, caigou::addAdding);
        EXPECT_EQ(texts(cg(), {1, 2, 3, 4, 14, 8, 17, 18}), QString::fromUtf16(c[1]));
        EXPECT_EQ(texts(cg(), {0, 16}), cg().Text1(5)->text() + u'|' + today());
    }
    EXPECT_EQ(texts(cg(), {12, 15}), QStringLiteral("|现购")); // the order had no document type

    // The popup: 3 cancels; 1 copies the current row, not the one under the mouse.
    Menu::Picker old = Menu::setPicker(Menu::pickId(3));
    cg().addType = caigou::addEmpty;
    search(kIsbn, false);
    QTest::mouseClick(d().Grid1()->viewport(), Qt::RightButton, {}, QPoint(20, 10));
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(cg().addType, caigou::addEmpty);
    search(kIsbn, false);
    Menu::setPicker(Menu::pickId(1));
    g = d().Grid1();
    const int current = rowOf(QStringLiteral("已编目"));
    g->setRow(current);
    const int other = current == 1 ? 2 : 1;
    QTest::mouseClick(g->viewport(), Qt::RightButton, {},
                      g->cellRect(other, 2).center() - g->viewport()->pos());
    Menu::setPicker(old);
    EXPECT_EQ(g->Row(), current);
    EXPECT_EQ(cg().addType, caigou::addAdding);
    EXPECT_EQ(cg().Text1(1)->text(), QStringLiteral("红楼梦"));

    // A row gone since the search: the box, and the check stays.
    search(kIsbn, false);
    d().Grid1()->setRow(rowOf(QStringLiteral("预定中")));
    exec(QStringLiteral("DELETE FROM cgk WHERE cgkid=7"));
    cg().addType = caigou::addEmpty;
    boxes().clear();
    d().Command1(2)->click();
    EXPECT_EQ(shown(), QStringLiteral("数据操作过程中错误，取消该操作。#16"));
    EXPECT_TRUE(d().isLoaded());
    EXPECT_EQ(cg().addType, caigou::addEmpty);
}

TEST_F(LoadCheck, WaysIntoANewOrder) {
    seed();
    // 增加 opens the check modally, by ISBN, and cancelled, the entry form is left as it was.
    ModalScript script;
    script.on<loadCheckDatafrm>([](loadCheckDatafrm& f) {
        EXPECT_TRUE(f.Option1(1)->isChecked());
        EXPECT_EQ(f.caption(), QStringLiteral("检索结果"));
        f.Text1()->setText(kIsbn);
        f.Command1(0)->click();
        EXPECT_EQ(f.Grid1()->Rows(), 5);
        f.Command1(3)->click();
    });
    cg().Command2(0)->click();
    EXPECT_TRUE(script.done());
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(cg().addType, caigou::addEmpty);
    QApplication::setActiveWindow(cg().window());
    settle();

    exec(QStringLiteral("DELETE FROM ZSK; DELETE FROM taolutable; DELETE FROM cgk"));
    // No hit for an ISBN: publisher, place, and the publisher as source; the date of today.
    cg().Text1(0)->setText(QStringLiteral("旧来源"));
    cg().Text1(9)->setText(QStringLiteral("99"));
    search(kIsbn, false);
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(cg().addType, caigou::addAdding);
    EXPECT_EQ(texts(cg(), {4, 5, 6, 0, 9, 16}),
              kIsbn + QStringLiteral("|中国大百科全书出版社|北京|中国大百科全书出版社||") +
                  today());
    EXPECT_EQ(QApplication::focusWidget(), cg().Text1(0));
    EXPECT_TRUE(cg().Command2(2)->isEnabled());

    // No hit for a title (its quote doubled in the search): the source left empty.
    cg().Text1(0)->setText(QStringLiteral("旧来源"));
    search(QStringLiteral("O'Brien"), true);
    EXPECT_EQ(testsupport::processEnds(), 0);
    EXPECT_EQ(texts(cg(), {1, 0, 4}), QStringLiteral("O'Brien||"));

    // 新增 after hits keeps the source, and looks up no publisher.
    seed();
    cg().Text1(0)->setText(QStringLiteral("旧来源"));
    cg().Text1(5)->clear();
    search(kIsbn, false);
    d().Command1(1)->click();
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(texts(cg(), {0, 4, 5, 16}), QStringLiteral("旧来源|%1||%2").arg(kIsbn, today()));
}

} // namespace
