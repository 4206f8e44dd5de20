#include "platform/adodb.h"

#include "platform/errors.h"
#include "platform/sqldialect.h"
#include "platform/vb.h"

#include <QDateTime>
#include <QRegularExpression>

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "ODBC wide characters are UTF-16 here");

namespace adodb {

namespace {

[[noreturn]] void raiseAdo(int number) {
    throw vb::VbError(number, adoErrorText(number));
}

const char16_t* wide(const QString& s) {
    return reinterpret_cast<const char16_t*>(s.utf16());
}
SQLWCHAR* sqlw(const QString& s) {
    return const_cast<SQLWCHAR*>(reinterpret_cast<const SQLWCHAR*>(wide(s)));
}

// The provider's own text of the first diagnostic record, as ADO hands it on.
QString diagText(SQLSMALLINT type, SQLHANDLE h) {
    SQLWCHAR state[6] = {0};
    SQLINTEGER native = 0;
    SQLWCHAR msg[2048] = {0};
    SQLSMALLINT len = 0;
    const SQLRETURN r = SQLGetDiagRecW(type, h, 1, state, &native, msg, 2047, &len);
    if (!SQL_SUCCEEDED(r)) return QStringLiteral("未指定的错误");
    QString text =
        QString::fromUtf16(reinterpret_cast<const char16_t*>(msg), std::min<int>(len, 2047));
    const qsizetype nul = text.indexOf(QChar(u'\0'));
    if (nul >= 0) text.truncate(nul);
    return text;
}

[[noreturn]] void raiseDiag(SQLSMALLINT type, SQLHANDLE h) {
    throw vb::VbError(vb::errProvider, diagText(type, h),
                      QStringLiteral("Microsoft OLE DB Provider for ODBC Drivers"));
}

SQLHENV environment() {
    static SQLHENV env = SQL_NULL_HENV;
    static std::once_flag once;
    std::call_once(once, [] {
        if (SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env)))
            SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                          0);
    });
    return env;
}

bool isProviderItem(const QString& item) {
    return item.trimmed().startsWith(QStringLiteral("PROVIDER="), Qt::CaseInsensitive);
}

// A statement handle released at the end of the scope.
struct Stmt {
    SQLHSTMT h = SQL_NULL_HSTMT;
    explicit Stmt(SQLHDBC dbc) {
        if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &h)))
            raiseDiag(SQL_HANDLE_DBC, dbc);
    }
    ~Stmt() {
        if (h) SQLFreeHandle(SQL_HANDLE_STMT, h);
    }
    Stmt(const Stmt&) = delete;
    Stmt& operator=(const Stmt&) = delete;
};

enum class CType { Text, Int, Double, Bit, Timestamp, Date, Time, Binary };

struct Column {
    QString name;
    SQLSMALLINT sqlType = 0;
    SQLULEN size = 0;
    CType ctype = CType::Text;
    // bound buffers of one block; left uncleared, since only what the driver wrote is read,
    // and clearing a block of wide columns for each one-row result was most of its cost
    std::unique_ptr<char[]> data;
    std::vector<SQLLEN> ind;
    SQLLEN width = 0; // bytes per row
    // the value of the row before, with the bytes it came from
    bool hasLast = false;
    SQLLEN lastInd = 0;
    std::vector<char> lastRaw;
    QVariant last;
};

// A date and time of the local zone. Building one asks the C library for the zone's
// offset, and without TZ in the environment glibc reads the zone file again for each call:
// each distinct value is built once per thread and shared after that.
QDateTime localDateTime(int y, int mo, int d, int h, int mi, int s, int ms) {
    thread_local std::unordered_map<qint64, QDateTime> seen;
    const qint64 key =
        ((((((static_cast<qint64>(y) * 13 + mo) * 32 + d) * 24 + h) * 60 + mi) * 60 + s) * 1000) +
        ms;
    auto it = seen.find(key);
    if (it != seen.end()) return it->second;
    if (seen.size() > 100000) seen.clear();
    QDateTime v(QDate(y, mo, d), QTime(h, mi, s, ms));
    seen.emplace(key, v);
    return v;
}

