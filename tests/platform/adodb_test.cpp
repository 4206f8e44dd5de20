// The data-access layer through the real ODBC path: unixODBC, the SQLite3 ODBC driver and
// our compat extension, on a fresh SQLite file per test.
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/transaction.h"
#include "tests/support/testsupport.h"

#include <QDate>
#include <QFile>

using namespace adodb;
using testsupport::execSqlite;
using testsupport::querySqlite;

namespace {

class AdodbTest : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        makeEmptyDatabase();
        execSqlite(
            dbPath(),
            QStringLiteral(
                "CREATE TABLE cgk (cgkid INTEGER PRIMARY KEY, bookname TEXT COLLATE VBTEXT, "
                "author TEXT COLLATE VBTEXT, price REAL, batch TEXT COLLATE VBTEXT, "
                "status INTEGER DEFAULT 0, yddate DATETIME, classcode TEXT COLLATE VBTEXT);"
                "CREATE TRIGGER cgk_yddate_i AFTER INSERT ON cgk WHEN NEW.yddate IS NOT "
                "vb_normdate(NEW.yddate) "
                "BEGIN UPDATE cgk SET yddate=vb_normdate(NEW.yddate) WHERE rowid=NEW.rowid; END;"
                "CREATE TABLE LibUse (userid INTEGER PRIMARY KEY, username TEXT COLLATE VBTEXT, "
                "password TEXT COLLATE VBTEXT, cgk BIT);"
                "INSERT INTO LibUse VALUES (1,'admin','admin',1),(2,'guest','guest',NULL);"
                "CREATE TABLE printYStotal (batch TEXT, bookfrom TEXT, jine REAL);"));
    }

    void exec(const QString& sql, long* affected = nullptr) {
        Connection conn;
        conn.Open(profile());
        conn.Execute(sql, affected);
    }
};

TEST_F(AdodbTest, ChineseTextBracketAliasesAndDoubledQuotesRoundTrip) {
    exec(QStringLiteral(
        "Insert Into cgk (cgkid,bookname,author,price) Values (1,'红楼梦 O''Neil','曹雪芹',12.5)"));
    EXPECT_EQ(querySqlite(dbPath(), QStringLiteral("select bookname from cgk")),
              QStringLiteral("红楼梦 O'Neil"));

    Connection conn;
    conn.Open(profile());
    Recordset rs;
    rs.Open(QStringLiteral("Select bookname as [书   名],author as [著 者],price as [预定价格] "
                           "From CGK Where cgkID=1"),
            conn, adOpenDynamic, adLockOptimistic, adCmdText);
    ASSERT_FALSE(rs.EOF_());
    EXPECT_EQ(rs.fieldName(0), QStringLiteral("书   名"));
    EXPECT_EQ(rs.fieldName(1), QStringLiteral("著 者"));
    EXPECT_EQ(rs.text(QStringLiteral("书   名")), QStringLiteral("红楼梦 O'Neil"));
    EXPECT_EQ(rs.text(1), QStringLiteral("曹雪芹"));
    EXPECT_EQ(rs.text(2), QStringLiteral("12.5"));
    EXPECT_EQ(conn.dbms(), Dbms::SQLite);
}

TEST_F(AdodbTest, RecordsAffectedOfWritesAndInsertSelect) {
    long n = 0;
    exec(QStringLiteral("Insert Into cgk (cgkid,bookname,batch) Values (1,'a','1')"), &n);
    EXPECT_EQ(n, 1);
    exec(QStringLiteral("Insert Into cgk (cgkid,bookname,batch) Values (2,'b','1')"));
    exec(QStringLiteral("Insert Into cgk (cgkid,bookname,batch) Values (3,'c','2')"));
    exec(QStringLiteral("Insert Into printYStotal (batch,bookfrom) Select batch,bookname From cgk "
                        "Where batch='1'"),
         &n);
    EXPECT_EQ(n, 2);
    exec(QStringLiteral("Update cgk Set price=1 Where cgkid>0"), &n);
    EXPECT_EQ(n, 3);
    exec(QStringLiteral("Delete From cgk Where cgkid=99"), &n);
    EXPECT_EQ(n, 0);
}

