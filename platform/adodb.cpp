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

// One cell of a fetched row: sixteen bytes, nothing of its own on the heap.
struct Cell {
    enum Kind : quint8 { Null, Int, Double, Bool, Stamp, Time, Utf8, Utf16, Bytes, Other };
    Kind kind = Null;
    quint32 len = 0; // bytes of a text or binary value
    union {
        qint64 i = 0; // Int; Bool; Time: seconds of the day; Stamp, Other: index; else offset
        double d;
    };
};

struct Table {
    long rows = 0;
    int cols = 0;
    std::vector<QDateTime> stamps; // each distinct date once
    std::vector<QVariant> others;  // rows built in memory, kept as given

    // The cells row after row, in chunks: a growing result is never copied, and memory
    // is touched once.
    static constexpr size_t kChunkBits = 14; // 16384 cells, 256 KB
    static constexpr size_t kChunkMask = (size_t(1) << kChunkBits) - 1;
    std::vector<std::unique_ptr<Cell[]>> chunks;
    size_t used = 0;
    void push(const Cell& c) {
        if ((used >> kChunkBits) == chunks.size())
            chunks.push_back(std::make_unique<Cell[]>(kChunkMask + 1));
        chunks[used >> kChunkBits][used & kChunkMask] = c;
        ++used;
    }
    // Texts and binary values, one after the other in chunks of their own; a value is
    // addressed by chunk (high 32 bits) and offset.
    static constexpr size_t kByteChunk = size_t(1) << 18;
    std::vector<std::unique_ptr<char[]>> byteChunks;
    size_t byteUsed = 0;
    size_t byteRoom = 0;
    qint64 putBytes(const char* p, size_t len, size_t align) {
        size_t off = (byteUsed + align - 1) & ~(align - 1);
        if (byteChunks.empty() || off + len > byteRoom) {
            byteRoom = std::max(kByteChunk, len);
            byteChunks.push_back(std::make_unique_for_overwrite<char[]>(byteRoom));
            off = 0;
        }
        if (len) std::memcpy(byteChunks.back().get() + off, p, len);
        byteUsed = off + len;
        return static_cast<qint64>(((byteChunks.size() - 1) << 32) | off);
    }
    const char* bytesAt(qint64 i) const {
        return byteChunks[static_cast<size_t>(i >> 32)].get() + (i & 0xffffffff);
    }

    const Cell& at(long row, int col) const {
        const size_t k =
            static_cast<size_t>(row) * static_cast<size_t>(cols) + static_cast<size_t>(col);
        return chunks[k >> kChunkBits][k & kChunkMask];
    }
};

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
    SQLSMALLINT cType = SQL_C_WCHAR; // what the driver is asked to hand over
    // bound buffers of one block; left uncleared, since only what the driver wrote is read,
    // and clearing a block of wide columns for each one-row result was most of its cost
    std::unique_ptr<char[]> data;
    std::vector<SQLLEN> ind;
    SQLLEN width = 0; // bytes per row
    // the cell of the row before, with the bytes it came from
    bool hasLast = false;
    SQLLEN lastInd = 0;
    std::vector<char> lastRaw;
    Cell last;
};

// A date and time of the local zone. Building one asks the C library for the zone's
// offset, and without TZ in the environment glibc reads the zone file again for each call:
// each distinct value is built once per thread and shared after that.
qint64 stampKey(int y, int mo, int d, int h, int mi, int s, int ms) {
    return ((((((static_cast<qint64>(y) * 13 + mo) * 32 + d) * 24 + h) * 60 + mi) * 60 + s) *
            1000) +
           ms;
}

