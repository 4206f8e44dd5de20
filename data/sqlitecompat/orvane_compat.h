#ifndef ORVANE_COMPAT_H
#define ORVANE_COMPAT_H
/* The SQL Server dialect pieces the statements need on SQLite.
 *
 *   convert(varchar(10), x, 111)  date text as yyyy/mm/dd (also 23, 102, 108, 112, 120;
 *                                 another style is an error)
 *   varchar(n)                    a type marker for convert(); n from 1 to 8000, as
 *                                 the server allows
 *   getdate()                     local date and time, "yyyy-mm-dd hh:mm:ss.zzz"
 *   vb_left(s, n)                 left(s, n); the data-access layer renames left( to it,
 *                                 as LEFT is a keyword in SQLite; n below 0 or beyond
 *                                 32 bits is an error, as on the server
 *   vb_normdate(x)                a date text normalised for storage: "2003/1/1" ->
 *                                 "2003-01-01", midnight without a time, anything that
 *                                 is not a date is returned unchanged
 *   COLLATE VBTEXT                case-insensitive, trailing blanks ignored, as the
 *                                 default collation of a Chinese SQL Server database
 *
 * Loaded by the SQLite3 ODBC driver with LoadExt=, and linked into the database tool.
 */
#ifdef __cplusplus
extern "C" {
#endif
struct sqlite3;
/* Registers every function and the collation on one connection; SQLITE_OK or an error. */
int orvane_compat_register(struct sqlite3* db);
#ifdef __cplusplus
}
#endif
#endif
