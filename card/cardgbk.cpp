#include "card/cardgbk.h"

#include "platform/gbk.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>

namespace card::cardgbk {

namespace {

// One decoding step: the character and how many bytes it took. used == 0 marks a step
// the platform decodes in a way these tables cannot hold; decode() then hands over.
struct Step {
    char16_t c = 0;
    uint8_t used = 0;
    bool exact = false; // encoding c gives exactly the bytes taken
};

struct Tables {
    std::array<Step, 65536> pair{}; // decoding at byte L with byte T next: (L << 8) | T
    std::array<Step, 256> last{};   // L as the last byte of the input
    std::array<uint16_t, 65536> enc{};
    std::array<uint8_t, 65536> encLen{};
    std::array<uint64_t, 1024>
        twoBytes{}; // encLen == 2, one bit a unit: small enough to stay cached
    // The usual two-byte characters (lead 0x81..0xFE, trail 0x40..0xFE) packed small, so
    // that the characters of a record stay in the cache: the character when the pair is
    // one character that encodes back to that pair, else 0 (the general table decides).
    std::array<char16_t, 126 * 191> common{};
    bool asciiIsItself = true;   // every byte below 0x80 decodes to itself, alone, exactly
    bool cutsAlike = true;       // a byte taken alone decodes the same before any next byte
    bool lengthsOneOrTwo = true; // every unit alone encodes to one or two bytes
};

void setEncoding(Tables& t, int u, const char* e, int n) {
    t.encLen[size_t(u)] = uint8_t(n);
    if (n == 2) {
        t.enc[size_t(u)] = uint16_t((uint8_t(e[0]) << 8) | uint8_t(e[1]));
        t.twoBytes[size_t(u) >> 6] |= uint64_t(1) << (u & 63);
    } else if (n == 1) {
        t.enc[size_t(u)] = uint8_t(e[0]);
    }
}

// The encoding of every UTF-16 unit, taken in one call over all of them (a lead byte
// 0x81..0xFE opens a pair, anything else is one byte); if the pieces do not add up, unit by
// unit.
void buildEncoding(Tables& t) {
    QString all;
    all.reserve(65537);
    for (int u = 0; u < 65536; ++u) {
        all += QChar(char16_t(u));
        if (u == 0xDBFF) all += u'x'; // no surrogate pair forms across the run
    }
    const QByteArray e = gbk::encode(all);
    qsizetype p = 0;
    bool ok = true;
    for (int u = 0; u < 65536 && ok; ++u) {
        const int n = p < e.size() && uint8_t(e[p]) >= 0x81 && uint8_t(e[p]) <= 0xFE ? 2 : 1;
        ok = p + n <= e.size();
        if (ok) setEncoding(t, u, e.constData() + p, n);
        p += n;
        if (u == 0xDBFF) ok = ok && p < e.size() && e[p++] == 'x';
    }
    if (ok && p == e.size()) return;
    for (int u = 0; u < 65536; ++u) {
        const QByteArray one = gbk::encode(QString(QChar(char16_t(u))));
        setEncoding(t, u, one.constData(), int(one.size()));
    }
}

std::unique_ptr<Tables> build() {
    auto t = std::make_unique<Tables>();
    buildEncoding(*t);
    for (int u = 0; u < 65536; ++u) {
        if (t->encLen[size_t(u)] != 1 && t->encLen[size_t(u)] != 2) t->lengthsOneOrTwo = false;
    }
    auto exact = [&](char16_t c, uint16_t bytes, int used) {
        return t->encLen[c] == used && t->enc[c] == bytes;
    };
    // Byte L followed by each byte R: one call over the run L R 0x00 for all R. Each piece
    // reads as one character and U+0000 when L R is a pair, else as L's character, R's
    // and U+0000. If the pieces do not add up, pair by pair.
    auto pairRow = [&](int l) {
        QByteArray run;
        run.reserve(768);
        for (int r = 0; r < 256; ++r) {
            run += char(l);
            run += char(r);
            run += '\0';
        }
        const QString d = gbk::decode(run);
        qsizetype p = 0;
        for (int r = 0; r < 256; ++r) {
            Step& s = t->pair[size_t((l << 8) | r)];
            if (r != 0 && p + 1 < d.size() && d[p + 1] == u'\0') {
                s = {d[p].unicode(), 2, exact(d[p].unicode(), uint16_t((l << 8) | r), 2)};
                p += 2;
            } else if (p + 2 < d.size() && d[p + 2] == u'\0' && (r == 0) == (d[p + 1] == u'\0')) {
                s = {d[p].unicode(), 1, exact(d[p].unicode(), uint16_t(l), 1)};
                p += 3;
            } else {
                return false;
            }
        }
        return p == d.size();
    };
    for (int l = 0; l < 256; ++l) {
        const char one = char(l);
        const QString d1 = gbk::decode(&one, 1);
        if (d1.size() == 1)
            t->last[size_t(l)] = {d1[0].unicode(), 1, exact(d1[0].unicode(), uint16_t(l), 1)};
        if (pairRow(l)) continue;
        for (int r = 0; r < 256; ++r) {
            const char two[2] = {char(l), char(r)};
            const QString d = gbk::decode(two, 2);
            Step& s = t->pair[size_t((l << 8) | r)];
            s = {};
            if (d.size() == 1) {
                s = {d[0].unicode(), 2, exact(d[0].unicode(), uint16_t((l << 8) | r), 2)};
            } else if (d.size() == 2) {
                // The first byte stands alone; the second starts the next step.
                s = {d[0].unicode(), 1, exact(d[0].unicode(), uint16_t(l), 1)};
            }
        }
    }
    for (int l = 0; l < 0x80 && t->asciiIsItself; ++l) {
        bool same = t->last[size_t(l)].c == l && t->last[size_t(l)].exact;
        for (int r = 0; r < 256 && same; ++r) {
            const Step& s = t->pair[size_t((l << 8) | r)];
            same = s.c == l && s.used == 1 && s.exact;
        }
        t->asciiIsItself = same;
    }
    for (int l = 0x81; l <= 0xFE; ++l) {
        for (int r = 0x40; r <= 0xFE; ++r) {
            const Step& s = t->pair[size_t((l << 8) | r)];
            if (s.used == 2 && s.exact && s.c != 0)
                t->common[size_t((l - 0x81) * 191 + (r - 0x40))] = s.c;
        }
    }
    for (int l = 0; l < 256 && t->cutsAlike; ++l) {
        for (int r = 0; r < 256; ++r) {
            const Step& s = t->pair[size_t((l << 8) | r)];
            if (s.used == 1 && (s.c != t->last[size_t(l)].c || t->last[size_t(l)].used != 1))
                t->cutsAlike = false;
        }
    }
    return t;
}

const Tables& tables() {
    static const std::unique_ptr<Tables> t = build();
    return *t;
}

bool isPairAt(QStringView s, qsizetype i) {
    return QChar::isHighSurrogate(s[i].unicode()) && i + 1 < s.size() &&
           QChar::isLowSurrogate(s[i + 1].unicode());
}

} // namespace

bool cutsDecodeAlike() {
    return tables().cutsAlike;
}

QString decode(const char* data, qsizetype size, bool* exact, std::vector<int32_t>* charAt) {
    const Tables& t = tables();
    const auto* b = reinterpret_cast<const uint8_t*>(data);
    QString out(size, Qt::Uninitialized);
    char16_t* const begin = reinterpret_cast<char16_t*>(out.data());
    char16_t* o = begin;
    int32_t* at = nullptr;
    if (charAt) {
        charAt->resize(size_t(size) + 1); // every entry is written below
        at = charAt->data();
    }
    bool ex = true;
    qsizetype i = 0;
    while (i < size) {
        if (b[i] < 0x80 && t.asciiIsItself) {
            // A run of ASCII, most of a record: found eight bytes at a time, widened in one
            // simple loop.
            qsizetype j = i;
            while (j + 8 <= size) {
                uint64_t w;
                std::memcpy(&w, b + j, 8);
                if (w & 0x8080808080808080ull) break;
                j += 8;
            }
            while (j < size && b[j] < 0x80) ++j;
            const int32_t first = int32_t(o - begin);
            for (qsizetype k = i; k < j; ++k) o[k - i] = b[k];
            if (at)
                for (qsizetype k = i; k < j; ++k) at[k] = first + int32_t(k - i);
            o += j - i;
            i = j;
            continue;
        }
        if (i + 1 < size && b[i] >= 0x81 && b[i] <= 0xFE && b[i + 1] >= 0x40 && b[i + 1] <= 0xFE) {
            if (const char16_t c = t.common[size_t((b[i] - 0x81) * 191 + (b[i + 1] - 0x40))]) {
                if (at) {
                    at[i] = int32_t(o - begin);
                    at[i + 1] = -1; // inside a character
                }
                *o++ = c;
                i += 2;
                continue;
            }
        }
        const Step& s = i + 1 < size ? t.pair[size_t((b[i] << 8) | b[i + 1])] : t.last[b[i]];
        if (s.used == 0) {
            if (exact) *exact = false;
            if (charAt) charAt->clear(); // no map: every cut is decoded on its own
            return gbk::decode(data, size);
        }
        if (at) {
            at[i] = int32_t(o - begin);
            if (s.used == 2) at[i + 1] = -1; // inside a character
        }
        *o++ = s.c;
        ex = ex && s.exact;
        i += s.used;
    }
    if (at) at[size] = int32_t(o - begin);
    out.truncate(o - begin);
    if (exact) *exact = ex;
    return out;
}

QByteArray encode(QStringView s) {
    const Tables& t = tables();
    QByteArray out(s.size() * 2, Qt::Uninitialized);
    char* o = out.data();
    for (qsizetype i = 0; i < s.size(); ++i) {
        const char16_t u = s[i].unicode();
        if (isPairAt(s, i)) {
            // A character beyond the BMP: rare, left to the platform as a whole.
            const QByteArray e = gbk::encode(s.mid(i, 2).toString());
            for (char c : e) *o++ = c;
            ++i;
        } else if (t.encLen[u] == 2) {
            *o++ = char(t.enc[u] >> 8);
            *o++ = char(t.enc[u] & 0xFF);
        } else {
            *o++ = char(t.enc[u]);
        }
    }
    out.truncate(o - out.data());
    return out;
}

qsizetype byteLength(QStringView s) {
    const Tables& t = tables();
    if (!t.lengthsOneOrTwo) return gbk::byteLength(s.toString());
    qsizetype n = 0;
    for (qsizetype i = 0; i < s.size(); ++i) {
        if (QChar::isHighSurrogate(s[i].unicode()) && isPairAt(s, i)) {
            n += gbk::byteLength(s.mid(i, 2).toString());
            ++i;
        } else {
            const char16_t u = s[i].unicode();
            // Every unit is one or two bytes (units of no GBK form are one '?').
            n += 1 + ((t.twoBytes[u >> 6] >> (u & 63)) & 1);
        }
    }
    return n;
}

} // namespace card::cardgbk