CType ctypeOf(SQLSMALLINT t) {
    switch (t) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
        return CType::Int;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
        return CType::Double;
    case SQL_BIT:
        return CType::Bit;
    case SQL_TYPE_TIMESTAMP:
    case SQL_TIMESTAMP:
    case SQL_DATETIME:
        return CType::Timestamp;
    case SQL_TYPE_DATE:
        return CType::Date;
    case SQL_TYPE_TIME:
    case SQL_TIME:
        return CType::Time;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
        return CType::Binary;
    default:
        return CType::Text;
    }
}

SQLSMALLINT cTypeCode(CType c) {
    switch (c) {
    case CType::Int:
        return SQL_C_SBIGINT;
    case CType::Double:
        return SQL_C_DOUBLE;
    case CType::Bit:
        return SQL_C_BIT;
    case CType::Timestamp:
        return SQL_C_TYPE_TIMESTAMP;
    case CType::Date:
        return SQL_C_TYPE_DATE;
    case CType::Time:
        return SQL_C_TYPE_TIME;
    case CType::Binary:
        return SQL_C_BINARY;
    default:
        return SQL_C_WCHAR;
    }
}

QVariant toVariant(const Column& c, const char* p, SQLLEN ind) {
    if (ind == SQL_NULL_DATA) return QVariant();
    switch (c.ctype) {
    case CType::Int: {
        SQLBIGINT v;
        std::memcpy(&v, p, sizeof v);
        if (v >= INT_MIN && v <= INT_MAX) return QVariant(static_cast<int>(v));
        return QVariant(static_cast<qlonglong>(v));
    }
    case CType::Double: {
        double v;
        std::memcpy(&v, p, sizeof v);
        return QVariant(v);
    }
    case CType::Bit:
        return QVariant(*p != 0);
    case CType::Timestamp: {
        SQL_TIMESTAMP_STRUCT t;
        std::memcpy(&t, p, sizeof t);
        return QVariant(localDateTime(t.year, t.month, t.day, t.hour, t.minute, t.second,
                                      static_cast<int>(t.fraction / 1000000)));
    }
    case CType::Date: {
        SQL_DATE_STRUCT t;
        std::memcpy(&t, p, sizeof t);
        return QVariant(localDateTime(t.year, t.month, t.day, 0, 0, 0, 0));
    }
    case CType::Time: {
        SQL_TIME_STRUCT t;
        std::memcpy(&t, p, sizeof t);
        return QVariant(QTime(t.hour, t.minute, t.second));
    }
    case CType::Binary:
        return QVariant(QByteArray(p, static_cast<qsizetype>(ind)));
    default: {
        const qsizetype chars = ind == SQL_NO_TOTAL ? 0 : static_cast<qsizetype>(ind) / 2;
        return QVariant(QString::fromUtf16(reinterpret_cast<const char16_t*>(p), chars));
    }
    }
}

SQLLEN fixedWidth(CType c) {
    switch (c) {
    case CType::Int:
        return sizeof(SQLBIGINT);
    case CType::Double:
        return sizeof(double);
    case CType::Bit:
        return 1;
    case CType::Timestamp:
        return sizeof(SQL_TIMESTAMP_STRUCT);
    case CType::Date:
        return sizeof(SQL_DATE_STRUCT);
    case CType::Time:
        return sizeof(SQL_TIME_STRUCT);
    default:
        return 0;
    }
}

// Columns longer than this go by SQLGetData, row by row.
constexpr SQLULEN kMaxBoundChars = 4000;
constexpr SQLULEN kBlockRows = 256;

struct Result {
    bool isSelect = false;
    long affected = -1;
    QStringList names;
    std::vector<std::vector<QVariant>> rows;
};

