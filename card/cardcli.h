#pragma once
// orvane-card: the card, the field layout or the record text of every ISO 2709 record in
// a file (GBK bytes, records ended by character 29), for librarians who want the cards of
// a whole batch without opening the viewer record by record. No widgets in here: the
// viewer (--view) is opened by the executable.

#include "marcreader.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

class QIODevice;

namespace card {

enum class Layout { Card, Fields, Raw };

struct CliOptions {
    Layout layout = Layout::Card;
    bool view = false;      // open the viewer on the first record
    bool gbkOutput = false; // write GBK instead of UTF-8
    bool help = false;
    QStringList files; // none or "-": standard input
};

// Parses the arguments after the program name. nullopt and `error` set on bad usage.
std::optional<CliOptions> parseArguments(const QStringList& args, QString* error);
QString usageText();

// Cuts a byte stream into records, each ending with its character 29 (kept). Line breaks
// between records, as some exports write them, are not part of a record. Bytes after the
// last 29 make a record of their own unless they are only line breaks and blanks.
class RecordSplitter {
public:
    using RecordFn = std::function<void(const QByteArray&)>;
    explicit RecordSplitter(RecordFn onRecord) : m_onRecord(std::move(onRecord)) {}
    void feed(const char* data, qsizetype size);
    void finish();

private:
    void emitRecord(const char* data, qsizetype size);
    RecordFn m_onRecord;
    QByteArray m_pending;
};

// What one record gives: its text, or the failure that refused it, and the messages the
// viewer would have shown in boxes.
struct RecordOutput {
    bool ok = false;
    QString text;
    QString error;
    QStringList messages;
};
RecordOutput formatRecord(const QByteArray& raw, Layout layout);
// The record text of raw GBK bytes, as the viewer is handed it.
MarcText recordText(const QByteArray& raw);

// Runs the tool: every record of every input in turn (a file name, or "-" and no name for
// `standardInput`), its layout to `out`, a form feed line between records, and a line on
// `err` for each message and each refused record. Returns the exit status: 0 when every
// record was shown, 1 when a record was refused, 2 when an input could not be read or
// the output could not be written (said on `err`; the run stops there).
int runCardTool(const CliOptions& options, QIODevice& standardInput, QIODevice& out,
                QIODevice& err);

// The first record of the first input, for the viewer; nullopt with `error` set when the
// input cannot be read or holds no record.
std::optional<QByteArray> firstRecord(const CliOptions& options, QIODevice& standardInput,
                                      QString* error);

} // namespace card
