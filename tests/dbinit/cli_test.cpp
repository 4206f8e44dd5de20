// The orvane-dbinit command: what it makes, what it refuses, and its SQL Server script.

#include "dbhelp.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>

#ifndef _WIN32
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>
#endif

using dbhelp::Db;
using dbhelp::TempDir;

namespace {

struct ToolRun {
    int code = -1;
    std::string out, err;
};

std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Runs the tool with args (already quoted as needed). Its output goes to a file in a
// folder of its own, so that the folders under test see nothing of it, or to `target`:
// a path, or "-" for a closed standard output.
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
    EXPECT_EQ(Db(dir.file("orvane.db"))
                  .text("Select (Select count(*) From cgk),cgk From LibUse Where username='admin'"),
              "0/1");
    ASSERT_EQ(tool(withPath("--zsk-rows 3000 ", dir.file("a.db"))).code, 0);
    ASSERT_EQ(tool(withPath("--demo --zsk-rows=500 ", dir.file("b.db"))).code, 0);
    // The cgkid counter is not disturbed by holdings.
    const std::string holdings =
        "Select count(*),max(ZSKID),(Select Code From Global Where type='cgkid') From ZSK";
    EXPECT_EQ(Db(dir.file("a.db")).text(holdings), "3000/3000/1");
    EXPECT_EQ(Db(dir.file("b.db")).text("Select count(*),max(ZSKID) From ZSK"), "10500/10500");
}

TEST(DbinitTool, RefusesAnExistingFileAndLeavesItAlone) {
    TempDir dir;
    const std::string path = dir.file("orvane.db");
    std::ofstream(path) << "not a database";
    for (const char* extra : {"", "--demo ", "--mssql "}) {
        const ToolRun r = tool(withPath(extra, path));
        EXPECT_TRUE(r.code != 0 && contains(r.err, "文件已存在")) << extra << r.err;
        EXPECT_EQ(slurp(path), "not a database");
        EXPECT_EQ(dir.entries(), std::vector<std::string>{"orvane.db"}) << extra;
    }
}

TEST(DbinitTool, RefusesPlacesItCannotWrite) {
    TempDir dir;
    std::ofstream(dir.file("plain")) << "x";
    // A file where a folder should be, a folder that is missing, and a folder that
    // nobody may write to (even root may not create files in /proc).
    for (const std::string& path :
         {dir.file("plain") + "/orvane.db", dir.file("missing") + "/orvane.db",
          std::string("/proc/orvane-dbinit-test.db")}) {
        const ToolRun r = tool(withPath("--demo ", path));
        EXPECT_TRUE(r.code != 0 && contains(r.err, "orvane-dbinit: ")) << path << r.err;
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
    }
    EXPECT_EQ(dir.entries(), std::vector<std::string>{"plain"});
}

TEST(DbinitTool, RejectsBadArgumentsWithoutWriting) {
    TempDir dir;
    const std::string path = withPath("", dir.file("x.db"));
    // clang-format off
    const std::vector<std::pair<std::string, std::string>> cases{
        {"--bogus " + path, "--bogus"}, {"--zsk-rows abc " + path, "abc"}, {"--zsk-rows -5 " + path, "-5"},
        {path + " " + path, "多余"}, {"--demo", "缺少"}, {"--mssql --zsk-rows 10", "--zsk-rows"},
        // Counts that would only fill the disk.
        {"--zsk-rows 99999999999 " + path, "--zsk-rows 最多 10000000 行: 99999999999"},
        {"--zsk-rows=10000001 " + path, "最多 10000000"}, {"--zsk-rows 99999999999999999999999 " + path, "最多 10000000"}};
    // clang-format on
    for (const auto& [args, said] : cases) {
        const ToolRun r = tool(args);
        EXPECT_TRUE(r.code == 2 && contains(r.err, said) && r.out.empty())
            << args << ": " << r.code << r.err;
    }
    EXPECT_TRUE(dir.entries().empty());

    const ToolRun help = tool("--help");
    EXPECT_EQ(help.code, 0);
    for (const char* option : {"--demo", "--mssql", "--zsk-rows", "PATH"})
        EXPECT_TRUE(contains(help.out, option)) << option;
}

// The part of the script from "CREATE TABLE [dbo].[name]" to its closing bracket.
std::string createBlock(const std::string& script, const std::string& table) {
    const size_t at = script.find("CREATE TABLE [dbo].[" + table + "] (");
    if (at == std::string::npos) return {};
    return script.substr(at, script.find("\n)\n", at) - at);
}

// A line whose quotes do not pair up: a quote inside a text went undoubled.
std::string unbalancedLine(const std::string& script) {
    std::istringstream in(script);
    std::string line;
    while (std::getline(in, line))
        if (std::count(line.begin(), line.end(), '\'') % 2) return line;
    return {};
}