std::vector<Column> describe(SQLHSTMT st, SQLSMALLINT count) {
    std::vector<Column> cols(static_cast<size_t>(count));
    for (SQLSMALLINT i = 0; i < count; ++i) {
        SQLWCHAR name[512] = {0};
        SQLSMALLINT nameLen = 0, type = 0, digits = 0, nullable = 0;
        SQLULEN size = 0;
        SQLDescribeColW(st, static_cast<SQLUSMALLINT>(i + 1), name, 511, &nameLen, &type, &size,
                        &digits, &nullable);
        Column& c = cols[static_cast<size_t>(i)];
        // Some drivers count the name in bytes of UTF-8: a Chinese alias then comes with
        // NULs behind it. The buffer was cleared, so the name ends at its first NUL.
        QString n = QString::fromUtf16(reinterpret_cast<const char16_t*>(name),
                                       std::min<int>(nameLen, 511));
        const qsizetype nul = n.indexOf(QChar(u'\0'));
        if (nul >= 0) n.truncate(nul);
        c.name = n;
        c.sqlType = type;
        c.size = size;
        c.ctype = ctypeOf(type);
    }
    return cols;
}

// Block fetch into bound buffers. Returns false when a text did not fit its buffer (a
// driver that declares less than it holds): the caller reads the rows one by one instead.
bool fetchBound(SQLHSTMT st, std::vector<Column>& cols, std::vector<std::vector<QVariant>>& rows) {
    SQLULEN block = kBlockRows;
    SQLSetStmtAttr(st, SQL_ATTR_ROW_BIND_TYPE, reinterpret_cast<SQLPOINTER>(SQL_BIND_BY_COLUMN), 0);
    SQLSetStmtAttr(st, SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(block), 0);
    SQLULEN actual = 1;
    SQLGetStmtAttr(st, SQL_ATTR_ROW_ARRAY_SIZE, &actual, 0, nullptr);
    block = actual ? actual : 1;
    SQLULEN fetched = 0;
    SQLSetStmtAttr(st, SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
    for (size_t i = 0; i < cols.size(); ++i) {
        Column& c = cols[i];
        c.width = fixedWidth(c.ctype);
        if (c.width == 0) c.width = static_cast<SQLLEN>((std::max<SQLULEN>(c.size, 1) + 1) * 2);
        c.data.reset(new char[static_cast<size_t>(c.width) * block]);
        c.ind.assign(block, 0);
        SQLBindCol(st, static_cast<SQLUSMALLINT>(i + 1), cTypeCode(c.ctype), c.data.get(), c.width,
                   c.ind.data());
    }
    for (;;) {
        const SQLRETURN r = SQLFetch(st);
        if (r == SQL_NO_DATA) break;
        if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st);
        for (SQLULEN row = 0; row < fetched; ++row) {
            std::vector<QVariant> out(cols.size());
            for (size_t i = 0; i < cols.size(); ++i) {
                Column& c = cols[i];
                const SQLLEN ind = c.ind[row];
                if ((c.ctype == CType::Text || c.ctype == CType::Binary) &&
                    (ind == SQL_NO_TOTAL || ind >= c.width - (c.ctype == CType::Text ? 1 : 0)))
                    return false; // cut short
                const char* p = c.data.get() + static_cast<size_t>(c.width) * row;
                // A column often repeats the value of the row before (a publisher, a date):
                // share that value instead of building it again.
                const size_t len = ind == SQL_NULL_DATA
                                       ? 0
                                       : (fixedWidth(c.ctype) ? static_cast<size_t>(c.width)
                                                              : static_cast<size_t>(ind));
                if (c.hasLast && ind == c.lastInd && len == c.lastRaw.size() &&
                    (len == 0 || std::memcmp(p, c.lastRaw.data(), len) == 0)) {
                    out[i] = c.last;
                    continue;
                }
                out[i] = toVariant(c, p, ind);
                c.last = out[i];
                c.lastInd = ind;
                c.lastRaw.assign(p, p + len);
                c.hasLast = true;
            }
            rows.push_back(std::move(out));
        }
    }
    return true;
}

