// The data-access layer through the real ODBC path: unixODBC, the SQLite3 ODBC driver and
// our compat extension, on a fresh SQLite file per test.
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/transaction.h"
#include "tests/support/testsupport.h"

#include <QDate>
#include <QFile>

#include <map>

using namespace adodb;
using testsupport::execSqlite;
using testsupport::querySqlite;

namespace {

template <class F> void expectError(F f, int number) {
    try {
        f();
        ADD_FAILURE() << "error " << number << " expected";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), number) << e.description().toStdString();
    }
}

class AdodbTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        makeEmptyDatabase();
        execSqlite(dbPath(),
                   u"CREATE TABLE cgk (cgkid INTEGER PRIMARY KEY, bookname TEXT "
                   "COLLATE VBTEXT, author TEXT, price REAL, batch TEXT, yddate "
                   "DATETIME, classcode TEXT); CREATE TRIGGER n AFTER INSERT ON cgk "
                   "BEGIN UPDATE cgk SET yddate=vb_normdate(NEW.yddate) WHERE "
                   "rowid=NEW.rowid; END; CREATE TABLE LibUse (userid INTEGER, username "
                   "TEXT COLLATE VBTEXT, password TEXT COLLATE VBTEXT, cgk BIT); INSERT "
                   "INTO LibUse VALUES (1,'admin','admin',1),(2,'guest','guest',NULL);"
                   "CREATE TABLE printYStotal (batch TEXT, bookfrom TEXT, jine REAL);"_qs);
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

TEST_F(AdodbTest, ChineseAliasesQuotesAndRecordsAffected) {
    EXPECT_EQ(exec(u"Insert Into cgk (cgkid,bookname,author,price,batch) Values "
                   "(1,'红楼梦 O''Neil','曹雪芹',12.5,'1'),(2,'b','','','1'),(3,'c','','','2')"_qs),
              3);
    EXPECT_EQ(exec(u"Insert Into printYStotal (batch,bookfrom) Select batch,bookname From cgk "
                   "Where batch='1'"_qs),
              2);
    EXPECT_EQ(exec(u"Update cgk Set price=1 Where cgkid>1"_qs), 2);
    EXPECT_EQ(exec(u"Delete From cgk Where cgkid=99"_qs), 0);
    Recordset rs;
    rs.Open(u"Select bookname as [书   名],author as [著 者],price as [预定价格] From CGK "
            "Where cgkID=1"_qs,
            conn, adOpenDynamic, adLockOptimistic, adCmdText);
    EXPECT_EQ(rs.fieldNames(), (QStringList{u"书   名"_qs, u"著 者"_qs, u"预定价格"_qs}));
    EXPECT_EQ(rs.text(u"书   名"_qs), u"红楼梦 O'Neil"_qs);
    EXPECT_EQ(rs.text(1) + rs.text(2), u"曹雪芹12.5"_qs);
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
    Transaction tx3(conn);
    exec(u"Insert Into cgk (cgkid) Values (5)"_qs);
    tx3.commit();
    EXPECT_EQ(ids(), u"2,4,5"_qs);
}

TEST_F(AdodbTest, WalkingOnePlacePastEitherEndAndBack) {
    Recordset rs;
    rs.Open(u"Select cgkid From cgk"_qs, conn, adOpenKeyset, adLockOptimistic, -1);
    EXPECT_TRUE(rs.BOF() && rs.EOF_());
    EXPECT_EQ(rs.RecordCount(), 0);
    EXPECT_EQ(rs.fieldCount(), 1);
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
    expectError([&] { rs.MovePrevious(); }, adErrNoCurrentRecord);
    rs.MoveNext();
    EXPECT_EQ(rs.value(0).toInt(), 1);
    rs.MoveLast();
    EXPECT_EQ(rs.value(0).toInt(), 2);
}

