// Findfrm driven through its controls on a fresh database: the dictionary per mode, the
// operator lists, adding conditions, the order labels, the texts that refuse input, Clear,
// and OK handing the clauses to a receiver found by its name.

#include "data/globals.h"
#include "platform/events.h"
#include "platform/form.h"
#include "platform/maskedbox.h"
#include "query/Findfrm.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QClipboard>
#include <QComboBox>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <memory>

namespace {

// Stands in for the purchase form: takes the query and remembers it.
class CaiGoufrm : public vb::Form, public QueryReceiver {
public:
    CaiGoufrm() : Form(QStringLiteral("CaiGoufrm")) {}
    void loadGridData(const QString& iiWhere, const QString& iiOrderby) override {
        ++calls;
        where = iiWhere;
        order = iiOrderby;
    }
    int calls = 0;
    QString where, order;

protected:
    void build(QWidget*) override {}
};

// A form that is reached by name but lacks the receiver's members.
class CaiGoufindfrm : public vb::Form {
public:
    CaiGoufindfrm() : Form(QStringLiteral("CaiGoufindfrm")) {}

protected:
    void build(QWidget*) override {}
};

template <class W> QStringList items(W* w) {
    QStringList out;
    for (int i = 0; i < w->count(); ++i) {
        if constexpr (std::is_same_v<W, QComboBox>)
            out << w->itemText(i);
        else
            out << w->item(i)->text();
    }
    return out;
}

class FindForm : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        gConnStr = makeDatabase();
    }

    Findfrm& open(const QString& doType) {
        auto& f = vb::form<Findfrm>();
        f.doType = doType;
        f.Load();
        f.Show(0);
        return f;
    }
    Findfrm& f() { return vb::form<Findfrm>(); }
    template <class W> W* c(const char* name) { return f().ctl<W>(QString::fromLatin1(name)); }
    QListWidget* LFields() { return c<QListWidget>("LFields"); }
    QComboBox* cSql() { return c<QComboBox>("cSql"); }
    QComboBox* cFuhao() { return c<QComboBox>("cFuhao"); }
    QComboBox* cOrderby() { return c<QComboBox>("cOrderby"); }
    vb::MaskEdBox* lSql() { return c<vb::MaskEdBox>("lSql"); }
    QTextEdit* signSql() { return c<QTextEdit>("signSql"); }
    QTextEdit* lOrderby() { return c<QTextEdit>("lOrderby"); }
    void click(const char* button) { QTest::mouseClick(c<QPushButton>(button), Qt::LeftButton); }
    void clickLabel(int index) {
        QTest::mouseClick(f().ctl<QLabel>(QStringLiteral("Label3"), index), Qt::LeftButton);
    }

    // The operator's way: click the field in the list, pick the operator, type the value.
    void pickField(const QString& name) {
        const auto found = LFields()->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name.toStdString();
        LFields()->scrollToItem(found[0]);
        QTest::mouseClick(LFields()->viewport(), Qt::LeftButton, {},
                          LFields()->visualItemRect(found[0]).center());
    }
    void pickFuhao(const QString& fuhao) { cFuhao()->setCurrentIndex(cFuhao()->findText(fuhao)); }
    void type(const QString& value) {
        lSql()->setFocus();
        lSql()->setTextVb(QString());
        lSql()->home(false);
        testsupport::typeText(lSql(), value);
    }
    void addCondition(const QString& field, const QString& fuhao, const QString& value) {
        pickField(field);
        pickFuhao(fuhao);
        type(value);
        QTest::keyClick(lSql(), Qt::Key_Return);
    }
    void order(const QString& name, int label) {
        cOrderby()->setCurrentIndex(cOrderby()->findText(name));
        clickLabel(label);
    }
};

TEST_F(FindForm, EachModeLoadsItsDictionary) {
    const std::tuple<const char*, int, const char16_t*> modes[] = {
        {"caigou", 21, u"书名"},  {"print", 21, u"书名"},      {"cgkys", 29, u"书名"},
        {"totalmx", 29, u"书名"}, {"totaltotal", 29, u"书名"}, {"cggys", 9, u"单位名称"},
        {"nosuch", 0, u""}};
    for (const auto& [doType, fields, first] : modes) {
        SCOPED_TRACE(doType);
        open(QString::fromLatin1(doType));
        EXPECT_EQ(LFields()->count(), fields);
        EXPECT_EQ(items(cSql()), items(LFields()));
        EXPECT_EQ(items(cOrderby()), items(LFields()));
        // No rows: the upper bound 45 all the same.
        EXPECT_EQ(f().fieldDict.size(), fields ? static_cast<size_t>(fields) + 1 : 46u);
        // The first field is taken at once; nothing is chosen for the order yet.
        EXPECT_EQ(cSql()->currentText(), QString::fromUtf16(first));
        EXPECT_EQ(cOrderby()->currentIndex(), -1);
        EXPECT_EQ(f().findKind, fields ? 0 : -1);
        f().Unload();
    }
}

