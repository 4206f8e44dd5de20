// Random input under the sanitizers, bounded so CI stays quick; the seed is printed so
// that a failure can be replayed.

#include "cardrecords.h"

#include "card/cardcli.h"
#include "card/carddriver.h"
#include "card/cardgbk.h"
#include "card/marcreader.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <random>

using namespace cardtest;

namespace {

std::vector<QString> seeds() {
    // clang-format off
    return {workedRecord(),
            record({{"010", "␟a甲␟z乙␟dCNY5␞"}, {"200", "␟f某␟g译␟a题␟e副␞"}, {"210", "␟a京␟b址␟e印␟h厂␞"},
                    {"324", "␟a注␞"}, {"327", "␟a章␟a节␞"}, {"686", "␟aX␞"}, {"701", "␟a 王␞"}})};
    // clang-format on
}

QString mutate(QString s, std::mt19937& rng) {
    auto pick = [&](int n) { return int(rng() % unsigned(std::max(n, 1))); };
    static const char16_t alphabet[] = {29,   30,   31,   u'0', u'9',  u' ',   u'a',  u'-',
                                        u'.', u'&', u'H', u'e', u'甲', 0xD800, u'？', u'Ⅰ'};
    for (int i = 0, steps = 1 + pick(4); i < steps; ++i) {
        const int at = pick(int(s.size()) + 1);
        // clang-format off
        switch (pick(6)) {
        case 0: if (!s.isEmpty()) s[std::min<qsizetype>(at, s.size() - 1)] = QChar(alphabet[pick(16)]); break;
        case 1: s.insert(at, QChar(alphabet[pick(16)])); break;
        case 2: s.remove(at, pick(8)); break;
        case 3: s.truncate(at); break;
        case 4: s.insert(at, s.mid(pick(int(s.size())), pick(24))); break;
        // A directory digit, where the structure is most fragile.
        case 5: if (s.size() > 30) s[12 + pick(std::min<int>(int(s.size()) - 12, 170))] = QChar(u'0' + pick(10)); break;
        }
        // clang-format on
    }
    return s;
}

QByteArray randomBytes(std::mt19937& rng, int n) {
    QByteArray b;
    for (int i = 0; i < n; ++i) {
        // Mostly GBK pairs and ASCII, with every odd byte now and then.
        const unsigned r = rng() % 10;
        if (r < 4) b += char(0x81 + rng() % 126);
        b += char(r < 4 ? 0x40 + rng() % 191 : rng() % (r < 8 ? 0x80 : 256));
    }
    return b;
}

} // namespace

TEST(CardFuzz, MutatedRecordsFailOnlyInDefinedWays) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 rng(seed);
    const std::vector<QString> base = seeds();
    QElapsedTimer timer;
    timer.start();
    int runs = 0, refused = 0, failed = 0;
    auto quiet = [](const QString&) {};
    while (timer.elapsed() < 3000 && runs < 200000) {
        const QString marc = mutate(base[rng() % base.size()], rng);
        for (int layout = 0; layout < 2; ++layout) {
            ++runs;
            try {
                const card::MarcText t(marc);
                const auto r = layout ? card::showKapian(t, quiet) : card::showZiduan(t, quiet);
                if (!r) ++refused;
            } catch (const vb::VbError& e) {
                ++failed;
                ASSERT_TRUE(e.number() == vb::errInvalidCall || e.number() == vb::errOverflow ||
                            e.number() == vb::errTypeMismatch)
                    << e.number() << " on " << vis(marc).toStdString();
            }
        }
        // The same bytes through the tool's path (GBK in, text out).
        const card::RecordOutput o = card::formatRecord(gbk::encode(marc), card::Layout::Card);
        ASSERT_TRUE(o.ok || !o.error.isEmpty());
    }
    // The mutations must reach all three outcomes, or the loop proves little.
    EXPECT_GT(runs - refused - failed, 0);
    EXPECT_GT(refused, 0);
    EXPECT_GT(failed, 0);
}

TEST(CardFuzz, GbkAgreesWithThePlatformOnRandomInput) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 rng(seed);
    for (int round = 0; round < 1500; ++round) {
        const QByteArray b = randomBytes(rng, int(rng() % 30));
        bool exact = false;
        std::vector<int32_t> at;
        const QString fast = card::cardgbk::decode(b.constData(), b.size(), &exact, &at);
        ASSERT_EQ(fast, gbk::decode(b)) << b.toHex().toStdString();
        ASSERT_EQ(exact, gbk::encode(fast) == b) << b.toHex().toStdString();
        // Back again, with units GBK lacks and surrogates, paired or alone.
        const QString s =
            fast + QChar(char16_t(rng() % 65536)) + QChar(char16_t(0xD800 + rng() % 0x800));
        ASSERT_EQ(card::cardgbk::encode(s), gbk::encode(s)) << s.toStdString();
        ASSERT_EQ(card::cardgbk::byteLength(s), gbk::byteLength(s)) << s.toStdString();
        // Every byte cut of a record made of them reads as the piece decoded on its own,
        // whether the record comes with the offsets of its decoding or without.
        const card::MarcText whole(fast, b);
        const card::MarcText withOffsets = exact ? card::MarcText(fast, b, at) : whole;
        QString scratch;
        for (qsizetype from = 1; from <= b.size(); ++from) {
            for (qsizetype n = 0; from - 1 + n <= b.size(); ++n) {
                const QString alone = gbk::decode(b.mid(from - 1, n));
                ASSERT_EQ(card::midB(whole, from, n, scratch), alone) << from << "+" << n;
                ASSERT_EQ(card::midB(withOffsets, from, n, scratch), alone) << from << "+" << n;
                ASSERT_EQ(card::midB(b, from, n), alone) << from << "+" << n;
            }
        }
    }
}