TEST_F(AdodbTest, NullsNamesInAnyCaseAndErrors) {
    exec(u"Insert Into cgk (cgkid,bookname) Values (1,'a')"_qs);
    auto rs = conn.Execute(u"Select cgkid,author,price From cgk"_qs);
    EXPECT_TRUE(rs->isNull(u"AUTHOR"_qs) && rs->isNull(2) && !rs->isNull(u"CgkId"_qs));
    EXPECT_EQ(rs->text(u"author"_qs), QString());
    expectError([&] { (void)rs->value(u"nosuch"_qs); }, adErrItemNotFound);
    auto users = conn.Execute(u"Select cgk From LibUse Order by userid"_qs);
    EXPECT_TRUE(users->value(0).toBool());
    users->MoveNext();
    EXPECT_TRUE(users->isNull(0) && !users->value(0).toBool()); // a NULL right is no right
    try {
        conn.Execute(u"Select nosuchcolumn From cgk"_qs);
        ADD_FAILURE() << "the statement must fail";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), vb::errProvider);
        EXPECT_TRUE(e.description().contains(u"nosuchcolumn"_qs)) << e.description().toStdString();
    }
    Connection closed;
    expectError([&] { closed.Execute(u"select 1"_qs); }, adErrObjectClosed);
    EXPECT_THROW(closed.Open(u"PROVIDER=MSDASQL;DSN=no_such_dsn_orvane;UID=a;PWD=b;"_qs),
                 vb::VbError);
    EXPECT_FALSE(closed.isOpen());
}

// SQL Server text that the compat extension and the dialect adaptation make run on SQLite.
TEST_F(AdodbTest, SqlServerDialectRunsOnSqlite) {
    exec(u"Insert Into cgk (cgkid,batch,yddate,classcode) Values (1,'12','2003/1/1','TP312'),"
         "(2,'3','2003-01-31 10:00',''),(3,'4','2003-1-31','')"_qs);
    EXPECT_EQ(querySqlite(dbPath(), u"select yddate from cgk where cgkid=1"_qs), u"2003-01-01"_qs);
    const std::pair<QString, QString> cases[] = {
        {u"Select Convert(varchar(10),yddate,111) From cgk Where cgkid=1"_qs, u"2003/01/01"_qs},
        {u"Select Sum(cgkid) From cgk Where yddate<='2003-01-31'"_qs, u"4"_qs}, // not 10:00
        {u"Select '第 '+batch+' 批采购验收传票' From cgk Where cgkid=1"_qs,
         u"第 12 批采购验收传票"_qs},
        {u"Select Distinct left(classcode,1) AS type From cgk Where cgkid=1"_qs, u"T"_qs},
        {u"Select Convert(varchar(4),getdate(),111)"_qs,
         QString::number(QDate::currentDate().year())},
        {u"Select userid From LibUse Where username='ADMIN ' AND password='admin'"_qs, u"1"_qs},
        {u"Select count(*) From LibUse Where username=' admin'"_qs,
         u"0"_qs}, // leading blanks count
    };
    for (const auto& [sql, want] : cases)
        EXPECT_EQ(conn.Execute(sql)->text(0), want) << sql.toStdString();
    // A quote in a password makes the login statement fail.
    EXPECT_THROW(conn.Execute(u"Select userid From LibUse Where password='x'y'"_qs), vb::VbError);
}

TEST_F(AdodbTest, ShapedStatementGroupsInTableOrder) {
    exec(u"Insert Into printYStotal Values ('2','甲',1),('1','乙',2),('2','丙',3),('1','丁',4),"
         "('3','戊',5)"_qs);
    Connection shaped;
    shaped.Open(profile().replace(u"MSDASQL"_qs, u"MSDataShape"_qs));
    Recordset rs;
    rs.Open(u" SHAPE {select batch,bookfrom,jine from printYStotal}  AS myPrint "
            "COMPUTE myPrint BY 'batch'"_qs,
            shaped, adOpenDynamic, adLockOptimistic, adCmdText);
    QStringList groups;
    for (; !rs.EOF_(); rs.MoveNext()) {
        groups << rs.text(u"batch"_qs) + u':';
        for (Recordset* c = rs.child(u"myPrint"_qs); !c->EOF_(); c->MoveNext())
            groups.back() += c->text(u"bookfrom"_qs);
    }
    EXPECT_EQ(groups, (QStringList{u"2:甲丙"_qs, u"1:乙丁"_qs, u"3:戊"_qs}));
}

TEST(AdodbProfile, ProviderItemDroppedTheRestAsItStands) {
    EXPECT_EQ(parseProfile(u"PROVIDER=MSDASQL;DSN=orvane;UID=sa;PWD=x;"_qs).odbc,
              u"DSN=orvane;UID=sa;PWD=x;"_qs);
    const OdbcProfile p = parseProfile(u"PROVIDER=MSDataShape;Driver=SQL Server;Server=h;"_qs);
    EXPECT_TRUE(p.shaped && p.odbc == u"Driver=SQL Server;Server=h;"_qs) << p.odbc.toStdString();
}

