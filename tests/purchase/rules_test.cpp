// The field rules of a purchase record without a form, against a real database: trimming, the
// source, the ISBN with its publisher look-up, numbers, the code lists, and the save check.
#include "platform/adodb.h"
#include "platform/errors.h"
#include "purchase/caigouRules.h"
#include "tests/support/checks.h"
#include "tests/support/printto.h"
#include "tests/support/testsupport.h"

#include <initializer_list>
#include <memory>

namespace {

using caigou::Record;
using testsupport::boxes;
using testsupport::shown;

class Rules : public testsupport::SessionDb {
protected:
    void SetUp() override {
        SessionDb::SetUp();
        conn = std::make_unique<adodb::Connection>();
        conn->Open(gConnStr);
    }
    void TearDown() override {
        conn.reset();
        SessionDb::TearDown();
    }
    caigou::LeaveResult leave(int index, const QString& text, int addType = caigou::addEditing) {
        rec[static_cast<size_t>(index)] = text;
        return caigou::leaveField(addType, index, rec, *conn);
    }
    QString at(int index) const { return rec[static_cast<size_t>(index)]; }
    QString at(std::initializer_list<int> fields) const {
        QStringList out;
        for (int i : fields) out << at(i);
        return out.join(u'|');
    }
    Record rec;
    std::unique_ptr<adodb::Connection> conn;
};

TEST_F(Rules, TrimAndCaseOnlyWhileAddingOrEditing) {
    for (int mode : {caigou::addEmpty, caigou::addClosed}) {
        leave(10, QStringLiteral("  不存在的开本 "), mode);
        EXPECT_EQ(at(10), QStringLiteral("  不存在的开本 ")); // not even trimmed
    }
    // Blanks alone leave an empty field, and an empty field runs no rule.
    for (int index : {0, 4, 9, 10, 12, 13, 14, 15, 17}) {
        EXPECT_EQ(leave(index, QStringLiteral("    ")).focus, -1);
        EXPECT_EQ(at(index), QString()) << index;
    }
    leave(1, QStringLiteral("  红楼梦  "));
    EXPECT_EQ(at(1), QStringLiteral("红楼梦"));
    leave(11, QStringLiteral(" tp312ba "));
    EXPECT_EQ(at(11), QStringLiteral("TP312BA"));
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(Rules, IsbnIsFormattedCheckedAndFillsThePublisher) {
    // No prefix known: the number stays bare, fails on its length, and No refuses it.
    boxes().answer(vb::vbNo);
    EXPECT_EQ(leave(4, QStringLiteral("7505412345")).focus, 4);
    EXPECT_EQ(at(4), QString());
    EXPECT_EQ(shown(), QStringLiteral("Error:ISBN格式错误.ISBN号长度应该为13位\r\n"
                                      "是否使用该错误的ISBN号？(y/n)#68"));

    exec(QStringLiteral("INSERT INTO cbk (cbkid,C_SBN,C_CBD,C_CBS) VALUES "
                        "(9001,'7-5054','石家庄','花山文艺出版社')"));
    rec[5] = QStringLiteral("旧出版者");
    rec[6] = QStringLiteral("旧地");
    EXPECT_EQ(leave(4, QStringLiteral("7505412340")).focus, -1);
    EXPECT_EQ(at({4, 5, 6}), QStringLiteral("7-5054-1234-5|花山文艺出版社|石家庄")); // overwritten
    EXPECT_EQ(boxes().calls().size(), 1u);

    // A faulty number taken anyway still looks up the publisher, given two hyphens.
    boxes().answer({vb::vbYes, vb::vbYes});
    EXPECT_EQ(leave(4, QStringLiteral("7-5000-1234-5")).focus, -1);
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("Error:ISBN号校验位错误\r\n")));
    EXPECT_EQ(at({4, 5, 6}), QStringLiteral("7-5000-1234-5|中国大百科全书出版社|北京"));
    rec[5] = QStringLiteral("旧出版者");
    leave(4, QStringLiteral("7-50001234"));
    EXPECT_EQ(at({4, 5}), QStringLiteral("7-50001234|旧出版者"));

    // A NULL in the publisher row found is an error.
    exec(QStringLiteral("UPDATE cbk SET C_CBD=NULL WHERE cbkid=9001"));
    EXPECT_THROW(leave(4, QStringLiteral("7505412340"), caigou::addAdding), vb::VbError);
}

