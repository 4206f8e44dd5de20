// orvane-report as a script runs it: the real executable on a database file, its exit
// code, its stderr, the file it writes and the print table it leaves filled.

#include "tests/support/testsupport.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

namespace {

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
    // Runs the tool with "@db" standing for the database and "@x" for a file in the
    // temporary folder; gives the exit code and stderr.
    std::pair<int, QString> run(const QStringList& args) {
        QStringList real;
        for (const QString& a : args)
            real << (a == u"@db" ? dbPath() : a.startsWith(u'@') ? out(a.mid(1)) : a);
        QProcess p;
        p.start(QStringLiteral(ORVANE_REPORT_EXE), real);
        EXPECT_TRUE(p.waitForFinished(60000));
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardError())};
    }
    QString out(const QString& name) { return tempPath() + u'/' + name; }
};

TEST_F(OrvaneReport, WritesEachKindOfFileAndLeavesThePrintTableFilled) {
    const std::tuple<const char*, const char*, QByteArray> cases[] = {
        {"m.pdf", "totalmx", "%PDF-"},
        {"c.xlsx", "totaltotal", "PK"}, // xlsx: a zip
        {"t.csv", "tbookfrom", "\xEF\xBB\xBF"}};
    for (const auto& [file, statistic, magic] : cases) {
        SCOPED_TRACE(file);
        const auto [code, err] = run({"--db", "@db", "--where", " Where lagclass='中文'", "--out",
                                      u'@' + QString::fromLatin1(file), statistic});
        EXPECT_EQ(code, 0) << err.toStdString();
        EXPECT_TRUE(err.contains(QStringLiteral("请将打印机设置为A4"))) << err.toStdString();
        QFile f(out(QString::fromLatin1(file)));
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        EXPECT_EQ(f.read(magic.size()), magic);
    }
    EXPECT_EQ(testsupport::querySqlite(dbPath(), QStringLiteral("select count(*)||'/'||sum(ysjine) "
                                                                "from printTotalJE")),
              QStringLiteral("2/36.0")); // 新华书店 and the total row
}

TEST_F(OrvaneReport, ExitCodesAndMessages) {
    const struct {
        QStringList args;
        int code;
        const char16_t* says = u"usage: orvane-report"; // what stderr holds
    } cases[] = {
        {{}, 2},
        {{"--out", "@x.csv"}, 2}, // no statistic
        {{"--out", "@x.csv", "tnothing"}, 2},
        {{"tjine"}, 2}, // no --out
        {{"--out", "@x.txt", "tjine"}, 2},
        {{"--where", "bookfrom='a'", "--out", "@x.csv", "tjine"}, 2},
        {{"--order", "price", "--out", "@x.csv", "print"}, 2},
        {{"--db", "a.db", "--dsn", "b", "--out", "@x.csv", "tjine"}, 2},
        {{"--bogus", "--out", "@x.csv", "tjine"}, 2},
        {{"--db", "@db", "--where", " Where nosuchcolumn=1", "--out", "@x.csv", "print"},
         1,
         u"nosuchcolumn"},
        {{"--db", "@missing.db", "--out", "@x.csv", "print"}, 1, u""},
        // Nothing accepted matches: said, and no file.
        {{"--db", "@db", "--where", " Where bookfrom='外文书店'", "--out", "@x.csv", "totaltotal"},
         0,
         u"没有符合条件的记录！"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(u' ').toStdString());
        const auto [code, err] = run(c.args);
        EXPECT_EQ(code, c.code);
        EXPECT_TRUE(err.contains(QString::fromUtf16(c.says))) << err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("x.csv"))));
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("x.txt"))));
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("missing.db"))));

    // A source with a quote is put into the statement as it is: the run stops before the
    // paper message.
    testsupport::execSqlite(dbPath(), QStringLiteral("Insert Into cgk (cgkid,bookfrom,bookname,"
                                                     "status) Values (3,'O''Reilly','Perl',0)"));
    const auto [code, err] = run({"--db", "@db", "--out", "@x.csv", "tjine"});
    EXPECT_EQ(code, 1);
    EXPECT_TRUE(err.contains(QStringLiteral("syntax error"))) << err.toStdString();
    EXPECT_FALSE(err.contains(QStringLiteral("请将打印机")));
    EXPECT_FALSE(QFileInfo::exists(out(QStringLiteral("x.csv"))));
}

} // namespace
