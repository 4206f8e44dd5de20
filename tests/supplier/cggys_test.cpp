// The supplier manager and its edit form, driven through their controls: add, add-and-next,
// change, the uniqueness test, the save checks, delete, and the query builder filling the grid.
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
#include <QTest>
#include <QTimer>

namespace {

using namespace testsupport;

class Suppliers : public SessionDb {
protected:
    cgGYSfrm& m() { return vb::form<cgGYSfrm>(); }
    cgGYSdofrm& d() { return vb::form<cgGYSdofrm>(); }
    vb::FlexGrid* grid() { return m().Grid1(); }
    void openManager() {
        m().Show(0);
        ASSERT_TRUE(QTest::qWaitForWindowActive(m().window()));
    }
    // The manager on only these suppliers, all dealers in 北京 at one address, then `sql`.
    void openOn(const QStringList& names, const QString& sql = QString()) {
        exec(QStringLiteral("DELETE FROM cggys"));
        for (QString n : names)
            exec(QStringLiteral("INSERT INTO cggys (publisher,pubplace,address,pubclass) VALUES "
                                "('%1','北京','南京路','销售商')")
                     .arg(n.replace(u'\'', QStringLiteral("''"))));
        if (!sql.isEmpty()) exec(sql);
        openManager();
    }
    int count(const QString& where = QString()) {
        return q(QStringLiteral("SELECT count(*) FROM cggys") + where).toInt();
    }
    // The edit form must be active for its fields to get and lose the focus.
    void activateEdit() {
        QApplication::setActiveWindow(d().window());
        settle();
    }
    // 修改 on a row.
    void change(int row) {
        grid()->setRow(row);
        click(m(), QStringLiteral("Command1_2"));
        activateEdit();
    }
    void type(int index, const QString& text) { typeAndLeave(d().Text1(index), text); }
    void setType(const QString& t) { d().Combo1()->setCurrentIndex(d().Combo1()->findText(t)); }
    void pressDelete(int r1, int r2, int answer) {
        grid()->setRow(r1);
        grid()->setRowSel(r2);
        boxes().answer(answer);
        grid()->setFocus();
        QTest::keyClick(grid(), Qt::Key_Delete);
        settle();
    }
    // Cells of a grid row, "a|b|c".
    QString rowText(int row, std::initializer_list<int> cols) {
        QStringList out;
        for (int c : cols) out << grid()->TextMatrix(row, c);
        return out.join(u'|');
    }
};

TEST_F(Suppliers, AddChecksInOrderThenSavesIntoTheBlankRow) {
    openOn({});
    // The empty table: one blank row; Delete and Change do nothing, without a word.
    EXPECT_EQ(gridColumn(grid(), 0), QStringList{QString()});
    pressDelete(1, 1, vb::vbYes);
    click(m(), QStringLiteral("Command1_2"));
    EXPECT_FALSE(d().isLoaded());

    click(m(), QStringLiteral("Command1_0"));
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
        EXPECT_EQ(shown() + u'@' + focusName(), QString::fromUtf16(s.box) + QStringLiteral("#16@") +
                                                    QString::fromLatin1(s.focus));
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
    EXPECT_EQ(rowText(1, {0, 4, 8}), QStringLiteral("O'Reilly书店|010-6511|销售商"));
    EXPECT_FALSE(d().isLoaded());
}

TEST_F(Suppliers, AddAndNextChangeAndTheNameTestedOnceOnLeaving) {
    // " Order By pubclass DESC": the dealer 乙 before the publisher 甲.
    openOn({QStringLiteral("甲书店"), QStringLiteral("乙书店")},
           QStringLiteral(
               "UPDATE cggys SET pubclass='出版商',web='www.jia' WHERE publisher='甲书店'"));
    ASSERT_EQ(gridColumn(grid(), 0), cells("乙书店,甲书店"));

    // 保存增加 appends the row and keeps the form, empty but for the type.
    click(m(), QStringLiteral("Command1_0"));
    activateEdit();
    type(0, QStringLiteral("新开书店"));
    type(1, QStringLiteral("北京"));
    type(2, QStringLiteral("建国路1号"));
    setType(QStringLiteral("销售商"));
    click(d(), QStringLiteral("Command1_0"));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher='新开书店'")), 1);
    EXPECT_EQ(grid()->TextMatrix(3, 0), QStringLiteral("新开书店"));
    ASSERT_TRUE(d().isLoaded());
    EXPECT_EQ(texts(d(), {0, 1, 2, 3, 4, 5, 6, 7}) + d().Combo1()->currentText() + u'@' +
                  focusName(),
              QStringLiteral("|||||||销售商@Text1_0"));
    // A name that exists is refused on leaving the field.
    type(0, QStringLiteral("新开书店"));
    EXPECT_EQ(shown() + u'@' + focusName() + d().Text1(0)->text(),
              QStringLiteral("单位名称'新开书店'已经存在，取消该操作。#16@Text1_0"));
    d().Unload();

    // Change, opened by double click: only the changed columns are sent, so an address
    // changed meanwhile by another workstation stays; an emptied field is an empty text.
    grid()->setRow(2);
    Q_EMIT grid()->DblClick();
    settle();
    EXPECT_EQ(texts(d(), {0, 2, 7}) + u'|' + d().Combo1()->currentText(),
              QStringLiteral("甲书店|南京路|www.jia|出版商"));
    exec(QStringLiteral("UPDATE cggys SET address='别处' WHERE publisher='甲书店'"));
    activateEdit();
    type(4, QStringLiteral("010-1234"));
    type(7, QString());
    boxes().clear();
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(q(QStringLiteral("SELECT tel||'|'||ifnull(web,'NULL')||'|'||address FROM cggys "
                               "WHERE publisher='甲书店'")),
              QStringLiteral("010-1234||别处"));
    EXPECT_EQ(grid()->TextMatrix(2, 4), QStringLiteral("010-1234"));
    EXPECT_FALSE(d().isLoaded());

    // Renamed back to its own name: no test; somebody else's name: refused; a new name
    // carries the row.
    change(2);
    type(0, QStringLiteral("甲书店二"));
    type(0, QStringLiteral("甲书店"));
    EXPECT_TRUE(boxes().calls().empty());
    type(0, QStringLiteral("乙书店"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    type(0, QStringLiteral("改名书店"));
    click(d(), QStringLiteral("Command1_1"));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher IN ('改名书店','甲书店')")), 1);
    EXPECT_EQ(grid()->TextMatrix(2, 0), QStringLiteral("改名书店"));
}

TEST_F(Suppliers, TheQueryBuilderThenDeleteOverASelection) {
    openOn({QStringLiteral("甲"), QStringLiteral("乙"), QStringLiteral("丙"), QStringLiteral("丁"),
            QStringLiteral("戊")},
           QStringLiteral("UPDATE cggys SET pubplace='上海' WHERE publisher='乙'"));

    // 所在城市 = 北京 through the query builder: the grid shows exactly those.
    QTimer::singleShot(0, [] {
        auto& f = vb::form<Findfrm>();
        auto* fields = f.ctl<QListWidget>(QStringLiteral("LFields"));
        fields->setCurrentItem(fields->findItems(QStringLiteral("所在城市"), Qt::MatchExactly)[0]);
        f.ctl<vb::MaskEdBox>(QStringLiteral("lSql"))->setTextVb(QStringLiteral("北京"));
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command3")), Qt::LeftButton);
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command1_1")), Qt::LeftButton);
    });
    click(m(), QStringLiteral("Command1_3"));
    EXPECT_FALSE(vb::form<Findfrm>().isLoaded());
    const QStringList before = gridColumn(grid(), 0);
    QStringList found = before;
    found.sort();
    EXPECT_EQ(found, cells("丁,丙,戊,甲"));

    // Delete asks once for a selection, bottom to top or top to bottom alike.
    pressDelete(3, 2, vb::vbNo);
    EXPECT_EQ(shown(), QStringLiteral("是否确定删除所选择的来源资料，是否继续？#%1")
                           .arg(vb::vbYesNo + vb::vbCritical));
    EXPECT_EQ(count(), 5);
    pressDelete(2, 3, vb::vbYes);
    EXPECT_EQ(boxes().calls().size(), 2u);
    EXPECT_EQ(gridColumn(grid(), 0), (QStringList{before[0], before[3]}));
    EXPECT_EQ(count(QStringLiteral(" WHERE publisher IN ('%1','%2')").arg(before[1], before[2])),
              0);
    // The last rows leave one blank row, as does a condition that matches nothing.
    pressDelete(1, 2, vb::vbYes);
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(grid()->Rows(), 2);
    EXPECT_EQ(rowText(1, {0, 1, 2, 3, 4, 5, 6, 7, 8}), QStringLiteral("||||||||"));
    m().loadGridData(QStringLiteral(" Where pubplace='无此城'"), QString());
    EXPECT_EQ(gridColumn(grid(), 0), QStringList{QString()});
}

} // namespace
