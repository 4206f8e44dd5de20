#include "data/sqlitecompat/orvane_compat.h"
#include "dbinit.h"
#include "schema.h"

#include <sqlite3.h>

#include <filesystem>
#include <map>
#include <random>
#include <stdexcept>
#include <system_error>

namespace fs = std::filesystem;

namespace orvane::dbinit {

namespace {

struct SqlError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void exec(sqlite3* db, const std::string& sql) {
    char* msg = nullptr;
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &msg) != SQLITE_OK) {
        std::string text = msg ? msg : sqlite3_errmsg(db);
        sqlite3_free(msg);
        throw SqlError(text);
    }
}

// Prepared INSERTs, one per table and column list, reused for every row.
class SqliteSink final : public RowSink {
public:
    explicit SqliteSink(sqlite3* db) : db_(db) {}
    ~SqliteSink() override {
        for (auto& [key, stmt] : statements_) sqlite3_finalize(stmt);
    }
    SqliteSink(const SqliteSink&) = delete;
    SqliteSink& operator=(const SqliteSink&) = delete;

    void insert(std::string_view table, std::string_view columns,
                std::span<const Value> values) override {
        sqlite3_stmt* stmt = statement(table, columns, values.size());
        for (size_t i = 0; i < values.size(); ++i) {
            const Value& v = values[i];
            const int at = int(i) + 1;
            switch (v.kind) {
            case Value::Kind::Null:
                sqlite3_bind_null(stmt, at);
                break;
            case Value::Kind::Int:
                sqlite3_bind_int64(stmt, at, v.i);
                break;
            case Value::Kind::Real:
                sqlite3_bind_double(stmt, at, v.r);
                break;
            case Value::Kind::Text:
                sqlite3_bind_text(stmt, at, v.s.data(), int(v.s.size()), SQLITE_STATIC);
                break;
            }
        }
        const int rc = sqlite3_step(stmt);
        sqlite3_reset(stmt);
        sqlite3_clear_bindings(stmt);
        if (rc != SQLITE_DONE) throw SqlError(std::string(table) + ": " + sqlite3_errmsg(db_));
    }

private:
    sqlite3_stmt* statement(std::string_view table, std::string_view columns, size_t count) {
        std::string key = std::string(table) + '|' + std::string(columns);
        if (auto it = statements_.find(key); it != statements_.end()) return it->second;
        std::string sql =
            "INSERT INTO \"" + std::string(table) + "\" (" + std::string(columns) + ") VALUES (";
        for (size_t i = 0; i < count; ++i) sql += i ? ",?" : "?";
        sql += ")";
        sqlite3_stmt* stmt = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK)
            throw SqlError(std::string(sqlite3_errmsg(db_)) + " [" + sql + "]");
        statements_.emplace(std::move(key), stmt);
        return stmt;
    }

    sqlite3* db_;
    std::map<std::string, sqlite3_stmt*> statements_;
};

std::int64_t maxHoldingId(sqlite3* db) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT COALESCE(MAX(ZSKID),0) FROM ZSK", -1, &stmt, nullptr) !=
        SQLITE_OK)
        throw SqlError(sqlite3_errmsg(db));
    std::int64_t id = 0;
    if (sqlite3_step(stmt) == SQLITE_ROW) id = sqlite3_column_int64(stmt, 0);
    sqlite3_finalize(stmt);
    return id;
}

void removeQuietly(const fs::path& p) {
    std::error_code ec;
    fs::remove(p, ec);
}

fs::path toPath(const std::string& utf8) {
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string u8(const fs::path& p) {
    const auto s = p.u8string();
    return std::string(s.begin(), s.end());
}

} // namespace