// Operators, conditions by Enter and by the button, the date mask, what is not added, and
// Clear, as one librarian's session.
TEST_F(FindForm, ConditionsFollowTheKindOfTheField) {
    open(QStringLiteral("caigou"));
    EXPECT_EQ(items(cFuhao()), (QStringList{QStringLiteral("等于"), QStringLiteral("不等于"),
                                            QStringLiteral("包含")}));
    addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("中国"));
    EXPECT_EQ(f().q.groupSql, QStringLiteral("bookname Like '%中国%'"));
    EXPECT_TRUE(lSql()->Text().isEmpty()); // cleared; field and operator stay
    // Another text field: the operator and a value survive.
    type(QStringLiteral("甲"));
    pickField(QStringLiteral("著者"));
    EXPECT_EQ(cSql()->currentText(), QStringLiteral("著者"));
    EXPECT_EQ(cFuhao()->currentText(), QStringLiteral("包含"));
    EXPECT_EQ(lSql()->Text(), QStringLiteral("甲"));

    // A number: the comparisons, the first one chosen, the value cleared; Add by the button.
    pickField(QStringLiteral("预定册数"));
    EXPECT_EQ(items(cFuhao()), (QStringList{QStringLiteral("等于"), QStringLiteral("不等于"),
                                            QStringLiteral("大于"), QStringLiteral("不小于"),
                                            QStringLiteral("小于"), QStringLiteral("不大于")}));
    EXPECT_EQ(cFuhao()->currentIndex(), 0);
    EXPECT_TRUE(lSql()->Text().isEmpty() && lSql()->Mask().isEmpty());
    type(QStringLiteral("3"));
    click("Command3");
    EXPECT_EQ(f().q.groupSql, QStringLiteral("bookname Like '%中国%' And bookcount=3"));
    EXPECT_EQ(signSql()->toPlainText(), QStringLiteral("书名'包含'中国;预定册数'等于'3"));

    // A date: the mask; 小于 chosen for the number is back to 等于, being a new list.
    pickFuhao(QStringLiteral("小于"));
    pickField(QStringLiteral("预定日期"));
    EXPECT_EQ(cFuhao()->currentText(), QStringLiteral("等于"));
    EXPECT_EQ(lSql()->Mask(), QStringLiteral("####-##-##"));
    click("Command3"); // "____-__-__" is not added
    pickFuhao(QStringLiteral("大于"));
    type(QStringLiteral("20031"));
    EXPECT_EQ(lSql()->Text(), QStringLiteral("2003-1_-__"));
    click("Command3");
    EXPECT_TRUE(f().q.groupSql.endsWith(
        QStringLiteral("bookcount=3 And Convert(varchar(10),yddate,111) >'2003/19/99'")));
    EXPECT_EQ(lSql()->Text(), QStringLiteral("____-__-__"));

    // Not added: an empty value, a key other than Enter, no field in the combo.
    const QString before = f().q.groupSql;
    cSql()->setCurrentIndex(cSql()->findText(QStringLiteral("书名")));
    Q_EMIT cSql()->activated(cSql()->currentIndex()); // the combo tests the kind as well
    EXPECT_EQ(cFuhao()->count(), 3);
    click("Command3");
    type(QStringLiteral("中国"));
    int key = vb::vbKeyDown;
    f().lSql_KeyDown(key, 0);
    cSql()->setCurrentIndex(-1);
    click("Command3");
    EXPECT_EQ(f().q.groupSql, before);

    // Clear starts again, but keeps the field and the operator.
    cSql()->setCurrentIndex(cSql()->findText(QStringLiteral("著者")));
    Q_EMIT cSql()->activated(cSql()->currentIndex());
    pickFuhao(QStringLiteral("包含"));
    click("Command1_0");
    order(QStringLiteral("著者"), 0);
    click("Command2");
    EXPECT_TRUE(signSql()->toPlainText().isEmpty() && lOrderby()->toPlainText().isEmpty());
    EXPECT_EQ(c<QListWidget>("totalSql")->count(), 0);
    EXPECT_TRUE(lSql()->Text().isEmpty());
    EXPECT_EQ(items(cOrderby()), items(cSql()));
    EXPECT_TRUE(f().q.isEmpty());
    EXPECT_EQ(cSql()->currentText(), QStringLiteral("著者"));
    EXPECT_EQ(cFuhao()->currentText(), QStringLiteral("包含"));
}

