#pragma once
// Reading fenlei.Qvx, the classification outline shown by fenleihelp.
//
// The file is GBK text. "[大类表]" opens the main classes, one per line; "[二级类目表]"
// opens the second-level classes, each line starting with the letter of its main class
// (or "[" and the letter for a bracketed class). A line that begins with "[" and ends
// with "]" closes a section. Each section is found by its own scan from the top, and the
// file is read afresh on every call: nothing is cached, so an edited file shows at the
// next pick.

#include <QChar>
#include <QString>
#include <QStringList>

namespace classify {

// The file's bare name, as the form keeps it in configFile.
QString fenleiFileName();
QString daLeiHeader(); // "[大类表]"
QString erJiHeader();  // "[二级类目表]"

// The program's folder (App.Path). Tests point it elsewhere; an empty folder restores it.
QString programFolder();
void setProgramFolder(const QString& folder);

// The folder, a separator unless it already ends in one, the name; native separators,
// as the operator sees the path in a message.
QString configPath(const QString& folder, const QString& fileName);

// "配置文件【path】丢失。"
QString missingMessage(const QString& path);

// A line that begins with "[" and ends with "]", taken as read (not trimmed).
bool endsSection(const QString& line);
// The first character of the line with blanks trimmed; a null QChar for a blank line.
QChar classLetter(const QString& line);
// Whether a second-level line belongs to `letter`: its first character is the letter,
// or it begins with "[" and the letter. Exact compare, no trimming.
bool belongsTo(const QString& line, QChar letter);

// Unreadable: the file is there but cannot be opened (rights, a lock).
enum class ReadStatus { Ok, Missing, Unreadable };

struct SectionRead {
    ReadStatus status = ReadStatus::Ok;
    QStringList lines; // the lines taken, as read, in file order
};

// The main-class section: every line up to the end of the section, empty ones too.
// An absent section gives no lines and no error.
SectionRead readDaLei(const QString& path);
// The second-level lines of one main class, in file order.
SectionRead readErJi(const QString& path, QChar letter);

// The lines of a GBK text, split on CR LF, CR or LF; a last line without a break counts,
// a break at the very end adds no empty line.
QStringList splitLines(const QByteArray& gbkText);

} // namespace classify
