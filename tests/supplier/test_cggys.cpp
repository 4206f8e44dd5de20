// The supplier manager and its edit form, driven through their controls on fresh
// databases: add, add-and-next, change, the uniqueness test, the save checks, delete,
// quotes in names, the purchase form's add, and the query builder filling the grid.

#include "data/globals.h"
#include "platform/Menu.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/form.h"
#include "platform/maskedbox.h"
#include "query/Findfrm.h"
#include "supplier/cgGYSdofrm.h"
#include "supplier/cgGYSfrm.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <ostream>

namespace {

using testsupport::boxes;

const QString kAsk = QStringLiteral("是否确定删除所选择的来源资料，是否继续？");

using testsupport::settle;
using testsupport::typeText;

class Suppliers : public testsupport::DbTest {
protected:
    cgGYSfrm& m() { return vb::form<cgGYSfrm>(); }
    cgGYSdofrm& d() { return vb::form<cgGYSdofrm>(); }
    vb::FlexGrid* grid() { return m().Grid1(); }

    void openManager() {
        m().Show(0);
        ASSERT_TRUE(QTest::qWaitForWindowActive(m().window()));
    }
    void db(bool demo) { gConnStr = makeDatabase(demo); }
    void emptySuppliers() {
        testsupport::execSqlite(dbPath(), QStringLiteral("DELETE FROM cggys"));
    }
    QString sql(const QString& q) { return testsupport::querySqlite(dbPath(), q); }
    int count(const QString& where = QString()) {
        return sql(QStringLiteral("SELECT count(*) FROM cggys") + where).toInt();
    }
    QStringList column0() {
        QStringList out;
        for (int r = 1; r < grid()->Rows(); ++r) out << grid()->TextMatrix(r, 0);
        return out;
    }
    void click(vb::Form& f, const QString& name) {
        QTest::mouseClick(f.ctl<QPushButton>(name), Qt::LeftButton);
        settle();
    }
    // The edit form must be active for its fields to get and lose the focus.
    void activateEdit() {
        QApplication::setActiveWindow(d().window());
        settle();
    }
    // Types into a field as a user does, then leaves it with Tab.
    void type(int index, const QString& text) { testsupport::typeAndLeave(d().Text1(index), text); }
    void setType(const QString& t) { d().Combo1()->setCurrentIndex(d().Combo1()->findText(t)); }
    void fillNew(const QString& name) {
        type(0, name);
        type(1, QStringLiteral("北京"));
        type(2, QStringLiteral("朝阳区建国路1号"));
        setType(QStringLiteral("销售商"));
    }
    // Selects rows r1..r2 of the grid as a shift-click does.
    void select(int r1, int r2) {
        grid()->setRow(r1);
        grid()->setRowSel(r2);
    }
    void pressDelete() {
        grid()->setFocus();
        QTest::keyClick(grid(), Qt::Key_Delete);
        settle();
    }
};

TEST_F(Suppliers, ManagerListsTheTableByTypeWithItsColumns) {
    db(true);
    openManager();
    EXPECT_EQ(m().caption(), QStringLiteral("采购来源管理"));
    EXPECT_EQ(grid()->Rows(), count() + 1);
    EXPECT_EQ(count(), 30);
    const char16_t* titles[] = {u"名  称", u"所在城市", u"地  址", u"邮 编", u"联系电话",
                                u"传  真", u"电子邮件", u"网  址", u"类 型"};
    const int widths[] = {2445, 885, 2425, 690, 1200, 1200, 1525, 1525, 735};
    ASSERT_EQ(grid()->Cols(), 9);
    for (int c = 0; c < 9; ++c) {
        EXPECT_EQ(grid()->TextMatrix(0, c), QString::fromUtf16(titles[c]));
        EXPECT_EQ(grid()->ColWidth(c), vb::toTwips(vb::twips(widths[c]))); // whole pixels
    }
    // " Order By pubclass DESC": the dealers (销售商) before the publishers (出版商).
    EXPECT_EQ(grid()->TextMatrix(1, 8), QStringLiteral("销售商"));
    EXPECT_EQ(grid()->TextMatrix(grid()->Rows() - 1, 8), QStringLiteral("出版商"));
    EXPECT_EQ(m().lastOrder, QStringLiteral(" Order By pubclass DESC"));
    EXPECT_EQ(grid()->Row(), 1);
    EXPECT_EQ(grid()->ColSel(), 8);
    EXPECT_EQ(grid()->RowHeight(0), vb::toTwips(vb::twips(400)));
    // Buttons 50 twips above the bottom edge, the grid 100 above the buttons (to a pixel).
    auto* b = m().ctl<QPushButton>(QStringLiteral("Command1_5"));
    EXPECT_NEAR(m().window()->height() - b->geometry().bottom() - 1, vb::twips(50), 1);
    EXPECT_NEAR(b->y() - grid()->geometry().bottom() - 1, vb::twips(100), 1);
    EXPECT_EQ(grid()->width(), m().window()->width());
}

TEST_F(Suppliers, AddSavesTheRowLeavesEmptyFieldsOutAndShowsItInTheGrid) {
    db(false);
    emptySuppliers();
    openManager();
    // The empty table: one blank row; Delete and Change do nothing, without a word.
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_TRUE(grid()->TextMatrix(1, 0).isEmpty());
    pressDelete();
    click(m(), QStringLiteral("Command1_2"));
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_FALSE(d().isLoaded());

    click(m(), QStringLiteral("Command1_0"));
    ASSERT_TRUE(d().isLoaded());
    EXPECT_EQ(d().caption(), QStringLiteral("增加供应商资料"));
    EXPECT_EQ(d().gysMode, 0);
    activateEdit();
    fillNew(QStringLiteral("O'Reilly书店"));
    type(4, QStringLiteral("010-6511"));
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_TRUE(boxes().calls().empty()) << boxes().last().prompt.toStdString();
    // The quote went in doubled and is stored as typed.
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='O''Reilly书店' AND tel='010-6511' AND "
                                   "zipcode IS NULL AND pubclass='销售商'")),
              1);
    // The first record takes the blank row; the form is gone.
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_EQ(grid()->TextMatrix(1, 0), QStringLiteral("O'Reilly书店"));
    EXPECT_EQ(grid()->TextMatrix(1, 4), QStringLiteral("010-6511"));
    EXPECT_EQ(grid()->TextMatrix(1, 8), QStringLiteral("销售商"));
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(d().gysMode, 6);
}

