// Findfrm driven through its controls on a fresh database: the dictionary per mode, the
// operator lists, adding conditions, groups, the order labels, Clear, and OK handing the
// clauses to a receiver found by its name.

#include "data/globals.h"
#include "platform/errors.h"
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
#include <ostream>

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

// Typing as the operator does: ASCII by keys, Chinese committed by the input method.
void typeInto(QWidget* w, const QString& text) {
    for (QChar ch : text) {
        if (ch.unicode() < 128) {
            QTest::keyClick(w, ch.toLatin1());
            continue;
        }
        QInputMethodEvent commit;
        commit.setCommitString(QString(ch));
        QApplication::sendEvent(w, &commit);
    }
}

QStringList items(QListWidget* l) {
    QStringList out;
    for (int i = 0; i < l->count(); ++i) out << l->item(i)->text();
    return out;
}
QStringList items(QComboBox* c) {
    QStringList out;
    for (int i = 0; i < c->count(); ++i) out << c->itemText(i);
    return out;
}

class FindForm : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        gConnStr = makeDatabase();
    }
    void TearDown() override {
        Findfrm::setGenerator(QStringLiteral("totalmx"), {});
        DbTest::TearDown();
    }

    Findfrm& open(const QString& doType) {
        auto& f = vb::form<Findfrm>();
        f.doType = doType;
        f.Load();
        f.Show(0);
        return f;
    }
    Findfrm& f() { return vb::form<Findfrm>(); }
    template <class W> W* c(const QString& name) { return f().ctl<W>(name); }
    QListWidget* LFields() { return c<QListWidget>(QStringLiteral("LFields")); }
    QComboBox* cSql() { return c<QComboBox>(QStringLiteral("cSql")); }
    QComboBox* cFuhao() { return c<QComboBox>(QStringLiteral("cFuhao")); }
    QComboBox* cOrderby() { return c<QComboBox>(QStringLiteral("cOrderby")); }
    vb::MaskEdBox* lSql() { return c<vb::MaskEdBox>(QStringLiteral("lSql")); }
    QTextEdit* signSql() { return c<QTextEdit>(QStringLiteral("signSql")); }
    QTextEdit* lOrderby() { return c<QTextEdit>(QStringLiteral("lOrderby")); }
    QListWidget* totalSql() { return c<QListWidget>(QStringLiteral("totalSql")); }
    void click(const QString& button) { QTest::mouseClick(c<QPushButton>(button), Qt::LeftButton); }
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
        ASSERT_EQ(LFields()->currentItem(), found[0]);
    }
    void pickFuhao(const QString& fuhao) {
        const int i = cFuhao()->findText(fuhao);
        ASSERT_GE(i, 0) << fuhao.toStdString();
        cFuhao()->setCurrentIndex(i);
    }
    void type(const QString& value) {
        lSql()->setFocus();
        lSql()->setTextVb(QString());
        lSql()->home(false);
        typeInto(lSql(), value);
    }
    void addCondition(const QString& field, const QString& fuhao, const QString& value) {
        pickField(field);
        pickFuhao(fuhao);
        type(value);
        QTest::keyClick(lSql(), Qt::Key_Return);
    }
    void chooseOrder(const QString& name) {
        cOrderby()->setCurrentIndex(cOrderby()->findText(name));
    }
};

TEST_F(FindForm, EachModeLoadsItsDictionary) {
    struct Case {
        const char* doType;
        int fields;
        const char16_t* first;
    };
    for (const Case& m : {Case{"caigou", 21, u"书名"}, Case{"print", 21, u"书名"},
                          Case{"cgkys", 29, u"书名"}, Case{"totalmx", 29, u"书名"},
                          Case{"totaltotal", 29, u"书名"}, Case{"cggys", 9, u"单位名称"}}) {
        SCOPED_TRACE(m.doType);
        open(QString::fromLatin1(m.doType));
        EXPECT_EQ(LFields()->count(), m.fields);
        EXPECT_EQ(items(cSql()), items(LFields()));
        EXPECT_EQ(items(cOrderby()), items(LFields()));
        EXPECT_EQ(f().fieldDict.size(), static_cast<size_t>(m.fields) + 1);
        // The first field is taken at once; nothing is chosen for the order yet.
        EXPECT_EQ(cSql()->currentText(), QString::fromUtf16(m.first));
        EXPECT_EQ(cOrderby()->currentIndex(), -1);
        EXPECT_EQ(f().findKind, 0);
        EXPECT_EQ(cFuhao()->currentText(), QStringLiteral("等于"));
        f().Unload();
    }
    // A mode without dictionary rows leaves the lists empty.
    open(QStringLiteral("nosuch"));
    EXPECT_EQ(LFields()->count(), 0);
    EXPECT_EQ(f().fieldDict.size(), 46u);
    EXPECT_EQ(f().findKind, -1);
}

