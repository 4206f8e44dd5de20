// The accepted items browser and its edit form on a database with a few accepted titles
// whose sums are worked out by hand: the list, the detail and its saves, walking, the
// field rules, and what the two prints put into their tables and hand to the reports.

#include "acceptance/YanShouBrowerdofrm.h"
#include "acceptance/YanShouBrowerfrm.h"
#include "platform/Menu.h"
#include "platform/flexgrid.h"
#include "platform/maskedbox.h"
#include "platform/vb.h"
#include "query/Findfrm.h"
#include "query/reports.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <ostream>

namespace {

using testsupport::boxes;
using testsupport::settle;
using testsupport::shown;
using testsupport::texts;

const QString kFixture = QStringLiteral(" Where (status=1 or status=2)");
const QString kAsk = QStringLiteral("该采购验收已经发生修改，是否保存修改？");

class YanShou : public testsupport::SessionDb {
protected:
    void SetUp() override {
        SessionDb::SetUp();
        // Batch 1: 红楼梦 twice at one price (one title), 水浒传, and a status-2 row of
        // another source; batch 2: 红楼梦 again; 107 is still on order.
        exec(QStringLiteral(
            "INSERT INTO cgk (cgkid,bookfrom,bookname,author,publisher,isbn,pages,edition,"
            "yddate,bookcount,status,batch,ysname,ysdate,ysprice,yscount) VALUES "
            "(101,'新华书店','红楼梦','曹雪芹','人民文学出版社','7-02-000001-0',500,'1版',"
            "'2003-01-10',3,1,'1','张三','2003-03-01',30,2),"
            "(102,'新华书店','水浒传','施耐庵','人民文学出版社',NULL,NULL,NULL,"
            "'2003-01-10',4,1,'1','张三','2003-03-01',25.5,4),"
            "(103,'外文书店','C++','Stroustrup','机械工业出版社',NULL,NULL,NULL,"
            "'2003-01-12',1,2,'1','李四','2003-03-02',80,1),"
            "(104,'新华书店','红楼梦','曹雪芹','人民文学出版社',NULL,NULL,NULL,"
            "'2003-02-01',1,1,'2','张三','2003-04-01',30,1),"
            "(106,'新华书店','红楼梦','曹雪芹','人民文学出版社',NULL,NULL,NULL,"
            "'2003-01-10',1,1,'1','张三','2003-03-01',30,1),"
            "(107,'新华书店','西游记','吴承恩','人民文学出版社',NULL,NULL,NULL,"
            "'2003-05-01',2,0,NULL,NULL,NULL,NULL,NULL)"));
    }
    YanShouBrowerfrm& b() { return vb::form<YanShouBrowerfrm>(); }
    YanShouBrowerdofrm& d() { return vb::form<YanShouBrowerdofrm>(); }
    vb::FlexGrid* grid() { return b().Grid1(); }
    QStringList ids() { return testsupport::gridColumn(grid(), 0); }
    // The browser filled with the accepted rows in cgkid order.
    void openList(const QString& extra = QString()) {
        b().Show(0);
        b().loadGridData(kFixture + extra, QStringLiteral(" Order By cgkid"));
    }
    // The edit form on a row of the list, active so that its fields take the focus.
    void openDetail(int row) {
        d().listRow = static_cast<int16_t>(row);
        d().loadDate(vb::CInt(grid()->TextMatrix(row, 0)));
        d().Show(0);
        QApplication::setActiveWindow(d().window());
        settle();
    }
    void type(int index, const QString& text) { testsupport::typeAndLeave(d().Text1(index), text); }
    // Runs `fn` once the edit form's modal loop has started.
    void whenModal(std::function<void()> fn, int tries = 300) {
        QTimer::singleShot(10, [this, fn, tries] {
            if (d().isModalShowing())
                fn();
            else if (tries > 0)
                whenModal(fn, tries - 1);
        });
    }
};

TEST_F(YanShou, TheListTheDetailAndItsSaves) {
    b().Show(0);
    EXPECT_EQ(b().fixture_Where + u'|' + b().total_Where + u'|' + b().orderby_String,
              kFixture + u'|' + kFixture + QStringLiteral("| Order By batch ASC"));
    EXPECT_EQ(grid()->TextMatrix(0, 5), QStringLiteral("册 数"));
    EXPECT_EQ(ids(), QStringList{QString()});
    b().Command1_Click(1); // 显示明细 on the empty row
    EXPECT_FALSE(d().isLoaded());

    // 查找 with 批号 = 1, by 验收价格 descending then 采购编号: status 0 never comes.
    QTimer::singleShot(0, [] {
        auto& f = vb::form<Findfrm>();
        auto* fields = f.ctl<QListWidget>(QStringLiteral("LFields"));
        fields->setCurrentRow(
            fields->row(fields->findItems(QStringLiteral("批号"), Qt::MatchExactly)[0]));
        f.ctl<vb::MaskEdBox>(QStringLiteral("lSql"))->setTextVb(QStringLiteral("1"));
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command3")), Qt::LeftButton);
        auto* order = f.ctl<QComboBox>(QStringLiteral("cOrderby"));
        order->setCurrentIndex(order->findText(QStringLiteral("验收价格")));
        f.Label3_Click(1);
        order->setCurrentIndex(order->findText(QStringLiteral("采购编号")));
        f.Label3_Click(0);
        QTest::mouseClick(f.ctl<QPushButton>(QStringLiteral("Command1_1")), Qt::LeftButton);
    });
    b().Command1_Click(0);
    EXPECT_EQ(vb::form<Findfrm>().doType, QString());
    EXPECT_EQ(b().total_Where + b().orderby_String,
              kFixture + QStringLiteral(" AND (batch='1') Order By ysprice Desc,cgkid Asc"));
    EXPECT_EQ(ids(), (QStringList{"103", "101", "106", "102"}));
    EXPECT_EQ(grid()->TextMatrix(2, 8), QStringLiteral("2003/03/01"));
    EXPECT_EQ(grid()->ColWidth(0), 0);

    // No match: one empty row, and neither the button nor Enter opens anything.
    b().loadGridData(kFixture + QStringLiteral(" AND (batch='9')"), QString());
    EXPECT_EQ(ids(), QStringList{QString()});
    b().Command1_Click(1);
    QTest::keyClick(grid(), Qt::Key_Return);
    EXPECT_FALSE(d().isLoaded());

    // The popup's 明细 opens the detail modally; unchanged, it closes without a question.
    openList();
    grid()->setRow(2);
    bool seen = false;
    whenModal([&] {
        seen = true;
        EXPECT_EQ(d().caption() + u'|' + texts(d(), {0, 9}) + u'|' + d().Label2(0)->text() + u'|' +
                      d().Label2(2)->text(),
                  QStringLiteral("验收明细资料--批号:1;来源:新华书店|水浒传|4|预定日期 2003-01-10|"
                                 "验 收 员 张三"));
        EXPECT_FALSE(d().Command2(0)->isEnabled()); // loading counts as no change
        d().Command2_Click(1);
    });
    const Menu::Picker previous = Menu::setPicker(Menu::pickText(QStringLiteral("明细")));
    QTest::mouseClick(grid()->viewport(), Qt::RightButton, {},
                      grid()->cellRect(2, 1).center() - grid()->viewport()->pos());
    Menu::setPicker(previous);
    EXPECT_TRUE(seen);
    EXPECT_FALSE(d().isLoaded());
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(d().listRow, 2);

    // 册 数 is saved to the order's bookcount; emptied fields become NULL.
    openDetail(1);
    type(9, QStringLiteral("007"));
    EXPECT_EQ(d().Text1(9)->text(), QStringLiteral("7"));
    type(1, QString()); // author emptied
    type(5, QString()); // pages emptied
    EXPECT_TRUE(d().Command2(0)->isEnabled());
    d().Command2_Click(0);
    EXPECT_TRUE(boxes().calls().empty());
    EXPECT_EQ(q(QStringLiteral("SELECT bookcount||'/'||yscount||'/'||quote(author)||'/'||"
                               "quote(pages)||'/'||bookname FROM cgk WHERE cgkid=101")),
              QStringLiteral("7/2/NULL/NULL/红楼梦"));
    EXPECT_FALSE(d().Command2(0)->isEnabled());
    // The list shows what was typed until the next search reads yscount again.
    EXPECT_EQ(grid()->TextMatrix(1, 5) + u'|' + grid()->TextMatrix(1, 2), QStringLiteral("7|"));

    // One field changed: that column alone. The author changed behind the form's back
    // would be undone by a save that sent every column.
    openDetail(2);
    exec(QStringLiteral("UPDATE cgk SET author='别人' WHERE cgkid=102"));
    type(11, QStringLiteral("2版"));
    d().Command2_Click(0);
    EXPECT_EQ(q(QStringLiteral("SELECT edition||author FROM cgk WHERE cgkid=102")),
              QStringLiteral("2版别人"));
    b().loadGridData(b().total_Where, b().orderby_String);
    EXPECT_EQ(grid()->TextMatrix(1, 5), QStringLiteral("2"));
}

struct Refusal {
    const char* name;
    std::vector<int> emptied;
    const char16_t* message;
    int focus;
};

class Validation : public YanShou, public ::testing::WithParamInterface<Refusal> {};

// The checks run in their order before a save, and the close question runs them too.
TEST_P(Validation, TheFirstEmptyRequiredFieldStopsTheSaveAndTheClose) {
    openList();
    openDetail(1);
    for (int i : GetParam().emptied) type(i, QString());
    boxes().clear();
    d().Command2_Click(0);
    EXPECT_EQ(shown(), QString::fromUtf16(GetParam().message) + QStringLiteral("#16"));
    EXPECT_EQ(boxes().last().title, QStringLiteral("操作提示"));
    settle();
    EXPECT_EQ(QApplication::focusWidget(), d().Text1(GetParam().focus));
    boxes().answer(vb::vbYes);
    d().Command2_Click(1);
    EXPECT_EQ(boxes().calls()[1].prompt, kAsk);
    EXPECT_TRUE(d().isLoaded()); // still open, nothing written
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM cgk WHERE cgkid=101 AND bookname='红楼梦' "
                               "AND yscount=2 AND ysprice=30")),
              QStringLiteral("1"));
}

