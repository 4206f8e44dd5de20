#pragma once
// The tables of the acquisitions database, described once. The SQLite DDL and the
// SQL Server script are both generated from these definitions.

#include <span>
#include <string>
#include <string_view>

namespace orvane::dbinit {

enum class ColKind {
    Int,   // whole numbers: ids, counts, pages, status
    Money, // prices and amounts
    Text,  // case-insensitive text, trailing blanks ignored
    Date,  // date-time, normalised on write in SQLite
    Bit,   // a yes/no right
};

struct Column {
    std::string_view name;
    ColKind kind;
    int length = 0;          // varchar length on SQL Server; text only
    bool primaryKey = false; // the key the program allocates itself
    bool defaultZero = false;
};

struct Index {
    std::string_view name;
    std::string_view columns; // comma separated
};

struct Table {
    std::string_view name;
    std::span<const Column> columns;
    std::span<const Index> indexes;

    const Column* column(std::string_view col) const;
};

// All tables, in creation order.
std::span<const Table> tables();
const Table* findTable(std::string_view name);

// DDL for SQLite: the tables, then the indexes and the date triggers (made after a
// bulk load, which is faster than keeping them up row by row). The connection must
// have the compat functions and the VBTEXT collation registered before it runs them.
std::string sqliteTables();
std::string sqliteIndexes();

// The same schema as a T-SQL script, one statement per GO batch.
std::string mssqlSchema();

} // namespace orvane::dbinit
