#include "dbinit.h"
#include "schema.h"

#include <charconv>
#include <map>
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

std::string literal(const Value& v, const Column* col) {
    switch (v.kind) {
    case Value::Kind::Null:
        return "NULL";
    case Value::Kind::Int:
        return std::to_string(v.i);
    case Value::Kind::Real:
        return number(v.r);
    case Value::Kind::Text:
        if (col && col->kind == ColKind::Date) return dateLiteral(v.s);
        return quoted(v.s, true);
    }
    return "NULL";
}

// Collects the rows per table and writes each table's rows as one batch, guarded so
// that a table that already holds data (a sibling subsystem's, or a second run of the
// script) is left alone.
class MssqlSink final : public RowSink {
public:
    void insert(std::string_view table, std::string_view columns,
                std::span<const Value> values) override {
        const Table* t = findTable(table);
        const auto names = splitColumns(columns);
        std::string row = "(";
        for (size_t i = 0; i < values.size(); ++i) {
            if (i) row += ',';
            row += literal(values[i], t && i < names.size() ? t->column(names[i]) : nullptr);
        }
        row += ')';
        auto& groups = rows_[std::string(table)];
        if (groups.empty() || groups.back().first != columns)
            groups.emplace_back(std::string(columns), std::vector<std::string>{});
        groups.back().second.push_back(std::move(row));
    }

    std::string script() const {
        std::string out;
        for (const Table& t : tables()) {
            auto it = rows_.find(std::string(t.name));
            if (it == rows_.end()) continue;
            const std::string name(t.name);
            out += "IF NOT EXISTS (SELECT * FROM [dbo].[" + name + "])\nBEGIN\n";
            for (const auto& [columns, rows] : it->second) {
                std::string head = "INSERT INTO [dbo].[" + name + "] (";
                bool first = true;
                for (std::string_view c : splitColumns(columns)) {
                    head += first ? "[" : ",[";
                    first = false;
                    head += c;
                    head += ']';
                }
                head += ") VALUES\n";
                // A row constructor takes at most 1000 rows.
                constexpr size_t chunk = 500;
                for (size_t i = 0; i < rows.size(); i += chunk) {
                    out += head;
                    for (size_t j = i; j < rows.size() && j < i + chunk; ++j) {
                        out += j == i ? "  " : ",\n  ";
                        out += rows[j];
                    }
                    out += ";\n";
                }
            }
            out += "END\nGO\n";
        }
        return out;
    }

private:
    std::map<std::string, std::vector<std::pair<std::string, std::vector<std::string>>>> rows_;
};

} // namespace

std::string mssqlScript(bool demo) {
    MssqlSink sink;
    writeSeed(sink);
    DemoFigures figures;
    if (demo) figures = writeDemo(sink);
    writeCgkidCounter(sink, figures.nextCgkid);

    std::string out;
    out += "-- OrvaneCG acquisitions: tables and seed rows";
    out += demo ? " with the demo data set\n" : "\n";
    out += "-- Run in the existing library database (Chinese collation), e.g. with\n"
           "--   sqlcmd -S server -d database -f 65001 -i this.sql   (the file is UTF-8)\n"
           "-- Tables and columns that exist already are kept; rows are only added to\n"
           "-- empty tables.\n"
           "SET NOCOUNT ON\nGO\n";
    out += mssqlSchema();
    out += sink.script();
    return out;
}

} // namespace orvane::dbinit