// A user data source in a private odbc.ini: listed by SQLDataSources and reachable by a
// DSN profile, with the compat extension named in the source itself.
TEST_F(AdodbTest, UserDataSourceIsListedAndOpens) {
    QFile ini(tempPath() + u"/odbc.ini"_qs);
    ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
    ini.write(u"[orvane_test_dsn]\nDriver=SQLite3\nDatabase=%1\nLoadExt=%2\n"_qs
                  .arg(dbPath(), testsupport::compatModule())
                  .toUtf8());
    ini.close();
    qputenv("ODBCINI", ini.fileName().toLocal8Bit());
    bool listed = false;
    for (const auto& ds : dataSources()) listed = listed || ds.name == u"orvane_test_dsn"_qs;
    EXPECT_TRUE(listed);
    Connection dsn;
    dsn.Open(u"PROVIDER=MSDASQL;DSN=orvane_test_dsn;UID=;PWD=;"_qs);
    EXPECT_EQ(dsn.Execute(u"Select username+'乙' From LibUse Where username='GUEST  '"_qs)->text(0),
              u"guest乙"_qs);
    qunsetenv("ODBCINI");
}

// Rows come in blocks of 256 into buffers of the declared size and are kept in one flat
// store; each case puts odd texts (SQL literals) where that can go wrong.
struct StoreCase {
    const char* name;
    const char* decl; // of the text column
    std::map<int, QString> odd;
};
void PrintTo(const StoreCase& c, std::ostream* os) {
    *os << c.name;
}
class RecordsetStore : public testsupport::DbTest,
                       public ::testing::WithParamInterface<StoreCase> {};

TEST_P(RecordsetStore, EveryRowArrivesAndStays) {
    const StoreCase& c = GetParam();
    makeEmptyDatabase();
    QString sql =
        u"CREATE TABLE v (id INTEGER, s %1, d DATETIME); WITH RECURSIVE n(i) AS (SELECT "
        "0 UNION ALL SELECT i+1 FROM n WHERE i<599) INSERT INTO v SELECT i, '甲'||(i/3), "
        "date('2003-01-01','+'||(i/100)||' days') FROM n;"_qs.arg(QString::fromUtf8(c.decl));
    for (const auto& [id, lit] : c.odd)
        sql += u"UPDATE v SET s=%1 WHERE id=%2;"_qs.arg(lit).arg(id);
    execSqlite(dbPath(), sql);
    const auto want = [&](int i) { return c.odd.count(i) ? c.odd.at(i) : u"'甲%1'"_qs.arg(i / 3); };
    const auto lit = [](const QVariant& v) {
        return v.isNull() ? u"NULL"_qs : u"'%1'"_qs.arg(v.toString());
    };
    Connection conn;
    conn.Open(profile());
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
    // What was read before the walk moved on is still what it was; any row can be read again.
    for (const auto& [id, v] : kept) {
        EXPECT_EQ(lit(v), want(id)) << "kept row " << id;
        EXPECT_EQ(lit(rs->value(long(id), 1)), want(id)) << "row " << id << " again";
    }
}

const QString kLong = u"'这一段文字比声明的长度长得多'"_qs;
INSTANTIATE_TEST_SUITE_P(
    Blocks, RecordsetStore,
    ::testing::Values(
        StoreCase{"NullThenEmptyAcrossBlocks", "VARCHAR(4)", {{255, u"NULL"_qs}, {256, u"''"_qs}}},
        StoreCase{"EmptyThenNullAcrossBlocks", "VARCHAR(4)", {{255, u"''"_qs}, {256, u"NULL"_qs}}},
        StoreCase{"ShortAtBlockStarts", "VARCHAR(4)", {{256, u"'x'"_qs}, {512, u"'乙'"_qs}}},
        StoreCase{"LongerThanDeclared", "VARCHAR(4)", {{255, kLong}, {599, kLong}}},
        StoreCase{"UndeclaredLengthByRows", "TEXT", {{255, u"NULL"_qs}, {256, kLong}}}),
    [](const auto& p) { return std::string(p.param.name); });

} // namespace
