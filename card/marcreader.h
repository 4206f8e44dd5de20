#pragma once
// Reading one MARC record as the card viewer holds it: a Unicode string with the
// record's control characters in place, whose directory counts GBK bytes. Every cut of a
// field is therefore made on the GBK form of the whole record and decoded afterwards.
//
// The field layout (showZiduan) and the card layout (showKapian, carddriver.h) decode the
// directory in two slightly different ways on purpose: the field layout converts the
// numbers strictly and leaves the closing character 30 out of a field, the card layout
// reads number prefixes and keeps the 30 on the field. Both are kept that way.

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <functional>
#include <optional>

namespace card {

inline constexpr char16_t kRecordEnd = 29; // written "%" by the field layout
inline constexpr char16_t kFieldEnd = 30;  // written "@"
inline constexpr char16_t kSubfield = 31;  // written "$"

// The only check of a record's structure.
QString directoryErrorText(); // "地址目次区数据出现错误，校验失败！"

// Where the reader's and Kapian200's message boxes go. The viewer shows a box with an OK
// button and the runtime's default title; the command-line tool writes to stderr.
using MessageFn = std::function<void(const QString&)>;
void msgBoxMessage(const QString& text);

// The record text and its GBK form. The legacy reader converted the whole record once per
// field it cut; the result is the same every time, so it is made once here.
class MarcText {
public:
    MarcText(QString text); // NOLINT: a record text is a MarcText
    // `bytes` must equal gbk::encode(text); the command-line tool has both at hand.
    MarcText(QString text, QByteArray bytes);

    const QString& text() const { return m_text; }
    const QByteArray& bytes() const;

private:
    QString m_text;
    mutable std::optional<QByteArray> m_bytes;
};

// The leader and the directory, found the same way by both layouts.
struct Directory {
    QString leader;   // the first 24 characters, no length check
    int16_t base = 0; // base address of data
    QString text;     // 12 characters per entry
    int count = 0;

    QStringView tag(int i) const { return QStringView(text).mid(12 * i, 3); }
    QStringView lengthText(int i) const { return QStringView(text).mid(12 * i + 3, 4); }
    QStringView startText(int i) const { return QStringView(text).mid(12 * i + 7, 5); }
};

// Base address (strict, 16-bit), directory up to the first character 30, the length check.
// Returns nullopt after showing the directory message. A base address that is not a
// number (error 13) or above 32767 (error 6), and a record whose first character 30 comes
// before position 25 or is missing (a cut of negative length, error 5), throw VbError.
std::optional<Directory> findDirectory(const QString& marc, const MessageFn& message);

// The field layout ("字段式"): the leader line and one line per directory entry, CR LF
// after each, with 29/30/31 written as "%", "@", "$". nullopt when the directory check
// refused the record (the text box keeps what it held).
std::optional<QString> showZiduan(const MarcText& marc, const MessageFn& message);

// --- the legacy runtime's string cuts, with its failures ---

// Mid(s, start, length), one-based: a start below 1 or a negative length is error 5; a
// start past the end gives "", a length past the end gives the rest.
QString mid(const QString& s, qsizetype start, qsizetype length);
// The same over bytes (MidB on the GBK form), decoded from GBK.
QString midB(const QByteArray& bytes, qsizetype start, qsizetype length);
// A number of the legacy runtime handed on as a Long: outside 32 bits is error 6.
qsizetype toLong(double d);

// Byte count of a text in GBK as a signed 16-bit number: above 32767 is error 6.
int16_t byteLength16(const QString& s);

// The subfield walk every formatter uses. `f` is consumed as the legacy loop consumed it:
// afterwards it holds the remainder after its last character 31 (the last subfield's code
// and value), or is untouched when it has no 31. For every subfield, `onSubfield(code,
// value)` is called; code is 0 where the field ends right behind a delimiter. The last
// value keeps whatever ends the field, so a field cut for the card keeps its character 30
// there. Two delimiters in a row are error 5.
template <class Fn> void walkSubfields(QString& f, Fn&& onSubfield) {
    // L is taken once, in bytes, as a 16-bit number; with it the last value runs to the end.
    const qsizetype L = byteLength16(f);
    qsizetype off = 0; // the loop's F is f from `off` on
    while (off < f.size()) {
        const qsizetype i1 = f.indexOf(QChar(kSubfield), off);
        if (i1 < 0) break;
        const qsizetype p1 = i1 - off + 1; // one-based in F
        const qsizetype i2 = f.indexOf(QChar(kSubfield), i1 + 1);
        const char16_t code = i1 + 1 < f.size() ? f.at(i1 + 1).unicode() : char16_t(0);
        // Mid(F, p1 + 2, n); F is a tail of f, so the same cut of f ends where F ends.
        const qsizetype length = i2 >= 0 ? i2 - i1 - 2 : L - p1;
        const QString value = mid(f, off + p1 + 2, length);
        onSubfield(code, value);
        off = i1 + 1;
    }
    if (off > 0) f.remove(0, off);
}

} // namespace card