QDateTime localDateTime(qint64 key, int y, int mo, int d, int h, int mi, int s, int ms) {
    thread_local std::unordered_map<qint64, QDateTime> seen;
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

SQLSMALLINT cTypeCode(CType c, bool utf8Text) {
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
        return utf8Text ? SQL_C_CHAR : SQL_C_WCHAR;
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

// The bytes a terminator takes at the end of a text buffer.
SQLLEN terminator(const Column& c) {
    return c.cType == SQL_C_CHAR ? 1 : c.cType == SQL_C_WCHAR ? 2 : 0;
}

// Appends the cells of the rows as they come from the driver.
class TableBuilder {
public:
    explicit TableBuilder(size_t cols) : m_table(std::make_shared<Table>()) {
        m_table->cols = static_cast<int>(cols);
    }

    void put(Column& c, const char* p, SQLLEN ind) {
        const SQLLEN fixed = fixedWidth(c.ctype);
        const size_t len = ind == SQL_NULL_DATA
                               ? 0
                               : static_cast<size_t>(fixed ? fixed : std::max<SQLLEN>(ind, 0));
        // A column often repeats the value of the row before (a publisher, a date): the
        // cell is shared, text and all.
        if (c.hasLast && ind == c.lastInd && len == c.lastRaw.size() &&
            (len == 0 || std::memcmp(p, c.lastRaw.data(), len) == 0)) {
            m_table->push(c.last);
            return;
        }
        const Cell cell = ind == SQL_NULL_DATA ? Cell{} : make(c, p, len);
        m_table->push(cell);
        c.last = cell;
        c.lastInd = ind;
        c.lastRaw.assign(p, p + len);
        c.hasLast = true;
    }
    void endRow() { ++m_table->rows; }
    void clear() {
        const int cols = m_table->cols;
        m_table = std::make_shared<Table>();
        m_table->cols = cols;
        m_stamps.clear();
    }
    std::shared_ptr<Table> table() { return m_table; }

private:
    Cell make(const Column& c, const char* p, size_t len) {
        Cell cell;
        switch (c.ctype) {
        case CType::Int: {
            SQLBIGINT v;
            std::memcpy(&v, p, sizeof v);
            cell.kind = Cell::Int;
            cell.i = v;
            break;
        }
        case CType::Double:
            cell.kind = Cell::Double;
            std::memcpy(&cell.d, p, sizeof cell.d);
            break;
        case CType::Bit:
            cell.kind = Cell::Bool;
            cell.i = *p != 0;
            break;
        case CType::Timestamp: {
            SQL_TIMESTAMP_STRUCT t;
            std::memcpy(&t, p, sizeof t);
            cell = stamp(t.year, t.month, t.day, t.hour, t.minute, t.second,
                         static_cast<int>(t.fraction / 1000000));
            break;
        }
        case CType::Date: {
            SQL_DATE_STRUCT t;
            std::memcpy(&t, p, sizeof t);
            cell = stamp(t.year, t.month, t.day, 0, 0, 0, 0);
            break;
        }
        case CType::Time: {
            SQL_TIME_STRUCT t;
            std::memcpy(&t, p, sizeof t);
            cell.kind = Cell::Time;
            cell.i = (t.hour * 60 + t.minute) * 60 + t.second;
            break;
        }
        default: {
            cell.kind = c.cType == SQL_C_CHAR    ? Cell::Utf8
                        : c.cType == SQL_C_WCHAR ? Cell::Utf16
                                                 : Cell::Bytes;
            if (cell.kind == Cell::Utf16) len &= ~size_t(1);
            cell.i = m_table->putBytes(p, len, cell.kind == Cell::Utf16 ? 2 : 1);
            cell.len = static_cast<quint32>(len);
        }
        }
        return cell;
    }

    Cell stamp(int y, int mo, int d, int h, int mi, int s, int ms) {
        const qint64 key = stampKey(y, mo, d, h, mi, s, ms);
        auto [it, added] = m_stamps.try_emplace(key, static_cast<qint64>(m_table->stamps.size()));
        if (added) m_table->stamps.push_back(localDateTime(key, y, mo, d, h, mi, s, ms));
        Cell cell;
        cell.kind = Cell::Stamp;
        cell.i = it->second;
        return cell;
    }

    std::shared_ptr<Table> m_table;
    std::unordered_map<qint64, qint64> m_stamps; // date -> index in the table's stamps
};

// Columns longer than this go by SQLGetData, row by row.
constexpr SQLULEN kMaxBoundChars = 4000;
constexpr SQLULEN kBlockRows = 256;

struct Result {
    bool isSelect = false;
    long affected = -1;
    QStringList names;
    std::shared_ptr<const Table> table;
};

std::vector<Column> describe(SQLHSTMT st, SQLSMALLINT count, bool utf8Text) {
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
        c.cType = cTypeCode(c.ctype, utf8Text);
    }
    return cols;
}

// Block fetch into bound buffers. Returns false when a text did not fit its buffer (a
// driver that declares less than it holds): the caller reads the rows one by one instead.
bool fetchBound(SQLHSTMT st, std::vector<Column>& cols, TableBuilder& out) {
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
        if (c.width == 0) {
            // UTF-8 takes up to four bytes a character, UTF-16 two.
            const SQLLEN chars = static_cast<SQLLEN>(std::max<SQLULEN>(c.size, 1));
            c.width = c.cType == SQL_C_CHAR ? chars * 4 + 1 : (chars + 1) * 2;
        }
        c.data.reset(new char[static_cast<size_t>(c.width) * block]);
        c.ind.assign(block, 0);
        SQLBindCol(st, static_cast<SQLUSMALLINT>(i + 1), c.cType, c.data.get(), c.width,
                   c.ind.data());
    }
    for (;;) {
        const SQLRETURN r = SQLFetch(st);
        if (r == SQL_NO_DATA) break;
        if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st);
        for (SQLULEN row = 0; row < fetched; ++row) {
            for (Column& c : cols) {
                const SQLLEN ind = c.ind[row];
                if ((c.ctype == CType::Text || c.ctype == CType::Binary) &&
                    (ind == SQL_NO_TOTAL || ind > c.width - terminator(c)))
                    return false; // cut short
                out.put(c, c.data.get() + static_cast<size_t>(c.width) * row, ind);
            }
            out.endRow();
        }
    }
    return true;
}