TEST_F(FindForm, OperatorListIsRebuiltOnlyWhenTheKindChanges) {
    open(QStringLiteral("caigou"));
    pickField(QStringLiteral("书名"));
    pickFuhao(QStringLiteral("包含"));
    type(QStringLiteral("中国"));
    // Another text field: the operator and the value survive.
    pickField(QStringLiteral("著者"));
    EXPECT_EQ(cSql()->currentText(), QStringLiteral("著者"));
    EXPECT_EQ(cFuhao()->currentText(), QStringLiteral("包含"));
    EXPECT_EQ(lSql()->Text(), QStringLiteral("中国"));
    // A number: new list, first entry, value cleared.
    pickField(QStringLiteral("预定册数"));
    EXPECT_EQ(f().findKind, 1);
    EXPECT_EQ(cFuhao()->count(), 6);
    EXPECT_EQ(cFuhao()->currentIndex(), 0);
    EXPECT_TRUE(lSql()->Text().isEmpty());
    EXPECT_TRUE(lSql()->Mask().isEmpty());
    // A date: the masked box.
    pickFuhao(QStringLiteral("小于"));
    pickField(QStringLiteral("预定日期"));
    EXPECT_EQ(cFuhao()->currentText(), QStringLiteral("等于"));
    EXPECT_EQ(lSql()->Mask(), QStringLiteral("####-##-##"));
    EXPECT_EQ(lSql()->Text(), QStringLiteral("____-__-__"));
    // Picking from the combo does the same test for its own entry.
    cSql()->setCurrentIndex(cSql()->findText(QStringLiteral("书名")));
    Q_EMIT cSql()->activated(cSql()->currentIndex());
    EXPECT_EQ(f().findKind, 0);
    EXPECT_EQ(cFuhao()->count(), 3);
}

TEST_F(FindForm, ConditionsAddByEnterAndByTheButton) {
    open(QStringLiteral("caigou"));
    addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("中国"));
    EXPECT_EQ(f().q.groupSql, QStringLiteral("bookname Like '%中国%'"));
    EXPECT_TRUE(lSql()->Text().isEmpty()); // cleared; field and operator stay
    EXPECT_EQ(cFuhao()->currentText(), QStringLiteral("包含"));

    // The second condition after a change to a number: the operator is back to 等于.
    pickField(QStringLiteral("预定册数"));
    type(QStringLiteral("3"));
    click(QStringLiteral("Command3"));
    EXPECT_EQ(f().q.groupSql, QStringLiteral("bookname Like '%中国%' And bookcount=3"));
    EXPECT_EQ(signSql()->toPlainText(), QStringLiteral("书名'包含'中国;预定册数'等于'3"));

    // A date given in part, with the gaps as the mask leaves them.
    pickField(QStringLiteral("预定日期"));
    pickFuhao(QStringLiteral("大于"));
    type(QStringLiteral("20031"));
    EXPECT_EQ(lSql()->Text(), QStringLiteral("2003-1_-__"));
    click(QStringLiteral("Command3"));
    EXPECT_TRUE(f().q.groupSql.endsWith(
        QStringLiteral(" And Convert(varchar(10),yddate,111) >'2003/19/99'")));
    EXPECT_EQ(lSql()->Text(), QStringLiteral("____-__-__"));
}

TEST_F(FindForm, NothingIsAddedWithoutValueFieldOrEnter) {
    open(QStringLiteral("caigou"));
    pickField(QStringLiteral("预定日期"));
    click(QStringLiteral("Command3")); // "____-__-__"
    pickField(QStringLiteral("书名"));
    click(QStringLiteral("Command3")); // empty
    type(QStringLiteral("中国"));
    QTest::keyClick(lSql(), Qt::Key_Tab);
    int key = vb::vbKeyDown;
    f().lSql_KeyDown(key, 0);
    EXPECT_TRUE(f().q.groupSql.isEmpty());
    // With no field chosen in the combo.
    lSql()->setTextVb(QStringLiteral("中国"));
    cSql()->setCurrentIndex(-1);
    click(QStringLiteral("Command3"));
    EXPECT_TRUE(f().q.groupSql.isEmpty());
    EXPECT_TRUE(signSql()->toPlainText().isEmpty());
}