TEST_F(FindForm, OrderLabelsRefuseAFieldTwiceAndAskForOne) {
    open(QStringLiteral("caigou"));
    clickLabel(0);
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    EXPECT_EQ(testsupport::boxes().last().prompt, QStringLiteral("请选择排序项目，取消该操作。"));
    EXPECT_EQ(testsupport::boxes().last().flags, 16);
    EXPECT_EQ(testsupport::boxes().last().title, QStringLiteral("操作提示"));
    order(QStringLiteral("书名"), 0);
    order(QStringLiteral("预定日期"), 1);
    EXPECT_EQ(f().q.orderSql, QStringLiteral("bookname Asc,yddate Desc"));
    EXPECT_EQ(lOrderby()->toPlainText(), QStringLiteral("'书名'升;'预定日期'降"));
    EXPECT_EQ(cOrderby()->findText(QStringLiteral("书名")), -1);
    EXPECT_EQ(cOrderby()->count(), 19);
    // The field just used is gone: the label asks again instead of sorting twice.
    clickLabel(1);
    EXPECT_EQ(testsupport::boxes().calls().size(), 2u);
    EXPECT_EQ(f().q.orderSql, QStringLiteral("bookname Asc,yddate Desc"));
}

TEST_F(FindForm, TheReadableTextsRefuseEveryInputTheArrowsToo) {
    open(QStringLiteral("caigou"));
    order(QStringLiteral("书名"), 0);
    addCondition(QStringLiteral("书名"), QStringLiteral("等于"), QStringLiteral("甲"));
    for (QTextEdit* t : {lOrderby(), signSql()}) {
        const QString before = t->toPlainText();
        t->setFocus();
        QTextCursor cur = t->textCursor();
        cur.setPosition(2);
        t->setTextCursor(cur);
        for (Qt::Key k : {Qt::Key_A, Qt::Key_Left, Qt::Key_Right, Qt::Key_Delete, Qt::Key_Backspace,
                          Qt::Key_End})
            QTest::keyClick(t, k);
        EXPECT_EQ(t->textCursor().position(), 2);
        // Nor what comes without a key: the input method, the context menu, a drop.
        testsupport::typeText(t, QStringLiteral("乙"));
        QApplication::clipboard()->setText(QStringLiteral("丙"));
        std::unique_ptr<QMenu> menu(t->createStandardContextMenu());
        for (QAction* a : menu->actions())
            if (a->isEnabled() && a->objectName() != QLatin1String("select-all") &&
                a->objectName() != QLatin1String("edit-copy"))
                a->trigger();
        QMimeData dragged;
        dragged.setText(QStringLiteral("丁"));
        const QPoint at = t->viewport()->rect().center();
        QDragEnterEvent enter(at, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(t->viewport(), &enter);
        QDropEvent drop(at, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(t->viewport(), &drop);
        EXPECT_FALSE(drop.isAccepted());
        EXPECT_EQ(t->toPlainText(), before);
    }
}

TEST_F(FindForm, OkHandsTheClausesToTheReceiverAndUnloads) {
    auto& r = vb::form<CaiGoufrm>();
    r.fixture_Where = QStringLiteral(" Where status=0");
    r.total_Where = QStringLiteral(" Where status=0 OR status=1");
    open(QStringLiteral("caigou"));
    addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("中国"));
    click("Command1_0");
    addCondition(QStringLiteral("预定册数"), QStringLiteral("大于"), QStringLiteral("3"));
    order(QStringLiteral("预定日期"), 1);
    click("Command1_1");
    EXPECT_EQ(r.calls, 1);
    EXPECT_EQ(r.where,
              QStringLiteral(" Where status=0 AND ((bookname Like '%中国%') OR (bookcount>3))"));
    EXPECT_EQ(r.order, QStringLiteral(" Order By yddate Desc"));
    EXPECT_FALSE(f().isLoaded());
    // Unload cleared the state, all but printType.
    EXPECT_TRUE(f().doType.isEmpty() && f().q.isEmpty());
    EXPECT_EQ(f().findKind, -1);

    // Only an order: the receiver's whole clause.
    open(QStringLiteral("caigou"));
    order(QStringLiteral("书名"), 0);
    click("Command1_1");
    EXPECT_EQ(r.calls, 2);
    EXPECT_EQ(r.where, QStringLiteral(" Where status=0 OR status=1"));
    EXPECT_EQ(r.order, QStringLiteral(" Order By bookname Asc"));

    // A form reached by name without the receiver's members is passed over; 关闭 gives nothing.
    vb::form<CaiGoufindfrm>();
    for (const char* button : {"Command1_1", "Command1_2"}) {
        open(QStringLiteral("cgk"));
        addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("中国"));
        click(button);
        EXPECT_FALSE(f().isLoaded());
    }
    EXPECT_EQ(r.calls, 2);
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    EXPECT_EQ(testsupport::processEnds(), 0);
}

} // namespace
