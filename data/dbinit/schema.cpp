#include "schema.h"

#include <array>

namespace orvane::dbinit {

namespace {

using K = ColKind;

// Text lengths are in bytes of the server's code page (GBK: two per Chinese
// character), roomy against the limits of the form fields.
constexpr std::array cgkColumns{
    Column{"cgkid", K::Int, 0, true},
    Column{"bookfrom", K::Text, 60},
    Column{"bookname", K::Text, 200},
    Column{"author", K::Text, 100},
    Column{"zdcode", K::Text, 40},
    Column{"isbn", K::Text, 30},
    Column{"publisher", K::Text, 100},
    Column{"pubplace", K::Text, 40},
    Column{"pubdate", K::Text, 30},
    Column{"edition", K::Text, 40},
    Column{"pages", K::Int},
    Column{"measure", K::Text, 20},
    Column{"classcode", K::Text, 20},
    Column{"docclass", K::Text, 20},
    Column{"lagclass", K::Text, 30},
    Column{"price", K::Money},
    Column{"cgff", K::Text, 20},
    Column{"yddate", K::Date},
    Column{"bookcount", K::Int},
    Column{"cgname", K::Text, 40},
    // The order insert never names status: a new row must come out as 0.
    Column{"status", K::Int, 0, false, true},
    Column{"batch", K::Text, 40},
    Column{"ysname", K::Text, 40},
    Column{"ysdate", K::Date},
    Column{"ysprice", K::Money},
    Column{"yscount", K::Int},
    Column{"fpcode", K::Text, 40},
    Column{"sjcode", K::Text, 40},
    Column{"ysjine", K::Money},
};
constexpr std::array cgkIndexes{
    Index{"ix_cgk_status", "status"},
    Index{"ix_cgk_bookfrom", "bookfrom"},
    Index{"ix_cgk_isbn", "isbn"},
    Index{"ix_cgk_batch", "batch"},
    // the grouping columns of the amount statistics, each group looked up on its own
    Index{"ix_cgk_zdcode", "zdcode"},
    Index{"ix_cgk_lagclass", "lagclass"},
    Index{"ix_cgk_cgff", "cgff"},
    Index{"ix_cgk_classcode", "classcode"},
};

constexpr std::array cgkStatusColumns{
    Column{"fieldsstatus", K::Int},
    Column{"fieldsname", K::Text, 20},
};

constexpr std::array cggysColumns{
    Column{"publisher", K::Text, 60}, Column{"pubplace", K::Text, 40},
    Column{"address", K::Text, 200},  Column{"zipcode", K::Text, 20},
    Column{"tel", K::Text, 60},       Column{"fax", K::Text, 60},
    Column{"email", K::Text, 100},    Column{"web", K::Text, 100},
    Column{"pubclass", K::Text, 40},
};
constexpr std::array cggysIndexes{Index{"ix_cggys_publisher", "publisher"}};

constexpr std::array globalColumns{
    Column{"type", K::Text, 20},
    Column{"code", K::Text, 60},
};
constexpr std::array globalIndexes{Index{"ix_global_type", "type"}};

constexpr std::array cckColumns{Column{"measure", K::Text, 20}};
constexpr std::array wxlxColumns{Column{"docclass", K::Text, 20}};

constexpr std::array typeColumns{
    Column{"type", K::Text, 10},
    Column{"name", K::Text, 100},
};

constexpr std::array cbkColumns{
    Column{"cbkid", K::Int, 0, true},
    Column{"C_SBN", K::Text, 20},
    Column{"C_CBD", K::Text, 40},
    Column{"C_CBS", K::Text, 100},
};
constexpr std::array cbkIndexes{Index{"ix_cbk_sbn", "C_SBN"}};

constexpr std::array zskColumns{
    Column{"ZSKID", K::Int, 0, true},  Column{"bookname", K::Text, 200},
    Column{"author", K::Text, 100},    Column{"isbn", K::Text, 30},
    Column{"publisher", K::Text, 100}, Column{"pubplace", K::Text, 40},
    Column{"pubdate", K::Text, 30},    Column{"edition", K::Text, 40},
    Column{"pages", K::Int},           Column{"measure", K::Text, 20},
    Column{"classcode", K::Text, 20},  Column{"docclass", K::Text, 20},
    Column{"bookcount", K::Int},
};
constexpr std::array zskIndexes{Index{"ix_zsk_isbn", "isbn"}};

constexpr std::array taoluColumns{
    Column{"ZSKID", K::Int, 0, true},  Column{"bookname", K::Text, 200},
    Column{"author", K::Text, 100},    Column{"isbn", K::Text, 30},
    Column{"publisher", K::Text, 100}, Column{"pubplace", K::Text, 40},
    Column{"pubdate", K::Text, 30},    Column{"edition", K::Text, 40},
    Column{"pages", K::Int},           Column{"measure", K::Text, 20},
    Column{"classcode", K::Text, 20},  Column{"docclass", K::Text, 20},
};
constexpr std::array taoluIndexes{Index{"ix_taolutable_isbn", "isbn"}};

constexpr std::array libUseColumns{
    Column{"userid", K::Int, 0, true},
    Column{"username", K::Text, 40},
    Column{"password", K::Text, 40},
    Column{"cgk", K::Bit},
};
constexpr std::array libUseIndexes{Index{"ix_libuse_username", "username"}};

constexpr std::array fdictColumns{
    Column{"DbName", K::Text, 20},
    Column{"FieldName", K::Text, 40},
    Column{"CnName", K::Text, 40},
};
constexpr std::array fdictIndexes{Index{"ix_fdict_dbname", "DbName"}};

// Print tables: scratch space of the reports. Their first text column also takes
// the total row's label ('合  计'), so it is never a date.
constexpr std::array printCGColumns{
    Column{"bookname", K::Text, 200}, Column{"publisher", K::Text, 100},
    Column{"pubdate", K::Text, 30},   Column{"price", K::Money},
    Column{"zdcode", K::Text, 40},    Column{"bookcount", K::Int},
    Column{"jine", K::Money},
};
constexpr std::array printMXColumns{
    Column{"ysdate", K::Text, 20},   Column{"bookname", K::Text, 200},
    Column{"author", K::Text, 100},  Column{"publisher", K::Text, 100},
    Column{"bookfrom", K::Text, 60}, Column{"price", K::Money},
    Column{"count", K::Int},
};
constexpr std::array printLeiBieColumns{
    Column{"type", K::Text, 100}, Column{"batch", K::Text, 40}, Column{"bookfrom", K::Text, 60},
    Column{"typecount", K::Int},  Column{"count", K::Int},      Column{"jine", K::Money},
};
constexpr std::array printTotalJEColumns{
    Column{"name", K::Text, 100}, Column{"ydtype", K::Int}, Column{"ydcount", K::Int},
    Column{"ydjine", K::Money},   Column{"ystype", K::Int}, Column{"yscount", K::Int},
    Column{"ysjine", K::Money},
};
constexpr std::array printTotalJEIndexes{Index{"ix_printtotalje_name", "name"}};
constexpr std::array printYStotalColumns{
    Column{"batch", K::Text, 100}, Column{"bookfrom", K::Text, 60}, Column{"typecount", K::Int},
    Column{"counts", K::Int},      Column{"jine", K::Money},
};
constexpr std::array printYSmxColumns{
    Column{"batch", K::Text, 100},  Column{"bookname", K::Text, 200},
    Column{"author", K::Text, 100}, Column{"publisher", K::Text, 100},
    Column{"price", K::Money},      Column{"counts", K::Int},
};

constexpr std::span<const Index> none{};

const std::array allTables{
    Table{"cgk", cgkColumns, cgkIndexes},
    Table{"cgkStatus", cgkStatusColumns, none},
    Table{"cggys", cggysColumns, cggysIndexes},
    Table{"Global", globalColumns, globalIndexes},
    Table{"cck", cckColumns, none},
    Table{"wxlx", wxlxColumns, none},
    Table{"type", typeColumns, none},
    Table{"cbk", cbkColumns, cbkIndexes},
    Table{"ZSK", zskColumns, zskIndexes},
    Table{"taolutable", taoluColumns, taoluIndexes},
    Table{"LibUse", libUseColumns, libUseIndexes},
    Table{"FDict", fdictColumns, fdictIndexes},
    Table{"printCG", printCGColumns, none},
    Table{"printMX", printMXColumns, none},
    Table{"printLeiBie", printLeiBieColumns, none},
    Table{"printTotalJE", printTotalJEColumns, printTotalJEIndexes},
    Table{"printYStotal", printYStotalColumns, none},
    Table{"printYSmx", printYSmxColumns, none},
};

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

std::string sqliteType(const Column& c) {
    switch (c.kind) {
    case K::Int:
        return c.primaryKey ? "INTEGER PRIMARY KEY" : "INTEGER";
    case K::Money:
        return "REAL";
    // A declared length lets the ODBC driver report a column size, so rows are fetched
    // in blocks into buffers of that size; SQLite itself does not enforce it.
    case K::Text:
        return "VARCHAR(" + std::to_string(c.length) + ") COLLATE VBTEXT";
    // The declared names matter beyond SQLite: the ODBC driver reports DATETIME
    // columns as timestamps and BIT as a boolean, as SQL Server would.
    case K::Date:
        return "DATETIME";
    case K::Bit:
        return "BIT";
    }
    return "TEXT";
}

std::string mssqlType(const Column& c) {
    switch (c.kind) {
    case K::Int:
        return c.primaryKey ? "int NOT NULL PRIMARY KEY" : "int NULL";
    case K::Money:
        return "money NULL";
    case K::Text:
        return "varchar(" + std::to_string(c.length) + ") COLLATE Chinese_PRC_CI_AS NULL";
    case K::Date:
        return "datetime NULL";
    case K::Bit:
        return "bit NULL";
    }
    return "varchar(50) NULL";
}

std::string bracketList(std::string_view cols) {
    std::string out;
    size_t start = 0;
    while (start <= cols.size()) {
        size_t end = cols.find(',', start);
        if (end == std::string_view::npos) end = cols.size();
        if (!out.empty()) out += ',';
        out += '[';
        out += cols.substr(start, end - start);
        out += ']';
        start = end + 1;
    }
    return out;
}

} // namespace

const Column* Table::column(std::string_view col) const {
    for (const Column& c : columns)
        if (sameName(c.name, col)) return &c;
    return nullptr;
}

std::span<const Table> tables() {
    return allTables;
}

const Table* findTable(std::string_view name) {
    for (const Table& t : allTables)
        if (sameName(t.name, name)) return &t;
    return nullptr;
}

std::string sqliteTables() {
    std::string sql;
    for (const Table& t : allTables) {
        sql += "CREATE TABLE \"";
        sql += t.name;
        sql += "\" (";
        bool first = true;
        for (const Column& c : t.columns) {
            sql += first ? "\n  \"" : ",\n  \"";
            first = false;
            sql += c.name;
            sql += "\" ";
            sql += sqliteType(c);
            if (c.defaultZero) sql += " DEFAULT 0";
        }
        sql += "\n);\n";
    }
    return sql;
}

std::string sqliteIndexes() {
    std::string sql;
    for (const Table& t : allTables) {
        for (const Index& ix : t.indexes) {
            sql += "CREATE INDEX \"";
            sql += ix.name;
            sql += "\" ON \"";
            sql += t.name;
            sql += "\" (";
            sql += ix.columns;
            sql += ");\n";
        }
        // Dates arrive as typed ("2003/1/1", "2003-01-31 00:00:00"); store them in one
        // sortable form so that text comparisons with 'yyyy-mm-dd' behave like
        // datetime comparisons on the server.
        for (const Column& c : t.columns) {
            if (c.kind != K::Date) continue;
            const std::string table(t.name), col(c.name);
            const std::string body = " BEGIN UPDATE \"" + table + "\" SET \"" + col +
                                     "\"=vb_normdate(NEW.\"" + col +
                                     "\") WHERE rowid=NEW.rowid AND \"" + col +
                                     "\" IS NOT vb_normdate(\"" + col + "\"); END;\n";
            sql += "CREATE TRIGGER \"tr_" + table + "_" + col + "_ins\" AFTER INSERT ON \"" +
                   table + "\" FOR EACH ROW" + body;
            sql += "CREATE TRIGGER \"tr_" + table + "_" + col + "_upd\" AFTER UPDATE OF \"" + col +
                   "\" ON \"" + table + "\" FOR EACH ROW" + body;
        }
    }
    return sql;
}

std::string mssqlSchema() {
    // The database is shared with the sibling subsystems, which may already own some of
    // these tables (ZSK, LibUse, ...): create what is missing, add missing columns,
    // never drop or replace anything.
    std::string sql;
    for (const Table& t : allTables) {
        const std::string name(t.name);
        sql +=
            "IF OBJECT_ID(N'dbo." + name + "', N'U') IS NULL\nCREATE TABLE [dbo].[" + name + "] (";
        bool first = true;
        for (const Column& c : t.columns) {
            sql += first ? "\n  [" : ",\n  [";
            first = false;
            sql += c.name;
            sql += "] ";
            sql += mssqlType(c);
            if (c.defaultZero)
                sql += " CONSTRAINT [DF_" + name + "_" + std::string(c.name) + "] DEFAULT (0)";
        }
        sql += "\n)\nGO\n";
        for (const Column& c : t.columns) {
            if (c.primaryKey) continue;
            const std::string col(c.name);
            sql += "IF COL_LENGTH(N'dbo." + name + "', N'" + col +
                   "') IS NULL ALTER TABLE [dbo].[" + name + "] ADD [" + col + "] " + mssqlType(c);
            if (c.defaultZero) sql += " CONSTRAINT [DF_" + name + "_" + col + "] DEFAULT (0)";
            sql += "\n";
        }
        sql += "GO\n";
        // A column that was there before has no default of ours: the order insert does
        // not name status, so the default has to be added to it as well.
        for (const Column& c : t.columns) {
            if (!c.defaultZero) continue;
            const std::string col(c.name);
            sql += "IF NOT EXISTS (SELECT * FROM sys.default_constraints WHERE parent_object_id "
                   "= OBJECT_ID(N'dbo." +
                   name + "') AND parent_column_id = COLUMNPROPERTY(OBJECT_ID(N'dbo." + name +
                   "'), N'" + col + "', 'ColumnId'))\nALTER TABLE [dbo].[" + name +
                   "] ADD CONSTRAINT [DF_" + name + "_" + col + "] DEFAULT (0) FOR [" + col +
                   "]\nGO\n";
        }
        for (const Index& ix : t.indexes) {
            const std::string ixName(ix.name);
            sql += "IF NOT EXISTS (SELECT * FROM sys.indexes WHERE name = N'" + ixName +
                   "' AND object_id = OBJECT_ID(N'dbo." + name + "'))\nCREATE INDEX [" + ixName +
                   "] ON [dbo].[" + name + "] (" + bracketList(ix.columns) + ")\nGO\n";
        }
    }
    return sql;
}

} // namespace orvane::dbinit
