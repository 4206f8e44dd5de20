// The supplier manager and its edit form, driven through their controls: add, add-and-next,
// change, the uniqueness test, the save checks, delete, quotes in names, and the query
// builder filling the grid.
#include "platform/Menu.h"
#include "platform/errors.h"
#include "platform/flexgrid.h"
#include "platform/maskedbox.h"
#include "query/Findfrm.h"
#include "supplier/cgGYSdofrm.h"
#include "supplier/cgGYSfrm.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace {

using testsupport::boxes;
using testsupport::click;
using testsupport::settle;
using testsupport::shown;
using testsupport::texts;

const QString kLongName =
    QStringLiteral("北京市海淀区中关村大街某某科技图书音像制品发行有限责任公司总部");

class Suppliers : public testsupport::SessionDb {
protected:
    explicit Suppliers(bool demo = false) : SessionDb(demo) {}
    cgGYSfrm& m() { return vb::form<cgGYSfrm>(); }
    cgGYSdofrm& d() { return vb::form<cgGYSdofrm>(); }
    vb::FlexGrid* grid() { return m().Grid1(); }
    void openManager() {
        m().Show(0);
        ASSERT_TRUE(QTest::qWaitForWindowActive(m().window()));
    }
    // Only these suppliers, all dealers in 北京 at one address.
    void onlySuppliers(const QStringList& names) {
        exec(QStringLiteral("DELETE FROM cggys"));
        for (QString n : names)
            exec(QStringLiteral("INSERT INTO cggys (publisher,pubplace,address,pubclass) VALUES "
                                "('%1','北京','南京路','销售商')")
                     .arg(n.replace(u'\'', QStringLiteral("''"))));
    }
    int count(const QString& where = QString()) {
        return q(QStringLiteral("SELECT count(*) FROM cggys") + where).toInt();
    }
    // The edit form must be active for its fields to get and lose the focus.
    void activateEdit() {
        QApplication::setActiveWindow(d().window());
        settle();
    }
    void type(int index, const QString& text) { testsupport::typeAndLeave(d().Text1(index), text); }
    void setType(const QString& t) { d().Combo1()->setCurrentIndex(d().Combo1()->findText(t)); }
    void select(int r1, int r2) {
        grid()->setRow(r1);
        grid()->setRowSel(r2);
    }
    void pressDelete(int answer) {
        boxes().answer(answer);
        grid()->setFocus();
        QTest::keyClick(grid(), Qt::Key_Delete);
        settle();
    }
    static QString focused() { return testsupport::focusName(); }
    // Cells of a grid row, "a|b|c".
    QString cells(int row, std::initializer_list<int> cols) {
        QStringList out;
        for (int c : cols) out << grid()->TextMatrix(row, c);
        return out.join(u'|');
    }
};

// The demo's thirty suppliers, dealers and publishers.
class DemoSuppliers : public Suppliers {
protected:
    DemoSuppliers() : Suppliers(true) {}
};

TEST_F(Suppliers, AddChecksInOrderThenSavesIntoTheBlankRow) {
    onlySuppliers({});
    openManager();
    // The empty table: one blank row; Delete and Change do nothing, without a word.
    EXPECT_EQ(testsupport::gridColumn(grid(), 0), QStringList{QString()});
    pressDelete(vb::vbYes);
    click(m(), QStringLiteral("Command1_2"));
    EXPECT_FALSE(d().isLoaded());

    click(m(), QStringLiteral("Command1_0"));
    ASSERT_TRUE(d().isLoaded());
    EXPECT_EQ(d().caption() + QString::number(d().gysMode), QStringLiteral("增加供应商资料0"));
    activateEdit();
    // Each try stops at the first empty field, the focus on it; then that field is filled.
    const struct {
        const char16_t* box;
        const char* focus;
        int field;
        QString fill;
    } steps[] = {
        {u"‘单位名称’输入不能为空，取消该操作。", "Text1_0", 0, QStringLiteral("O'Reilly书店")},
        {u"‘所在城市’输入不能为空，取消该操作。", "Text1_1", 1, QStringLiteral("北京")},
        {u"‘通讯地址’输入不能为空，取消该操作。", "Text1_2", 2, QStringLiteral("建国路1号")},
        {u"‘类型’输入不能为空，取消该操作。", "Combo1", 4, QStringLiteral("010-6511")},
    };
    for (const auto& s : steps) {
        boxes().clear();
        click(d(), QStringLiteral("Command1_1"));
        EXPECT_EQ(shown() + u'@' + focused(), QString::fromUtf16(s.box) + QStringLiteral("#16@") +
                                                  QString::fromLatin1(s.focus));
        EXPECT_EQ(boxes().last().title, QStringLiteral("操作提示"));
        type(s.field, s.fill);
    }
    EXPECT_EQ(count(), 0);
    setType(QStringLiteral("销售商"));
    boxes().clear();
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_TRUE(boxes().calls().empty()) << boxes().last().prompt.toStdString();
    // The quote went in doubled and is stored as typed; an empty field is left out.
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='O''Reilly书店' AND tel='010-6511' AND "
                                   "zipcode IS NULL AND pubclass='销售商'")),
              1);
    // The first record takes the blank row; the form is gone.
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_EQ(cells(1, {0, 4, 8}), QStringLiteral("O'Reilly书店|010-6511|销售商"));
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(d().gysMode, 6);
}

