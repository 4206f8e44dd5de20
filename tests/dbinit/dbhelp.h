#pragma once
// Small sqlite3 helpers for the database tool's tests: a connection with the compat
// functions, one-value and column queries, a scratch folder, and a database made once
// per suite.

#include "data/dbinit/dbinit.h"
#include "data/sqlitecompat/orvane_compat.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace dbhelp {

class Db {
public:
    explicit Db(const std::string& path) {
        if (sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK)
            ADD_FAILURE() << "cannot open " << path << ": " << sqlite3_errmsg(db_);
        else
            orvane_compat_register(db_);
    }
    ~Db() { sqlite3_close(db_); }
    Db(const Db&) = delete;
    Db& operator=(const Db&) = delete;
    sqlite3* handle() const { return db_; }

    // Whether the statement compiles: tells if tables and columns exist.
    bool prepares(const std::string& sql, std::string* why = nullptr) const {
        sqlite3_stmt* st = nullptr;
        const bool ok = sqlite3_prepare_v2(db_, sql.c_str(), -1, &st, nullptr) == SQLITE_OK;
        if (!ok && why) *why = sqlite3_errmsg(db_);
        sqlite3_finalize(st);
        return ok;
    }

    void exec(const std::string& sql) const {
        char* err = nullptr;
        if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &err) != SQLITE_OK) {
            ADD_FAILURE() << (err ? err : "?") << " in " << sql;
            sqlite3_free(err);
        }
    }

    // Every row, each column as text ("<null>" for NULL).
    std::vector<std::vector<std::string>> rows(const std::string& sql) const {
        std::vector<std::vector<std::string>> out;
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &st, nullptr) != SQLITE_OK) {
            ADD_FAILURE() << sqlite3_errmsg(db_) << " in " << sql;
            return out;
        }
        while (sqlite3_step(st) == SQLITE_ROW) {
            std::vector<std::string> row;
            for (int i = 0; i < sqlite3_column_count(st); ++i) {
                const unsigned char* t = sqlite3_column_text(st, i);
                row.emplace_back(t ? reinterpret_cast<const char*>(t) : "<null>");
            }
            out.push_back(std::move(row));
        }
        sqlite3_finalize(st);
        return out;
    }

    std::vector<std::string> column(const std::string& sql) const {
        std::vector<std::string> out;
        for (auto& r : rows(sql)) out.push_back(r.at(0));
        return out;
    }

    std::string value(const std::string& sql) const {
        auto r = rows(sql);
        return r.empty() || r[0].empty() ? "<none>" : r[0][0];
    }

    long long number(const std::string& sql) const { return std::stoll(value(sql)); }

private:
    sqlite3* db_ = nullptr;
};

// A fresh folder under the system temp folder, removed at the end.
class TempDir {
public:
    TempDir() {
        std::random_device rd;
        path_ = std::filesystem::temp_directory_path() /
                ("orvane-dbinit-test-" + std::to_string(rd()) + std::to_string(rd()));
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::filesystem::path path() const { return path_; }
    std::string file(const std::string& name) const { return (path_ / name).string(); }
    std::vector<std::string> entries() const {
        std::vector<std::string> out;
        for (auto& e : std::filesystem::directory_iterator(path_))
            out.push_back(e.path().filename().string());
        return out;
    }

private:
    std::filesystem::path path_;
};

// One database made by the tool for the whole suite (demo rows or not); each test opens
// it afresh.
template <bool Demo> class MadeDb : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = std::make_unique<TempDir>();
        std::string error;
        ASSERT_TRUE(orvane::dbinit::createDatabase(path(), Demo, &error)) << error;
    }
    static void TearDownTestSuite() { dir_.reset(); }
    static std::string path() { return dir_->file("made.db"); }
    void SetUp() override { db = std::make_unique<Db>(path()); }

    static inline std::unique_ptr<TempDir> dir_;
    std::unique_ptr<Db> db;
};

} // namespace dbhelp
