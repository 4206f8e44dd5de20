// The duplicate check: the union over holdings, orders and the copy-cataloguing source,
// the empty path into a new order, New, Copy by status text, the popup, the grid's widths.
#include "data/publicHanshu.h"
#include "platform/Menu.h"
#include "platform/flexgrid.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"
#include "tests/purchase/purchasetest.h"
#include "tests/shell/modalscript.h"

#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <cmath>
#include <set>

namespace {

using testsupport::boxes;

const QString kIsbn = QStringLiteral("7-5000-1234-9");

class LoadCheck : public PurchaseDb {
protected:
    void SetUp() override {
        PurchaseDb::SetUp();
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
    // One title in all three places, and as orders in each state.
    void seed() {
        exec(QStringLiteral(
                 "INSERT INTO ZSK "
                 "(ZSKID,bookname,author,isbn,publisher,pubplace,pubdate,edition,pages,"
                 "measure,classcode,docclass,bookcount) VALUES (5,'红楼梦','曹雪芹','%1',"
                 "'人民文学出版社','北京','1982','第1版',1606,'32开','I242.4','普通图书',4)")
                 .arg(kIsbn));
        exec(QStringLiteral("INSERT INTO taolutable "
                            "(ZSKID,bookname,author,isbn,publisher,pubplace,pubdate,edition,"
                            "pages,measure,classcode,docclass) VALUES "
                            "(5,'红楼梦(套录)','曹雪芹','%1','作家出版社',"
                            "'北京','2006',NULL,800,'16开','I242.4','普通图书')")
                 .arg(kIsbn));
        for (int status : {0, 1, 2})
            exec(QStringLiteral(
                     "INSERT INTO cgk "
                     "(cgkid,bookfrom,bookname,author,zdcode,isbn,publisher,pubplace,"
                     "price,cgff,yddate,bookcount,status,batch) VALUES (%1,'新华书店','红楼梦%1',"
                     "'曹雪芹','Z1','%2','人民文学出版社','北京',%1,'现购','2003-01-01',2,%3,'B9')")
                     .arg(status + 7)
                     .arg(kIsbn)
                     .arg(status));
    }
    std::set<QString> column(int c) {
        std::set<QString> s;
        for (int r = 1; r < d().Grid1()->Rows(); ++r) s.insert(d().Grid1()->TextMatrix(r, c));
        return s;
    }
    int rowOf(const QString& status) {
        for (int r = 1; r < d().Grid1()->Rows(); ++r)
            if (d().Grid1()->TextMatrix(r, 1) == status) return r;
        return -1;
    }
    QString today() { return serverDate().date().toString(QStringLiteral("yyyy-MM-dd")); }
};

TEST_F(LoadCheck, EmptyBoxNeverReachesTheDatabase) {
    gConnStr = QStringLiteral("PROVIDER=MSDASQL;DSN=orvane_no_such_source;");
    search(QString(), false);
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("请输入查询条件，取消该操作。"));
    EXPECT_EQ(boxes().last().flags, 16);
    EXPECT_TRUE(d().isLoaded());
    EXPECT_EQ(testsupport::processEnds(), 0);
}

TEST_F(LoadCheck, IsbnSearchFindsAllThreeSourcesWithTheirStates) {
    seed();
    search(kIsbn, false);
    EXPECT_EQ(d().searchKind, 1);
    EXPECT_EQ(d().Grid1()->Rows(), 5); // heading + holding, copy source, two orders in play
    EXPECT_EQ(column(1), (std::set<QString>{QStringLiteral("已编目"), QStringLiteral("套录库"),
                                            QStringLiteral("预定中"), QStringLiteral("已验收")}));
    // The headings are the statement's on every database, the bare ISBN column too.
    QStringList headings;
    for (int c = 0; c < d().Grid1()->Cols(); ++c) headings << d().Grid1()->TextMatrix(0, c);
    EXPECT_EQ(headings,
              (QStringList{QStringLiteral("IDs"), QStringLiteral("状态"), QStringLiteral("书   名"),
                           QStringLiteral("出 版 者"), QStringLiteral("ISBN"),
                           QStringLiteral("版本、版次"), QStringLiteral("册 数")}));
    EXPECT_EQ(d().Grid1()->TextMatrix(rowOf(QStringLiteral("套录库")), 6), QString());
    EXPECT_EQ(d().Grid1()->TextMatrix(rowOf(QStringLiteral("已编目")), 6), QStringLiteral("4"));
    EXPECT_TRUE(d().Command1(1)->isEnabled());
    EXPECT_TRUE(d().Command1(2)->isEnabled());
    EXPECT_EQ(d().Grid1()->ColWidth(0), 0);
    EXPECT_EQ(d().Grid1()->Row(), 1);
    EXPECT_EQ(d().Grid1()->ColSel(), 6);
}

TEST_F(LoadCheck, BareNumberIsHyphenatedOnLeavingAndTitleSearchContains) {
    seed();
    d().Option1(1)->setChecked(true);
    d().Show(0);
    d().Text1()->setFocus();
    settle();
    typeText(d().Text1(), QStringLiteral(" 7500012345 "));
    d().Command1(0)->setFocus();
    settle();
    EXPECT_EQ(d().Text1()->text(), kIsbn);
    d().Unload();
    search(QStringLiteral("楼梦"), true);
    EXPECT_EQ(d().searchKind, 0);
    EXPECT_EQ(d().Grid1()->Rows(), 5);
    EXPECT_TRUE(column(2).count(QStringLiteral("红楼梦(套录)")));
}

TEST_F(LoadCheck, NoHitForAnIsbnStartsAnOrderWithPublisherPlaceSourceAndDate) {
    cg().addType = caigou::addEmpty;
    cg().Text1(0)->setText(QStringLiteral("旧来源"));
    cg().Text1(9)->setText(QStringLiteral("99"));
    search(kIsbn, false);
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(cg().addType, caigou::addAdding);
    EXPECT_EQ(cg().Text1(4)->text(), kIsbn);
    EXPECT_EQ(cg().Text1(5)->text(), QStringLiteral("中国大百科全书出版社"));
    EXPECT_EQ(cg().Text1(6)->text(), QStringLiteral("北京"));
    EXPECT_EQ(cg().Text1(0)->text(), QStringLiteral("中国大百科全书出版社"));
    EXPECT_EQ(cg().Text1(9)->text(), QString());
    EXPECT_EQ(cg().Text1(16)->text(), today());
    EXPECT_EQ(QApplication::focusWidget(), cg().Text1(0));
    EXPECT_TRUE(cg().Command2(2)->isEnabled());
}

TEST_F(LoadCheck, NoHitForATitleLeavesTheSourceEmpty) {
    cg().Text1(0)->setText(QStringLiteral("旧来源"));
    search(QStringLiteral("O'Brien"), true);
    EXPECT_EQ(testsupport::processEnds(), 0); // the quote was doubled for the search
    EXPECT_EQ(cg().addType, caigou::addAdding);
    EXPECT_EQ(cg().Text1(1)->text(), QStringLiteral("O'Brien"));
    EXPECT_EQ(cg().Text1(0)->text(), QString());
    EXPECT_EQ(cg().Text1(4)->text(), QString());
}

TEST_F(LoadCheck, NewAfterHitsKeepsThePreviousSource) {
    seed();
    cg().Text1(0)->setText(QStringLiteral("旧来源"));
    search(kIsbn, false);
    d().Command1(1)->click();
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(cg().addType, caigou::addAdding);
    EXPECT_EQ(cg().Text1(0)->text(), QStringLiteral("旧来源"));
    EXPECT_EQ(cg().Text1(4)->text(), kIsbn);
    EXPECT_EQ(cg().Text1(5)->text(), QString()); // no publisher look-up here
    EXPECT_EQ(cg().Text1(16)->text(), today());
}

TEST_F(LoadCheck, CopyTakesTheFoundRecordByItsStatusText) {
    seed();
    struct Case {
        const char16_t* status;
        const char16_t* title;
        const char16_t* zdcode; // only orders carry one
        const char16_t* price;  // and a price
        const char16_t* edition;
    } cases[] = {
        {u"已编目", u"红楼梦", u"", u"", u"第1版"},
        {u"套录库", u"红楼梦(套录)", u"", u"", u""},
        {u"预定中", u"红楼梦7", u"Z1", u"7", u""},
        {u"已验收", u"红楼梦8", u"Z1", u"8", u""},
    };
    for (const Case& c : cases) {
        cg().Text1(17)->setText(QStringLiteral("5"));
        search(kIsbn, false);
        const int row = rowOf(QString::fromUtf16(c.status));
        ASSERT_GT(row, 0);
        d().Grid1()->setRow(row);
        d().Command1(2)->click();
        EXPECT_FALSE(d().isLoaded());
        EXPECT_EQ(cg().addType, caigou::addAdding);
        EXPECT_EQ(cg().Text1(1)->text(), QString::fromUtf16(c.title));
        EXPECT_EQ(cg().Text1(2)->text(), QStringLiteral("曹雪芹"));
        EXPECT_EQ(cg().Text1(3)->text(), QString::fromUtf16(c.zdcode));
        EXPECT_EQ(cg().Text1(4)->text(), kIsbn);
        EXPECT_EQ(cg().Text1(8)->text(), QString::fromUtf16(c.edition));
        EXPECT_EQ(cg().Text1(14)->text(), QString::fromUtf16(c.price));
        EXPECT_EQ(cg().Text1(17)->text(), QString()); // copies are for the user to give
        EXPECT_EQ(cg().Text1(18)->text(), QString());
        // The source is always the publisher after a copy, even from an order.
        EXPECT_EQ(cg().Text1(0)->text(), cg().Text1(5)->text());
        EXPECT_EQ(cg().Text1(16)->text(), today());
    }
    EXPECT_EQ(cg().Text1(12)->text(), QString()); // the order had no document type
    EXPECT_EQ(cg().Text1(15)->text(), QStringLiteral("现购"));
}

TEST_F(LoadCheck, CopyOfAVanishedRowSaysSoAndStays) {
    seed();
    search(kIsbn, false);
    d().Grid1()->setRow(rowOf(QStringLiteral("预定中")));
    exec(QStringLiteral("DELETE FROM cgk WHERE cgkid=7"));
    cg().addType = caigou::addEmpty;
    d().Command1(2)->click();
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("数据操作过程中错误，取消该操作。"));
    EXPECT_EQ(boxes().last().flags, 16);
    EXPECT_TRUE(d().isLoaded());
    EXPECT_EQ(cg().addType, caigou::addEmpty);
}