TEST_F(FindForm, OrderLabelsRefuseAFieldTwiceAndAskForOne) {
    open(QStringLiteral("caigou"));
    clickLabel(0);
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    EXPECT_EQ(testsupport::boxes().last().prompt, QStringLiteral("请选择排序项目，取消该操作。"));
    EXPECT_EQ(testsupport::boxes().last().flags, 16);
    EXPECT_EQ(testsupport::boxes().last().title, QStringLiteral("操作提示"));
    EXPECT_TRUE(f().q.orderSql.isEmpty());

    chooseOrder(QStringLiteral("书名"));
    clickLabel(0);
    chooseOrder(QStringLiteral("预定日期"));
    clickLabel(1);
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
    chooseOrder(QStringLiteral("书名"));
    clickLabel(0);
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
        EXPECT_EQ(t->toPlainText(), before);
        EXPECT_EQ(t->textCursor().position(), 2);

        // Nor what comes without a key: the input method, the context menu, a drop.
        QInputMethodEvent commit;
        commit.setCommitString(QStringLiteral("乙"));
        QApplication::sendEvent(t, &commit);
        EXPECT_EQ(t->toPlainText(), before);

        QApplication::clipboard()->setText(QStringLiteral("丙"));
        std::unique_ptr<QMenu> menu(t->createStandardContextMenu());
        for (QAction* a : menu->actions())
            if (a->isEnabled() && a->objectName() != QLatin1String("select-all") &&
                a->objectName() != QLatin1String("edit-copy"))
                a->trigger();
        EXPECT_EQ(t->toPlainText(), before);

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

TEST_F(FindForm, ClearStartsAgainButKeepsFieldAndOperator) {
    open(QStringLiteral("caigou"));
    addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("甲"));
    click(QStringLiteral("Command1_0"));
    addCondition(QStringLiteral("著者"), QStringLiteral("包含"), QStringLiteral("乙"));
    chooseOrder(QStringLiteral("著者"));
    clickLabel(0);
    type(QStringLiteral("丙"));
    click(QStringLiteral("Command2"));
    EXPECT_TRUE(signSql()->toPlainText().isEmpty());
    EXPECT_EQ(totalSql()->count(), 0);
    EXPECT_TRUE(lOrderby()->toPlainText().isEmpty());
    EXPECT_TRUE(lSql()->Text().isEmpty());
    EXPECT_EQ(items(cOrderby()), items(cSql()));
    EXPECT_TRUE(f().q.isEmpty());
    EXPECT_EQ(cSql()->currentText(), QStringLiteral("著者"));
    EXPECT_EQ(cFuhao()->currentText(), QStringLiteral("包含"));
    EXPECT_EQ(f().findKind, 0);
}

TEST_F(FindForm, OkHandsTheClausesToTheReceiverAndUnloads) {
    auto& r = vb::form<CaiGoufrm>();
    r.fixture_Where = QStringLiteral(" Where status=0");
    open(QStringLiteral("caigou"));
    addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("中国"));
    click(QStringLiteral("Command1_0"));
    addCondition(QStringLiteral("预定册数"), QStringLiteral("大于"), QStringLiteral("3"));
    chooseOrder(QStringLiteral("预定日期"));
    clickLabel(1);
    click(QStringLiteral("Command1_1"));
    EXPECT_EQ(r.calls, 1);
    EXPECT_EQ(r.where,
              QStringLiteral(" Where status=0 AND ((bookname Like '%中国%') OR (bookcount>3))"));
    EXPECT_EQ(r.order, QStringLiteral(" Order By yddate Desc"));
    EXPECT_FALSE(f().isLoaded());
    // Unload cleared the state, all but printType.
    EXPECT_TRUE(f().doType.isEmpty());
    EXPECT_TRUE(f().q.isEmpty());
    EXPECT_EQ(f().findKind, -1);
}

TEST_F(FindForm, OnlyAnOrderGivesTheReceiversWholeClause) {
    auto& r = vb::form<CaiGoufrm>();
    r.total_Where = QStringLiteral(" Where status=0 OR status=1");
    open(QStringLiteral("caigou"));
    chooseOrder(QStringLiteral("书名"));
    clickLabel(0);
    click(QStringLiteral("Command1_1"));
    EXPECT_EQ(r.calls, 1);
    EXPECT_EQ(r.where, QStringLiteral(" Where status=0 OR status=1"));
    EXPECT_EQ(r.order, QStringLiteral(" Order By bookname Asc"));

    // A form reached by name without the receiver's members is passed over; 关闭 gives nothing.
    vb::form<CaiGoufindfrm>();
    for (const char* button : {"Command1_1", "Command1_2"}) {
        open(QStringLiteral("cgk"));
        addCondition(QStringLiteral("书名"), QStringLiteral("包含"), QStringLiteral("中国"));
        click(QString::fromLatin1(button));
        EXPECT_FALSE(f().isLoaded());
    }
    EXPECT_EQ(r.calls, 1);
    EXPECT_TRUE(testsupport::boxes().calls().empty());
    EXPECT_EQ(testsupport::processEnds(), 0);
}

TEST_F(FindForm, StatisticsModesRunTheGeneratorOfPrintType) {
    QString gotWhere, gotOrder;
    int runs = 0;
    Findfrm::setGenerator(QStringLiteral("totalmx"), [&](const QString& w, const QString& o) {
        ++runs;
        gotWhere = w;
        gotOrder = o;
    });
    auto& fr = vb::form<Findfrm>();
    fr.printType = QStringLiteral("totalmx");
    open(QStringLiteral("totalmx"));
    addCondition(QStringLiteral("验收日期"), QStringLiteral("等于"), QStringLiteral("2003"));
    click(QStringLiteral("Command1_1"));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(gotWhere, QStringLiteral(" Where Convert(varchar(10),ysdate,111) Like '2003/__/__'"));
    EXPECT_TRUE(gotOrder.isEmpty());
    EXPECT_EQ(fr.printType, QStringLiteral("totalmx")); // kept for the next caller

    // Another statistic with no generator does nothing.
    fr.printType = QStringLiteral("nothing");
    open(QStringLiteral("totaltotal"));
    chooseOrder(QStringLiteral("书名"));
    clickLabel(0);
    click(QStringLiteral("Command1_1"));
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(fr.isLoaded());
}

} // namespace
