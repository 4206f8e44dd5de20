#pragma once
// Small sqlite3 helpers for the database tool's tests: a connection with the compat
// functions, queries as text, a scratch folder, and a database made once per suite.

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

    // Whether the statement compiles (tables and columns exist), or why not.
    std::string whyNot(const std::string& sql) const {
        sqlite3_stmt* st = nullptr;
        const bool ok = sqlite3_prepare_v2(db_, sql.c_str(), -1, &st, nullptr) == SQLITE_OK;
        sqlite3_finalize(st);
        return ok ? std::string() : sqlite3_errmsg(db_);
    }
    bool runs(const std::string& sql) const {
        return sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    void exec(const std::string& sql) const {
        EXPECT_TRUE(runs(sql)) << sqlite3_errmsg(db_) << " in " << sql;
    }

    // Every row, each column as text ("<null>" for NULL).
    std::vector<std::vector<std::string>> rows(const std::string& sql) const {
        std::vector<std::vector<std::string>> out;
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &st, nullptr) != SQLITE_OK)
            ADD_FAILURE() << sqlite3_errmsg(db_) << " in " << sql;
        while (st && sqlite3_step(st) == SQLITE_ROW) {
            auto& row = out.emplace_back();
            for (int i = 0; i < sqlite3_column_count(st); ++i) {
                const unsigned char* t = sqlite3_column_text(st, i);
                row.emplace_back(t ? reinterpret_cast<const char*>(t) : "<null>");
            }
        }
        sqlite3_finalize(st);
        return out;
    }
    // The rows as one text: columns joined by '/', rows by '|'.
    std::string text(const std::string& sql) const {
        std::string out;
        for (const auto& row : rows(sql)) {
            out += out.empty() ? "" : "|";
            for (size_t i = 0; i < row.size(); ++i) out += (i ? "/" : "") + row[i];
        }
        return out;
    }
    long long number(const std::string& sql) const { return std::stoll(text(sql)); }

private:
    sqlite3* db_ = nullptr;
};

// A fresh folder under the system temp folder, removed at the end.
struct TempDir {
    TempDir() { std::filesystem::create_directories(path); }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string file(const std::string& name) const { return (path / name).string(); }
    std::vector<std::string> entries() const {
        std::vector<std::string> out;
        for (auto& e : std::filesystem::directory_iterator(path))
            out.push_back(e.path().filename().string());
        return out;
    }
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("orvane-dbinit-test-" + std::to_string(std::random_device{}()) +
         std::to_string(std::random_device{}()));
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