QVariant getData(SQLHSTMT st, SQLUSMALLINT col, const Column& c) {
    const SQLLEN fixed = fixedWidth(c.ctype);
    if (fixed > 0) {
        alignas(16) char buf[64] = {0};
        SQLLEN ind = 0;
        const SQLRETURN r = SQLGetData(st, col, cTypeCode(c.ctype), buf, sizeof buf, &ind);
        if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st);
        return toVariant(c, buf, ind);
    }
    // Text and bytes in pieces until the driver has no more.
    QByteArray all;
    std::vector<char> buf(8192);
    const SQLSMALLINT ctype = cTypeCode(c.ctype);
    const SQLLEN term = ctype == SQL_C_WCHAR ? 2 : 0;
    for (;;) {
        SQLLEN ind = 0;
        const SQLRETURN r =
            SQLGetData(st, col, ctype, buf.data(), static_cast<SQLLEN>(buf.size()), &ind);
        if (r == SQL_NO_DATA) break;
        if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st);
        if (ind == SQL_NULL_DATA) return QVariant();
        const SQLLEN room = static_cast<SQLLEN>(buf.size()) - term;
        const SQLLEN got = (ind == SQL_NO_TOTAL || ind > room) ? room : ind;
        all.append(buf.data(), got);
        if (r == SQL_SUCCESS) break;
    }
    if (ctype == SQL_C_BINARY) return QVariant(all);
    return QVariant(
        QString::fromUtf16(reinterpret_cast<const char16_t*>(all.constData()), all.size() / 2));
}

void fetchByRow(SQLHSTMT st, std::vector<Column>& cols, std::vector<std::vector<QVariant>>& rows) {
    for (;;) {
        const SQLRETURN r = SQLFetch(st);
        if (r == SQL_NO_DATA) break;
        if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st);
        std::vector<QVariant> out(cols.size());
        for (size_t i = 0; i < cols.size(); ++i)
            out[i] = getData(st, static_cast<SQLUSMALLINT>(i + 1), cols[i]);
        rows.push_back(std::move(out));
    }
}

Result run(SQLHDBC dbc, const QString& sql) {
    Result res;
    {
        Stmt st(dbc);
        const SQLRETURN r = SQLExecDirectW(st.h, sqlw(sql), SQL_NTS);
        if (r != SQL_NO_DATA && !SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st.h);
        SQLSMALLINT count = 0;
        if (r != SQL_NO_DATA) SQLNumResultCols(st.h, &count);
        if (count <= 0) {
            SQLLEN n = 0;
            if (r == SQL_NO_DATA)
                n = 0;
            else if (!SQL_SUCCEEDED(SQLRowCount(st.h, &n)))
                n = -1;
            res.affected = static_cast<long>(n);
            return res;
        }
        res.isSelect = true;
        std::vector<Column> cols = describe(st.h, count);
        for (const Column& c : cols) res.names << c.name;
        bool longColumn = false;
        for (const Column& c : cols)
            if ((c.ctype == CType::Text || c.ctype == CType::Binary) &&
                (c.size == 0 || c.size > kMaxBoundChars))
                longColumn = true;
        if (longColumn) {
            fetchByRow(st.h, cols, res.rows);
            return res;
        }
        if (fetchBound(st.h, cols, res.rows)) return res;
    }
    // A text longer than its column said: read the whole result again, row by row.
    res.rows.clear();
    Stmt st(dbc);
    const SQLRETURN r = SQLExecDirectW(st.h, sqlw(sql), SQL_NTS);
    if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st.h);
    SQLSMALLINT count = 0;
    SQLNumResultCols(st.h, &count);
    std::vector<Column> cols = describe(st.h, count);
    fetchByRow(st.h, cols, res.rows);
    return res;
}

QString dbmsName(SQLHDBC dbc) {
    SQLWCHAR buf[256] = {0};
    SQLSMALLINT len = 0;
    if (!SQL_SUCCEEDED(SQLGetInfoW(dbc, SQL_DBMS_NAME, buf, sizeof buf, &len))) return QString();
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(buf));
}

} // namespace

QString adoErrorText(int number) {
    switch (number) {
    case adErrNoCurrentRecord:
        return QStringLiteral(
            "BOF 或 EOF 中有一个是“真”，或者当前的记录已被删除，所需的操作要求一个当前的记录。");
    case adErrObjectClosed:
        return QStringLiteral("对象关闭时，不允许操作。");
    case adErrItemNotFound:
        return QStringLiteral("在对应所需名称或序数的集合中，未找到项目。");
    default:
        return vb::runtimeErrorText(number);
    }
}

