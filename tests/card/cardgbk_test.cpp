// The card's quick GBK conversion against the platform's, on random bytes and text: they
// must agree everywhere, and the cuts of one decoding must agree with decoding the piece.

#include "card/cardgbk.h"
#include "card/marcreader.h"
#include "platform/gbk.h"

#include <gtest/gtest.h>

#include <random>

namespace {

QByteArray randomBytes(std::mt19937& rng, int n) {
    QByteArray b;
    for (int i = 0; i < n; ++i) {
        // Mostly GBK pairs and ASCII, with every odd byte now and then.
        const unsigned r = rng() % 10;
        if (r < 4) {
            b += char(0x81 + rng() % 126);
            b += char(0x40 + rng() % 191);
        } else if (r < 8) {
            b += char(rng() % 0x80);
        } else {
            b += char(rng() % 256);
        }
    }
    return b;
}

} // namespace

TEST(CardGbk, DecodeAgreesWithThePlatform) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 rng(seed);
    for (int round = 0; round < 2000; ++round) {
        const QByteArray b = randomBytes(rng, int(rng() % 40));
        bool exact = false;
        std::vector<int32_t> at;
        const QString fast = card::cardgbk::decode(b.constData(), b.size(), &exact, &at);
        ASSERT_EQ(fast, gbk::decode(b)) << b.toHex().toStdString();
        EXPECT_EQ(exact, gbk::encode(fast) == b) << b.toHex().toStdString();
        // Every cut between characters reads as the piece decoded on its own.
        if (at.empty()) continue;
        for (qsizetype from = 0; from <= b.size(); ++from) {
            for (qsizetype to = from; to <= b.size(); ++to) {
                if (at[size_t(from)] < 0 || at[size_t(to)] < 0) continue;
                ASSERT_EQ(
                    QStringView(fast).mid(at[size_t(from)], at[size_t(to)] - at[size_t(from)]),
                    gbk::decode(b.mid(from, to - from)))
                    << b.toHex().toStdString() << " " << from << ".." << to;
            }
        }
    }
}

TEST(CardGbk, EncodeAndLengthAgreeWithThePlatform) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 rng(seed);
    static const char16_t sample[] = {u'a',   u'1',   29,     30,     31,   u'甲',
                                      u'书',  u'·',   u'—',   u'Ⅳ',   u'①', 0x20AC,
                                      0xE000, 0xD83D, 0xDE00, 0xFFFF, u'é', u'？'};
    for (int round = 0; round < 5000; ++round) {
        QString s;
        for (int i = 0, n = int(rng() % 20); i < n; ++i) {
            s += rng() % 4 ? QChar(sample[rng() % std::size(sample)])
                           : QChar(char16_t(rng() % 65536));
        }
        ASSERT_EQ(card::cardgbk::encode(s), gbk::encode(s)) << s.toStdString();
        ASSERT_EQ(card::cardgbk::byteLength(s), gbk::byteLength(s)) << s.toStdString();
    }
}

TEST(CardGbk, CutsOfARecordMatchTheSlowWay) {
    // A record built from bytes with a bad pair in it: the cut of a field that holds it
    // must read as the same bytes decoded on their own.
    const QByteArray raw = QByteArray("AB") + gbk::encode(QStringLiteral("甲乙")) + "\x81\x20" +
                           gbk::encode(QStringLiteral("丙")) + "Z";
    const card::MarcText t(gbk::decode(raw), raw);
    for (qsizetype from = 1; from <= raw.size(); ++from) {
        for (qsizetype n = 0; from - 1 + n <= raw.size(); ++n) {
            QString scratch;
            EXPECT_EQ(card::midB(t, from, n, scratch), card::midB(raw, from, n))
                << from << " " << n;
        }
    }
}
