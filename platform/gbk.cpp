#include "platform/gbk.h"

#include <QStringDecoder>

#include <array>
#include <mutex>
#include <unordered_map>

namespace gbk {
namespace {

// Two-byte GBK: lead 0x81..0xFE, trail 0x40..0xFE without 0x7F. The table is built once
// from Qt's ICU-backed decoder, pair by pair, so the hot path is a plain lookup and a cut
// inside a character can be handled by us, the same way every time.
constexpr int kLeadCount = 0xFE - 0x81 + 1;
constexpr int kTrailCount = 0xFE - 0x40 + 1;

struct Tables {
    std::array<char16_t, kLeadCount * kTrailCount> decode{}; // 0 = no character
    std::unordered_map<char16_t, uint16_t> encode;
    char16_t byte80 = 0;
};

const Tables& tables() {
    static Tables t;
    static std::once_flag once;
    std::call_once(once, [] {
        QStringDecoder dec("GBK", QStringDecoder::Flag::Stateless);
        if (!dec.isValid()) dec = QStringDecoder("GB18030", QStringDecoder::Flag::Stateless);
        t.encode.reserve(22000);
        for (int lead = 0x81; lead <= 0xFE; ++lead) {
            for (int trail = 0x40; trail <= 0xFE; ++trail) {
                if (trail == 0x7F) continue;
                const char pair[2] = {static_cast<char>(lead), static_cast<char>(trail)};
                const QString s = dec.decode(QByteArrayView(pair, 2));
                if (s.size() != 1 || s[0] == QChar::ReplacementCharacter) continue;
                const char16_t c = s[0].unicode();
                t.decode[static_cast<size_t>((lead - 0x81) * kTrailCount + (trail - 0x40))] = c;
                t.encode.emplace(c, static_cast<uint16_t>((lead << 8) | trail));
            }
        }
        // CP936 puts the euro sign on the single byte 0x80.
        const char b80 = static_cast<char>(0x80);
        const QString euro = dec.decode(QByteArrayView(&b80, 1));
        if (euro.size() == 1 && euro[0] != QChar::ReplacementCharacter)
            t.byte80 = euro[0].unicode();
    });
    return t;
}

} // namespace

QByteArray encode(const QString& s) {
    const Tables& t = tables();
    QByteArray out;
    out.reserve(s.size() * 2);
    for (qsizetype i = 0; i < s.size(); ++i) {
        const char16_t c = s[i].unicode();
        if (c < 0x80) {
            out.append(static_cast<char>(c));
            continue;
        }
        if (QChar::isHighSurrogate(c) && i + 1 < s.size() && s[i + 1].isLowSurrogate()) {
            ++i; // no GBK form: one '?' for the whole character
            out.append('?');
            continue;
        }
        auto it = t.encode.find(c);
        if (it != t.encode.end()) {
            out.append(static_cast<char>(it->second >> 8));
            out.append(static_cast<char>(it->second & 0xFF));
        } else if (t.byte80 && c == t.byte80) {
            out.append(static_cast<char>(0x80));
        } else {
            out.append('?');
        }
    }
    return out;
}

QString decode(const char* data, qsizetype size) {
    const Tables& t = tables();
    QString out;
    out.reserve(size);
    const auto* u = reinterpret_cast<const unsigned char*>(data);
    for (qsizetype i = 0; i < size; ++i) {
        const unsigned char b = u[i];
        if (b < 0x80) {
            out.append(QChar(b));
            continue;
        }
        if (b == 0x80) {
            out.append(t.byte80 ? QChar(t.byte80) : QChar('?'));
            continue;
        }
        if (b == 0xFF || i + 1 >= size) { // 0xFF is never a lead; a lead at the end is cut
            out.append(QChar('?'));
            continue;
        }
        const unsigned char trail = u[i + 1];
        if (trail < 0x40 || trail == 0x7F || trail == 0xFF) {
            out.append(QChar('?')); // the next byte stands on its own
            continue;
        }
        const char16_t c = t.decode[static_cast<size_t>((b - 0x81) * kTrailCount + (trail - 0x40))];
        out.append(c ? QChar(c) : QChar('?'));
        ++i;
    }
    return out;
}

QString decode(const QByteArray& bytes) {
    return decode(bytes.constData(), bytes.size());
}

qsizetype byteLength(const QString& s) {
    qsizetype n = 0;
    for (qsizetype i = 0; i < s.size(); ++i) {
        const char16_t c = s[i].unicode();
        if (c < 0x80) {
            ++n;
        } else if (QChar::isHighSurrogate(c) && i + 1 < s.size() && s[i + 1].isLowSurrogate()) {
            ++i;
            ++n; // written as one '?'
        } else {
            n += tables().encode.count(c) ? 2 : 1; // else '?' or the single byte 0x80
        }
    }
    return n;
}

} // namespace gbk
