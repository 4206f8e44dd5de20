#pragma once
// Creating an acquisitions database: the tables, the seed rows, optionally the demo
// data set. Used by the orvane-dbinit tool and by tests that need a database.

#include "seed.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct sqlite3;

namespace orvane::dbinit {

struct Options {
    bool demo = false;              // add the demo data set
    std::int64_t extraHoldings = 0; // further ZSK rows, for load tests
    // Told the path of the temporary file before it is made, and "" once it is renamed
    // or removed: a tool that is interrupted removes it.
    std::function<void(const std::string& path)> tempFile;
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

enum class Dialect { SqlServer, Sqlite };
// The seed rows (and the demo rows with demo) as one INSERT each that adds the row only
// when no row with its key is there yet, so that they can go into a database that holds
// rows of its own, and again into one that has them. Users go only into a LibUse that
// holds no other users. The Global counter row comes last, past the highest cgkid.
std::vector<std::string> seedStatements(Dialect dialect, bool demo);

} // namespace orvane::dbinit