INSTANTIATE_TEST_SUITE_P(
    Required, Validation,
    ::testing::Values(Refusal{"Title", {10, 0, 9}, u"图书采购'书  名'不能为空，取消该操作。", 0},
                      Refusal{"Copies", {10, 9}, u"图书验收'册  数'不能为空，取消该操作。", 9},
                      Refusal{"Price", {10}, u"图书验收'价  格'不能为空，取消该操作。", 10}),
    [](const auto& p) { return std::string(p.param.name); });

TEST_F(YanShou, WalkingPastEitherEndLeavesTheListAndComesBack) {
    openList(); // 101 102 103 104 106
    openDetail(2);
    d().Command1_Click(1);
    EXPECT_EQ(d().cgkid(), 101);
    d().Command1_Click(1); // before the first row
    EXPECT_EQ(QString::number(d().listRow) + d().caption() + QString::number(d().state()) +
                  d().Text1(0)->text() + d().Label2(0)->text(),
              QStringLiteral("0验收明细资料--空0预定日期"));
    d().Command1_Click(2);
    EXPECT_EQ(d().cgkid(), 101);
    QTest::keyClick(d().Text1(0), Qt::Key_L, Qt::AltModifier);
    EXPECT_EQ(d().cgkid(), 106);
    QTest::keyClick(d().Text1(0), Qt::Key_N, Qt::AltModifier); // past the last
    EXPECT_EQ(QString::number(d().listRow) + d().caption(), QStringLiteral("6验收明细资料--空"));
    QTest::keyClick(d().Text1(0), Qt::Key_P, Qt::AltModifier);
    EXPECT_EQ(d().cgkid(), 106);

    // A change is asked about before the step: No drops it, Yes saves it.
    type(0, QStringLiteral("红楼梦新校本"));
    boxes().answer(vb::vbNo);
    QTest::keyClick(d().Text1(0), Qt::Key_F, Qt::AltModifier);
    EXPECT_EQ(d().cgkid(), 101);
    type(12, QStringLiteral("16开"));
    boxes().answer(vb::vbYes);
    d().Command1_Click(2);
    EXPECT_EQ(boxes().prompts(), (QStringList{kAsk, kAsk}));
    EXPECT_EQ(q(QStringLiteral("SELECT group_concat(cgkid||':'||ifnull(measure,'')||':'||bookname) "
                               "FROM cgk WHERE cgkid IN (101,106)")),
              QStringLiteral("101:16开:红楼梦,106::红楼梦"));
    EXPECT_EQ(d().cgkid(), 102);
}

