#pragma once
// An ADO-shaped layer straight over ODBC: each procedure makes its own Connection from the
// profile string, opens Recordsets on SQL text, and lets both go at its end. Rows are
// fetched in blocks into bound buffers (Qt's ODBC plugin fetches cell by cell and clears a
// buffer of the column's declared size for each cell, which is twenty times slower).
//
// A result is kept flat: one array of small cells for all its rows, texts as the driver's
// bytes in one shared buffer, each distinct date built once. A QVariant (and a QString) is
// made only when a cell is asked for, so opening a large result allocates nothing per row.
//
// Profile strings are ADO strings: the "PROVIDER=MSDASQL;" item is dropped and the rest is
// handed to the ODBC driver manager as it stands. "PROVIDER=MSDataShape" is the same plus
// data shaping: "SHAPE {inner} AS name COMPUTE name BY 'col'" gives one parent row per
// distinct col (in the order the rows come) with a child recordset each.
//
// On SQLite (the embedded database, through the SQLite3 ODBC driver and our compat
// extension) the SQL Server text is adapted on the way out: see sqldialect.h.
//
// Every failure raises vb::VbError with the provider's message text unchanged.

#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <vector>

namespace adodb {

enum CursorTypeEnum : int {
    adOpenUnspecified = -1,
    adOpenForwardOnly = 0,
    adOpenKeyset = 1,
    adOpenDynamic = 2,
    adOpenStatic = 3,
};
enum LockTypeEnum : int {
    adLockUnspecified = -1,
    adLockReadOnly = 1,
    adLockPessimistic = 2,
    adLockOptimistic = 3,
};
enum CommandTypeEnum : int {
    adOptionUnspecified = -1,
    adCmdText = 1,
};

// ADO's own error numbers and texts, as the Chinese runtime reports them.
constexpr int adErrNoCurrentRecord = 3021;
constexpr int adErrObjectClosed = 3704;
constexpr int adErrItemNotFound = 3265;
QString adoErrorText(int number);

enum class Dbms { Unknown, SqlServer, SQLite, Other };

class Recordset;
struct Table; // the fetched rows (adodb.cpp)

class Connection {
public:
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Open with the profile; user and password as ADO takes them (empty: from the string).
    void Open(const QString& connectionString, const QString& userId = QString(),
              const QString& password = QString(), int options = adOptionUnspecified);
    bool isOpen() const;
    const QString& ConnectionString() const { return m_connStr; }
    bool isShaped() const { return m_shaped; }
    Dbms dbms() const { return m_dbms; }

    // Runs a statement. For a SELECT the rows come back as a forward recordset; for other
    // statements the recordset is closed (no fields). recordsAffected gets the count of a
    // write, -1 for a read.
    std::unique_ptr<Recordset> Execute(const QString& sql, long* recordsAffected = nullptr);

    // On SQLite only one connection can write at a time. While a connection of this process
    // holds a transaction on a file, statements of the other connections to that file run
    // on it, and their writes are run again after a rollback: what another connection does
    // during a transaction stands as its own work, as it would on a server.
    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();

    // The SQL as it goes to the database after the dialect adaptation (tests, logs).
    QString adapt(const QString& sql) const;

    // The ODBC connection handle (SQLHDBC), for the few direct calls of platform/.
    void* handle() const { return m_dbc; }
    // Texts are read as the driver's UTF-8 rather than UTF-16 (the SQLite driver keeps them
    // so, and a conversion per cell costs more than the rest of the fetch).
    bool utf8Text() const { return m_utf8Text; }

private:
    friend class Recordset;
    // The connection whose handle runs this one's statements (see BeginTrans).
    Connection* sqliteRunner();
    void leaveSqliteTransaction();
    void* m_dbc = nullptr;
    QString m_connStr;
    QString m_odbc;
    bool m_sqliteTrans = false;
    std::vector<QString> m_guestWrites; // other connections' writes inside this transaction
    bool m_shaped = false;
    bool m_open = false;
    bool m_utf8Text = false;
    Dbms m_dbms = Dbms::Unknown;
};

class Recordset {
public:
    Recordset();
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    void Open(const QString& source, Connection& activeConnection,
              int cursorType = adOpenForwardOnly, int lockType = adLockReadOnly,
              int options = adOptionUnspecified);
    bool isOpen() const { return m_open; }

    bool BOF() const;
    bool EOF_() const;
    bool atEnd() const { return EOF_(); }

    // Moving past EOF or before BOF raises 3021, as ADO does; MoveNext from the last row
    // lands on EOF, MovePrevious from the first on BOF.
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();

    // -1 for forward-only and dynamic cursors (the driver cannot tell), the number of rows
    // for keyset and static ones.
    long RecordCount() const;
    // The number of rows actually fetched, whatever the cursor (the grids use it).
    long rowCount() const;
    // Zero-based position, -1 before the first row, rowCount() after the last.
    long position() const { return m_pos; }

    int fieldCount() const { return static_cast<int>(m_names.size()); }
    QString fieldName(int index) const;
    const QStringList& fieldNames() const { return m_names; }
    int fieldIndex(const QString& name) const; // case-insensitive; -1 when absent

    // Value of the current row. No current row: 3021; no such field: 3265.
    QVariant value(int index) const;
    QVariant value(const QString& name) const;
    bool isNull(int index) const { return value(index).isNull(); }
    bool isNull(const QString& name) const { return value(name).isNull(); }
    // The value as text, NULL as "" (what `rs!x & ""` gives).
    QString text(int index) const;
    QString text(const QString& name) const;

    // Any fetched row, wherever the cursor is (the grid and the reports read all rows this
    // way): row 0 .. rowCount()-1, NULL as an invalid QVariant. Out of range: 3265.
    QVariant value(long row, int index) const;

    // Shaped recordsets: the child recordset of the current parent row (chapter column).
    Recordset* child(const QString& chapterName) const;
    bool hasChildren() const { return !m_children.empty(); }

    // Builds a recordset from rows in memory (shaping, tests).
    static std::unique_ptr<Recordset> fromRows(QStringList names,
                                               std::vector<std::vector<QVariant>> rows,
                                               int cursorType = adOpenStatic);

private:
    friend class Connection;
    void load(Connection& conn, const QString& sql, int cursorType);
    void loadShaped(Connection& conn, const QString& sql, int cursorType);
    void take(QStringList names, std::shared_ptr<const Table> table, int cursorType);
    void requireCurrent() const;
    long tableRow(long row) const {
        return m_rowMap.empty() ? row : m_rowMap[static_cast<size_t>(row)];
    }

    bool m_open = false;
    int m_cursorType = adOpenForwardOnly;
    long m_pos = -1;
    QStringList m_names;
    std::shared_ptr<const Table> m_table;
    std::vector<long> m_rowMap; // a child of a shaped recordset: its rows of the shared table
    // The last text decoded per column: a repeated text (shared by the rows) is decoded once.
    struct Decoded {
        qint64 at = -1;
        quint32 len = 0;
        QString text;
    };
    mutable std::vector<Decoded> m_decoded;
    QString m_chapterName;
    std::vector<std::unique_ptr<Recordset>> m_children; // one per parent row
};

// ODBC data sources of the machine (SQLDataSources), user and system ones.
struct DataSource {
    QString name;
    QString description; // the driver's name
};
std::vector<DataSource> dataSources();

// Turns an ADO profile into the ODBC connection string and tells whether shaping was
// asked for. Items are kept as they stand, but for the provider item.
struct OdbcProfile {
    QString odbc;
    bool shaped = false;
};
OdbcProfile parseProfile(const QString& connectionString);

} // namespace adodb
