// The SQL Server functions of the compat extension: what they answer, and where the
// server raises an error, that they raise one too instead of answering something.

#include "data/sqlitecompat/orvane_compat.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>

namespace {

struct Case {
    const char* expr;
    const char* value; // nullptr: an error is expected
    const char* error; // part of the error message
};

void PrintTo(const Case& c, std::ostream* os) {
    *os << c.expr;
}

// One SELECT of the expression on a connection with the compat functions: its text
// ("<null>" for NULL), or "error: " and the message.
std::string evaluate(const std::string& expr) {
    sqlite3* db = nullptr;
    if (sqlite3_open(":memory:", &db) != SQLITE_OK || orvane_compat_register(db) != SQLITE_OK) {
        sqlite3_close(db);
        return "error: no database";
    }
    std::string out;
    sqlite3_stmt* st = nullptr;
    if (sqlite3_prepare_v2(db, ("SELECT " + expr).c_str(), -1, &st, nullptr) != SQLITE_OK) {
        out = std::string("error: ") + sqlite3_errmsg(db);
    } else if (sqlite3_step(st) == SQLITE_ROW) {
        const unsigned char* t = sqlite3_column_text(st, 0);
        out = t ? reinterpret_cast<const char*>(t) : "<null>";
    } else {
        out = std::string("error: ") + sqlite3_errmsg(db);
    }
    sqlite3_finalize(st);
    sqlite3_close(db);
    return out;
}

class CompatFunction : public ::testing::TestWithParam<Case> {};

TEST_P(CompatFunction, AnswersOrRefusesAsTheServerDoes) {
    const Case& c = GetParam();
    const std::string got = evaluate(c.expr);
    if (c.value) {
        EXPECT_EQ(got, c.value);
    } else {
        EXPECT_EQ(got.rfind("error: ", 0), 0u) << got;
        EXPECT_NE(got.find(c.error), std::string::npos) << got;
    }
}

INSTANTIATE_TEST_SUITE_P(
    LeftVarcharConvert, CompatFunction,
    ::testing::Values(
        Case{"vb_left('abc', 2)", "ab", nullptr}, Case{"vb_left('中文书名', 2)", "中文", nullptr},
        Case{"vb_left('abc', 0)", "", nullptr}, Case{"vb_left('abc', 2147483647)", "abc", nullptr},
        Case{"vb_left(NULL, 2)", "<null>", nullptr},
        // Beyond 32 bits the count is not cut down to something small.
        Case{"vb_left('abc', 4294967296)", nullptr, "Arithmetic overflow"},
        Case{"vb_left('abc', 4294967298)", nullptr, "Arithmetic overflow"},
        Case{"vb_left('abc', -1)", nullptr,
             "Invalid length parameter passed to the left function."},
        Case{"varchar(10)", "10", nullptr}, Case{"varchar(8000)", "8000", nullptr},
        Case{"varchar(99999999999)", nullptr,
             "The size (99999999999) given to the type 'varchar' exceeds the maximum allowed "
             "for any data type (8000)."},
        Case{"varchar(8001)", nullptr, "(8000)"},
        Case{"varchar(0)", nullptr, "Length or precision specification 0 is invalid."},
        Case{"nvarchar(4001)", nullptr, "type 'nvarchar' exceeds the maximum allowed"},
        // Style 23 is the date alone, however wide the target.
        Case{"convert(varchar(30),'2003-01-05',23)", "2003-01-05", nullptr},
        Case{"convert(varchar(30),'2003/1/5 10:20:30',23)", "2003-01-05", nullptr},
        Case{"convert(varchar(10),'2003/1/5',111)", "2003/01/05", nullptr},
        Case{"convert(varchar(30),'2003-01-05 10:20:30',120)", "2003-01-05 10:20:30", nullptr},
        Case{"convert(varchar(30),'2003-01-05',112)", "20030105", nullptr},
        Case{"convert(varchar(4),'2003-01-05',111)", "2003", nullptr},
        Case{"convert(varchar(3),'书名很长')", "书名很", nullptr},
        // A style it cannot write is said, not answered with another form.
        Case{"convert(varchar(30),'2003-01-05',101)", nullptr, "style 101"},
        Case{"convert(varchar(99999999999),'2003-01-05',111)", nullptr, "(8000)"}));

} // namespace
