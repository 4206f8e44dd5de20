// The seed rows as the SQL Server script adds them, row by row on each row's key, run here
// on SQLite from the same generator: on an empty schema, again, and beside sibling rows.

#include "data/dbinit/schema.h"
#include "dbhelp.h"

#include <algorithm>
#include <map>

using dbhelp::Db;
using orvane::dbinit::Dialect;

namespace {

using Snapshot = std::map<std::string, std::vector<std::vector<std::string>>>;

// A database with the tables and no rows.
void makeSchema(const std::string& path) {
    Db(path).exec(orvane::dbinit::sqliteTables() + orvane::dbinit::sqliteIndexes());
}

void runSeed(const Db& db, bool demo) {
    db.exec("BEGIN");
    for (const std::string& s : orvane::dbinit::seedStatements(Dialect::Sqlite, demo)) db.exec(s);
    db.exec("COMMIT");
}

// Every row of every seeded table, sorted, to compare databases whatever the row order.
Snapshot snapshot(const Db& db) {
    Snapshot out;
    for (const char* t : {"cgk", "cgkStatus", "cggys", "Global", "cck", "wxlx", "type", "cbk",
                          "ZSK", "taolutable", "LibUse", "FDict"}) {
        auto rows = db.rows(std::string("SELECT * FROM \"") + t + "\"");
        std::sort(rows.begin(), rows.end());
        out[t] = std::move(rows);
    }
    return out;
}

// The script makes the rows of the tool.
TEST(SeedScript, MakesTheRowsOfTheToolAndRunAgainAddsNothing) {
    dbhelp::TempDir dir;
    std::string error;
    ASSERT_TRUE(orvane::dbinit::createDatabase(dir.file("tool.db"), true, &error)) << error;
    makeSchema(dir.file("script.db"));
    Db tool(dir.file("tool.db")), script(dir.file("script.db"));
    runSeed(script, true);
    const Snapshot expected = snapshot(tool);
    for (const auto& [table, rows] : expected) EXPECT_FALSE(rows.empty()) << table;
    EXPECT_TRUE(snapshot(script) == expected);
    runSeed(script, true);
    runSeed(script, false);
    EXPECT_TRUE(snapshot(script) == expected);
}

TEST(SeedScript, RowsOfTheSiblingSubsystemsStayAndOursGoInBesideThem) {
    dbhelp::TempDir dir;
    makeSchema(dir.file("shared.db"));
    Db db(dir.file("shared.db"));
    // What the library's database holds before the acquisitions subsystem arrives.
    db.exec("INSERT INTO Global (type,code) VALUES ('language','世界语'),('language','中文'),"
            "('zskid','88');"
            "INSERT INTO FDict VALUES ('zsk','bookname','题名'),('cgk','bookname','正题名');"
            "INSERT INTO type VALUES ('A','马列主义（本馆）'),('TP','计算机');"
            "INSERT INTO LibUse (userid,username,password) VALUES (7,'lib01','pw');"
            "INSERT INTO cbk VALUES (1,'7-02','北京','人民文学出版社'),(2,'7-999','某地','某社');"
            "INSERT INTO cgk (cgkid,bookname,status) VALUES (500,'旧订单',1);"
            "INSERT INTO cgkStatus VALUES (0,'预定中')");
    runSeed(db, false);
    // The counter past the highest order, the sibling's rows untouched, names the
    // installation chose kept, and no user with a known password nor any right.
    // clang-format off
    const std::pair<const char*, const char*> expected[] = {
        {"SELECT code FROM Global WHERE type IN ('cgkid','zskid') ORDER BY type", "501|88"},
        {"SELECT code FROM Global WHERE type='language' AND code IN ('中文','世界语','英文') ORDER BY code", "世界语|中文|英文"},
        {"SELECT CnName FROM FDict WHERE FieldName='bookname' ORDER BY DbName", "正题名|题名"},
        {"SELECT DbName||'.'||FieldName FROM FDict WHERE CnName IN ('预定日期','预定价格','验收日期','验收册数') ORDER BY DbName,FieldName", "cgk.price|cgk.yddate|cgkys.yscount|cgkys.ysdate"},
        {"SELECT name FROM type WHERE type IN ('A','T','TP') ORDER BY type", "马列主义（本馆）|工业技术|计算机"},
        {"SELECT C_SBN FROM cbk WHERE C_SBN IN ('7-02','7-302','7-999') ORDER BY C_SBN", "7-02|7-302|7-999"},
        {"SELECT count(*) - count(DISTINCT cbkid) FROM cbk", "0"},
        {"SELECT username||'/'||coalesce(cgk,'null') FROM LibUse", "lib01/null"},
    };
    // clang-format on
    for (const auto& [sql, rows] : expected) EXPECT_EQ(db.text(sql), rows) << sql;
    const Snapshot before = snapshot(db);
    runSeed(db, false);
    EXPECT_TRUE(snapshot(db) == before);
}

} // namespace