TEST_F(AdodbTest, RollbackLeavesNothingBehindCommitKeepsIt) {
    {
        Connection conn;
        conn.Open(profile());
        conn.BeginTrans();
        conn.Execute(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (1,'a')"));
        conn.Execute(QStringLiteral("Update cgk Set bookname='b' Where cgkid=1"));
        conn.RollbackTrans();
    }
    EXPECT_EQ(querySqlite(dbPath(), QStringLiteral("select count(*) from cgk")),
              QStringLiteral("0"));
    {
        Connection conn;
        conn.Open(profile());
        conn.BeginTrans();
        conn.Execute(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (2,'c')"));
        conn.CommitTrans();
    }
    EXPECT_EQ(querySqlite(dbPath(), QStringLiteral("select bookname from cgk")),
              QStringLiteral("c"));
}

TEST_F(AdodbTest, WalkingOnePlacePastEitherEndAndBack) {
    exec(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (1,'a')"));
    exec(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (2,'b')"));
    Connection conn;
    conn.Open(profile());
    Recordset rs;
    rs.Open(QStringLiteral("Select cgkid From cgk Order by cgkid"), conn, adOpenDynamic,
            adLockOptimistic, adCmdText);
    EXPECT_FALSE(rs.BOF());
    EXPECT_EQ(rs.value(0).toInt(), 1);
    rs.MoveNext();
    EXPECT_EQ(rs.value(0).toInt(), 2);
    rs.MoveNext();
    EXPECT_TRUE(rs.EOF_());
    // At EOF there is no current record, and a step further is refused.
    try {
        (void)rs.value(0);
        ADD_FAILURE() << "a field at EOF must fail";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), adErrNoCurrentRecord);
    }
    EXPECT_THROW(rs.MoveNext(), vb::VbError);
    rs.MovePrevious();
    EXPECT_EQ(rs.value(0).toInt(), 2);
    rs.MovePrevious();
    rs.MovePrevious();
    EXPECT_TRUE(rs.BOF());
    EXPECT_FALSE(rs.EOF_());
    EXPECT_THROW(rs.MovePrevious(), vb::VbError);
    rs.MoveNext();
    EXPECT_EQ(rs.value(0).toInt(), 1);
    rs.MoveLast();
    EXPECT_EQ(rs.value(0).toInt(), 2);
    // Dynamic cursors cannot count; keyset ones can.
    EXPECT_EQ(rs.RecordCount(), -1);
    Recordset keyset;
    keyset.Open(QStringLiteral("Select cgkid From cgk"), conn, adOpenKeyset, adLockOptimistic,
                adOptionUnspecified);
    EXPECT_EQ(keyset.RecordCount(), 2);
}

TEST_F(AdodbTest, EmptyResultIsBofAndEofAtOnce) {
    Connection conn;
    conn.Open(profile());
    Recordset rs;
    rs.Open(QStringLiteral("Select cgkid From cgk"), conn, adOpenKeyset, adLockOptimistic,
            adOptionUnspecified);
    EXPECT_TRUE(rs.BOF());
    EXPECT_TRUE(rs.EOF_());
    EXPECT_EQ(rs.RecordCount(), 0);
    EXPECT_EQ(rs.fieldCount(), 1);
}

TEST_F(AdodbTest, NullFieldsAndFieldsByNameAnyCase) {
    exec(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (1,'a')"));
    Connection conn;
    conn.Open(profile());
    auto rs = conn.Execute(QStringLiteral("Select cgkid,author,price From cgk"));
    EXPECT_TRUE(rs->isNull(QStringLiteral("AUTHOR")));
    EXPECT_TRUE(rs->isNull(2));
    EXPECT_EQ(rs->text(QStringLiteral("author")), QString());
    EXPECT_FALSE(rs->isNull(QStringLiteral("CgkId")));
    EXPECT_THROW((void)rs->value(QStringLiteral("nosuch")), vb::VbError);
    // A NULL right is no right.
    auto users = conn.Execute(QStringLiteral("Select userid,cgk From LibUse Order by userid"));
    EXPECT_TRUE(users->value(1).toBool());
    users->MoveNext();
    EXPECT_TRUE(users->isNull(1));
    EXPECT_FALSE(users->value(1).toBool());
}

TEST_F(AdodbTest, SqlServerDialectRunsOnSqlite) {
    exec(QStringLiteral("Insert Into cgk (cgkid,bookname,batch,yddate,classcode) Values "
                        "(1,'a','12','2003/1/1','TP312')"));
    exec(QStringLiteral(
        "Insert Into cgk (cgkid,bookname,batch,yddate) Values (2,'b','3','2003-01-31 10:00')"));
    exec(QStringLiteral(
        "Insert Into cgk (cgkid,bookname,batch,yddate) Values (3,'c','4','2003-1-31')"));
    Connection conn;
    conn.Open(profile());

    auto rs = conn.Execute(
        QStringLiteral("Select Convert(varchar(10),yddate,111) From cgk Where cgkid=1"));
    EXPECT_EQ(rs->text(0), QStringLiteral("2003/01/01"));
    // Stored normalised: midnight without a time.
    EXPECT_EQ(querySqlite(dbPath(), QStringLiteral("select yddate from cgk where cgkid=1")),
              QStringLiteral("2003-01-01"));

    rs = conn.Execute(
        QStringLiteral("Select cgkid From cgk Where yddate<='2003-01-31' Order by cgkid"));
    QList<int> ids;
    while (!rs->EOF_()) {
        ids << rs->value(0).toInt();
        rs->MoveNext();
    }
    EXPECT_EQ(ids, (QList<int>{1, 3})); // 10:00 on the 31st is after the 31st

    rs = conn.Execute(QStringLiteral("select getdate()"));
    const QString now = rs->text(0);
    EXPECT_TRUE(now.startsWith(QDate::currentDate().toString(QStringLiteral("yyyy"))) ||
                now.contains(QDate::currentDate().toString(QStringLiteral("yyyy"))))
        << now.toStdString();

    rs =
        conn.Execute(QStringLiteral("Select '第 '+batch+' 批采购验收传票' From cgk Where cgkid=1"));
    EXPECT_EQ(rs->text(0), QStringLiteral("第 12 批采购验收传票"));

    rs = conn.Execute(
        QStringLiteral("Select Distinct left(classcode,1) AS type From cgk Where cgkid=1"));
    EXPECT_EQ(rs->text(0), QStringLiteral("T"));

    // Numbers still add.
    rs = conn.Execute(QStringLiteral("Select cgkid+1 From cgk Where cgkid=1"));
    EXPECT_EQ(rs->value(0).toInt(), 2);
}

TEST_F(AdodbTest, UserNameComparesWithoutCaseAndTrailingBlanks) {
    Connection conn;
    conn.Open(profile());
    auto rs = conn.Execute(QStringLiteral(
        "Select userid,cgk From LibUse Where username='ADMIN ' AND password='admin'"));
    ASSERT_FALSE(rs->EOF_());
    EXPECT_EQ(rs->value(0).toInt(), 1);
    rs = conn.Execute(QStringLiteral("Select userid From LibUse Where username=' admin'"));
    EXPECT_TRUE(rs->EOF_()); // leading blanks do count
}

TEST_F(AdodbTest, ShapedStatementGroupsInTableOrder) {
    exec(QStringLiteral("Insert Into printYStotal Values "
                        "('2','甲',1),('1','乙',2),('2','丙',3),('1','丁',4),('3','戊',5)"));
    Connection conn;
    QString shaped = profile();
    shaped.replace(QStringLiteral("MSDASQL"), QStringLiteral("MSDataShape"));
    conn.Open(shaped);
    ASSERT_TRUE(conn.isShaped());
    Recordset rs;
    rs.Open(QStringLiteral(" SHAPE {select batch,bookfrom,jine from printYStotal}  AS myPrint "
                           "COMPUTE myPrint BY 'batch'"),
            conn, adOpenDynamic, adLockOptimistic, adCmdText);
    QStringList parents;
    QStringList children;
    while (!rs.EOF_()) {
        parents << rs.text(QStringLiteral("batch"));
        Recordset* child = rs.child(QStringLiteral("myPrint"));
        QStringList names;
        while (!child->EOF_()) {
            names << child->text(QStringLiteral("bookfrom"));
            child->MoveNext();
        }
        children << names.join(u',');
        rs.MoveNext();
    }
    EXPECT_EQ(parents,
              (QStringList{QStringLiteral("2"), QStringLiteral("1"), QStringLiteral("3")}));
    EXPECT_EQ(children, (QStringList{QStringLiteral("甲,丙"), QStringLiteral("乙,丁"),
                                     QStringLiteral("戊")}));
}

TEST_F(AdodbTest, ProviderTextReachesVbErrorUnchanged) {
    Connection conn;
    conn.Open(profile());
    try {
        conn.Execute(QStringLiteral("Select nosuchcolumn From cgk"));
        ADD_FAILURE() << "the statement must fail";
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), vb::errProvider);
        EXPECT_TRUE(e.description().contains(QStringLiteral("nosuchcolumn")))
            << e.description().toStdString();
    }
    // A password with a quote makes the login statement a syntax error.
    try {
        conn.Execute(
            QStringLiteral("Select userid,cgk From LibUse Where username='a' AND password='x'y'"));
        ADD_FAILURE() << "the statement must fail";
    } catch (const vb::VbError& e) {
        EXPECT_FALSE(e.description().isEmpty());
    }
}

TEST_F(AdodbTest, UnopenedConnectionAndBadProfile) {
    Connection closed;
    try {
        closed.Execute(QStringLiteral("select 1"));
        ADD_FAILURE();
    } catch (const vb::VbError& e) {
        EXPECT_EQ(e.number(), adErrObjectClosed);
        EXPECT_EQ(e.description(), QStringLiteral("对象关闭时，不允许操作。"));
    }
    Connection bad;
    try {
        bad.Open(QStringLiteral("PROVIDER=MSDASQL;DSN=no_such_dsn_orvane;UID=a;PWD=b;"));
        ADD_FAILURE();
    } catch (const vb::VbError& e) {
        EXPECT_FALSE(e.description().isEmpty());
    }
    EXPECT_FALSE(bad.isOpen());
}

TEST(AdodbProfile, ProviderItemDroppedTheRestAsItStands) {
    auto p = parseProfile(QStringLiteral("PROVIDER=MSDASQL;DSN=orvane;UID=sa;PWD=x;"));
    EXPECT_EQ(p.odbc, QStringLiteral("DSN=orvane;UID=sa;PWD=x;"));
    EXPECT_FALSE(p.shaped);
    p = parseProfile(
        QStringLiteral("PROVIDER=MSDataShape;Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;"));
    EXPECT_EQ(p.odbc, QStringLiteral("Driver=SQL Server;Server=h;UID=u;PWD=p;Database=d;"));
    EXPECT_TRUE(p.shaped);
}

} // namespace

