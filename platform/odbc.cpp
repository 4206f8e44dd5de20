// The few direct ODBC calls: the data-source listing and the name of the DBMS behind an
// open Qt connection. The only file of the program that includes the ODBC headers.
#include "platform/adodb.h"

#include <QSqlDriver>

#include <sql.h>
#include <sqlext.h>

namespace adodb {

std::vector<DataSource> dataSources() {
    std::vector<DataSource> out;
    SQLHENV env = SQL_NULL_HENV;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) return out;
    SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLCHAR name[SQL_MAX_DSN_LENGTH + 1];
    SQLCHAR desc[512];
    SQLSMALLINT nameLen = 0, descLen = 0;
    SQLUSMALLINT dir = SQL_FETCH_FIRST;
    while (SQL_SUCCEEDED(
        SQLDataSources(env, dir, name, sizeof name, &nameLen, desc, sizeof desc, &descLen))) {
        out.push_back({QString::fromLocal8Bit(reinterpret_cast<const char*>(name), nameLen),
                       QString::fromLocal8Bit(reinterpret_cast<const char*>(desc), descLen)});
        dir = SQL_FETCH_NEXT;
    }
    SQLFreeHandle(SQL_HANDLE_ENV, env);
    return out;
}

QString odbcDbmsName(const QSqlDatabase& db) {
    if (!db.isOpen() || !db.driver()) return QString();
    const QVariant h = db.driver()->handle();
    // Qt hands the connection handle over as a SQLHANDLE, which the meta-type system
    // knows as void*.
    if (!h.isValid() ||
        (qstrcmp(h.typeName(), "SQLHANDLE") != 0 && qstrcmp(h.typeName(), "void*") != 0))
        return QString();
    SQLHANDLE hdbc = *static_cast<const SQLHANDLE*>(h.constData());
    if (!hdbc) return QString();
    SQLCHAR buf[256] = {0};
    SQLSMALLINT len = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(hdbc, SQL_DBMS_NAME, buf, sizeof buf, &len))) return QString();
    return QString::fromLatin1(reinterpret_cast<const char*>(buf));
}

} // namespace adodb