// One value by SQLGetData, texts and bytes in pieces until the driver has no more.
void getData(SQLHSTMT st, SQLUSMALLINT col, Column& c, TableBuilder& out) {
    const SQLLEN fixed = fixedWidth(c.ctype);
    if (fixed > 0) {
        alignas(16) char buf[64] = {0};
        SQLLEN ind = 0;
        const SQLRETURN r = SQLGetData(st, col, c.cType, buf, sizeof buf, &ind);
        if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st);
        out.put(c, buf, ind);
        return;
    }
    std::vector<char> all;
    std::vector<char> buf(8192);
    const SQLLEN term = terminator(c);
    for (;;) {
        SQLLEN ind = 0;
        const SQLRETURN r =
            SQLGetData(st, col, c.cType, buf.data(), static_cast<SQLLEN>(buf.size()), &ind);
        if (r == SQL_NO_DATA) break;
        if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st);
        if (ind == SQL_NULL_DATA) {
            out.put(c, buf.data(), SQL_NULL_DATA);
            return;
        }
        const SQLLEN room = static_cast<SQLLEN>(buf.size()) - term;
        const SQLLEN got = (ind == SQL_NO_TOTAL || ind > room) ? room : ind;
        all.insert(all.end(), buf.data(), buf.data() + got);
        if (r == SQL_SUCCESS) break;
    }
    out.put(c, all.data(), static_cast<SQLLEN>(all.size()));
}

void fetchByRow(SQLHSTMT st, std::vector<Column>& cols, TableBuilder& out) {
    for (;;) {
        const SQLRETURN r = SQLFetch(st);
        if (r == SQL_NO_DATA) break;
        if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st);
        for (size_t i = 0; i < cols.size(); ++i)
            getData(st, static_cast<SQLUSMALLINT>(i + 1), cols[i], out);
        out.endRow();
    }
}