namespace {

// A user data source in a private odbc.ini: listed by SQLDataSources and reachable by a
// DSN profile, with the compat extension named in the source itself.
class DataSourceTest : public testsupport::DbTest {};

TEST_F(DataSourceTest, UserDataSourceIsListedAndOpens) {
    makeEmptyDatabase();
    execSqlite(
        dbPath(),
        QStringLiteral("CREATE TABLE t (x TEXT COLLATE VBTEXT); INSERT INTO t VALUES ('甲')"));
    const QString ini = tempPath() + QStringLiteral("/odbc.ini");
    QFile f(ini);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(QStringLiteral("[orvane_test_dsn]\nDescription=OrvaneCG "
                           "test\nDriver=SQLite3\nDatabase=%1\nLoadExt=%2\n")
                .arg(dbPath(), testsupport::compatModule())
                .toUtf8());
    f.close();
    const QByteArray previous = qgetenv("ODBCINI");
    qputenv("ODBCINI", ini.toLocal8Bit());
    bool listed = false;
    for (const auto& ds : dataSources())
        if (ds.name == QStringLiteral("orvane_test_dsn")) listed = true;
    EXPECT_TRUE(listed);
    Connection conn;
    conn.Open(QStringLiteral("PROVIDER=MSDASQL;DSN=orvane_test_dsn;UID=;PWD=;"));
    auto rs = conn.Execute(QStringLiteral("Select x+'乙' From t Where x='甲  '"));
    ASSERT_FALSE(rs->EOF_());
    EXPECT_EQ(rs->text(0), QStringLiteral("甲乙"));
    if (previous.isEmpty())
        qunsetenv("ODBCINI");
    else
        qputenv("ODBCINI", previous);
}

} // namespace