TEST_F(Rules, NumbersAreReadFromTheLeftOrRefused) {
    const char* cases[][2] = {{"007", "7"}, {"12.50", "12.5"}, {"1,200", "1"},
                              {" 0 ", "0"}, {"-3", "-3"},      {"1e3", "1000"}};
    for (int index : {9, 14, 17}) {
        for (const auto& c : cases) {
            EXPECT_EQ(leave(index, QString::fromUtf8(c[0])).focus, -1);
            EXPECT_EQ(at(index), QString::fromUtf8(c[1])) << index << " " << c[0];
        }
        EXPECT_EQ(leave(index, QStringLiteral("12元")).focus, index);
        EXPECT_EQ(at(index), QString());
    }
    EXPECT_EQ(shown(), QStringLiteral("无效数字格式，取消该操作。#16\n").repeated(3).chopped(1));
}

struct CodeList {
    const char* name;
    int index;
    const char* known;
    const char* label;
    const char* count; // rows holding the new value
};
class CodeLists : public Rules, public ::testing::WithParamInterface<CodeList> {};

TEST_P(CodeLists, UnknownCodeAsksNoRefusesYesAdds) {
    const CodeList& c = GetParam();
    EXPECT_EQ(leave(c.index, QString::fromUtf8(c.known)).focus, -1);
    EXPECT_TRUE(boxes().calls().empty());

    boxes().answer({vb::vbNo, vb::vbYes});
    EXPECT_EQ(leave(c.index, QStringLiteral("新开本")).focus, c.index);
    EXPECT_EQ(at(c.index), QString());
    EXPECT_EQ(shown(),
              QString::fromUtf8(c.label) + QStringLiteral("‘新开本’不存在，是否添加。#20"));
    EXPECT_EQ(q(QString::fromUtf8(c.count)), QStringLiteral("0"));

    EXPECT_EQ(leave(c.index, QStringLiteral("新开本")).focus, -1);
    EXPECT_EQ(at(c.index), QStringLiteral("新开本"));
    EXPECT_EQ(q(QString::fromUtf8(c.count)), QStringLiteral("1"));
    leave(c.index, QStringLiteral("新开本")); // now in the list
    EXPECT_EQ(boxes().calls().size(), 2u);
}
INSTANTIATE_TEST_SUITE_P(
    Table, CodeLists,
    ::testing::Values(CodeList{"BookSize", 10, "32开", "图书尺寸：",
                               "SELECT count(*) FROM cck WHERE measure='新开本'"},
                      CodeList{"DocType", 12, "普通图书", "文献类型：",
                               "SELECT count(*) FROM wxlx WHERE docclass='新开本'"},
                      CodeList{
                          "Language", 13, "中文", "作品语言：",
                          "SELECT count(*) FROM Global WHERE type='language' AND code='新开本'"}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(CheckInput, FixedOrderFirstFaultWins) {
    testsupport::boxes().clear();
    Record full;
    full[0] = QStringLiteral("新华书店");
    full[1] = QStringLiteral("书");
    full[14] = QStringLiteral("0"); // a price of 0 is not empty
    full[15] = QStringLiteral("现购");
    full[16] = QStringLiteral("2003/1/1");
    full[17] = QStringLiteral("1");
    EXPECT_TRUE(caigou::checkInput(full).ok);
    EXPECT_TRUE(testsupport::boxes().calls().empty());

    const QString badDate = QStringLiteral("请输入正确的日期格式(例如:2003-01-01)#64");
    const struct {
        int index;
        const char* value;
        QString box;
    } cases[] = {
        {0, "", QStringLiteral("图书采购'来 源'不能为空，取消该操作。#16")},
        {1, "", QStringLiteral("图书采购'书  名'不能为空，取消该操作。#16")},
        {14, "", QStringLiteral("图书采购'估 价'不能为空，取消该操作。#16")},
        {15, "", QStringLiteral("图书采购'采购方式'不能为空，取消该操作。#16")},
        {16, "", badDate},
        {16, "2003-02-30", badDate},
        {16, "1/2/2003", QStringLiteral("请输入完整的日期格式!(例如:2003-01-01)#64")},
        {17, "", QStringLiteral("图书采购'预定册数'不能为空，取消该操作。#16")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        Record r = full;
        r[static_cast<size_t>(c.index)] = QString::fromUtf8(c.value);
        testsupport::boxes().clear();
        const auto res = caigou::checkInput(r);
        EXPECT_EQ(QString::number(res.ok) + u'@' + QString::number(res.focus) + u':' + shown(),
                  QStringLiteral("0@%1:").arg(c.index) + c.box);
    }
    // Several faults: only the first in the order is told.
    testsupport::boxes().clear();
    EXPECT_EQ(caigou::checkInput(Record{}).focus, 0);
    EXPECT_EQ(testsupport::boxes().calls().size(), 1u);
    Record late = full;
    late[17].clear();
    late[14].clear();
    EXPECT_EQ(caigou::checkInput(late).focus, 14);
}

} // namespace