// utf8Text: texts come as the driver's UTF-8 bytes rather than UTF-16 (see Connection::Open).
Result run(SQLHDBC dbc, const QString& sql, bool utf8Text) {
    Result res;
    std::unique_ptr<TableBuilder> out;
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
        std::vector<Column> cols = describe(st.h, count, utf8Text);
        for (const Column& c : cols) res.names << c.name;
        out = std::make_unique<TableBuilder>(cols.size());
        bool longColumn = false;
        for (const Column& c : cols)
            if ((c.ctype == CType::Text || c.ctype == CType::Binary) &&
                (c.size == 0 || c.size > kMaxBoundChars))
                longColumn = true;
        if (longColumn) {
            fetchByRow(st.h, cols, *out);
            res.table = out->table();
            return res;
        }
        if (fetchBound(st.h, cols, *out)) {
            res.table = out->table();
            return res;
        }
    }
    // A text longer than its column said: read the whole result again, row by row.
    out->clear();
    Stmt st(dbc);
    const SQLRETURN r = SQLExecDirectW(st.h, sqlw(sql), SQL_NTS);
    if (!SQL_SUCCEEDED(r)) raiseDiag(SQL_HANDLE_STMT, st.h);
    SQLSMALLINT count = 0;
    SQLNumResultCols(st.h, &count);
    std::vector<Column> cols = describe(st.h, count, utf8Text);
    fetchByRow(st.h, cols, *out);
    res.table = out->table();
    return res;
}

// Rows built in memory keep their values as they were given.
std::shared_ptr<const Table> tableOf(int cols, std::vector<std::vector<QVariant>> rows) {
    auto t = std::make_shared<Table>();
    t->cols = cols;
    t->rows = static_cast<long>(rows.size());
    t->others.reserve(rows.size() * static_cast<size_t>(cols));
    for (auto& row : rows)
        for (size_t c = 0; c < static_cast<size_t>(cols); ++c) {
            Cell cell;
            cell.kind = Cell::Other;
            cell.i = static_cast<qint64>(t->others.size());
            t->others.push_back(c < row.size() ? std::move(row[c]) : QVariant());
            t->push(cell);
        }
    return t;
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
#ifdef Q_OS_WIN
    m_utf8Text = false; // there the driver hands SQL_C_CHAR out in the ANSI code page
#else
    m_utf8Text = m_dbms == Dbms::SQLite;
#endif
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
    Result res = run(runner->m_dbc, text, runner->utf8Text());
    if (runner != this && !res.isSelect) runner->m_guestWrites.push_back(text);
    auto rs = std::make_unique<Recordset>();
    if (res.isSelect) {
        rs->take(std::move(res.names), std::move(res.table), adOpenForwardOnly);
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
    for (const QString& sql : guests) run(m_dbc, sql, utf8Text());
}

// ---- Recordset -------------------------------------------------------------------------

Recordset::Recordset() = default;
Recordset::~Recordset() = default;

void Recordset::take(QStringList names, std::shared_ptr<const Table> table, int cursorType) {
    m_names = std::move(names);
    m_table = std::move(table);
    m_rowMap.clear();
    m_decoded.assign(static_cast<size_t>(m_names.size()), Decoded{});
    m_chapterName.clear();
    m_children.clear();
    m_cursorType = cursorType;
    m_open = true;
    m_pos = 0; // on the first row, or BOF and EOF together when there is none
}

void Recordset::load(Connection& conn, const QString& sql, int cursorType) {
    if (!conn.isOpen()) raiseAdo(adErrObjectClosed);
    Connection* runner = conn.sqliteRunner();
    const QString text = conn.adapt(sql);
    Result res = run(runner->m_dbc, text, runner->utf8Text());
    if (runner != &conn && !res.isSelect) runner->m_guestWrites.push_back(text);
    if (!res.table) res.table = tableOf(0, {});
    take(std::move(res.names), std::move(res.table), cursorType);
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

    // Parents in the order their first child comes, children in their own order; the
    // children share the rows of the inner result.
    std::vector<std::vector<long>> groups;
    std::vector<QVariant> keys;
    for (long r = 0; r < inner.rowCount(); ++r) {
        const QVariant key = inner.value(r, byIndex);
        size_t g = 0;
        while (g < keys.size() && !(keys[g] == key && keys[g].isNull() == key.isNull())) ++g;
        if (g == keys.size()) {
            keys.push_back(key);
            groups.emplace_back();
        }
        groups[g].push_back(r);
    }
    std::vector<std::vector<QVariant>> parents;
    std::vector<std::unique_ptr<Recordset>> children;
    for (size_t g = 0; g < keys.size(); ++g) {
        parents.push_back({QVariant(), keys[g]});
        auto child = std::make_unique<Recordset>();
        child->take(inner.fieldNames(), inner.m_table, adOpenStatic);
        child->m_rowMap = std::move(groups[g]); // never empty
        children.push_back(std::move(child));
    }
    const QStringList names{m.captured(2), inner.fieldName(byIndex)};
    take(names, tableOf(2, std::move(parents)), cursorType);
    m_chapterName = m.captured(2);
    m_children = std::move(children);
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
    const int cols = static_cast<int>(names.size());
    rs->take(std::move(names), tableOf(cols, std::move(rows)), cursorType);
    return rs;
}

long Recordset::rowCount() const {
    if (!m_rowMap.empty()) return static_cast<long>(m_rowMap.size());
    return m_table ? m_table->rows : 0;
}

bool Recordset::BOF() const {
    if (!m_open) raiseAdo(adErrObjectClosed);
    return rowCount() == 0 || m_pos < 0;
}

bool Recordset::EOF_() const {
    if (!m_open) raiseAdo(adErrObjectClosed);
    return m_pos < 0 ? rowCount() == 0 : m_pos >= rowCount();
}

void Recordset::MoveFirst() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    m_pos = 0;
}