namespace {

// Rows come in blocks into buffers of the declared column size; a text longer than its
// column said (SQLite does not enforce lengths) must still arrive whole.
class FetchPaths : public testsupport::DbTest {};

TEST_F(FetchPaths, BoundBlocksAndLongerThanDeclaredTextsArriveWhole) {
    makeEmptyDatabase();
    QString sql = QStringLiteral("CREATE TABLE v (id INTEGER, s VARCHAR(4), t TEXT);");
    for (int i = 0; i < 600; ++i) // more rows than one block
        sql += QStringLiteral("INSERT INTO v VALUES (%1,'%2','长%1');").arg(i).arg(i % 10);
    sql += QStringLiteral("INSERT INTO v VALUES (600,'这一段文字比声明的长度长得多','x');");
    execSqlite(dbPath(), sql);
    Connection conn;
    conn.Open(profile());
    auto rs = conn.Execute(QStringLiteral("Select id,s From v Order by id"));
    long n = 0;
    QString last;
    while (!rs->EOF_()) {
        if (n < 600) {
            EXPECT_EQ(rs->text(1), QString::number(n % 10));
        }
        last = rs->text(1);
        rs->MoveNext();
        ++n;
    }
    EXPECT_EQ(n, 601);
    EXPECT_EQ(last, QStringLiteral("这一段文字比声明的长度长得多"));
    auto t = conn.Execute(QStringLiteral("Select t From v Where id=599"));
    EXPECT_EQ(t->text(0), QStringLiteral("长599"));
}

} // namespace