TEST_F(YanShou, LeavingAFieldRunsItsRule) {
    openList();
    openDetail(1);
    type(10, QStringLiteral("12,50"));
    EXPECT_EQ(d().Text1(10)->text(), QStringLiteral("12")); // Val stops at the comma
    type(5, QStringLiteral("abc"));
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("无效数字格式，取消该操作。"));
    EXPECT_TRUE(d().Text1(5)->text().isEmpty());

    // No number formatting: a bare ISBN fails on its length; a good one fills the
    // publisher alone.
    d().Text1(2)->setText(QStringLiteral("旧出版社"));
    boxes().answer(vb::vbNo);
    type(3, QStringLiteral("7020000010"));
    EXPECT_TRUE(boxes().last().prompt.startsWith(
        QStringLiteral("Error:ISBN格式错误.ISBN号长度应该为13位")));
    EXPECT_TRUE(d().Text1(3)->text().isEmpty());
    type(3, QStringLiteral("7-02-000001-0"));
    EXPECT_EQ(d().Text1(2)->text(), QStringLiteral("人民文学出版社"));

    // Code lists: No clears the field, Yes adds the code.
    boxes().clear();
    boxes().answer({vb::vbNo, vb::vbYes});
    type(6, QStringLiteral("手稿"));
    EXPECT_TRUE(d().Text1(6)->text().isEmpty());
    type(7, QStringLiteral("藏文"));
    EXPECT_EQ(boxes().prompts(),
              (QStringList{QStringLiteral("文献类型：‘手稿’不存在，是否添加。"),
                           QStringLiteral("作品语言：‘藏文’不存在，是否添加。")}));
    EXPECT_EQ(q(QStringLiteral("SELECT (SELECT count(*) FROM wxlx WHERE docclass='手稿')||(SELECT "
                               "count(*) FROM global WHERE type='language' AND code='藏文')")),
              QStringLiteral("01"));
}

