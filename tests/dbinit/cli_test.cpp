// The orvane-dbinit command: what it makes, what it refuses, and its SQL Server script.

#include "data/dbinit/schema.h"
#include "dbhelp.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string_view>

#ifndef _WIN32
#include <sys/wait.h>
#endif

using dbhelp::Db;
using dbhelp::slurp;
using dbhelp::TempDir;

namespace {

struct ToolRun {
    int code = -1;
    std::string out, err;
};

// Runs the tool with args (already quoted). Output goes to a folder of its own, unseen by
// the folders under test, or to `target`: a path, or "-" for a closed standard output.
ToolRun tool(const std::string& args, const std::string& target = {}) {
    static TempDir logs;
    const std::string out = logs.file("out"), err = logs.file("err");
    const std::string to = target.empty() ? ">" + out : target == "-" ? ">&-" : ">" + target;
    const int status = std::system(
        (std::string("\"") + ORVANE_DBINIT_EXE + "\" " + args + " " + to + " 2>" + err).c_str());
#ifdef _WIN32
    const int code = status;
#else
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    return {code, target.empty() ? slurp(out) : std::string(), slurp(err)};
}

// Arguments ending in a quoted path, built by appending: GCC 12 at -O3 reports a false
// overlap (-Wrestrict) for "literal" + std::string temporaries.
std::string withPath(std::string_view before, const std::string& path) {
    return std::string(before).append(1, '"').append(path).append(1, '"');
}
bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(DbinitTool, CreatesADatabaseNamesItsUsersAndAddsHoldingsForLoadTests) {
    TempDir dir;
    ToolRun r = tool(withPath("", dir.file("orvane.db")));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_TRUE(contains(r.out, "admin / admin") && contains(r.out, "guest / guest")) << r.out;
    EXPECT_EQ(dir.entries(), std::vector<std::string>{"orvane.db"});
    EXPECT_EQ(Db(dir.file("orvane.db")).text("Select Code From Global Where type='cgkid'"), "1");
    // Holdings go after the demo's, and the cgkid counter is not disturbed by them.
    ASSERT_EQ(tool(withPath("--demo --zsk-rows=500 ", dir.file("b.db"))).code, 0);
    EXPECT_EQ(Db(dir.file("b.db"))
                  .text("Select count(*),max(ZSKID),(Select cast(Code as integer) From Global "
                        "Where type='cgkid')=(Select max(cgkid)+1 From cgk) From ZSK"),
              "10500/10500/1");
}

size_t occurrences(const std::string& text, const std::string& part) {
    size_t n = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
    return n;
}

TEST(DbinitTool, WritesTheSqlServerScriptRowByRowWithTheRowsOfTheSqliteDemo) {
    TempDir dir;
    const ToolRun plain = tool("--mssql");
    ASSERT_EQ(plain.code, 0) << plain.err;
    ASSERT_EQ(tool(withPath("--mssql --demo ", dir.file("demo.sql"))).code, 0);
    ASSERT_EQ(tool(withPath("--demo ", dir.file("demo.db"))).code, 0);
    const std::string demo = slurp(dir.file("demo.sql"));
    // Every table of the embedded database, without dropping or recreating anything of a
    // database shared with other subsystems.
    EXPECT_EQ(occurrences(plain.out, "CREATE TABLE [dbo]."),
              occurrences(orvane::dbinit::sqliteTables(), "CREATE TABLE"));
    EXPECT_FALSE(contains(plain.out, "DROP ") || contains(plain.out, "CREATE DATABASE"));
    // Texts compare without case on the server too.
    EXPECT_TRUE(contains(plain.out, "[bookname] varchar(200) COLLATE Chinese_PRC_CI_AS"));
    // The same rows as the SQLite demo: its counter, its quoted titles doubled, and dates in
    // the one form every server setting reads alike.
    Db db(dir.file("demo.db"));
    EXPECT_TRUE(contains(demo, " ELSE " + db.text("Select Code From Global Where type='cgkid'") +
                                   " END AS varchar(20))"));
    EXPECT_TRUE(contains(demo, "O''Reilly") && contains(demo, "INSERT INTO [dbo].[ZSK] ("));
    const std::string first = db.text("Select replace(yddate,'-','') From cgk Where cgkid=1");
    EXPECT_TRUE(contains(demo, ",'" + first + "',")) << first;
    // Each seed row on its own, guarded on a key of the same table; no table is skipped as a
    // whole because it has rows. Quotes that do not pair up are a quote in a text undoubled.
    std::istringstream in(demo);
    size_t inserts = 0;
    const std::string head = "INSERT INTO [dbo].[";
    for (std::string line; std::getline(in, line);) {
        EXPECT_NE(line.rfind("IF NOT EXISTS (SELECT * FROM [dbo].", 0), 0u) << line;
        EXPECT_EQ(std::count(line.begin(), line.end(), '\'') % 2, 0) << line;
        if (line.rfind("INSERT", 0) != 0) continue;
        ++inserts;
        ASSERT_EQ(line.rfind(head, 0), 0u) << line;
        const std::string table =
            line.substr(head.size(), line.find(']', head.size()) - head.size());
        EXPECT_TRUE(
            contains(line, ") SELECT ") && line.ends_with(");") &&
            contains(line, " WHERE NOT EXISTS (SELECT * FROM [dbo].[" + table + "] WHERE ["))
            << line;
    }
    EXPECT_EQ(inserts,
              orvane::dbinit::seedStatements(orvane::dbinit::Dialect::SqlServer, true).size());
    // A status column that was there already gets its default too.
    EXPECT_TRUE(contains(plain.out, "'ColumnId'))\nALTER TABLE [dbo].[cgk] ADD CONSTRAINT "
                                    "[DF_cgk_status] DEFAULT (0) FOR [status]\nGO\n"));
}

#ifndef _WIN32
// Refused runs write nothing: not over an existing file, not where the folder is missing,
// not on bad arguments. When only the report is lost, what was asked for is made.
TEST(DbinitTool, RefusesWithoutWritingAndSaysWhenItsOutputIsLost) {
    TempDir dir;
    const std::string existing = dir.file("orvane.db");
    std::ofstream(existing) << "not a database";
    const std::string db = withPath("", dir.file("x.db"));
    struct Case {
        std::string args;
        int code;
        std::string said, target = {};
    };
    const Case cases[] = {
        {withPath("", existing), 1, "文件已存在"},
        {withPath("--mssql ", existing), 1, "文件已存在"},
        {withPath("--demo ", dir.file("missing") + "/orvane.db"), 1, "orvane-dbinit: "},
        {"--bogus " + db, 2, "--bogus"},
        {"--zsk-rows abc " + db, 2, "abc"},
        {db + " " + db, 2, "多余"},
        {"--mssql --zsk-rows 10", 2, "--zsk-rows"},
        // Counts that would only fill the disk.
        {"--zsk-rows=10000001 " + db, 2, "--zsk-rows 最多 10000000 行: 10000001"},
        // Output to a full device or a closed standard output.
        {"--mssql", 1, "orvane-dbinit: 无法写出SQL Server 脚本: No space left on device",
         "/dev/full"},
        {withPath("", dir.file("a.db")), 1, "无法写出结果信息", "/dev/full"},
        {withPath("--mssql ", dir.file("a.sql")), 1, "无法写出结果信息", "-"}};
    for (const Case& c : cases) {
        const ToolRun r = tool(c.args, c.target);
        EXPECT_TRUE(r.code == c.code && contains(r.err, c.said) && r.out.empty())
            << c.args << ": " << r.code << r.err;
    }
    EXPECT_EQ(slurp(existing), "not a database");
    EXPECT_EQ(dir.entries(), (std::vector<std::string>{"a.db", "a.sql", "orvane.db"}));
    EXPECT_EQ(Db(dir.file("a.db")).text("Select cgk From LibUse Where username='admin'"), "1");
    EXPECT_TRUE(contains(slurp(dir.file("a.sql")), "CREATE TABLE [dbo].[cgk]"));
    EXPECT_EQ(tool("--help").code, 0);
}
#endif

} // namespace