// The guard around a save: what a failing statement leaves behind is rolled back when the
// error unwinds the handler; a commit keeps the rows; an explicit rollback comes at once.
TEST_F(AdodbTest, TransactionGuardRollsBackUnlessCommitted) {
    const auto count = [&] {
        return querySqlite(dbPath(), QStringLiteral("select count(*) from cgk")).toInt();
    };
    Connection conn;
    conn.Open(profile());
    EXPECT_THROW(
        {
            Transaction tx(conn);
            conn.Execute(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (1,'a')"));
            conn.Execute(QStringLiteral("Insert Into nosuchtable (x) Values (1)"));
            tx.commit();
        },
        vb::VbError);
    EXPECT_EQ(count(), 0);
    {
        Transaction tx(conn);
        conn.Execute(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (2,'b')"));
        EXPECT_TRUE(tx.isOpen());
        tx.commit();
        EXPECT_FALSE(tx.isOpen());
    }
    EXPECT_EQ(count(), 1);
    {
        Transaction tx(conn);
        conn.Execute(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (3,'c')"));
        tx.rollback();
        // Rolled back before the end of the scope: the next transaction starts clean.
        EXPECT_EQ(count(), 1);
        Transaction again(conn);
        conn.Execute(QStringLiteral("Insert Into cgk (cgkid,bookname) Values (4,'d')"));
        again.commit();
    }
    EXPECT_EQ(querySqlite(dbPath(), QStringLiteral("select group_concat(cgkid) from cgk")),
              QStringLiteral("2,4"));
}
