#include "platform/adodb.h"

#include "platform/errors.h"
#include "platform/sqldialect.h"
#include "platform/vb.h"

#include <QAtomicInteger>
#include <QRegularExpression>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace adodb {

QString odbcDbmsName(const QSqlDatabase& db); // odbc.cpp

namespace {

[[noreturn]] void raiseAdo(int number) {
    throw vb::VbError(number, adoErrorText(number));
}

// The provider's own text; Qt puts the driver's diagnostics in databaseText().
[[noreturn]] void raiseProvider(const QSqlError& e) {
    QString text = e.databaseText();
    if (text.isEmpty()) text = e.driverText();
    if (text.isEmpty()) text = e.text();
    throw vb::VbError(vb::errProvider, text,
                      QStringLiteral("Microsoft OLE DB Provider for ODBC Drivers"));
}

// The SQLite3 ODBC driver reports the length of a column name in bytes of UTF-8, so a
// Chinese alias arrives with NULs and stray characters behind it: cut at the first NUL.
QString columnName(const QSqlRecord& rec, int i) {
    QString name = rec.fieldName(i);
    const qsizetype nul = name.indexOf(QChar(u'\0'));
    if (nul >= 0) name.truncate(nul);
    return name;
}

QString nextConnectionName() {
    static QAtomicInteger<quint64> counter;
    return QStringLiteral("orvane-adodb-%1").arg(counter.fetchAndAddRelaxed(1));
}

bool isProviderItem(const QString& item) {
    return item.trimmed().startsWith(QStringLiteral("PROVIDER="), Qt::CaseInsensitive);
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
    const QStringList items = connectionString.split(u';');
    QStringList kept;
    for (const QString& item : items) {
        if (isProviderItem(item)) {
            if (item.contains(QStringLiteral("MSDataShape"), Qt::CaseInsensitive)) p.shaped = true;
            continue;
        }
        if (!item.isEmpty()) kept << item;
    }
    // Qt's ODBC driver takes a string holding DRIVER= or SERVER= as it stands and puts
    // "DSN=" in front of anything else, so a data-source profile goes in with its
    // DSN item first and bare.
    const auto hasKey = [&](const QString& key) {
        for (const QString& k : kept)
            if (k.trimmed().startsWith(key, Qt::CaseInsensitive)) return true;
        return false;
    };
    if (!hasKey(QStringLiteral("DRIVER=")) && !hasKey(QStringLiteral("SERVER="))) {
        for (qsizetype i = 0; i < kept.size(); ++i) {
            if (kept[i].trimmed().startsWith(QStringLiteral("DSN="), Qt::CaseInsensitive)) {
                QString dsn = kept.takeAt(i).trimmed().mid(4);
                kept.prepend(dsn);
                break;
            }
        }
    }
    p.odbc = kept.join(u';');
    if (!p.odbc.isEmpty()) p.odbc += u';';
    return p;
}

// ---- Connection ------------------------------------------------------------------------

Connection::Connection() : m_name(nextConnectionName()) {}

Connection::~Connection() {
    {
        QSqlDatabase db = QSqlDatabase::database(m_name, false);
        if (db.isValid() && db.isOpen()) db.close();
    }
    if (QSqlDatabase::contains(m_name)) QSqlDatabase::removeDatabase(m_name);
}

void Connection::Open(const QString& connectionString, const QString& userId,
                      const QString& password, int /*options*/) {
    m_connStr = connectionString;
    const OdbcProfile p = parseProfile(connectionString);
    m_shaped = p.shaped;
    QSqlDatabase db = QSqlDatabase::contains(m_name)
                          ? QSqlDatabase::database(m_name, false)
                          : QSqlDatabase::addDatabase(QStringLiteral("QODBC"), m_name);
    if (db.isOpen()) db.close();
    db.setDatabaseName(p.odbc);
    if (!userId.isEmpty()) db.setUserName(userId);
    if (!password.isEmpty()) db.setPassword(password);
    if (!db.open()) {
        m_open = false;
        raiseProvider(db.lastError());
    }
    m_open = true;
    const QString dbms = odbcDbmsName(db);
    if (dbms.contains(QStringLiteral("SQLite"), Qt::CaseInsensitive))
        m_dbms = Dbms::SQLite;
    else if (dbms.contains(QStringLiteral("SQL Server"), Qt::CaseInsensitive) ||
             db.driver()->dbmsType() == QSqlDriver::MSSqlServer)
        m_dbms = Dbms::SqlServer;
    else
        m_dbms = dbms.isEmpty() ? Dbms::Unknown : Dbms::Other;
}

bool Connection::isOpen() const {
    return m_open;
}

QSqlDatabase Connection::database() const {
    return QSqlDatabase::database(m_name, false);
}

QString Connection::adapt(const QString& sql) const {
    return m_dbms == Dbms::SQLite ? sqldialect::toSQLite(sql) : sql;
}

std::unique_ptr<Recordset> Connection::Execute(const QString& sql, long* recordsAffected) {
    if (recordsAffected) *recordsAffected = -1;
    if (!m_open) raiseAdo(adErrObjectClosed);
    auto rs = std::make_unique<Recordset>();
    QSqlQuery q(database());
    q.setForwardOnly(true);
    if (!q.exec(adapt(sql))) raiseProvider(q.lastError());
    if (q.isSelect()) {
        rs->m_cursorType = adOpenForwardOnly;
        const QSqlRecord rec = q.record();
        for (int i = 0; i < rec.count(); ++i) rs->m_names << columnName(rec, i);
        const int cols = rec.count();
        while (q.next()) {
            std::vector<QVariant> row(static_cast<size_t>(cols));
            for (int i = 0; i < cols; ++i) row[static_cast<size_t>(i)] = q.value(i);
            rs->m_rows.push_back(std::move(row));
        }
        rs->m_open = true;
        rs->m_pos = 0;
    } else if (recordsAffected) {
        *recordsAffected = q.numRowsAffected();
    }
    return rs;
}

void Connection::BeginTrans() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    QSqlDatabase db = database();
    if (!db.transaction()) raiseProvider(db.lastError());
}

void Connection::CommitTrans() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    QSqlDatabase db = database();
    if (!db.commit()) raiseProvider(db.lastError());
}

void Connection::RollbackTrans() {
    if (!m_open) raiseAdo(adErrObjectClosed);
    QSqlDatabase db = database();
    if (!db.rollback()) raiseProvider(db.lastError());
}

// ---- Recordset -------------------------------------------------------------------------

Recordset::Recordset() = default;
Recordset::~Recordset() = default;

void Recordset::load(Connection& conn, const QString& sql, int cursorType) {
    if (!conn.isOpen()) raiseAdo(adErrObjectClosed);
    QSqlQuery q(conn.database());
    q.setForwardOnly(true);
    if (!q.exec(conn.adapt(sql))) raiseProvider(q.lastError());
    m_names.clear();
    m_rows.clear();
    m_children.clear();
    m_cursorType = cursorType;
    const QSqlRecord rec = q.record();
    const int cols = rec.count();
    for (int i = 0; i < cols; ++i) m_names << columnName(rec, i);
    while (q.next()) {
        std::vector<QVariant> row(static_cast<size_t>(cols));
        for (int i = 0; i < cols; ++i) row[static_cast<size_t>(i)] = q.value(i);
        m_rows.push_back(std::move(row));
    }
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
