#include "dbinit.h"
#include "schema.h"

#include <charconv>
#include <vector>

namespace orvane::dbinit {

namespace {

std::vector<std::string_view> splitColumns(std::string_view columns) {
    std::vector<std::string_view> out;
    size_t start = 0;
    while (start <= columns.size()) {
        size_t end = columns.find(',', start);
        if (end == std::string_view::npos) end = columns.size();
        out.push_back(columns.substr(start, end - start));
        start = end + 1;
    }
    return out;
}

std::string quoted(std::string_view text, bool unicode) {
    std::string out = unicode ? "N'" : "'";
    for (char c : text) {
        out += c;
        if (c == '\'') out += '\'';
    }
    out += '\'';
    return out;
}

// 'yyyymmdd' is read the same way under every language and DATEFORMAT setting of
// the server; 'yyyy-mm-dd' is not, for datetime.
std::string dateLiteral(const std::string& text) {
    if (text.size() >= 10 && text[4] == '-' && text[7] == '-') {
        std::string out = text.substr(0, 4) + text.substr(5, 2) + text.substr(8, 2);
        if (text.size() > 10) out += text.substr(10);
        return quoted(out, false);
    }
    return quoted(text, false);
}

std::string number(double v) {
    char buf[64];
    auto res = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, res.ptr);
}

// The key each seed row is known by in a table that may hold rows already. A row is
// added only when no row with its key is there: the database is shared, and the sibling
// subsystems' rows in Global, FDict, type or cbk must neither keep ours out nor be
// touched.
struct SeedKey {
    std::string_view table;
    std::string_view columns; // comma separated
};
constexpr SeedKey seedKeys[] = {
    {"cgk", "cgkid"},       {"cgkStatus", "fieldsstatus"},
    {"cggys", "publisher"}, {"Global", "type,code"},
    {"cck", "measure"},     {"wxlx", "docclass"},
    {"type", "type"},       {"cbk", "C_SBN"},
    {"ZSK", "ZSKID"},       {"taolutable", "ZSKID"},
    {"LibUse", "username"}, {"FDict", "DbName,FieldName"},
};

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

std::string_view keyOf(std::string_view table) {
    for (const SeedKey& k : seedKeys)
        if (sameName(k.table, table)) return k.columns;
    return {};
}

// Writes each row as one INSERT ... SELECT ... WHERE NOT EXISTS on the row's key. The
// statement reads the same on SQL Server and SQLite; only the literals and the table
// names differ.
class GuardedSink final : public RowSink {
public:
    explicit GuardedSink(Dialect dialect) : dialect_(dialect) {}

    void insert(std::string_view table, std::string_view columns,
                std::span<const Value> values) override {
        const Table* t = findTable(table);
        const auto names = splitColumns(columns);
        std::vector<std::string> literals;
        for (size_t i = 0; i < values.size(); ++i)
            literals.push_back(
                literal(values[i], t && i < names.size() ? t->column(names[i]) : nullptr));

        const std::string target = tableName(table);
        std::string where;
        auto keyTerm = [&](std::string_view column) {
            for (size_t i = 0; i < names.size(); ++i)
                if (sameName(names[i], column)) {
                    // Appended piece by piece: GCC 12 sees a false overlap (-Wrestrict) in
                    // "literal" + std::string chains at -O3.
                    std::string term = "[";
                    term += column;
                    term += "]=";
                    term += literals[i];
                    return term;
                }
            return std::string("1=0");
        };
        const bool counter = sameName(table, "Global") && !values.empty() &&
                             values[0].kind == Value::Kind::Text && values[0].s == "cgkid";
        if (counter) {
            // One counter row only, whatever its value. It must not hand out an id that an
            // order already has, so it starts after the highest one found.
            where = keyTerm("type");
            const std::string maxId = "(SELECT MAX([cgkid]) FROM " + tableName("cgk") + ")";
            literals[1] = "CAST(CASE WHEN " + maxId + ">=" + values[1].s + " THEN " + maxId +
                          "+1 ELSE " + values[1].s + " END AS varchar(20))";
        } else {
            for (std::string_view k : splitColumns(keyOf(table))) {
                if (!where.empty()) where += " AND ";
                where += keyTerm(k);
            }
        }
        std::string guard = "NOT EXISTS (SELECT * FROM " + target + " WHERE " + where + ")";
        if (sameName(table, "LibUse")) {
            // Users go only into a user table of our own making: no login with a known
            // password is slipped into the library's list of users.
            guard += " AND NOT EXISTS (SELECT * FROM " + target + " WHERE [username] NOT IN (";
            bool first = true;
            for (const User& u : users()) {
                guard += first ? "" : ",";
                first = false;
                guard += literal(Value(u.name), nullptr);
            }
            guard += "))";
        }
        if (sameName(table, "cbk")) {
            // cbkid only has to be there and be unique: after those of the table.
            for (size_t i = 0; i < names.size(); ++i)
                if (sameName(names[i], "cbkid"))
                    literals[i] = "COALESCE((SELECT MAX([cbkid]) FROM " + target + "),0)+1";
        }

        std::string sql = "INSERT INTO " + target + " (";
        for (size_t i = 0; i < names.size(); ++i) {
            sql += i ? ",[" : "[";
            sql += names[i];
            sql += ']';
        }
        sql += ") SELECT ";
        for (size_t i = 0; i < literals.size(); ++i) {
            if (i) sql += ',';
            sql += literals[i];
        }
        sql += " WHERE " + guard + ";";
        statements_.push_back(std::move(sql));
    }