TEST_F(Suppliers, SaveAndAddKeepsTheFormForTheNextRecord) {
    db(true);
    openManager();
    const int rows = grid()->Rows();
    click(m(), QStringLiteral("Command1_0"));
    activateEdit();
    fillNew(QStringLiteral("新开书店"));
    click(d(), QStringLiteral("Command1_0"));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='新开书店'")), 1);
    EXPECT_EQ(grid()->Rows(), rows + 1);
    EXPECT_EQ(grid()->TextMatrix(rows, 0), QStringLiteral("新开书店"));
    ASSERT_TRUE(d().isLoaded());
    for (int i = 0; i < 8; ++i) EXPECT_TRUE(d().Text1(i)->text().isEmpty()) << i;
    EXPECT_EQ(d().Combo1()->currentText(), QStringLiteral("销售商")); // the type stays
    EXPECT_EQ(d().caption(), QStringLiteral("增加供应商资料"));
    EXPECT_EQ(d().gysMode, 0);
    EXPECT_TRUE(d().checkedName.isEmpty());
    EXPECT_EQ(QApplication::focusWidget(), d().Text1(0));
}

TEST_F(Suppliers, TheSaveChecksGoInOrderWithTheFocusOnTheField) {
    db(false);
    openManager();
    click(m(), QStringLiteral("Command1_0"));
    activateEdit();
    struct Step {
        int fill; // field filled before the next try (-1: none, 8: the type)
        const char16_t* box;
        const char* focus;
    };
    const Step steps[] = {
        {-1, u"‘单位名称’输入不能为空，取消该操作。", "Text1_0"},
        {0, u"‘所在城市’输入不能为空，取消该操作。", "Text1_1"},
        {1, u"‘通讯地址’输入不能为空，取消该操作。", "Text1_2"},
        {2, u"‘类型’输入不能为空，取消该操作。", "Combo1"},
    };
    for (const Step& s : steps) {
        if (s.fill >= 0) type(s.fill, QStringLiteral("甲%1").arg(s.fill));
        boxes().clear();
        click(d(), QStringLiteral("Command1_1"));
        ASSERT_EQ(boxes().calls().size(), 1u);
        EXPECT_EQ(boxes().last().prompt, QString::fromUtf16(s.box));
        EXPECT_EQ(boxes().last().flags, 16);
        EXPECT_EQ(boxes().last().title, QStringLiteral("操作提示"));
        ASSERT_TRUE(QApplication::focusWidget());
        EXPECT_EQ(QApplication::focusWidget()->objectName(), QString::fromLatin1(s.focus));
    }
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='甲0'")), 0);
}

