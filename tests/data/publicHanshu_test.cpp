// The shared routines: the server's date, the kind of a query field, the check character.
#include "data/globals.h"
#include "data/publicHanshu.h"
#include "tests/support/testsupport.h"

#include <QDate>

namespace {

class ServerDate : public testsupport::DbTest {};

TEST_F(ServerDate, ComesFromTheServerOrWithABoxFromTheLocalClock) {
    gConnStr = makeDatabase();
    const QDateTime before = QDateTime::currentDateTime().addSecs(-5);
    const QDateTime d = serverDate();
    EXPECT_GE(d, before);
    EXPECT_LE(d, QDateTime::currentDateTime().addSecs(5));
    EXPECT_TRUE(testsupport::boxes().calls().empty());

    gConnStr = QStringLiteral("PROVIDER=MSDASQL;DSN=orvane_no_such_source;UID=a;PWD=b;");
    const QDateTime local = serverDate();
    EXPECT_LE(qAbs(local.secsTo(QDateTime::currentDateTime())), 5);
    ASSERT_EQ(testsupport::boxes().calls().size(), 1u);
    const QString head = QStringLiteral("获取服务器日期时出现错误！原因如下：\r\n");
    EXPECT_TRUE(testsupport::boxes().last().prompt.startsWith(head));
    EXPECT_GT(testsupport::boxes().last().prompt.size(), head.size()); // the reason follows
}

TEST(FieldKind, ByTheChineseNameExactly) {
    for (const char16_t* n : {u"日期", u"预定日期", u"验收日期"})
        EXPECT_EQ(fieldKind(QString::fromUtf16(n)), 2);
    for (const char16_t* n : {u"验收册数", u"验收价格", u"预定价格", u"预定册数", u"页码"})
        EXPECT_EQ(fieldKind(QString::fromUtf16(n)), 1);
    for (const char16_t* n : {u"书名", u"预定日期 ", u"价格", u"", u"cgkid"})
        EXPECT_EQ(fieldKind(QString::fromUtf16(n)), 0) << QString::fromUtf16(n).toStdString();
}

// The Qt side of the check character: a digit outside ASCII is no digit.
TEST(IsbnCheckChar, TakesOnlyAsciiDigits) {
    EXPECT_EQ(isbnCheckChar(QStringLiteral("711107579")), QStringLiteral("X"));
    EXPECT_EQ(isbnCheckChar(QStringLiteral("７５０００１２３４")), QString());
    EXPECT_EQ(isbnCheckChar(QStringLiteral("75000123٤")), QString());
}

} // namespace