TEST(DbinitTool, WritesTheSchemaForSqlServer) {
    const ToolRun r = tool("--mssql");
    ASSERT_EQ(r.code, 0) << r.err;
    const std::string& s = r.out;
    // Every table the client needs, without dropping or recreating anything of a
    // database shared with other subsystems.
    for (const char* table : {"cgk", "cgkStatus", "cggys", "Global", "cck", "wxlx", "type", "cbk",
                              "ZSK", "taolutable", "LibUse", "FDict", "printCG", "printMX",
                              "printLeiBie", "printTotalJE", "printYStotal", "printYSmx"})
        EXPECT_FALSE(createBlock(s, table).empty()) << table;
    const std::string cgk = createBlock(s, "cgk");
    for (const char* part :
         {"[status] int NULL CONSTRAINT [DF_cgk_status] DEFAULT (0)", "[yddate] datetime",
          "[bookname] varchar(200) COLLATE Chinese_PRC_CI_AS"})
        EXPECT_TRUE(contains(cgk, part)) << part;
    EXPECT_TRUE(contains(createBlock(s, "LibUse"), "[cgk] bit"));
    for (const char* part :
         {"SELECT N'cgkid',CAST(CASE WHEN", " ELSE 1 END AS varchar(20))", "N'预定中'",
          ",N'7-302',N'北京',N'清华大学出版社' WHERE NOT EXISTS", "\nGO\n"})
        EXPECT_TRUE(contains(s, part)) << part;
    EXPECT_FALSE(contains(s, "DROP ") || contains(s, "CREATE DATABASE"));
    EXPECT_EQ(unbalancedLine(s), "");
}

TEST(DbinitTool, WritesTheDemoForSqlServerToAFile) {
    TempDir dir;
    const std::string path = dir.file("demo.sql");
    ToolRun r = tool(withPath("--mssql --demo ", path));
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(dir.entries(), std::vector<std::string>{"demo.sql"});
    const std::string s = slurp(path);
    EXPECT_EQ(s, tool("--demo --mssql").out);

    r = tool(withPath("--demo ", dir.file("demo.db")));
    ASSERT_EQ(r.code, 0) << r.err;
    Db db(dir.file("demo.db"));
    // The same rows as the SQLite demo: its counter, its quoted titles doubled.
    EXPECT_TRUE(contains(s, " ELSE " + db.text("Select Code From Global Where type='cgkid'") +
                                " END AS varchar(20))"));
    EXPECT_TRUE(contains(s, "O''Reilly"));
    EXPECT_TRUE(contains(s, "INSERT INTO [dbo].[ZSK] ("));
    // Dates in the one form every server setting reads alike.
    const std::string first = db.text("Select replace(yddate,'-','') From cgk Where cgkid=1");
    EXPECT_TRUE(contains(s, ",'" + first + "',")) << first;
    EXPECT_EQ(unbalancedLine(s), "");
}

#ifndef _WIN32
TEST(DbinitTool, SaysWhenItsOutputCannotBeWritten) {
    TempDir dir;
    struct Case {
        std::string args, target, said;
    };
    const Case cases[] = {
        {"--mssql", "/dev/full", "orvane-dbinit: 无法写出SQL Server 脚本: No space left on device"},
        {"--mssql --demo", "-", "orvane-dbinit: 无法写出SQL Server 脚本: Bad file descriptor"},
        {"--help", "/dev/full", "无法写出用法说明"},
        {withPath("", dir.file("a.db")), "/dev/full", "无法写出结果信息"},
        {withPath("--mssql ", dir.file("a.sql")), "-", "无法写出结果信息"},
    };
    for (const Case& c : cases) {
        const ToolRun r = tool(c.args, c.target);
        EXPECT_EQ(r.code, 1) << c.args;
        EXPECT_TRUE(contains(r.err, c.said)) << c.args << ": " << r.err;
    }
    // What it was asked to make is made all the same; only the report was lost.
    EXPECT_EQ(Db(dir.file("a.db")).text("Select cgk From LibUse Where username='admin'"), "1");
    EXPECT_TRUE(contains(slurp(dir.file("a.sql")), "CREATE TABLE [dbo].[cgk]"));
}

TEST(DbinitTool, AnInterruptedRunLeavesNoTemporaryFile) {
    for (int sig : {SIGINT, SIGTERM}) {
        TempDir dir;
        const std::string path = dir.file("big.db");
        const pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            const int null = open("/dev/null", O_WRONLY);
            dup2(null, 1);
            dup2(null, 2);
            execl(ORVANE_DBINIT_EXE, ORVANE_DBINIT_EXE, "--zsk-rows", "10000000", path.c_str(),
                  static_cast<char*>(nullptr));
            _exit(127);
        }
        // Interrupted once the temporary file is there, long before ten million rows.
        bool started = false;
        for (int i = 0; i < 2000 && !started; ++i) {
            started = !dir.entries().empty();
            if (!started) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        EXPECT_TRUE(started);
        kill(pid, sig);
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == sig) << status;
        EXPECT_EQ(dir.entries(), std::vector<std::string>{}) << sig;
    }
}
#endif

} // namespace