TEST_F(DemoSuppliers, ListSaveAndAddAndTheNameTestedOnceOnLeaving) {
    openManager();
    ASSERT_EQ(count(), 30);
    EXPECT_EQ(grid()->Rows(), 31);
    // " Order By pubclass DESC": the dealers (销售商) before the publishers (出版商).
    EXPECT_EQ(grid()->TextMatrix(1, 8) + grid()->TextMatrix(30, 8), QStringLiteral("销售商出版商"));
    EXPECT_EQ(m().lastOrder, QStringLiteral(" Order By pubclass DESC"));
    EXPECT_EQ(QPoint(grid()->Row(), grid()->ColSel()), QPoint(1, 8));
    EXPECT_EQ(grid()->ColWidth(0), vb::toTwips(vb::twips(2445)));
    // Buttons 50 twips above the bottom edge, the grid 100 above the buttons (to a pixel).
    auto* b = m().ctl<QPushButton>(QStringLiteral("Command1_5"));
    EXPECT_NEAR(m().window()->height() - b->geometry().bottom() - 1, vb::twips(50), 1);
    EXPECT_NEAR(b->y() - grid()->geometry().bottom() - 1, vb::twips(100), 1);
    EXPECT_EQ(grid()->width(), m().window()->width());

    // 保存增加 appends the row and keeps the form, empty but for the type.
    click(m(), QStringLiteral("Command1_0"));
    activateEdit();
    type(0, QStringLiteral("新开书店"));
    type(1, QStringLiteral("北京"));
    type(2, QStringLiteral("建国路1号"));
    setType(QStringLiteral("销售商"));
    click(d(), QStringLiteral("Command1_0"));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='新开书店'")), 1);
    EXPECT_EQ(grid()->Rows(), 32);
    EXPECT_EQ(grid()->TextMatrix(31, 0), QStringLiteral("新开书店"));
    ASSERT_TRUE(d().isLoaded());
    EXPECT_EQ(texts(d(), {0, 1, 2, 3, 4, 5, 6, 7}) + d().Combo1()->currentText() +
                  QString::number(d().gysMode) + d().checkedName + u'@' + focused(),
              QStringLiteral("|||||||销售商0@Text1_0"));

    // A name that exists is refused on leaving the field.
    type(0, QStringLiteral("新开书店"));
    EXPECT_EQ(shown() + u'@' + focused() + d().Text1(0)->text() + d().checkedName,
              QStringLiteral("单位名称'新开书店'已经存在，取消该操作。#16@Text1_0"));
    // A new one passes, trimmed, and is not tested again when left once more, even if
    // another workstation added it meanwhile.
    type(0, QStringLiteral("  新名字书社 "));
    EXPECT_EQ(d().Text1(0)->text() + u'|' + d().checkedName,
              QStringLiteral("新名字书社|新名字书社"));
    exec(QStringLiteral("INSERT INTO cggys (publisher) VALUES ('新名字书社')"));
    type(0, QStringLiteral("新名字书社"));
    EXPECT_EQ(boxes().calls().size(), 1u);
}