    std::vector<std::string> take() { return std::move(statements_); }

private:
    std::string tableName(std::string_view table) const {
        std::string name = dialect_ == Dialect::SqlServer ? "[dbo].[" : "[";
        name += table;
        name += ']';
        return name;
    }

    std::string literal(const Value& v, const Column* col) const {
        switch (v.kind) {
        case Value::Kind::Null:
            return "NULL";
        case Value::Kind::Int:
            return std::to_string(v.i);
        case Value::Kind::Real:
            return number(v.r);
        case Value::Kind::Text:
            if (dialect_ == Dialect::Sqlite) return quoted(v.s, false);
            if (col && col->kind == ColKind::Date) return dateLiteral(v.s);
            return quoted(v.s, true);
        }
        return "NULL";
    }

    Dialect dialect_;
    std::vector<std::string> statements_;
};

} // namespace

std::vector<std::string> seedStatements(Dialect dialect, bool demo) {
    GuardedSink sink(dialect);
    writeSeed(sink);
    DemoFigures figures;
    if (demo) figures = writeDemo(sink);
    writeCgkidCounter(sink, figures.nextCgkid);
    return sink.take();
}

std::string mssqlScript(bool demo) {
    std::string out;
    out += "-- OrvaneCG acquisitions: tables and seed rows";
    out += demo ? " with the demo data set\n" : "\n";
    out += "-- Run in the existing library database (Chinese collation), e.g. with\n"
           "--   sqlcmd -S server -d database -f 65001 -i this.sql   (the file is UTF-8)\n"
           "-- Tables and columns that exist already are kept. Each row is added only when\n"
           "-- no row with its key is there, so the script can run again, and rows of the\n"
           "-- other subsystems in Global, FDict, type or cbk stay as they are.\n"
           "--\n"
           "-- LibUse: users are added only to a LibUse that holds no other users. When the\n"
           "-- LibUse of the library exists already, the script adds its column cgk empty, and NO\n"
           "-- user has the right to this subsystem. Grant it to each acquisitions librarian:\n"
           "--   UPDATE LibUse SET cgk=1 WHERE username=N'login name'\n"
           "SET NOCOUNT ON\nGO\n";
    out += mssqlSchema();
    // Batches of a few hundred statements: sqlcmd sends each batch whole.
    constexpr size_t batch = 500;
    const std::vector<std::string> rows = seedStatements(Dialect::SqlServer, demo);
    for (size_t i = 0; i < rows.size(); ++i) {
        out += rows[i];
        out += '\n';
        if ((i + 1) % batch == 0 || i + 1 == rows.size()) out += "GO\n";
    }
    return out;
}

} // namespace orvane::dbinit
