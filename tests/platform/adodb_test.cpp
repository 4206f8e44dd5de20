// The data-access layer through the real ODBC path: unixODBC, the SQLite3 ODBC driver and
// our compat extension, on a fresh database of the tool per test.
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/transaction.h"
#include "tests/support/testsupport.h"

#include <QDate>

#include <map>

using namespace adodb;
using testsupport::execSqlite;
using testsupport::querySqlite;

namespace {

// Expects f to raise the runtime error `number`; gives its description.
template <class F> QString expectError(F f, int number) {
    try {
        f();
        ADD_FAILURE() << "error " << number << " expected";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), number) << e.description().toStdString();
        return e.description();
    }
    return {};
}

class AdodbTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        makeDatabase();
        conn.Open(profile());
    }
    long exec(const QString& sql) {
        long n = -2;
        conn.Execute(sql, &n);
        return n;
    }
    QString ids() { return querySqlite(dbPath(), u"select group_concat(cgkid) from cgk"_qs); }
    Connection conn;
};

// SQL Server text as the forms write it, through the ODBC path onto SQLite.
TEST_F(AdodbTest, SqlServerTextAliasesNullsAndErrors) {
    EXPECT_EQ(
        exec(u"Insert Into cgk (cgkid,bookname,author,price,batch,yddate,classcode) Values "
             "(1,'红楼梦 O''Neil','曹雪芹',12.5,'12','2003/1/1','TP312'),"
             "(2,'b',NULL,NULL,'12','2003-01-31 10:00',''),(3,'c','',NULL,'4','2003-1-31','')"_qs),
        3);
    EXPECT_EQ(exec(u"Insert Into printYStotal (batch,bookfrom) Select batch,bookname From cgk "
                   "Where batch='12'"_qs),
              2);
    EXPECT_EQ(exec(u"Delete From cgk Where cgkid=99"_qs), 0);
    Recordset rs;
    rs.Open(u"Select bookname as [书   名],author as [著 者],price as [预定价格] From CGK "
            "Where cgkID=1"_qs,
            conn, adOpenDynamic, adLockOptimistic, adCmdText);
    EXPECT_EQ(rs.fieldNames(), (QStringList{u"书   名"_qs, u"著 者"_qs, u"预定价格"_qs}));
    EXPECT_EQ(rs.text(u"书   名"_qs) + rs.text(1) + rs.text(2), u"红楼梦 O'Neil曹雪芹12.5"_qs);
    EXPECT_EQ(querySqlite(dbPath(), u"select yddate from cgk where cgkid=1"_qs), u"2003-01-01"_qs);
    const std::pair<QString, QString> cases[] = {
        {u"Select Convert(varchar(10),yddate,111) From cgk Where cgkid=1"_qs, u"2003/01/01"_qs},
        {u"Select Sum(cgkid) From cgk Where yddate<='2003-01-31'"_qs, u"4"_qs}, // not 10:00
        {u"Select Distinct left(classcode,1) AS type From cgk Where cgkid=1"_qs, u"T"_qs},
        {u"Select username From LibUse Where username='ADMIN ' AND password='admin'"_qs,
         u"admin"_qs},
        // Leading blanks count.
        {u"Select count(*) From LibUse Where username=' admin'"_qs, u"0"_qs}};
    for (const auto& [sql, want] : cases)
        EXPECT_EQ(conn.Execute(sql)->text(0), want) << sql.toStdString();
    auto nulls = conn.Execute(u"Select cgkid,author,price From cgk Where cgkid=2"_qs);
    EXPECT_TRUE(nulls->isNull(u"AUTHOR"_qs) && nulls->isNull(2) && !nulls->isNull(u"CgkId"_qs));
    EXPECT_EQ(nulls->text(u"author"_qs), QString());
    expectError([&] { (void)nulls->value(u"nosuch"_qs); }, adErrItemNotFound);
    // A failing statement raises the provider's error with the database's own message.
    EXPECT_TRUE(
        expectError([&] { conn.Execute(u"Select nosuchcolumn From cgk"_qs); }, vb::errProvider)
            .contains(u"nosuchcolumn"_qs));
    Connection closed;
    EXPECT_THROW(closed.Open(u"PROVIDER=MSDASQL;DSN=no_such_dsn_orvane;UID=a;PWD=b;"_qs),
                 vb::VbError);
    expectError([&] { closed.Execute(u"select 1"_qs); }, adErrObjectClosed);
}