// What one report was handed: heading -> lines of its batch, cells joined by "|".
std::map<QString, QStringList> groups(const std::shared_ptr<adodb::Recordset>& rs) {
    std::map<QString, QStringList> out;
    for (rs->MoveFirst(); !rs->EOF_(); rs->MoveNext()) {
        adodb::Recordset* c = rs->child(QStringLiteral("myPrint"));
        for (c->MoveFirst(); !c->EOF_(); c->MoveNext()) {
            QStringList cells;
            for (int i = 1; i < c->fieldCount(); ++i) cells << c->text(i);
            out[rs->text(QStringLiteral("batch"))] << cells.join(u'|');
        }
    }
    return out;
}

TEST_F(YanShou, ThePrintsGroupTheConditionInForceByBatch) {
    openList();
    grid()->setTextMatrix(1, 5, QStringLiteral("99")); // the grid is not what prints
    const Menu::Picker previous = Menu::setPicker(Menu::pickText(QStringLiteral("验收传票")));
    b().Command1_Click(3);
    Menu::setPicker(Menu::pickText(QStringLiteral("验收明细")));
    b().Command1_Click(3);
    int setups = 0;
    YanShouBrowerfrm::setPrinterSetupHandler([&] { ++setups; });
    Menu::setPicker(Menu::pickText(QStringLiteral("打印设置")));
    b().Command1_Click(3);
    YanShouBrowerfrm::setPrinterSetupHandler(nullptr);
    Menu::setPicker(previous);
    EXPECT_EQ(setups, 1);
    EXPECT_EQ(boxes().prompts(), (QStringList{QStringLiteral("请将打印机设置为A4纵向(窄行)打印！"),
                                              QStringLiteral("请将打印机设置为A4横向打印！")}));
    const auto voucher = groups(vb::form<printYStotal>().DataSource);
    EXPECT_EQ(voucher.at(QStringLiteral("第 1 批采购验收传票")),
              (QStringList{"外文书店|1|1|80", "新华书店|2|7|192"}));
    EXPECT_EQ(voucher.at(QStringLiteral("第 2 批采购验收传票")), QStringList{"新华书店|1|1|30"});
    EXPECT_FALSE(vb::form<printYStotal>().landscape);
    const auto detail = groups(vb::form<printYSmx>().DataSource);
    ASSERT_EQ(detail.size(), 2u);
    QStringList first = detail.at(QStringLiteral("第 1 批书目采购明细表"));
    first.sort();
    EXPECT_EQ(first, (QStringList{"C++|Stroustrup|机械工业出版社|80|1",
                                  "水浒传|施耐庵|人民文学出版社|25.5|4",
                                  "红楼梦|曹雪芹|人民文学出版社|30|3"}));
    EXPECT_TRUE(vb::form<printYSmx>().landscape);

    // A condition without rows: the tables are emptied and the user is told.
    boxes().clear();
    b().loadGridData(kFixture + QStringLiteral(" AND (batch='9')"), QString());
    b().printVoucher();
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("没有符合条件的记录！"));
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM printYStotal")), QStringLiteral("0"));
}

} // namespace
