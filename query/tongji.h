#pragma once
// The statistics behind the query builder's print modes. A run empties its print table,
// fills it by SQL text built from the builder's clauses, adds its total row, asks for the
// paper, reads the table back and hands the recordset to its report; Findfrm is unloaded
// at the end. All statements of all generators are in tongji.cpp, in the order they run.
//
// Errors: every generator but "tclasscode" lets a failing statement leave the run (the
// print table stays as far as it was filled, the next run empties it); from the paper
// message on, errors are passed over. "tclasscode" passes over every error.

#include <QString>
#include <QStringList>

#include <functional>

namespace vb {
class DataReport;
}

namespace tongji {

// The printType words that have a generator, in the order of the dispatch.
const QStringList& printTypes();
bool isPrintType(const QString& printType);

// The paper a generator asks for before its report is read.
bool landscape(const QString& printType);
extern const QString kLandscapeMessage;
extern const QString kPortraitMessage;
extern const QString kNoRecordsMessage;

// What becomes of a report that got its data: the window refreshes and shows it, the
// command-line tool writes it to a file. Errors in here are passed over like the rest of
// the reading step.
using Present = std::function<void(vb::DataReport& report)>;
void showReport(vb::DataReport& report);

// Runs the generator of printType on the builder's clauses (each empty or beginning with
// " Where " / " Order By "). An unknown printType does nothing and returns false.
bool run(const QString& printType, const QString& iiWhere, const QString& iiOrderby,
         const Present& present = showReport);

// Sees every statement a run sends, before it goes (tests). Returns the previous watcher.
using Trace = std::function<void(const QString& sql)>;
Trace setTrace(Trace trace);

} // namespace tongji
