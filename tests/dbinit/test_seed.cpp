// The seed rows as the SQL Server script adds them, row by row on each row's key: run
// here on SQLite from the same generator, on an empty schema, on a database that has
// them already, and on one that holds rows of the sibling subsystems.

#include "data/dbinit/dbinit.h"
#include "data/dbinit/schema.h"
#include "dbhelp.h"

#include <algorithm>
#include <map>
#include <sstream>

using dbhelp::Db;
using orvane::dbinit::Dialect;

namespace {

const char* const seededTables[] = {"cgk",  "cgkStatus", "cggys", "Global",     "cck",    "wxlx",
                                    "type", "cbk",       "ZSK",   "taolutable", "LibUse", "FDict"};

// A database with the tables and no rows.
void makeSchema(const std::string& path) {
    sqlite3* raw = nullptr;
    ASSERT_EQ(sqlite3_open(path.c_str(), &raw), SQLITE_OK);
    sqlite3_close(raw);
    Db db(path);
    db.exec(orvane::dbinit::sqliteTables());
    db.exec(orvane::dbinit::sqliteIndexes());
}

void runSeed(const Db& db, bool demo) {
    db.exec("BEGIN");
    for (const std::string& s : orvane::dbinit::seedStatements(Dialect::Sqlite, demo)) db.exec(s);
    db.exec("COMMIT");
}

// Every row of a table, sorted, so two databases can be compared whatever the row order.
std::vector<std::vector<std::string>> allRows(const Db& db, const std::string& table) {
    auto rows = db.rows("SELECT * FROM \"" + table + "\"");
    std::sort(rows.begin(), rows.end());
    return rows;
}

TEST(SeedScript, OnAnEmptySchemaItMakesTheRowsOfTheTool) {
    dbhelp::TempDir dir;
    std::string error;
    ASSERT_TRUE(orvane::dbinit::createDatabase(dir.file("tool.db"), true, &error)) << error;
    makeSchema(dir.file("script.db"));
    Db tool(dir.file("tool.db")), script(dir.file("script.db"));
    runSeed(script, true);
    for (const char* t : seededTables) {
        const auto expected = allRows(tool, t);
        EXPECT_FALSE(expected.empty()) << t;
        EXPECT_EQ(allRows(script, t), expected) << t;
    }
}

TEST(SeedScript, RunAgainItAddsNothing) {
    dbhelp::TempDir dir;
    std::string error;
    ASSERT_TRUE(orvane::dbinit::createDatabase(dir.file("demo.db"), true, &error)) << error;
    Db db(dir.file("demo.db"));
    std::map<std::string, std::vector<std::vector<std::string>>> before;
    for (const char* t : seededTables) before[t] = allRows(db, t);
    runSeed(db, true);
    runSeed(db, false);
    for (const char* t : seededTables) EXPECT_EQ(allRows(db, t), before[t]) << t;
}

TEST(SeedScript, RowsOfTheSiblingSubsystemsStayAndOursGoInBesideThem) {
    dbhelp::TempDir dir;
    makeSchema(dir.file("shared.db"));
    Db db(dir.file("shared.db"));
    // What the library's database holds before the acquisitions subsystem arrives.
    db.exec("INSERT INTO Global (type,code) VALUES ('language','世界语'),('language','中文'),"
            "('zskid','88')");
    db.exec("INSERT INTO FDict VALUES ('zsk','bookname','题名'),('cgk','bookname','正题名')");
    db.exec("INSERT INTO type VALUES ('A','马列主义（本馆）'),('TP','计算机')");
    db.exec("INSERT INTO LibUse (userid,username,password) VALUES (7,'lib01','pw')");
    db.exec("INSERT INTO cbk VALUES (1,'7-02','北京','人民文学出版社'),(2,'7-999','某地','某社')");
    db.exec("INSERT INTO cgk (cgkid,bookname,status) VALUES (500,'旧订单',1)");
    db.exec("INSERT INTO cgkStatus VALUES (0,'预定中')");

    runSeed(db, false);
    // The counter is there, past the highest order; the sibling's rows are untouched.
    EXPECT_EQ(db.column("SELECT code FROM Global WHERE type='cgkid'"),
              std::vector<std::string>{"501"});
    EXPECT_EQ(db.value("SELECT code FROM Global WHERE type='zskid'"), "88");
    EXPECT_EQ(db.number("SELECT count(*) FROM Global WHERE type='language' AND code='中文'"), 1);
    EXPECT_EQ(db.number("SELECT count(*) FROM Global WHERE type='language' AND code='世界语'"), 1);
    EXPECT_EQ(db.value("SELECT code FROM Global WHERE type='language' AND code='英文'"), "英文");
    EXPECT_EQ(db.value("SELECT code FROM Global WHERE type='cgkcgff' AND code='现购'"), "现购");
    // This subsystem's dictionaries with the names the query builder keys on; a field the
    // installation named itself keeps its name.
    EXPECT_EQ(db.value("SELECT CnName FROM FDict WHERE DbName='cgk' AND FieldName='bookname'"),
              "正题名");
    EXPECT_EQ(db.value("SELECT CnName FROM FDict WHERE DbName='zsk'"), "题名");
    for (const char* name : {"预定日期", "预定价格", "预定册数", "页码"})
        EXPECT_EQ(db.number(std::string("SELECT count(*) FROM FDict WHERE DbName='cgk' AND "
                                        "CnName='") +
                            name + "'"),
                  1)
            << name;
    for (const char* name : {"验收日期", "验收册数", "验收价格"})
        EXPECT_EQ(db.number(std::string("SELECT count(*) FROM FDict WHERE DbName='cgkys' AND "
                                        "CnName='") +
                            name + "'"),
                  1)
            << name;
    EXPECT_GT(db.number("SELECT count(*) FROM FDict WHERE DbName='cggys'"), 0);
    // Class names: the library's own stay, the missing ones come.
    EXPECT_EQ(db.value("SELECT name FROM type WHERE type='A'"), "马列主义（本馆）");
    EXPECT_EQ(db.value("SELECT name FROM type WHERE type='T'"), "工业技术");
    EXPECT_EQ(db.value("SELECT name FROM type WHERE type='TP'"), "计算机");
    EXPECT_EQ(db.number("SELECT count(*) FROM cgkStatus WHERE fieldsstatus=0"), 1);
    EXPECT_EQ(db.value("SELECT fieldsname FROM cgkStatus WHERE fieldsstatus=1"), "已验收");
    // Publisher prefixes: each once, under ids of their own.
    EXPECT_EQ(db.number("SELECT count(*) FROM cbk WHERE C_SBN='7-02'"), 1);
    EXPECT_EQ(db.value("SELECT C_CBS FROM cbk WHERE C_SBN='7-302'"), "清华大学出版社");
    EXPECT_EQ(db.number("SELECT count(*) - count(DISTINCT cbkid) FROM cbk"), 0);
    // No user with a known password goes into the library's list of users, and nobody
    // has the right until it is granted.
    EXPECT_EQ(db.rows("SELECT username, cgk FROM LibUse"),
              (std::vector<std::vector<std::string>>{{"lib01", "<null>"}}));

    std::map<std::string, std::vector<std::vector<std::string>>> before;
    for (const char* t : seededTables) before[t] = allRows(db, t);
    runSeed(db, false);
    for (const char* t : seededTables) EXPECT_EQ(allRows(db, t), before[t]) << t;
}

TEST(SeedScript, TheSqlServerScriptGuardsEveryRowAndTheStatusDefault) {
    const std::string script = orvane::dbinit::mssqlScript(true);
    std::istringstream in(script);
    std::string line;
    size_t inserts = 0;
    const std::string head = "INSERT INTO [dbo].[";
    while (std::getline(in, line)) {
        // No table is skipped as a whole because it has rows.
        EXPECT_NE(line.rfind("IF NOT EXISTS (SELECT * FROM [dbo].", 0), 0u) << line;
        if (line.rfind("INSERT", 0) != 0) continue;
        ++inserts;
        // Each row on its own, guarded on a key of the same table.
        ASSERT_EQ(line.rfind(head, 0), 0u) << line;
        const std::string table =
            line.substr(head.size(), line.find(']', head.size()) - head.size());
        EXPECT_NE(line.find(") SELECT "), std::string::npos) << line;
        EXPECT_NE(line.find(" WHERE NOT EXISTS (SELECT * FROM [dbo].[" + table + "] WHERE ["),
                  std::string::npos)
            << line;
        EXPECT_TRUE(line.ends_with(");")) << line;
    }
    EXPECT_EQ(inserts, orvane::dbinit::seedStatements(Dialect::SqlServer, true).size());
    // A status column that was there already gets its default too.
    EXPECT_NE(script.find("parent_column_id = COLUMNPROPERTY(OBJECT_ID(N'dbo.cgk'), N'status', "
                          "'ColumnId'))\nALTER TABLE [dbo].[cgk] ADD CONSTRAINT [DF_cgk_status] "
                          "DEFAULT (0) FOR [status]\nGO\n"),
              std::string::npos);
    // The grant that the librarians need on an existing LibUse is at the top.
    const size_t grant = script.find("--   UPDATE LibUse SET cgk=1 WHERE username=N'");
    EXPECT_LT(grant, script.find("CREATE TABLE"));
}

} // namespace