TEST_F(Suppliers, ADuplicateNameIsRefusedOnLeavingTheFieldOnce) {
    db(true);
    const QString existing = sql(QStringLiteral("SELECT publisher FROM cggys LIMIT 1"));
    openManager();
    click(m(), QStringLiteral("Command1_0"));
    activateEdit();
    type(0, existing);
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt,
              QStringLiteral("单位名称'") + existing + QStringLiteral("'已经存在，取消该操作。"));
    EXPECT_EQ(boxes().last().flags, 16);
    EXPECT_TRUE(d().Text1(0)->text().isEmpty());
    EXPECT_TRUE(d().checkedName.isEmpty());
    EXPECT_EQ(QApplication::focusWidget(), d().Text1(0));

    // A new name passes and is not asked about again when the field is left once more,
    // even if another workstation added it in the meantime.
    type(0, QStringLiteral("  新名字书社 "));
    EXPECT_EQ(d().Text1(0)->text(), QStringLiteral("新名字书社")); // trimmed
    EXPECT_EQ(d().checkedName, QStringLiteral("新名字书社"));
    testsupport::execSqlite(dbPath(),
                            QStringLiteral("INSERT INTO cggys (publisher) VALUES ('新名字书社')"));
    type(0, QStringLiteral("新名字书社"));
    EXPECT_EQ(boxes().calls().size(), 1u);
}

TEST_F(Suppliers, ChangeSendsOnlyTheChangedColumnsAndReplacesTheRow) {
    db(true);
    openManager();
    // A supplier with a web address, to be emptied.
    int row = 1;
    while (row < grid()->Rows() && grid()->TextMatrix(row, 7).isEmpty()) ++row;
    ASSERT_LT(row, grid()->Rows());
    grid()->setRow(row);
    const QString name = grid()->TextMatrix(row, 0);
    const QString address = grid()->TextMatrix(row, 2);
    // Double click opens the change form on the current row.
    Q_EMIT grid()->DblClick();
    settle();
    ASSERT_TRUE(d().isLoaded());
    EXPECT_EQ(d().caption(), QStringLiteral("修改供应商资料"));
    EXPECT_EQ(d().gysMode, 1);
    EXPECT_EQ(d().oldName, name);
    EXPECT_EQ(d().Text1(2)->text(), address);
    EXPECT_EQ(d().Combo1()->currentText(), grid()->TextMatrix(row, 8));
    for (bool b : d().fieldChanged) EXPECT_FALSE(b);
    // Another workstation changes the address meanwhile: an unchanged field is not sent.
    testsupport::execSqlite(dbPath(), QStringLiteral("UPDATE cggys SET address='别处' WHERE "
                                                     "publisher='%1'")
                                          .arg(name));
    activateEdit();
    type(4, QStringLiteral("010-1234"));
    type(7, QString()); // emptied: an empty text, not NULL
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(sql(QStringLiteral("SELECT tel||'|'||ifnull(web,'NULL')||'|'||address FROM cggys "
                                 "WHERE publisher='%1'")
                      .arg(name)),
              QStringLiteral("010-1234||别处"));
    EXPECT_EQ(grid()->TextMatrix(row, 4), QStringLiteral("010-1234"));
    // The grid keeps the old text of an emptied field until the next load.
    EXPECT_FALSE(grid()->TextMatrix(row, 7).isEmpty());
    EXPECT_EQ(grid()->Row(), row);
    EXPECT_FALSE(d().isLoaded());
}

