#pragma once
// The one adaptation SQL Server text needs on SQLite, done where the statement leaves the
// data-access layer and nowhere else:
//  - "+" between text operands (a chain of + with a quoted literal in it) becomes "||";
//  - left( becomes vb_left( (LEFT is a keyword in SQLite; the compat extension has it);
//  - "Select [Distinct] Top n ..." becomes "Select [Distinct] ... LIMIT n".
// Quoted text, [bracketed] and "quoted" names pass untouched.

#include <QString>

namespace sqldialect {

QString toSQLite(const QString& sql);

} // namespace sqldialect
