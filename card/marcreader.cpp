#include "marcreader.h"

#include "card/cardgbk.h"
#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/vb.h"

#include <cmath>
#include <limits>

namespace card {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

// Plain digits are by far the usual case of a directory number; they read the same under
// every conversion, so they skip the runtime's general parsers.
std::optional<int> plainDigits(QStringView s) {
    if (s.isEmpty() || s.size() > 9) return std::nullopt;
    int n = 0;
    for (QChar c : s) {
        if (c < u'0' || c > u'9') return std::nullopt;
        n = n * 10 + (c.unicode() - u'0');
    }
    return n;
}

int16_t strictInt16(QStringView s) {
    if (auto n = plainDigits(s)) {
        if (*n > 32767) vb::raise(vb::errOverflow);
        return int16_t(*n);
    }
    return vb::CInt(s.toString());
}

// Strict conversion with the fraction dropped: the field layout's lengths and starts.
double strictWhole(QStringView s) {
    if (auto n = plainDigits(s)) return *n;
    return std::trunc(vb::CDbl(s.toString()));
}

} // namespace

QString directoryErrorText() {
    return QStringLiteral("地址目次区数据出现错误，校验失败！");
}

void msgBoxMessage(const QString& text) {
    vb::MsgBox(text, vb::vbOKOnly);
}

MarcText::MarcText(QString text) : m_text(std::move(text)) {}

MarcText::MarcText(QString text, QByteArray bytes)
    : m_text(std::move(text)), m_bytes(std::move(bytes)) {}

MarcText::MarcText(QString text, QByteArray bytes, std::vector<int32_t> charAt)
    : m_text(std::move(text)), m_bytes(std::move(bytes)) {
    if (!charAt.empty()) m_decoded = Decoded{m_text, std::move(charAt)};
}

const QByteArray& MarcText::bytes() const {
    if (!m_bytes) m_bytes = cardgbk::encode(m_text);
    return *m_bytes;
}

const MarcText::Decoded& MarcText::decoded() const {
    if (!m_decoded) {
        Decoded d;
        const QByteArray& b = bytes();
        d.text = cardgbk::decode(b.constData(), b.size(), nullptr, &d.charAt);
        m_decoded = std::move(d);
    }
    return *m_decoded;
}

QStringView MarcText::cut(qsizetype start, qsizetype length, QString& scratch) const {
    if (length == 0) return QStringView();
    const Decoded& d = decoded();
    const qsizetype end = start + length;
    if (!d.charAt.empty() && cardgbk::cutsDecodeAlike()) {
        const int32_t from = d.charAt[size_t(start)];
        const int32_t to = d.charAt[size_t(end)];
        if (from >= 0 && to >= 0) return QStringView(d.text).mid(from, to - from);
    }
    scratch = cardgbk::decode(bytes().constData() + start, length);
    return scratch;
}

QStringView mid(QStringView s, qsizetype start, qsizetype length) {
    if (start < 1 || length < 0) vb::raise(vb::errInvalidCall);
    if (start > s.size()) return QStringView();
    return s.mid(start - 1, std::min(length, s.size() - (start - 1)));
}

QStringView midB(const MarcText& marc, qsizetype start, qsizetype length, QString& scratch) {
    if (start < 1 || length < 0) vb::raise(vb::errInvalidCall);
    const qsizetype size = marc.bytes().size();
    if (start > size) return QStringView();
    return marc.cut(start - 1, std::min(length, size - (start - 1)), scratch);
}

QString midB(const QByteArray& bytes, qsizetype start, qsizetype length) {
    if (start < 1 || length < 0) vb::raise(vb::errInvalidCall);
    if (start > bytes.size()) return QString();
    const qsizetype n = std::min(length, bytes.size() - (start - 1));
    return cardgbk::decode(bytes.constData() + (start - 1), n);
}

qsizetype toLong(double d) {
    if (!(d >= double(std::numeric_limits<int32_t>::min()) &&
          d <= double(std::numeric_limits<int32_t>::max())))
        vb::raise(vb::errOverflow);
    return qsizetype(d);
}

int16_t byteLength16(QStringView s) {
    const qsizetype n = cardgbk::byteLength(s);
    if (n > 32767) vb::raise(vb::errOverflow);
    return int16_t(n);
}

std::optional<Directory> findDirectory(const QString& marc, const MessageFn& message) {
    Directory d;
    d.leader = QStringView(marc).left(24);
    d.base = strictInt16(d.leader.mid(12, 5));
    // One-based position of the first 30, held in a 16-bit variable as the form held it.
    const qsizetype pos = marc.indexOf(QChar(kFieldEnd)) + 1;
    if (pos > 32767) vb::raise(vb::errOverflow);
    const qsizetype length = pos - 25;
    d.text = mid(marc, 25, length); // a negative length fails here, before the check
    if (length % 12 != 0) {
        message(directoryErrorText());
        return std::nullopt;
    }
    d.count = int(length / 12);
    return d;
}

std::optional<QString> showZiduan(const MarcText& marc, const MessageFn& message) {
    const auto dir = findDirectory(marc.text(), message);
    if (!dir) return std::nullopt;
    QString out = dir->leader.toString() + kCrLf;
    QString scratch;
    for (int i = 0; i < dir->count; ++i) {
        const double start = strictWhole(dir->startText(i));
        const double length = strictWhole(dir->lengthText(i));
        // The closing 30 stays out: one byte less than the directory says.
        const QStringView field =
            midB(marc, toLong(start + dir->base + 1), toLong(length - 1), scratch);
        out += dir->tag(i);
        out += field;
        out += kCrLf;
    }
    for (QChar& c : out) {
        switch (c.unicode()) {
        case kRecordEnd:
            c = u'%';
            break;
        case kFieldEnd:
            c = u'@';
            break;
        case kSubfield:
            c = u'$';
            break;
        default:
            break;
        }
    }
    return out;
}

} // namespace card