OdbcProfile parseProfile(const QString& connectionString) {
    OdbcProfile p;
    QStringList kept;
    for (const QString& item : connectionString.split(u';')) {
        if (isProviderItem(item)) {
            if (item.contains(QStringLiteral("MSDataShape"), Qt::CaseInsensitive)) p.shaped = true;
            continue;
        }
        if (!item.isEmpty()) kept << item;
    }
    p.odbc = kept.join(u';');
    if (!p.odbc.isEmpty()) p.odbc += u';';
    return p;
}

std::vector<DataSource> dataSources() {
    std::vector<DataSource> out;
    SQLHENV env = environment();
    if (!env) return out;
    SQLWCHAR name[SQL_MAX_DSN_LENGTH + 1];
    SQLWCHAR desc[512];
    SQLSMALLINT nameLen = 0, descLen = 0;
    SQLUSMALLINT dir = SQL_FETCH_FIRST;
    while (SQL_SUCCEEDED(
        SQLDataSourcesW(env, dir, name, SQL_MAX_DSN_LENGTH + 1, &nameLen, desc, 512, &descLen))) {
        out.push_back({QString::fromUtf16(reinterpret_cast<const char16_t*>(name), nameLen),
                       QString::fromUtf16(reinterpret_cast<const char16_t*>(desc), descLen)});
        dir = SQL_FETCH_NEXT;
    }
    return out;
}

// ---- Connection ------------------------------------------------------------------------

Connection::Connection() = default;

namespace {
std::vector<Connection*>& sqliteTransactions() {
    static std::vector<Connection*> open;
    return open;
}
} // namespace

Connection* Connection::sqliteRunner() {
    if (m_dbms != Dbms::SQLite || m_sqliteTrans) return this;
    for (Connection* c : sqliteTransactions())
        if (c != this && c->m_odbc == m_odbc) return c;
    return this;
}

void Connection::leaveSqliteTransaction() {
    if (!m_sqliteTrans) return;
    m_sqliteTrans = false;
    auto& open = sqliteTransactions();
    open.erase(std::remove(open.begin(), open.end(), this), open.end());
}

Connection::~Connection() {
    leaveSqliteTransaction();
    if (m_dbc) {
        if (m_open) SQLDisconnect(m_dbc);
        SQLFreeHandle(SQL_HANDLE_DBC, m_dbc);
    }
}

void Connection::Open(const QString& connectionString, const QString& userId,
                      const QString& password, int /*options*/) {
    m_connStr = connectionString;
    const OdbcProfile p = parseProfile(connectionString);
    m_shaped = p.shaped;
    m_odbc = p.odbc;
    if (m_dbc) {
        if (m_open) SQLDisconnect(m_dbc);
        SQLFreeHandle(SQL_HANDLE_DBC, m_dbc);
        m_dbc = nullptr;
        m_open = false;
    }
    SQLHENV env = environment();
    if (!env) throw vb::VbError(vb::errProvider, QStringLiteral("ODBC 驱动程序管理器不可用"));
    SQLHDBC dbc = SQL_NULL_HDBC;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc))) raiseDiag(SQL_HANDLE_ENV, env);
    m_dbc = dbc;
    QString cs = p.odbc;
    if (!userId.isEmpty()) cs += QStringLiteral("UID=") + userId + u';';
    if (!password.isEmpty()) cs += QStringLiteral("PWD=") + password + u';';
    SQLWCHAR out[1024];
    SQLSMALLINT outLen = 0;
    const SQLRETURN r =
        SQLDriverConnectW(dbc, nullptr, sqlw(cs), SQL_NTS, out, 1024, &outLen, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_DBC, dbc);
    m_open = true;
    const QString dbms = dbmsName(dbc);
    if (dbms.contains(QStringLiteral("SQLite"), Qt::CaseInsensitive))
        m_dbms = Dbms::SQLite;
    else if (dbms.contains(QStringLiteral("SQL Server"), Qt::CaseInsensitive))
        m_dbms = Dbms::SqlServer;
    else
        m_dbms = dbms.isEmpty() ? Dbms::Unknown : Dbms::Other;
}

bool Connection::isOpen() const {
    return m_open;
}

QString Connection::adapt(const QString& sql) const {
    return m_dbms == Dbms::SQLite ? sqldialect::toSQLite(sql) : sql;
}