TEST_F(DemoSuppliers, ChangeSendsOnlyTheChangedColumnsUnderTheOldName) {
    openManager();
    // A supplier with a web address, to be emptied; double click opens it.
    const int row = static_cast<int>(testsupport::gridColumn(grid(), 7).indexOf(
                        QRegularExpression(QStringLiteral(".+")))) +
                    1;
    ASSERT_GT(row, 0);
    grid()->setRow(row);
    const QString name = grid()->TextMatrix(row, 0);
    Q_EMIT grid()->DblClick();
    settle();
    ASSERT_TRUE(d().isLoaded());
    EXPECT_EQ(d().caption() + QString::number(d().gysMode) + d().oldName,
              QStringLiteral("修改供应商资料1") + name);
    EXPECT_EQ(d().Text1(2)->text() + u'|' + d().Combo1()->currentText(), cells(row, {2, 8}));
    for (bool changed : d().fieldChanged) EXPECT_FALSE(changed);
    // Another workstation changes the address meanwhile: an unchanged field is not sent.
    exec(QStringLiteral("UPDATE cggys SET address='别处' WHERE publisher='%1'").arg(name));
    activateEdit();
    type(4, QStringLiteral("010-1234"));
    type(7, QString()); // emptied: an empty text, not NULL
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(q(QStringLiteral("SELECT tel||'|'||ifnull(web,'NULL')||'|'||address FROM cggys "
                               "WHERE publisher='%1'")
                    .arg(name)),
              QStringLiteral("010-1234||别处"));
    // The grid keeps the old text of an emptied field until the next load.
    EXPECT_EQ(grid()->TextMatrix(row, 4), QStringLiteral("010-1234"));
    EXPECT_FALSE(grid()->TextMatrix(row, 7).isEmpty());
    EXPECT_EQ(grid()->Row(), row);
    EXPECT_FALSE(d().isLoaded());

    // Enter opens row 2; fields left unchanged and a new type picked send nothing.
    grid()->setRow(2);
    const QString second = grid()->TextMatrix(2, 0);
    grid()->setFocus();
    QTest::keyClick(grid(), Qt::Key_Return);
    settle();
    ASSERT_TRUE(d().isLoaded());
    exec(QStringLiteral("UPDATE cggys SET tel='外部' WHERE publisher='%1'").arg(second));
    activateEdit();
    type(0, second);
    type(1, d().Text1(1)->text());
    const QString type0 = d().Combo1()->currentText();
    setType(type0 == QStringLiteral("出版商") ? QStringLiteral("销售商")
                                              : QStringLiteral("出版商"));
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_FALSE(d().isLoaded());
    EXPECT_EQ(q(QStringLiteral("SELECT tel||pubclass FROM cggys WHERE publisher='%1'").arg(second)),
              QStringLiteral("外部") + type0);

    // Renamed back to its own name: no test; somebody else's name: refused; a new name
    // carries the row.
    grid()->setRow(1);
    const QString first = grid()->TextMatrix(1, 0);
    click(m(), QStringLiteral("Command1_2"));
    activateEdit();
    type(0, first + QStringLiteral("二"));
    type(0, first);
    EXPECT_TRUE(boxes().calls().empty());
    type(0, second);
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_TRUE(boxes().last().prompt.contains(second));
    type(0, QStringLiteral("改名书店"));
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='改名书店'")), 1);
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='%1'").arg(first)), 0);
    EXPECT_EQ(grid()->TextMatrix(1, 0), QStringLiteral("改名书店"));
}

TEST_F(Suppliers, ALongNameIsChangedWholeAndSaveAndAddTurnsToAnEmptyAddForm) {
    ASSERT_GT(kLongName.size(), 30);
    onlySuppliers({kLongName});
    exec(QStringLiteral("UPDATE cggys SET address='%1'").arg(kLongName));
    openManager();
    click(m(), QStringLiteral("Command1_2"));
    activateEdit();
    EXPECT_EQ(d().oldName + u'|' + texts(d(), {0, 2}),
              kLongName + u'|' + kLongName + u'|' + kLongName);
    type(1, QStringLiteral("天津"));
    click(d(), QStringLiteral("Command1_0"));
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(q(QStringLiteral("SELECT pubplace FROM cggys")), QStringLiteral("天津"));
    EXPECT_EQ(grid()->TextMatrix(1, 1), QStringLiteral("天津"));
    ASSERT_TRUE(d().isLoaded());
    EXPECT_EQ(d().caption() + QString::number(d().gysMode) + d().oldName + d().Text1(0)->text(),
              QStringLiteral("增加供应商资料0"));
    // The next record has the design's length limits again, and the next save adds.
    const QString typed =
        QStringLiteral("ABCDEFGHIJ新华书店第一门市部读者服务中心图书发行部零售科");
    ASSERT_GT(typed.size(), 30);
    type(0, typed);
    type(2, typed);
    EXPECT_EQ(texts(d(), {0, 2}), typed.left(30) + u'|' + typed.left(30));
    type(1, QStringLiteral("北京"));
    setType(QStringLiteral("出版商"));
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='%1'").arg(typed.left(30))), 1);
}