void Recordset::MoveLast() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    if (rowCount() == 0) raiseAdo(adErrNoCurrentRecord);
    m_pos = rowCount() - 1;
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
    if (m_cursorType == adOpenKeyset || m_cursorType == adOpenStatic) return rowCount();
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
    if (m_pos < 0 || m_pos >= rowCount()) raiseAdo(adErrNoCurrentRecord);
}

QVariant Recordset::value(int index) const {
    if (index < 0 || index >= m_names.size()) raiseAdo(adErrItemNotFound);
    requireCurrent();
    return value(m_pos, index);
}

QVariant Recordset::value(long row, int index) const {
    if (index < 0 || index >= m_names.size() || row < 0 || row >= rowCount())
        raiseAdo(adErrItemNotFound);
    const Table& t = *m_table;
    const Cell& c = t.at(tableRow(row), index);
    switch (c.kind) {
    case Cell::Null:
        return QVariant();
    case Cell::Int:
        if (c.i >= INT_MIN && c.i <= INT_MAX) return QVariant(static_cast<int>(c.i));
        return QVariant(static_cast<qlonglong>(c.i));
    case Cell::Double:
        return QVariant(c.d);
    case Cell::Bool:
        return QVariant(c.i != 0);
    case Cell::Stamp:
        return QVariant(t.stamps[static_cast<size_t>(c.i)]);
    case Cell::Time:
        return QVariant(QTime(static_cast<int>(c.i / 3600), static_cast<int>(c.i / 60 % 60),
                              static_cast<int>(c.i % 60)));
    case Cell::Bytes:
        return QVariant(QByteArray(t.bytesAt(c.i), static_cast<qsizetype>(c.len)));
    case Cell::Other:
        return t.others[static_cast<size_t>(c.i)];
    case Cell::Utf8:
    case Cell::Utf16:
        break;
    }
    // Rows that repeat a text share its bytes: decode it once.
    Decoded& d = m_decoded[static_cast<size_t>(index)];
    if (d.at != c.i || d.len != c.len) {
        const char* p = t.bytesAt(c.i);
        d.text = c.kind == Cell::Utf8 ? QString::fromUtf8(p, static_cast<qsizetype>(c.len))
                                      : QString::fromUtf16(reinterpret_cast<const char16_t*>(p),
                                                           static_cast<qsizetype>(c.len / 2));
        d.at = c.i;
        d.len = c.len;
    }
    return QVariant(d.text);
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