std::unique_ptr<Recordset> Connection::Execute(const QString& sql, long* recordsAffected) {
    if (recordsAffected) *recordsAffected = -1;
    if (!m_open) raiseAdo(adErrObjectClosed);
    Connection* runner = sqliteRunner();
    const QString text = adapt(sql);
    Result res = run(runner->m_dbc, text);
    if (runner != this && !res.isSelect) runner->m_guestWrites.push_back(text);
    auto rs = std::make_unique<Recordset>();
    if (res.isSelect) {
        rs->m_cursorType = adOpenForwardOnly;
        rs->m_names = std::move(res.names);
        rs->m_rows = std::move(res.rows);
        rs->m_open = true;
        rs->m_pos = 0;
    } else if (recordsAffected) {
        *recordsAffected = res.affected;
    }
    return rs;
}

void Connection::BeginTrans() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    if (!SQL_SUCCEEDED(SQLSetConnectAttr(m_dbc, SQL_ATTR_AUTOCOMMIT,
                                         reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF),
                                         SQL_IS_UINTEGER)))
        raiseDiag(SQL_HANDLE_DBC, m_dbc);
    if (m_dbms == Dbms::SQLite && !m_sqliteTrans) {
        m_sqliteTrans = true;
        m_guestWrites.clear();
        sqliteTransactions().push_back(this);
    }
}

namespace {
void endTrans(SQLHDBC dbc, SQLSMALLINT how) {
    const SQLRETURN r = SQLEndTran(SQL_HANDLE_DBC, dbc, how);
    SQLSetConnectAttr(dbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON),
                      SQL_IS_UINTEGER);
    if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_DBC, dbc);
}
} // namespace

void Connection::CommitTrans() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    leaveSqliteTransaction();
    m_guestWrites.clear();
    endTrans(m_dbc, SQL_COMMIT);
}

void Connection::RollbackTrans() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    leaveSqliteTransaction();
    endTrans(m_dbc, SQL_ROLLBACK);
    // The other connections' writes were never part of this transaction.
    const std::vector<QString> guests = std::move(m_guestWrites);
    m_guestWrites.clear();
    for (const QString& sql : guests) run(m_dbc, sql);
}

// ---- Recordset -------------------------------------------------------------------------

Recordset::Recordset() = default;
Recordset::~Recordset() = default;

void Recordset::load(Connection& conn, const QString& sql, int cursorType) {
    if (!conn.isOpen()) raiseAdo(adErrObjectClosed);
    Connection* runner = conn.sqliteRunner();
    const QString text = conn.adapt(sql);
    Result res = run(runner->m_dbc, text);
    if (runner != &conn && !res.isSelect) runner->m_guestWrites.push_back(text);
    m_names = std::move(res.names);
    m_rows = std::move(res.rows);
    m_children.clear();
    m_cursorType = cursorType;
    m_open = true;
    m_pos = 0; // on the first row, or BOF and EOF together when there is none
}