TEST_F(Suppliers, QuotesAreNotDoubledInChangeOrDelete) {
    onlySuppliers({QStringLiteral("O'Neil书店"), QStringLiteral("普通书店")});
    openManager();
    const int quoted =
        static_cast<int>(testsupport::gridColumn(grid(), 0).indexOf(QStringLiteral("O'Neil书店"))) +
        1;
    for (int row : {1, 2}) {
        SCOPED_TRACE(row);
        boxes().clear();
        grid()->setRow(row);
        click(m(), QStringLiteral("Command1_2"));
        activateEdit();
        // The quoted name breaks the Where; for the other row the new value breaks the Set.
        type(1, row == quoted ? QStringLiteral("杭州") : QStringLiteral("杭'州"));
        click(d(), QStringLiteral("Command1_1"));
        ASSERT_EQ(boxes().calls().size(), 1u);
        EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("错误")));
        EXPECT_TRUE(shown().endsWith(QStringLiteral("。#16")));
        EXPECT_EQ(boxes().last().title, QStringLiteral("添加错误"));
        EXPECT_TRUE(d().isLoaded()); // the form stays with its fields
        click(d(), QStringLiteral("Command1_2"));
    }
    EXPECT_EQ(count(QStringLiteral(" WHERE pubplace='北京'")), 2);
    // Deleting the quoted name ends the program.
    boxes().clear();
    select(quoted, quoted);
    pressDelete(vb::vbYes);
    EXPECT_EQ(testsupport::processEnds(), 1);
    ASSERT_EQ(boxes().calls().size(), 2u);
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("实时错误")));
    EXPECT_EQ(count(), 2);
}

TEST_F(Suppliers, DeleteAsksOnceForASelectionAndTheLastLeavesABlankRow) {
    onlySuppliers({QStringLiteral("甲"), QStringLiteral("乙"), QStringLiteral("丙"),
                   QStringLiteral("丁"), QStringLiteral("戊")});
    openManager();
    const QStringList before = testsupport::gridColumn(grid(), 0);
    select(4, 2); // bottom to top or top to bottom alike
    pressDelete(vb::vbNo);
    EXPECT_EQ(shown(), QStringLiteral("是否确定删除所选择的来源资料，是否继续？#%1")
                           .arg(vb::vbYesNo + vb::vbCritical));
    EXPECT_EQ(count(), 5);
    select(2, 4);
    pressDelete(vb::vbYes);
    EXPECT_EQ(boxes().calls().size(), 2u);
    EXPECT_EQ(testsupport::gridColumn(grid(), 0), (QStringList{before[0], before[4]}));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher IN ('%1')").arg(before.mid(1, 3).join("','"))),
              0);
    select(1, 2);
    pressDelete(vb::vbYes);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_EQ(cells(1, {0, 1, 2, 3, 4, 5, 6, 7, 8}), QStringLiteral("||||||||"));
}

TEST_F(Suppliers, ThePopupAndTheQueryBuilder) {
    onlySuppliers({QStringLiteral("甲书店"), QStringLiteral("乙书店"), QStringLiteral("丙书店")});
    exec(QStringLiteral("UPDATE cggys SET pubplace='上海' WHERE publisher='乙书店'"));
    openManager();
    const Menu::Picker previous = Menu::setPicker(Menu::pickText(QStringLiteral("修改")));
    grid()->setRow(2);
    const QPoint cell = grid()->cellRect(2, 1).center() - grid()->viewport()->pos();
    QTest::mouseClick(grid()->viewport(), Qt::RightButton, {}, cell);
    settle();
    EXPECT_TRUE(d().isLoaded());
    EXPECT_EQ(d().oldName, grid()->TextMatrix(2, 0));
    d().Unload();

    // 所在城市 = 北京, by 单位名称 descending.
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
    EXPECT_EQ(m().lastCond + m().lastOrder,
              QStringLiteral(" Where pubplace='北京' Order By publisher Desc"));
    QStringList expected{QStringLiteral("甲书店"), QStringLiteral("丙书店")};
    std::sort(expected.begin(), expected.end(), std::greater<>());
    EXPECT_EQ(testsupport::gridColumn(grid(), 0), expected);
    // A condition that matches nothing leaves the one blank row.
    m().loadGridData(QStringLiteral(" Where pubplace='无此城'"), QString());
    EXPECT_EQ(testsupport::gridColumn(grid(), 0), QStringList{QString()});

    Menu::setPicker(Menu::pickText(QStringLiteral("关闭")));
    QTest::mouseClick(grid()->viewport(), Qt::RightButton, {}, cell);
    settle();
    Menu::setPicker(previous);
    EXPECT_FALSE(m().isLoaded());
}

} // namespace
