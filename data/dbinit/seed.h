#pragma once
// Rows that a fresh database is made with: the code lists, the field dictionary, the
// users, and on request a demo data set. Rows go to a sink, so that the same data
// can be written into SQLite or into a SQL Server script.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace orvane::dbinit {

struct Value {
    enum class Kind { Null, Int, Real, Text };
    Kind kind = Kind::Null;
    std::int64_t i = 0;
    double r = 0;
    std::string s;

    Value() = default;
    Value(std::int64_t v) : kind(Kind::Int), i(v) {}
    Value(int v) : kind(Kind::Int), i(v) {}
    Value(double v) : kind(Kind::Real), r(v) {}
    Value(std::string v) : kind(Kind::Text), s(std::move(v)) {}
    Value(std::string_view v) : kind(Kind::Text), s(v) {}
    Value(const char* v) : kind(Kind::Text), s(v) {}
    static Value null() { return Value(); }
};

class RowSink {
public:
    virtual ~RowSink() = default;
    // columns: names separated by commas, one value for each.
    virtual void insert(std::string_view table, std::string_view columns,
                        std::span<const Value> values) = 0;
};

struct Publisher {
    std::string_view prefix; // group and publisher digits, "7-302"
    std::string_view place;
    std::string_view name;
};

// Publisher prefixes of ISBN group 7, as they go into cbk.
std::span<const Publisher> publishers();

struct User {
    std::string_view name;
    std::string_view password;
    bool right; // LibUse.cgk
};
std::span<const User> users();

// Code lists, dictionary, users, cbk. Not the 'cgkid' counter of Global.
void writeSeed(RowSink& sink);

// The counter row of Global: the next cgkid to hand out.
void writeCgkidCounter(RowSink& sink, int nextCgkid);

struct DemoFigures {
    int orders = 0;
    int nextCgkid = 1;
    int holdings = 0;
    int copyRecords = 0;
    int suppliers = 0;
};

// The demo data set: suppliers, orders in every state, holdings, copy-cataloguing
// records. Deterministic.
DemoFigures writeDemo(RowSink& sink);

// count further holdings for load tests, ids from firstId on. Deterministic.
void writeExtraHoldings(RowSink& sink, std::int64_t firstId, std::int64_t count);

} // namespace orvane::dbinit
