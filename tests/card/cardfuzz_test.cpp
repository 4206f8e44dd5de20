// Mutated records through the reader, the card and the tool's record handling: nothing may
// crash or read out of bounds (the sanitizers watch), and every failure must be one of
// the runtime errors the reader defines. Bounded in time so CI stays quick; the seed is
// printed so that a failure can be replayed.

#include "cardrecords.h"

#include "card/cardcli.h"
#include "card/carddriver.h"
#include "card/marcreader.h"
#include "platform/errors.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <random>

using namespace cardtest;

namespace {

std::vector<QString> seeds() {
    // clang-format off
    return {workedRecord(), record({{"200", "␟a甲书␞"}}),
            record({{"010", "␟a甲␟z乙␟dCNY5␞"}, {"200", "␟f某␟g译␟a题␟e副␞"}, {"210", "␟a京␟b址␟e印␟h厂␞"},
                    {"215", "␟c图␟e盘␞"}, {"225", "␟f编␟a丛␞"}, {"324", "␟a注␞"}, {"327", "␟a章␟a节␞"},
                    {"686", "␟aX␞"}, {"690", "␟aK␞"}, {"701", "␟a 王␞"}})};
    // clang-format on
}

bool definedError(int n) {
    return n == vb::errInvalidCall || n == vb::errOverflow || n == vb::errTypeMismatch;
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
                ASSERT_TRUE(definedError(e.number()))
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
