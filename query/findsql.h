#pragma once
// The text the query builder produces, apart from its widgets: the SQL of one condition,
// the group under construction joined with And, closed groups joined with OR, the order
// list, the readable texts the form shows, and the finished Where and Order By clauses.
//
// The builder does no checking of its own: a number is put in bare, a half-typed date is
// turned into a text comparison, and what the database makes of it is the receiver's
// business.

#include <QString>
#include <QStringList>

#include <cstdint>

namespace findsql {

// One row of the field dictionary.
struct Field {
    QString fieldname;
    QString cnname;
    int16_t kind = 0; // 0 text, 1 number, 2 date (fieldKind of cnname)
};

// The operator names offered for a kind, in list order.
QStringList fuhaoList(int kind);
// The SQL operator of an operator name ("包含" -> "Like"); "" for an unknown name.
QString fuhaoToSql(const QString& name);
// Each "'" doubled.
QString doubleQuotes(const QString& s);

// A date compared as yyyy/mm/dd text; "_" in the value stands for the unfilled places of
// the mask box. The value's quotes are taken as already doubled.
QString dateCondition(const QString& field, const QString& op, const QString& value);
// One condition for the field with the SQL operator and the (quote-doubled) value.
QString condition(const Field& f, const QString& op, const QString& value);

// The order direction of the label with that index: 0 ascending, any other descending.
QString direction(int labelIndex);

struct Clause {
    QString where;
    QString order;
};

class Builder {
public:
    // The SQL pieces.
    QString mergedSql; // closed groups, joined with OR
    QString orderSql;  // the order list
    QString groupSql;  // the group under construction, joined with And
    // What the form shows: signSql, the entries of totalSql, lOrderby.
    QString signText;
    QStringList totalTexts;
    QString orderText;

    // Adds a condition to the open group; fuhaoName is the operator as shown, rawValue the
    // value box's text (its quotes get doubled here, in the SQL and in the shown text).
    void addCondition(const Field& f, const QString& fuhaoName, const QString& rawValue);
    // Closes the open group; false (and nothing done) when it is empty.
    bool closeGroup();
    // Adds the field to the order list; caption is the clicked label's ("升序"/"降序").
    void addOrder(const Field& f, int labelIndex, const QString& caption);
    // Everything back to nothing.
    void clear();
    // Nothing asked for at all: OK does nothing then.
    bool isEmpty() const { return orderSql.isEmpty() && groupSql.isEmpty() && mergedSql.isEmpty(); }
    // Folds an unclosed group in and builds the clauses for a receiver with these fixed and
    // whole-table clauses. mergedSql and orderSql become the clauses, as the form leaves them.
    Clause finish(const QString& fixtureWhere, const QString& totalWhere);
};

} // namespace findsql
