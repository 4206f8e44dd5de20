#pragma once
// The legacy runtime's loose tests and conversions. The forms lean on their exact corners
// ("1,200" is numeric but reads 1, "2003" is no date, CInt rounds half to even), so each
// one lives here once and is tested hard.

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <cstdint>
#include <optional>

namespace vb {

// Blanks only (U+0020), as the runtime trims; tabs and full-width blanks stay.
QString Trim(const QString& s);
QString LTrim(const QString& s);
QString RTrim(const QString& s);
QString UCase(const QString& s);
QString LCase(const QString& s);
int Len(const QString& s);

// One-based positions; 0 means not found. An empty needle is found at `start`.
int InStr(const QString& hay, const QString& needle);
int InStr(int start, const QString& hay, const QString& needle);
int InStrRev(const QString& hay, const QString& needle);
// Mid with a one-based start; a start past the end gives "". A start below 1 is the
// runtime's error 5 ("无效的过程调用或参数").
QString Mid(const QString& s, int start);
QString Mid(const QString& s, int start, int length);
QString Left(const QString& s, int n);
QString Right(const QString& s, int n);
// Split on every occurrence, exact compare; "" gives one empty item, like the runtime.
QStringList Split(const QString& s, const QString& delimiter);
QString Replace(const QString& s, const QString& find, const QString& with);
QString Space(int n);
QString Chr(int code);

// IsNumeric: trimmed; optional sign; digits with thousands commas; one decimal point;
// exponent e/E/d/D with optional sign; &H / &O literals; a number in parentheses
// (negative). Empty or blank is false.
bool IsNumeric(const QString& s);
bool IsNumeric(const QVariant& v);

// Val: reads from the left, skipping blanks (also between digits), stops at the first
// character that cannot continue a number. "1,200" -> 1, "12.50" -> 12.5, "." -> 0,
// "&H1F" -> 31, "1e3" -> 1000.
double Val(const QString& s);

// CStr of a double: at most 15 significant digits, no trailing zeros, exponent form from
// 1E+15 up and below 1E-04: 7, 12.5, -0.5, 1E+15, 1E-05.
QString CStr(double d);
QString CStr(const QVariant& v);

// IsDate accepts y-m-d, y/m/d, m/d/y (and d/m/y when m/d/y is impossible), each with an
// optional time "h:mm[:ss]". A lone number is no date, nor an invalid day.
bool IsDate(const QString& s);
std::optional<QDateTime> CDate(const QString& s);

// Format of a date or number with the patterns the program uses:
// "yyyy-mm-dd", "YYYY-MM-DD" (the same: the runtime reads date letters in any case),
// "yyyy/mm/dd", "hh:mm:ss", "0.00", "0", and the status-bar pattern
// "yyyy年mm月dd日 dddd" (long weekday name). Unknown text in the pattern is copied.
QString Format(const QDateTime& d, const QString& pattern);
QString Format(double n, const QString& pattern);
QString Format(const QVariant& v, const QString& pattern);

// 16-bit conversions. Banker's rounding (2.5 -> 2, 3.5 -> 4); out of -32768..32767 raises
// the runtime's error 6 "溢出"; a text that is not numeric raises 13 "类型不匹配".
int16_t CInt(double d);
int16_t CInt(const QString& s);
int32_t CLng(double d);
int32_t CLng(const QString& s);
double CDbl(const QString& s);

} // namespace vb