void Recordset::loadShaped(Connection& conn, const QString& sql, int cursorType) {
    static const QRegularExpression re(
        QStringLiteral(
            R"(^\s*SHAPE\s*\{(.*)\}\s*AS\s+(\w+)\s+COMPUTE\s+(\w+)\s+BY\s+'?([\w\[\]]+)'?\s*$)"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const auto m = re.match(sql);
    if (!m.hasMatch() || m.captured(2).compare(m.captured(3), Qt::CaseInsensitive) != 0) {
        // Not a shape this layer knows: the provider gets it and says what it thinks.
        load(conn, sql, cursorType);
        return;
    }
    Recordset inner;
    inner.load(conn, m.captured(1), adOpenStatic);
    QString by = m.captured(4);
    if (by.startsWith(u'[')) by = by.mid(1, by.size() - 2);
    const int byIndex = inner.fieldIndex(by);
    if (byIndex < 0) raiseAdo(adErrItemNotFound);

    m_names = QStringList{m.captured(2), inner.fieldName(byIndex)};
    m_chapterName = m.captured(2);
    m_rows.clear();
    m_children.clear();
    m_cursorType = cursorType;
    // Parents in the order their first child comes, children in their own order.
    std::vector<std::vector<std::vector<QVariant>>> groups;
    std::vector<QVariant> keys;
    for (long r = 0; r < inner.rowCount(); ++r) {
        const QVariant& key = inner.row(r)[static_cast<size_t>(byIndex)];
        size_t g = 0;
        while (g < keys.size() && !(keys[g] == key && keys[g].isNull() == key.isNull())) ++g;
        if (g == keys.size()) {
            keys.push_back(key);
            groups.emplace_back();
        }
        groups[g].push_back(inner.row(r));
    }
    for (size_t g = 0; g < keys.size(); ++g) {
        m_rows.push_back({QVariant(), keys[g]});
        m_children.push_back(fromRows(inner.fieldNames(), std::move(groups[g])));
    }
    m_open = true;
    m_pos = 0;
}

void Recordset::Open(const QString& source, Connection& activeConnection, int cursorType,
                     int /*lockType*/, int /*options*/) {
    if (activeConnection.isShaped() &&
        source.trimmed().startsWith(QStringLiteral("SHAPE"), Qt::CaseInsensitive))
        loadShaped(activeConnection, source, cursorType);
    else
        load(activeConnection, source, cursorType);
}

std::unique_ptr<Recordset>
Recordset::fromRows(QStringList names, std::vector<std::vector<QVariant>> rows, int cursorType) {
    auto rs = std::make_unique<Recordset>();
    rs->m_names = std::move(names);
    rs->m_rows = std::move(rows);
    rs->m_cursorType = cursorType;
    rs->m_open = true;
    rs->m_pos = 0;
    return rs;
}

bool Recordset::BOF() const {
    if (!m_open) raiseAdo(adErrObjectClosed);
    return m_rows.empty() || m_pos < 0;
}

bool Recordset::EOF_() const {
    if (!m_open) raiseAdo(adErrObjectClosed);
    return m_rows.empty() || m_pos >= static_cast<long>(m_rows.size());
}

void Recordset::MoveFirst() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    m_pos = 0;
}

void Recordset::MoveLast() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    if (m_rows.empty()) raiseAdo(adErrNoCurrentRecord);
    m_pos = static_cast<long>(m_rows.size()) - 1;
}

void Recordset::MoveNext() {
    if (EOF_()) raiseAdo(adErrNoCurrentRecord);
    ++m_pos;
}

void Recordset::MovePrevious() {
    if (BOF()) raiseAdo(adErrNoCurrentRecord);
    --m_pos;
}

long Recordset::RecordCount() const {
    if (!m_open) raiseAdo(adErrObjectClosed);
    if (m_cursorType == adOpenKeyset || m_cursorType == adOpenStatic)
        return static_cast<long>(m_rows.size());
    return -1;
}

QString Recordset::fieldName(int index) const {
    if (index < 0 || index >= m_names.size()) raiseAdo(adErrItemNotFound);
    return m_names[index];
}

int Recordset::fieldIndex(const QString& name) const {
    for (int i = 0; i < m_names.size(); ++i)
        if (m_names[i].compare(name, Qt::CaseInsensitive) == 0) return i;
    return -1;
}

void Recordset::requireCurrent() const {
    if (!m_open) raiseAdo(adErrObjectClosed);
    if (m_pos < 0 || m_pos >= static_cast<long>(m_rows.size())) raiseAdo(adErrNoCurrentRecord);
}

QVariant Recordset::value(int index) const {
    if (index < 0 || index >= m_names.size()) raiseAdo(adErrItemNotFound);
    requireCurrent();
    return m_rows[static_cast<size_t>(m_pos)][static_cast<size_t>(index)];
}

QVariant Recordset::value(const QString& name) const {
    const int i = fieldIndex(name);
    if (i < 0) raiseAdo(adErrItemNotFound);
    return value(i);
}

QString Recordset::text(int index) const {
    return vb::CStr(value(index));
}
QString Recordset::text(const QString& name) const {
    return vb::CStr(value(name));
}

Recordset* Recordset::child(const QString& chapterName) const {
    if (m_chapterName.isEmpty() || chapterName.compare(m_chapterName, Qt::CaseInsensitive) != 0)
        raiseAdo(adErrItemNotFound);
    requireCurrent();
    return m_children[static_cast<size_t>(m_pos)].get();
}

} // namespace adodb
