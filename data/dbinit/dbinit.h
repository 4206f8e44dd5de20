#pragma once
// Creating an acquisitions database: the tables, the seed rows, optionally the demo
// data set. Used by the orvane-dbinit tool and by tests that need a database.

#include "seed.h"

#include <cstdint>
#include <string>

struct sqlite3;

namespace orvane::dbinit {

struct Options {
    bool demo = false;              // add the demo data set
    std::int64_t extraHoldings = 0; // further ZSK rows, for load tests
};

// Creates a new SQLite database file at path. Refuses an existing file. The database
// is built in a temporary file beside path and renamed at the end, so a failure
// leaves nothing behind. On failure returns false and, if error is given, a message.
bool createDatabase(const std::string& path, bool demo, std::string* error);
bool createDatabase(const std::string& path, const Options& options, std::string* error,
                    DemoFigures* figures = nullptr);

// Creates tables and rows on an open, empty connection, in one transaction. The
// caller has registered the compat functions (orvane_compat_register) on db.
bool populate(sqlite3* db, const Options& options, std::string* error,
              DemoFigures* figures = nullptr);

// Appends count holdings to ZSK of an existing database, ids after the highest one.
bool addHoldings(sqlite3* db, std::int64_t count, std::string* error);

// The schema and the seed rows (and the demo rows with demo) as a SQL Server script
// for an existing database: guarded CREATEs, N'' literals, GO between batches.
std::string mssqlScript(bool demo);

} // namespace orvane::dbinit
