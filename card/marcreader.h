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
#include <vector>

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

// The record text and its GBK form. Every field is cut from the GBK form of the whole
// record, which is the same every time: it is made once, and the fields are cut out of one
// decoding of it.
class MarcText {
public:
    MarcText(QString text); // NOLINT: a record text is a MarcText
    // `bytes` must equal gbk::encode(text).
    MarcText(QString text, QByteArray bytes);
    // A text decoded from `bytes` that encodes back to exactly them, with the character
    // index of each byte that starts a character (-1 elsewhere, one entry past the end).
    MarcText(QString text, QByteArray bytes, std::vector<int32_t> charAt);

    const QString& text() const { return m_text; }
    const QByteArray& bytes() const;
    // `length` bytes from the zero-based byte `start` (both within the bytes), decoded. A
    // view into the record's decoding when both ends fall between characters, else the
    // piece decoded on its own into `scratch`.
    QStringView cut(qsizetype start, qsizetype length, QString& scratch) const;

private:
    struct Decoded {
        QString text;
        std::vector<int32_t> charAt;
    };
    const Decoded& decoded() const;

    QString m_text;
    mutable std::optional<QByteArray> m_bytes;
    mutable std::optional<Decoded> m_decoded;
};

// The leader and the directory, found the same way by both layouts.
// Views into the record text, which must outlive it.
struct Directory {
    QStringView leader; // the first 24 characters, no length check
    int16_t base = 0;   // base address of data
    QStringView text;   // 12 characters per entry
    int count = 0;

    QStringView tag(int i) const { return text.mid(12 * i, 3); }
    QStringView lengthText(int i) const { return text.mid(12 * i + 3, 4); }
    QStringView startText(int i) const { return text.mid(12 * i + 7, 5); }
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
QStringView mid(QStringView s, qsizetype start, qsizetype length);
// MidB on the record's GBK form, decoded: the same rules over bytes.
QStringView midB(const MarcText& marc, qsizetype start, qsizetype length, QString& scratch);
QString midB(const QByteArray& bytes, qsizetype start, qsizetype length);
// A number of the legacy runtime handed on as a Long: outside 32 bits is error 6.
qsizetype toLong(double d);

// Byte count of a text in GBK as a signed 16-bit number: above 32767 is error 6.
int16_t byteLength16(QStringView s);

// The subfield walk every formatter uses, over the formatter's field variable F. For every
// subfield, `onSubfield(code, value)` is called; code is 0 where the field ends right
// behind a delimiter. The last value keeps whatever ends the field, so a field cut for the
// card keeps its character 30 there. Two delimiters in a row are error 5.
//
// The walk cuts F down as it goes, and leaves it holding the remainder after its last
// character 31 (the last subfield's code and value); callers rely on that. This form
// returns how many characters it took off the front, 0 when F has no 31.
template <class Fn> qsizetype walkSubfields(QStringView f, Fn&& onSubfield) {
    // L is taken once, in bytes, as a 16-bit number; with it the last value runs to the end.
    const qsizetype L = byteLength16(f);
    const char16_t* const d = f.utf16();
    const qsizetype n = f.size();
    auto next31 = [d, n](qsizetype from) -> qsizetype {
        for (qsizetype i = from; i < n; ++i)
            if (d[i] == kSubfield) return i;
        return -1;
    };
    qsizetype off = 0; // the loop's F is f from `off` on
    while (off < n) {
        const qsizetype i1 = next31(off);
        if (i1 < 0) break;
        const qsizetype p1 = i1 - off + 1; // one-based in F
        const qsizetype i2 = next31(i1 + 1);
        const char16_t code = i1 + 1 < n ? d[i1 + 1] : char16_t(0);
        // Mid(F, p1 + 2, n); F is a tail of f, so the same cut of f ends where F ends.
        const qsizetype length = i2 >= 0 ? i2 - i1 - 2 : L - p1;
        onSubfield(code, mid(f, off + p1 + 2, length));
        off = i1 + 1;
    }
    return off;
}

// The walk on a variable, which is consumed as told above.
template <class Fn> void walkSubfields(QString& f, Fn&& onSubfield) {
    const qsizetype taken = walkSubfields(QStringView(f), onSubfield);
    if (taken > 0) f.remove(0, taken);
}

} // namespace card
