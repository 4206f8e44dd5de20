// orvane-report as a script runs it: the real executable on a database file, its exit
// code, its stderr, the file it writes and the print table it leaves filled.

#include "tests/support/testsupport.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

namespace {

struct Result {
    int code = -1;
    QString err;
};

class OrvaneReport : public testsupport::DbTest {
protected:
    void SetUp() override {
        DbTest::SetUp();
        makeDatabase();
        testsupport::execSqlite(
            dbPath(),
            QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,lagclass,price,bookcount,"
                           "status,batch,ysprice,yscount,ysjine,ysdate) Values "
                           "(1,'新华书店','红楼梦','中文',10,3,1,'B1',9,2,18,'2003-05-06'),"
                           "(2,'外文书店','Hamlet','英文',30,2,0,NULL,NULL,NULL,NULL,NULL)"));
    }
    Result run(const QStringList& args) {
        QProcess p;
        p.setProgram(QStringLiteral(ORVANE_REPORT_EXE));
        p.setArguments(args);
        p.start();
        EXPECT_TRUE(p.waitForFinished(60000));
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardError())};
    }
    QString out(const char* name) { return tempPath() + u'/' + QString::fromLatin1(name); }
    QStringList db() { return {QStringLiteral("--db"), dbPath()}; }
};

TEST_F(OrvaneReport, WritesCsvAndLeavesThePrintTableFilled) {
    const Result r = run(db() + QStringList{"--where", " Where lagclass='中文'", "--out",
                                            out("t.csv"), "tbookfrom"});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QStringLiteral("请将打印机设置为A4横向打印！")));
    EXPECT_TRUE(QFileInfo(out("t.csv")).size() > 0);
    EXPECT_EQ(
        testsupport::querySqlite(dbPath(), QStringLiteral("select count(*) from printTotalJE")),
        QStringLiteral("2"));
    EXPECT_EQ(
        testsupport::querySqlite(
            dbPath(), QStringLiteral("select ysjine from printTotalJE where name='新华书店'")),
        QStringLiteral("18.0"));
}

TEST_F(OrvaneReport, WritesPdfAndXlsx) {
    const std::tuple<const char*, const char*, QByteArray> cases[] = {
        {"m.pdf", "totalmx", "%PDF-"}, {"c.xlsx", "totaltotal", "PK"}}; // xlsx: a zip
    for (const auto& [file, statistic, magic] : cases) {
        const Result r = run(db() + QStringList{"--out", out(file), statistic});
        EXPECT_EQ(r.code, 0) << r.err.toStdString();
        QFile f(out(file));
        ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << file;
        EXPECT_EQ(f.read(magic.size()), magic);
    }
}

TEST_F(OrvaneReport, BadUsageExitsWithTwoAndWritesNothing) {
    const QStringList cases[] = {
        {},                                                          // nothing
        {"--out", out("x.csv")},                                     // no statistic
        {"--out", out("x.csv"), "tnothing"},                         // unknown statistic
        {"tjine"},                                                   // no --out
        {"--out", out("x.txt"), "tjine"},                            // unknown file kind
        {"--where", "bookfrom='a'", "--out", out("x.csv"), "tjine"}, // clause without Where
        {"--order", "price", "--out", out("x.csv"), "print"},        // clause without Order By
        {"--db", "a.db", "--dsn", "b", "--out", out("x.csv"), "tjine"},
        {"--bogus", "--out", out("x.csv"), "tjine"},
    };
    for (const QStringList& args : cases) {
        SCOPED_TRACE(args.join(u' ').toStdString());
        const Result r = run(args);
        EXPECT_EQ(r.code, 2);
        EXPECT_TRUE(r.err.contains(QStringLiteral("usage: orvane-report")));
    }
    EXPECT_FALSE(QFileInfo::exists(out("x.csv")));
    EXPECT_FALSE(QFileInfo::exists(out("x.txt")));
}

TEST_F(OrvaneReport, AFailingStatementGivesTheDatabasesMessageAndOne) {
    // A source with a quote is put into the statement as it is.
    testsupport::execSqlite(dbPath(), QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,"
                                                     "status) Values (3,'O''Reilly','Perl',0)"));
    Result r = run(db() + QStringList{"--out", out("q.csv"), "tjine"});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.contains(QStringLiteral("syntax error"))) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains(QStringLiteral("请将打印机"))); // stopped before the paper
    EXPECT_FALSE(QFileInfo::exists(out("q.csv")));

    // A clause the database refuses.
    r = run(db() + QStringList{"--where", " Where nosuchcolumn=1", "--out", out("q.csv"), "print"});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.contains(QStringLiteral("nosuchcolumn"))) << r.err.toStdString();

    // A database file that is not there.
    r = run({"--db", out("missing.db"), "--out", out("q.csv"), "print"});
    EXPECT_EQ(r.code, 1);
    EXPECT_FALSE(QFileInfo::exists(out("missing.db")));
}

TEST_F(OrvaneReport, NothingFoundIsSaidAndNoFileIsWritten) {
    const Result r = run(db() + QStringList{"--where", " Where bookfrom='外文书店'", "--out",
                                            out("e.csv"), "totaltotal"});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QStringLiteral("没有符合条件的记录！")));
    EXPECT_FALSE(QFileInfo::exists(out("e.csv")));
}

} // namespace