TEST_F(Suppliers, ChangeWithNothingChangedSendsNothingAndCloses) {
    db(true);
    openManager();
    grid()->setRow(2);
    const QString name = grid()->TextMatrix(2, 0);
    grid()->setFocus();
    QTest::keyClick(grid(), Qt::Key_Return);
    settle();
    ASSERT_TRUE(d().isLoaded());
    testsupport::execSqlite(
        dbPath(), QStringLiteral("UPDATE cggys SET tel='外部' WHERE publisher='%1'").arg(name));
    activateEdit();
    // Leaving fields without changing them raises no flag.
    type(0, name);
    type(1, d().Text1(1)->text());
    // A new type picked from the list raises no flag either, and is not saved.
    const QString otherType = d().Combo1()->currentText() == QStringLiteral("出版商")
                                  ? QStringLiteral("销售商")
                                  : QStringLiteral("出版商");
    setType(otherType);
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(sql(QStringLiteral("SELECT tel FROM cggys WHERE publisher='%1'").arg(name)),
              QStringLiteral("外部"));
    EXPECT_NE(sql(QStringLiteral("SELECT pubclass FROM cggys WHERE publisher='%1'").arg(name)),
              otherType);
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(Suppliers, RenameBackToItsOwnNameRunsNoTestAndRenameCarriesTheKey) {
    db(true);
    openManager();
    grid()->setRow(1);
    const QString name = grid()->TextMatrix(1, 0);
    const QString other = grid()->TextMatrix(2, 0);
    click(m(), QStringLiteral("Command1_2"));
    activateEdit();
    type(0, name + QStringLiteral("二"));
    type(0, name); // its own old name: no test, though the name exists
    EXPECT_TRUE(boxes().calls().empty());
    ASSERT_NE(other, name);
    type(0, other); // somebody else's name is refused
    ASSERT_EQ(boxes().calls().size(), 1u) << other.toStdString() << " / " << name.toStdString();
    EXPECT_TRUE(boxes().last().prompt.contains(other));
    type(0, QStringLiteral("改名书店"));
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='改名书店'")), 1);
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='%1'").arg(name)), 0);
    EXPECT_EQ(grid()->TextMatrix(1, 0), QStringLiteral("改名书店"));
}

TEST_F(Suppliers, ANameLongerThanTheFieldIsChangedUnderItsWholeName) {
    db(false);
    emptySuppliers();
    const QString longName =
        QStringLiteral("北京市海淀区中关村大街某某科技图书音像制品发行有限责任公司总部");
    ASSERT_GT(longName.size(), 30);
    testsupport::execSqlite(dbPath(),
                            QStringLiteral("INSERT INTO cggys (publisher,pubplace,address,"
                                           "pubclass) VALUES ('%1','北京','某路','销售商')")
                                .arg(longName));
    openManager();
    click(m(), QStringLiteral("Command1_2"));
    EXPECT_EQ(d().oldName, longName);
    activateEdit();
    type(1, QStringLiteral("天津"));
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(sql(QStringLiteral("SELECT pubplace FROM cggys")), QStringLiteral("天津"));
}

TEST_F(Suppliers, AfterALongNameTheNextNewRecordHasTheDesignLimitsAgain) {
    db(false);
    emptySuppliers();
    const QString longName =
        QStringLiteral("北京市海淀区中关村大街某某科技图书音像制品发行有限责任公司总部");
    const QString longAddress =
        QStringLiteral("北京市海淀区中关村南大街二十七号某某科技大厦东座十九层一九零八室");
    ASSERT_GT(longAddress.size(), 30);
    testsupport::execSqlite(dbPath(),
                            QStringLiteral("INSERT INTO cggys (publisher,pubplace,address,"
                                           "pubclass) VALUES ('%1','北京','%2','销售商')")
                                .arg(longName, longAddress));
    openManager();
    click(m(), QStringLiteral("Command1_2"));
    activateEdit();
    EXPECT_EQ(d().Text1(0)->text(), longName);
    EXPECT_EQ(d().Text1(2)->text(), longAddress);
    type(1, QStringLiteral("天津"));
    click(d(), QStringLiteral("Command1_0"));
    ASSERT_EQ(d().gysMode, 0);
    const QString typed =
        QStringLiteral("ABCDEFGHIJ新华书店第一门市部读者服务中心图书发行部零售科");
    ASSERT_GT(typed.size(), 30);
    type(0, typed);
    type(2, typed);
    EXPECT_EQ(d().Text1(0)->text(), typed.left(30));
    EXPECT_EQ(d().Text1(2)->text(), typed.left(30));
}

TEST_F(Suppliers, ChangeSaveAndAddTurnsTheFormIntoAnEmptyAddForm) {
    db(true);
    openManager();
    grid()->setRow(1);
    click(m(), QStringLiteral("Command1_2"));
    activateEdit();
    type(5, QStringLiteral("010-9999"));
    click(d(), QStringLiteral("Command1_0"));
    ASSERT_TRUE(d().isLoaded());
    EXPECT_EQ(d().gysMode, 0);
    EXPECT_EQ(d().caption(), QStringLiteral("增加供应商资料"));
    EXPECT_TRUE(d().oldName.isEmpty());
    EXPECT_TRUE(d().Text1(0)->text().isEmpty());
    EXPECT_EQ(grid()->TextMatrix(1, 5), QStringLiteral("010-9999"));
    // The next save adds.
    fillNew(QStringLiteral("第二家书店"));
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='第二家书店'")), 1);
}

TEST_F(Suppliers, QuotesAreNotDoubledInChangeSoTheTrapReports) {
    db(false);
    emptySuppliers();
    testsupport::execSqlite(
        dbPath(), QStringLiteral("INSERT INTO cggys (publisher,pubplace,address,pubclass) "
                                 "VALUES ('O''Neil书店','上海','南京路','销售商'),"
                                 "('普通书店','上海','南京路','销售商')"));
    openManager();
    for (int row = 1; row <= 2; ++row) {
        SCOPED_TRACE(row);
        boxes().clear();
        grid()->setRow(row);
        const bool quoted = grid()->TextMatrix(row, 0).contains(u'\'');
        click(m(), QStringLiteral("Command1_2"));
        activateEdit();
        // The quoted name breaks the Where; for the other row the new value breaks the Set.
        type(1, quoted ? QStringLiteral("杭州") : QStringLiteral("杭'州"));
        click(d(), QStringLiteral("Command1_1"));
        ASSERT_EQ(boxes().calls().size(), 1u);
        EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("错误")));
        EXPECT_TRUE(boxes().last().prompt.endsWith(QStringLiteral("。")));
        EXPECT_EQ(boxes().last().flags, 16);
        EXPECT_EQ(boxes().last().title, QStringLiteral("添加错误"));
        EXPECT_TRUE(d().isLoaded()); // the form stays with its fields
        click(d(), QStringLiteral("Command1_2"));
    }
    EXPECT_EQ(count(QStringLiteral(" WHERE pubplace='上海'")), 2);
}

