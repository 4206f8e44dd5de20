// The field rules of a purchase record without a form: trimming, the source, ISBN, number
// and code-list rules against a real database, and the save test's order.
#include "platform/errors.h"
#include "purchase/caigouRules.h"
#include "tests/purchase/purchasetest.h"

namespace {

using caigou::Record;
using testsupport::boxes;

class Rules : public PurchaseDb {
protected:
    caigou::LeaveResult leave(int index, const QString& text, int addType = caigou::addEditing) {
        rec[static_cast<size_t>(index)] = text;
        return caigou::leaveField(addType, index, rec, *conn);
    }
    Record rec;
};

TEST(FieldName, ColumnsOfTheFirstEighteenFields) {
    EXPECT_EQ(caigou::fieldName(0), QStringLiteral("bookfrom"));
    EXPECT_EQ(caigou::fieldName(4), QStringLiteral("isbn"));
    EXPECT_EQ(caigou::fieldName(16), QStringLiteral("yddate"));
    EXPECT_EQ(caigou::fieldName(17), QStringLiteral("bookcount"));
    EXPECT_EQ(caigou::fieldName(18), QString()); // the batch is never written here
    EXPECT_EQ(caigou::fieldName(-1), QString());
}

TEST_F(Rules, NothingHappensOutsideAddingAndEditing) {
    for (int mode : {caigou::addEmpty, caigou::addClosed}) {
        leave(10, QStringLiteral("  不存在的开本 "), mode);
        EXPECT_EQ(rec[10], QStringLiteral("  不存在的开本 ")); // not even trimmed
    }
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(Rules, BlanksAreTrimmedAndAnEmptyFieldRunsNoRule) {
    for (int index : {0, 4, 9, 10, 12, 13, 14, 15, 17}) {
        const auto r = leave(index, QStringLiteral("    "));
        EXPECT_EQ(rec[static_cast<size_t>(index)], QString()) << index;
        EXPECT_EQ(r.focus, -1);
    }
    leave(1, QStringLiteral("  红楼梦  "));
    EXPECT_EQ(rec[1], QStringLiteral("红楼梦"));
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(Rules, SourceKnownAsSupplierIsQuiet) {
    exec(QStringLiteral("INSERT INTO cggys (publisher) VALUES ('O''Reilly书店')"));
    EXPECT_FALSE(leave(0, QStringLiteral("O'Reilly书店")).addSource);
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(Rules, UnknownSourceAsksAndKeepsTheTextEitherWay) {
    boxes().answer({vb::vbNo, vb::vbYes});
    auto r = leave(0, QStringLiteral("新来源书店"));
    EXPECT_FALSE(r.addSource);
    EXPECT_EQ(r.focus, -1); // unlike the code lists: no refusal
    EXPECT_EQ(rec[0], QStringLiteral("新来源书店"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(boxes().last().prompt, QStringLiteral("采购来源：‘新来源书店’不存在，是否添加。"));
    EXPECT_EQ(boxes().last().flags, 20);
    EXPECT_EQ(boxes().last().title, QStringLiteral("操作提示"));
    r = leave(0, QStringLiteral("新来源书店"));
    EXPECT_TRUE(r.addSource);
    EXPECT_EQ(rec[0], QStringLiteral("新来源书店"));
}

TEST_F(Rules, IsbnFormattedCheckedAndPublisherFilled) {
    exec(QStringLiteral("INSERT INTO cbk (cbkid,C_SBN,C_CBD,C_CBS) VALUES "
                        "(9001,'7-5054','石家庄','花山文艺出版社')"));
    rec[5] = QStringLiteral("旧出版者");
    rec[6] = QStringLiteral("旧地");
    const auto r = leave(4, QStringLiteral("7505412340"));
    EXPECT_EQ(rec[4], QStringLiteral("7-5054-1234-5"));
    EXPECT_EQ(rec[5], QStringLiteral("花山文艺出版社")); // overwritten
    EXPECT_EQ(rec[6], QStringLiteral("石家庄"));
    EXPECT_EQ(r.focus, -1);
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(Rules, UnknownPrefixLeavesTheNumberAndTheLengthQuestionRefusesIt) {
    boxes().answer(vb::vbNo);
    const auto r = leave(4, QStringLiteral("7505412345"));
    ASSERT_EQ(boxes().calls().size(), 1u);
    EXPECT_EQ(
        boxes().last().prompt,
        QStringLiteral("Error:ISBN格式错误.ISBN号长度应该为13位\r\n是否使用该错误的ISBN号？(y/n)"));
    EXPECT_EQ(boxes().last().flags, 68);
    EXPECT_EQ(rec[4], QString());
    EXPECT_EQ(r.focus, 4);
}

TEST_F(Rules, FaultyIsbnAcceptedStillLooksUpThePublisher) {
    boxes().answer(vb::vbYes);
    rec[5] = QStringLiteral("旧出版者");
    const auto r = leave(4, QStringLiteral("7-5000-1234-5"));
    EXPECT_EQ(r.focus, -1);
    EXPECT_EQ(rec[4], QStringLiteral("7-5000-1234-5"));
    EXPECT_TRUE(boxes().last().prompt.startsWith(QStringLiteral("Error:ISBN号校验位错误\r\n")));
    EXPECT_EQ(rec[5], QStringLiteral("中国大百科全书出版社"));
    EXPECT_EQ(rec[6], QStringLiteral("北京"));
}

TEST_F(Rules, FaultyIsbnWithFewerThanTwoHyphensDoesNoLookUp) {
    boxes().answer(vb::vbYes);
    rec[5] = QStringLiteral("旧出版者");
    leave(4, QStringLiteral("7-50001234"));
    EXPECT_EQ(rec[4], QStringLiteral("7-50001234"));
    EXPECT_EQ(rec[5], QStringLiteral("旧出版者"));
    EXPECT_EQ(rec[6], QString());
}

TEST_F(Rules, NullInAFoundPublisherRowIsAnError) {
    exec(QStringLiteral(
        "INSERT INTO cbk (cbkid,C_SBN,C_CBD,C_CBS) VALUES (9003,'7-5054',NULL,'花山文艺出版社')"));
    rec[4] = QStringLiteral("7505412340");
    EXPECT_THROW(caigou::leaveField(caigou::addAdding, 4, rec, *conn), vb::VbError);
}

TEST_F(Rules, NumberRuleReadsFromTheLeftOrRefuses) {
    struct Case {
        const char* in;
        const char* out;
    } cases[] = {{"007", "7"}, {"12.50", "12.5"}, {"1,200", "1"},
                 {" 0 ", "0"}, {"-3", "-3"},      {"1e3", "1000"}};
    for (int index : {9, 14, 17}) {
        for (const Case& c : cases) {
            const auto r = leave(index, QString::fromUtf8(c.in));
            EXPECT_EQ(rec[static_cast<size_t>(index)].toStdString(), std::string(c.out))
                << index << " " << c.in;
            EXPECT_EQ(r.focus, -1);
        }
        const auto r = leave(index, QStringLiteral("12元"));
        EXPECT_EQ(rec[static_cast<size_t>(index)], QString());
        EXPECT_EQ(r.focus, index);
        EXPECT_EQ(boxes().last().prompt, QStringLiteral("无效数字格式，取消该操作。"));
        EXPECT_EQ(boxes().last().flags, 16);
    }
    EXPECT_EQ(boxes().calls().size(), 3u);
}

TEST_F(Rules, CodeListsAskToAddAndInsertOnYesOrRefuseOnNo) {
    struct Case {
        int index;
        const char* known;
        const char* label;
        const char* count; // rows holding the new value
    } cases[] = {
        {10, "32开", "图书尺寸：‘", "SELECT count(*) FROM cck WHERE measure='新开本'"},
        {12, "普通图书", "文献类型：‘", "SELECT count(*) FROM wxlx WHERE docclass='新开本'"},
        {13, "中文", "作品语言：‘",
         "SELECT count(*) FROM Global WHERE type='language' AND code='新开本'"},
        {15, "现购", "采购方式：‘",
         "SELECT count(*) FROM Global WHERE type='cgkcgff' AND code='新开本'"},
    };
    for (const Case& c : cases) {
        boxes().clear();
        EXPECT_EQ(leave(c.index, QString::fromUtf8(c.known)).focus, -1);
        EXPECT_TRUE(boxes().calls().empty()) << c.index;

        boxes().answer(vb::vbNo);
        auto r = leave(c.index, QStringLiteral("新开本"));
        EXPECT_EQ(r.focus, c.index);
        EXPECT_EQ(rec[static_cast<size_t>(c.index)], QString());
        ASSERT_EQ(boxes().calls().size(), 1u);
        EXPECT_EQ(boxes().last().prompt,
                  QString::fromUtf8(c.label) + QStringLiteral("新开本’不存在，是否添加。"));
        EXPECT_EQ(boxes().last().flags, 20);
        EXPECT_EQ(q(QString::fromUtf8(c.count)), QStringLiteral("0"));

        boxes().answer(vb::vbYes);
        r = leave(c.index, QStringLiteral("新开本"));
        EXPECT_EQ(r.focus, -1);
        EXPECT_EQ(rec[static_cast<size_t>(c.index)], QStringLiteral("新开本"));
        EXPECT_EQ(q(QString::fromUtf8(c.count)), QStringLiteral("1")) << c.index;

        boxes().clear();
        leave(c.index, QStringLiteral("新开本")); // now in the list
        EXPECT_TRUE(boxes().calls().empty());
    }
}

TEST_F(Rules, QuoteFailsTheBookSizeLookUpButNotTheOthers) {
    EXPECT_THROW(leave(10, QStringLiteral("8'开")), vb::VbError);
    boxes().answer(vb::vbYes);
    leave(12, QStringLiteral("读者's文献"));
    EXPECT_EQ(q(QStringLiteral("SELECT count(*) FROM wxlx WHERE docclass='读者''s文献'")),
              QStringLiteral("1"));
    boxes().clear();
    leave(12, QStringLiteral("读者's文献"));
    EXPECT_TRUE(boxes().calls().empty());
}

TEST_F(Rules, ClassCodeIsUpperCased) {
    leave(11, QStringLiteral(" tp312ba "));
    EXPECT_EQ(rec[11], QStringLiteral("TP312BA"));
    EXPECT_TRUE(boxes().calls().empty());
}

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

    struct Case {
        int index;
        const char* value;
        const char* text;
        int flags;
    } cases[] = {
        {0, "", "图书采购'来 源'不能为空，取消该操作。", 16},
        {1, "", "图书采购'书  名'不能为空，取消该操作。", 16},
        {14, "", "图书采购'估 价'不能为空，取消该操作。", 16},
        {15, "", "图书采购'采购方式'不能为空，取消该操作。", 16},
        {16, "", "请输入正确的日期格式(例如:2003-01-01)", 64},
        {16, "2003", "请输入正确的日期格式(例如:2003-01-01)", 64},
        {16, "2003-02-30", "请输入正确的日期格式(例如:2003-01-01)", 64},
        {16, "1/2/2003", "请输入完整的日期格式!(例如:2003-01-01)", 64},
        {17, "", "图书采购'预定册数'不能为空，取消该操作。", 16},
    };
    for (const Case& c : cases) {
        Record r = full;
        r[static_cast<size_t>(c.index)] = QString::fromUtf8(c.value);
        const auto res = caigou::checkInput(r);
        EXPECT_FALSE(res.ok) << c.index << c.value;
        EXPECT_EQ(res.focus, c.index);
        EXPECT_EQ(testsupport::boxes().last().prompt, QString::fromUtf8(c.text));
        EXPECT_EQ(testsupport::boxes().last().flags, c.flags);
    }
    // Several faults: only the first in the order is told.
    testsupport::boxes().clear();
    Record empty;
    EXPECT_EQ(caigou::checkInput(empty).focus, 0);
    EXPECT_EQ(testsupport::boxes().calls().size(), 1u);
    Record late = full;
    late[17].clear();
    late[14].clear();
    EXPECT_EQ(caigou::checkInput(late).focus, 14);
}

} // namespace