bool populate(sqlite3* db, const Options& options, std::string* error, DemoFigures* figures) {
    try {
        exec(db, "BEGIN");
        try {
            exec(db, sqliteTables());
            DemoFigures demo;
            {
                // The generated rows are normalised already: the date triggers can
                // come with the indexes, after the load.
                SqliteSink sink(db);
                writeSeed(sink);
                if (options.demo) demo = writeDemo(sink);
                writeCgkidCounter(sink, demo.nextCgkid);
                if (options.extraHoldings > 0)
                    writeExtraHoldings(sink, demo.holdings + 1, options.extraHoldings);
            }
            exec(db, sqliteIndexes());
            if (figures) *figures = demo;
        } catch (...) {
            sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
        exec(db, "COMMIT");
        // Statistics for the planner, so the first searches pick the indexes.
        exec(db, "PRAGMA analysis_limit=1000; ANALYZE");
    } catch (const SqlError& e) {
        if (error) *error = e.what();
        return false;
    }
    return true;
}

bool addHoldings(sqlite3* db, std::int64_t count, std::string* error) {
    try {
        exec(db, "BEGIN");
        try {
            SqliteSink sink(db);
            writeExtraHoldings(sink, maxHoldingId(db) + 1, count);
        } catch (...) {
            sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
            throw;
        }
        exec(db, "COMMIT");
    } catch (const SqlError& e) {
        if (error) *error = e.what();
        return false;
    }
    return true;
}

bool createDatabase(const std::string& path, bool demo, std::string* error) {
    Options options;
    options.demo = demo;
    return createDatabase(path, options, error);
}

bool createDatabase(const std::string& path, const Options& options, std::string* error,
                    DemoFigures* figures) {
    auto fail = [error](std::string text) {
        if (error) *error = std::move(text);
        return false;
    };
    if (path.empty()) return fail("缺少数据库文件路径");
    const fs::path target = toPath(path);
    std::error_code ec;
    if (fs::exists(fs::symlink_status(target, ec))) return fail("文件已存在: " + path);
    fs::path dir = target.parent_path();
    if (dir.empty()) dir = ".";
    if (!fs::is_directory(dir, ec)) return fail("目录不存在: " + u8(dir));
    if (target.filename().empty()) return fail("不是文件路径: " + path);

    // Built beside the target so the final rename stays on one file system.
    std::random_device rd;
    const fs::path temp =
        dir / ("." + u8(target.filename()) + "." + std::to_string(rd() % 1000000) + ".tmp");
    const fs::path journal = toPath(u8(temp) + "-journal");
    auto tempGone = [&options] {
        if (options.tempFile) options.tempFile(std::string());
    };
    if (options.tempFile) options.tempFile(u8(temp));

    sqlite3* db = nullptr;
    const int rc =
        sqlite3_open_v2(u8(temp).c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    auto cleanup = [&] {
        sqlite3_close(db);
        db = nullptr;
        removeQuietly(journal);
        removeQuietly(temp);
        tempGone();
    };
    if (rc != SQLITE_OK) {
        std::string msg = db ? sqlite3_errmsg(db) : "out of memory";
        cleanup();
        return fail("无法创建数据库文件 " + path + ": " + msg);
    }
    std::string why;
    bool ok = orvane_compat_register(db) == SQLITE_OK;
    if (!ok) why = sqlite3_errmsg(db);
    // The file is a scratch copy until the rename: nothing to protect against a crash.
    if (ok)
        ok = sqlite3_exec(db, "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF", nullptr, nullptr,
                          nullptr) == SQLITE_OK;
    if (!ok && why.empty()) why = sqlite3_errmsg(db);
    if (ok) ok = populate(db, options, &why, figures);
    if (ok && sqlite3_close(db) != SQLITE_OK) {
        why = sqlite3_errmsg(db);
        ok = false;
    } else if (ok) {
        db = nullptr;
    }
    if (!ok) {
        cleanup();
        return fail("无法创建数据库文件 " + path + ": " + why);
    }
    if (fs::exists(fs::symlink_status(target, ec))) {
        cleanup();
        return fail("文件已存在: " + path);
    }
    fs::rename(temp, target, ec);
    if (ec) {
        cleanup();
        return fail("无法创建数据库文件 " + path + ": " + ec.message());
    }
    removeQuietly(journal);
    tempGone();
    return true;
}

} // namespace orvane::dbinit