TEST_F(Suppliers, DeleteOfASelectionAsksOnceAndDeletesEveryRow) {
    db(true);
    openManager();
    const QStringList before = column0();
    select(4, 2); // bottom to top or top to bottom alike
    boxes().answer(vb::vbNo);
    pressDelete();
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, kAsk);
    EXPECT_EQ(boxes().last().flags, vb::vbYesNo + vb::vbCritical);
    EXPECT_EQ(count(), 30);

    select(2, 4);
    boxes().answer(vb::vbYes);
    pressDelete();
    EXPECT_EQ(boxes().calls().size(), 2u);
    EXPECT_EQ(count(), 27);
    QStringList expected = before;
    expected.remove(1, 3);
    EXPECT_EQ(column0(), expected);
    for (int i = 1; i <= 3; ++i)
        EXPECT_EQ(count(QStringLiteral(" WHERE publisher='%1'").arg(before[i])), 0);
}

TEST_F(Suppliers, DeletingTheLastRowLeavesOneBlankRow) {
    db(false);
    emptySuppliers();
    testsupport::execSqlite(dbPath(), QStringLiteral("INSERT INTO cggys (publisher,pubclass) "
                                                     "VALUES ('甲','出版商'),('乙','出版商')"));
    openManager();
    select(1, 2);
    boxes().answer(vb::vbYes);
    pressDelete();
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(grid()->Rows(), 2);
    for (int c = 0; c < 9; ++c) EXPECT_TRUE(grid()->TextMatrix(1, c).isEmpty()) << c;
}