// A guard rolls back what a failing save left. Another connection to the file works on the
// transaction's handle meanwhile, and its writes stand after a rollback.
TEST_F(AdodbTest, TransactionsAndTheOtherConnectionsWrites) {
    EXPECT_THROW(
        {
            Transaction tx(conn);
            exec(u"Insert Into cgk (cgkid) Values (1)"_qs);
            exec(u"Insert Into nosuchtable (x) Values (1)"_qs);
            tx.commit();
        },
        vb::VbError);
    EXPECT_EQ(ids(), QString());
    Transaction tx(conn);
    exec(u"Insert Into cgk (cgkid) Values (2)"_qs);
    tx.commit();
    Transaction tx2(conn);
    exec(u"Insert Into cgk (cgkid) Values (3)"_qs);
    Connection other;
    other.Open(profile());
    EXPECT_EQ(other.Execute(u"Select count(*) From cgk"_qs)->text(0), u"2"_qs);
    long n = 0;
    other.Execute(u"Insert Into cgk (cgkid) Values (4)"_qs, &n);
    EXPECT_EQ(n, 1);
    tx2.rollback();
    EXPECT_EQ(ids(), u"2,4"_qs); // at once, before the guard's end
}

TEST_F(AdodbTest, WalkingOnePlacePastEitherEndAndBack) {
    Recordset rs;
    rs.Open(u"Select cgkid From cgk"_qs, conn, adOpenKeyset, adLockOptimistic, -1);
    EXPECT_TRUE(rs.BOF() && rs.EOF_() && rs.RecordCount() == 0 && rs.fieldCount() == 1);
    exec(u"Insert Into cgk (cgkid) Values (1),(2)"_qs);
    rs.Open(u"Select cgkid From cgk"_qs, conn, adOpenKeyset, adLockOptimistic, -1);
    EXPECT_EQ(rs.RecordCount(), 2);
    rs.Open(u"Select cgkid From cgk Order by cgkid"_qs, conn, adOpenDynamic, adLockOptimistic, 1);
    EXPECT_EQ(rs.RecordCount(), -1); // dynamic cursors cannot count
    rs.MoveNext();
    rs.MoveNext();
    EXPECT_TRUE(rs.EOF_() && !rs.BOF());
    expectError([&] { (void)rs.value(0); }, adErrNoCurrentRecord);
    expectError([&] { rs.MoveNext(); }, adErrNoCurrentRecord);
    rs.MovePrevious();
    EXPECT_EQ(rs.value(0).toInt(), 2);
    rs.MovePrevious();
    rs.MovePrevious();
    EXPECT_TRUE(rs.BOF() && !rs.EOF_());
    rs.MoveLast();
    EXPECT_EQ(rs.value(0).toInt(), 2);
}

// Rows come in blocks of 256 into buffers of the declared size and are kept in one flat
// store; each case puts odd texts (SQL literals) where that can go wrong. Every row arrives,
// what was read before the walk moved on is still what it was, and any row can be read again.
TEST_F(AdodbTest, RecordsetStoreKeepsEveryRowAcrossBlockEdges) {
    const QString kLong = u"'这一段文字比声明的长度长得多'"_qs;
    const struct {
        const char* name;
        const char* decl; // of the text column
        std::map<int, QString> odd;
    } cases[] = {
        {"null then empty across blocks", "VARCHAR(4)", {{255, u"NULL"_qs}, {256, u"''"_qs}}},
        {"longer than declared", "VARCHAR(4)", {{255, kLong}, {599, kLong}}},
        {"undeclared length by rows", "TEXT", {{255, u"NULL"_qs}, {256, kLong}}}};
    const auto lit = [](const QVariant& v) {
        return v.isNull() ? u"NULL"_qs : u"'%1'"_qs.arg(v.toString());
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        QString sql = u"DROP TABLE IF EXISTS v; CREATE TABLE v (id INTEGER, s %1, d DATETIME); "
                      "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM n WHERE i<599) "
                      "INSERT INTO v SELECT i, '甲'||(i/3), date('2003-01-01','+'||(i/100)||' "
                      "days') FROM n;"_qs.arg(QString::fromUtf8(c.decl));
        for (const auto& [id, value] : c.odd)
            sql += u"UPDATE v SET s=%1 WHERE id=%2;"_qs.arg(value).arg(id);
        execSqlite(dbPath(), sql);
        const auto want = [&](int i) {
            return c.odd.count(i) ? c.odd.at(i) : u"'甲%1'"_qs.arg(i / 3);
        };
        auto rs = conn.Execute(u"Select id,s,d From v Order by id"_qs);
        std::vector<std::pair<int, QVariant>> kept;
        int i = 0;
        for (; !rs->EOF_(); rs->MoveNext(), ++i) {
            ASSERT_EQ(rs->value(0).toInt(), i);
            EXPECT_EQ(lit(rs->value(1)), want(i)) << "row " << i;
            EXPECT_EQ(rs->value(2).toDateTime(),
                      QDateTime(QDate(2003, 1, 1).addDays(i / 100), QTime(0, 0)))
                << "row " << i;
            if (i == 0 || c.odd.count(i)) kept.emplace_back(i, rs->value(1));
        }
        EXPECT_EQ(i, 600);
        for (const auto& [id, v] : kept) {
            EXPECT_EQ(lit(v), want(id)) << "kept row " << id;
            EXPECT_EQ(lit(rs->value(long(id), 1)), want(id)) << "row " << id << " again";
        }
    }
}

} // namespace