TEST_F(LoadCheck, PopupCopiesOrCancels) {
    seed();
    search(kIsbn, false);
    Menu::Picker old = Menu::setPicker(Menu::pickId(3));
    QTest::mouseClick(d().Grid1()->viewport(), Qt::RightButton, {}, QPoint(20, 10));
    EXPECT_FALSE(d().isLoaded());
    EXPECT_NE(cg().addType, caigou::addAdding);
    search(kIsbn, false);
    Menu::setPicker(Menu::pickId(1));
    // The right button leaves the current row where it was: the popup acts on that row,
    // not on the one under the mouse.
    vb::FlexGrid* g = d().Grid1();
    const int current = rowOf(QStringLiteral("已编目"));
    g->setRow(current);
    const int other = current == 1 ? 2 : 1;
    ASSERT_LT(other, g->Rows());
    const QPoint at = g->cellRect(other, 2).center() - g->viewport()->pos();
    QTest::mouseClick(g->viewport(), Qt::RightButton, {}, at);
    Menu::setPicker(old);
    EXPECT_EQ(g->Row(), current);
    EXPECT_EQ(cg().addType, caigou::addAdding);
    EXPECT_EQ(cg().Text1(1)->text(), QStringLiteral("红楼梦"));
}

TEST_F(LoadCheck, GridFixSpreadsTheWidth) {
    seed();
    search(kIsbn, false);
    d().Show(0);
    settle();
    vb::FlexGrid* g = d().Grid1();
    // The last column takes what the others leave, less room for a scroll bar if needed.
    auto expectLast = [&](int spare) {
        const double w = vb::toTwips(g->width());
        int sum = 0;
        for (int part : {1260, 3075, 3120, 1740, 1380})
            sum += static_cast<int>(std::lround(w * part / 11940));
        EXPECT_NEAR(g->ColWidth(6), w - sum - spare, 15);
        EXPECT_NEAR(g->ColWidth(2), w * 3075 / 11940, 15);
    };
    expectLast(80); // four rows fit
    d().window()->resize(d().window()->width(), vb::twips(1500));
    settle();
    expectLast(360); // now they do not
}

TEST_F(LoadCheck, AddOpensItModallyAndCancelLeavesTheEntryFormAsItWas) {
    seed();
    ModalScript script;
    script.on<loadCheckDatafrm>([](loadCheckDatafrm& f) {
        EXPECT_TRUE(f.Option1(1)->isChecked());
        EXPECT_EQ(f.caption(), QStringLiteral("检索结果"));
        f.Text1()->setText(QStringLiteral("7-5000-1234-9"));
        f.Command1(0)->click();
        EXPECT_EQ(f.Grid1()->Rows(), 5);
        f.Command1(3)->click();
    });
    cg().Command2(0)->click();
    EXPECT_TRUE(script.done());
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(cg().addType, caigou::addEmpty);
}

} // namespace