TEST_F(Suppliers, DeleteOfANameWithAQuoteEndsTheProgram) {
    db(false);
    emptySuppliers();
    testsupport::execSqlite(dbPath(), QStringLiteral("INSERT INTO cggys (publisher,pubclass) "
                                                     "VALUES ('O''Neil书店','出版商')"));
    openManager();
    boxes().answer(vb::vbYes);
    pressDelete();
    EXPECT_EQ(testsupport::processEnds(), 1);
    ASSERT_EQ(boxes().calls().size(), 2u);
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("实时错误")));
    EXPECT_EQ(count(), 1);
}

TEST_F(Suppliers, ThePopupRunsTheButtons) {
    db(true);
    openManager();
    const Menu::Picker previous = Menu::setPicker(Menu::pickText(QStringLiteral("修改")));
    grid()->setRow(2);
    QTest::mouseClick(grid()->viewport(), Qt::RightButton, {},
                      grid()->cellRect(2, 1).center() - grid()->viewport()->pos());
    settle();
    Menu::setPicker(Menu::pickText(QStringLiteral("关闭")));
    EXPECT_TRUE(d().isLoaded());
    EXPECT_EQ(d().oldName, grid()->TextMatrix(2, 0));
    QTest::mouseClick(grid()->viewport(), Qt::RightButton, {},
                      grid()->cellRect(2, 1).center() - grid()->viewport()->pos());
    settle();
    Menu::setPicker(previous);
    EXPECT_FALSE(m().isLoaded());
}

TEST_F(Suppliers, TheQueryBuilderLeavesExactlyTheMatchingRows) {
    db(true);
    openManager();
    const int beijing = count(QStringLiteral(" WHERE pubplace='北京'"));
    ASSERT_GT(beijing, 1);
    ASSERT_LT(beijing, 30);
    QTimer::singleShot(0, [] {
        auto& f = vb::form<Findfrm>();
        auto* fields = f.ctl<QListWidget>(QStringLiteral("LFields"));
        fields->setCurrentRow(
            fields->row(fields->findItems(QStringLiteral("所在城市"), Qt::MatchExactly)[0]));
        f.ctl<vb::MaskEdBox>(QStringLiteral("lSql"))->setTextVb(QStringLiteral("北京"));
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command3")), Qt::LeftButton);
        auto* order = f.ctl<QComboBox>(QStringLiteral("cOrderby"));
        order->setCurrentIndex(order->findText(QStringLiteral("单位名称")));
        f.Label3_Click(1);
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command1_1")), Qt::LeftButton);
    });
    click(m(), QStringLiteral("Command1_3"));
    EXPECT_FALSE(vb::form<Findfrm>().isLoaded());
    EXPECT_EQ(m().lastCond, QStringLiteral(" Where pubplace='北京'"));
    EXPECT_EQ(m().lastOrder, QStringLiteral(" Order By publisher Desc"));
    ASSERT_EQ(grid()->Rows(), beijing + 1);
    for (int r = 1; r < grid()->Rows(); ++r)
        EXPECT_EQ(grid()->TextMatrix(r, 1), QStringLiteral("北京"));
    QStringList names = column0();
    QStringList sorted = names;
    std::sort(sorted.begin(), sorted.end(), std::greater<>());
    EXPECT_EQ(names, sorted);
    // A condition that matches nothing leaves the one blank row.
    QString cond = QStringLiteral(" Where pubplace='无此城'"), order;
    m().loadGridData(cond, order);
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_TRUE(grid()->TextMatrix(1, 0).isEmpty());
}

} // namespace
