// The SQL Server functions of the compat extension: what they answer, and where the
// server raises an error, that they raise one too instead of answering something.

#include "data/sqlitecompat/orvane_compat.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>

namespace {

// One SELECT of the expression on a connection with the compat functions: its text
// ("<null>" for NULL), or "error: " and the message.
std::string evaluate(const std::string& expr) {
    sqlite3* raw = nullptr;
    sqlite3_open(":memory:", &raw);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> db(raw, sqlite3_close);
    if (orvane_compat_register(raw) != SQLITE_OK) return "error: no database";
    sqlite3_stmt* st = nullptr;
    std::string out = "error: ";
    if (sqlite3_prepare_v2(raw, ("SELECT " + expr).c_str(), -1, &st, nullptr) == SQLITE_OK &&
        sqlite3_step(st) == SQLITE_ROW) {
        const unsigned char* t = sqlite3_column_text(st, 0);
        out = t ? reinterpret_cast<const char*>(t) : "<null>";
    } else {
        out += sqlite3_errmsg(raw);
    }
    sqlite3_finalize(st);
    return out;
}

// The expression and its answer, or "error: " and a part of the server's message.
class CompatFunction : public ::testing::TestWithParam<std::pair<const char*, std::string>> {};

TEST_P(CompatFunction, AnswersOrRefusesAsTheServerDoes) {
    const auto& [expr, expected] = GetParam();
    const std::string got = evaluate(expr);
    if (expected.rfind("error: ", 0) == 0)
        EXPECT_TRUE(got.rfind("error: ", 0) == 0 &&
                    got.find(expected.substr(7)) != std::string::npos)
            << got;
    else
        EXPECT_EQ(got, expected);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(LeftVarcharConvert, CompatFunction, ::testing::Values(
    std::pair{"vb_left('abc', 2)", "ab"}, std::pair{"vb_left('中文书名', 2)", "中文"}, std::pair{"vb_left('abc', 0)", ""},
    std::pair{"vb_left('abc', 2147483647)", "abc"}, std::pair{"vb_left(NULL, 2)", "<null>"},
    // Beyond 32 bits the count is not cut down to something small.
    std::pair{"vb_left('abc', 4294967296)", "error: Arithmetic overflow"},
    std::pair{"vb_left('abc', 4294967298)", "error: Arithmetic overflow"},
    std::pair{"vb_left('abc', -1)", "error: Invalid length parameter passed to the left function."},
    std::pair{"varchar(10)", "10"}, std::pair{"varchar(8000)", "8000"},
    std::pair{"varchar(99999999999)", "error: The size (99999999999) given to the type 'varchar' exceeds the maximum allowed for any data type (8000)."},
    std::pair{"varchar(8001)", "error: (8000)"},
    std::pair{"varchar(0)", "error: Length or precision specification 0 is invalid."},
    std::pair{"nvarchar(4001)", "error: type 'nvarchar' exceeds the maximum allowed"},
    // Style 23 is the date alone, however wide the target.
    std::pair{"convert(varchar(30),'2003-01-05',23)", "2003-01-05"},
    std::pair{"convert(varchar(30),'2003/1/5 10:20:30',23)", "2003-01-05"},
    std::pair{"convert(varchar(10),'2003/1/5',111)", "2003/01/05"},
    std::pair{"convert(varchar(30),'2003-01-05 10:20:30',120)", "2003-01-05 10:20:30"},
    std::pair{"convert(varchar(30),'2003-01-05',112)", "20030105"},
    std::pair{"convert(varchar(4),'2003-01-05',111)", "2003"}, std::pair{"convert(varchar(3),'书名很长')", "书名很"},
    // A style it cannot write is said, not answered with another form.
    std::pair{"convert(varchar(30),'2003-01-05',101)", "error: style 101"},
    std::pair{"convert(varchar(99999999999),'2003-01-05',111)", "error: (8000)"}));
// clang-format on

} // namespace
