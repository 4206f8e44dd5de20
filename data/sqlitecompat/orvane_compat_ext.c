/* The loadable form of the compat functions, for the SQLite3 ODBC driver's LoadExt=.
 * The module links the same libsqlite3 the driver does, so it calls the API directly. */
#include "data/sqlitecompat/orvane_compat.h"

#include <sqlite3.h>

#define ORVANE_EXPORT __attribute__((visibility("default")))

ORVANE_EXPORT int sqlite3_extension_init(sqlite3* db, char** errMsg, const void* api);
ORVANE_EXPORT int sqlite3_orvanesqlitecompat_init(sqlite3* db, char** errMsg, const void* api);

int sqlite3_extension_init(sqlite3* db, char** errMsg, const void* api) {
    (void)errMsg;
    (void)api;
    return orvane_compat_register(db);
}

int sqlite3_orvanesqlitecompat_init(sqlite3* db, char** errMsg, const void* api) {
    return sqlite3_extension_init(db, errMsg, api);
}
