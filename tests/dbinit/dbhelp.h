#pragma once
// Small sqlite3 helpers for the database tool's tests: a connection with the compat
// functions, queries as text, a scratch folder, and a database made once per suite.

#include "data/dbinit/dbinit.h"
#include "data/sqlitecompat/orvane_compat.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace dbhelp {

class Db {
public:
    explicit Db(const std::string& path) {
        if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK)
            ADD_FAILURE() << "cannot open " << path << ": " << sqlite3_errmsg(db_);
        else
            orvane_compat_register(db_);
    }
    ~Db() { sqlite3_close(db_); }
    Db(const Db&) = delete;
    Db& operator=(const Db&) = delete;

    void exec(const std::string& sql) const {
        EXPECT_EQ(sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(db_) << " in " << sql;
    }

    // Every row as text ("<null>" for NULL); a failing statement gives one "error: " row.
    std::vector<std::vector<std::string>> rows(const std::string& sql) const {
        std::vector<std::vector<std::string>> out;
        sqlite3_stmt* st = nullptr;
        int rc = sqlite3_prepare_v2(db_, sql.c_str(), -1, &st, nullptr);
        while (rc == SQLITE_OK && (rc = sqlite3_step(st)) == SQLITE_ROW) {
            auto& row = out.emplace_back();
            for (int i = 0; i < sqlite3_column_count(st); ++i) {
                const unsigned char* t = sqlite3_column_text(st, i);
                row.emplace_back(t ? reinterpret_cast<const char*>(t) : "<null>");
            }
            rc = SQLITE_OK;
        }
        if (rc != SQLITE_DONE) out = {{"error: " + std::string(sqlite3_errmsg(db_))}};
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

private:
    sqlite3* db_ = nullptr;
};

inline std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

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
        std::sort(out.begin(), out.end());
        return out;
    }
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("orvane-dbinit-test-" + std::to_string(std::random_device{}()));
};

// One database made by the tool for the whole suite (demo rows or not).
template <bool Demo> class MadeDb : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = std::make_unique<TempDir>();
        std::string error;
        ASSERT_TRUE(orvane::dbinit::createDatabase(path(), Demo, &error)) << error;
    }
    static void TearDownTestSuite() { dir_.reset(); }
    static std::string path() { return dir_->file("made.db"); }
    static inline std::unique_ptr<TempDir> dir_;
    const std::unique_ptr<Db> db = std::make_unique<Db>(path());
};

} // namespace dbhelp
