// Per-record cost of the three layouts and of the tool's whole path (GBK in, text out),
// over the records card_bench_gen makes.

#include "card/cardcli.h"
#include "card/carddriver.h"
#include "card/marcreader.h"

#include <QFile>
#include <QProcess>

#include <benchmark/benchmark.h>

namespace {

QList<QByteArray> sample() {
    static QList<QByteArray> records = [] {
        QProcess gen;
        const QString file = QStringLiteral(ORVANE_BENCH_TMP "/bench_card_sample.mrc");
        gen.start(QStringLiteral(ORVANE_CARD_BENCH_GEN), {file, QStringLiteral("1000")});
        gen.waitForFinished(-1);
        QFile f(file);
        QList<QByteArray> out;
        if (!f.open(QIODevice::ReadOnly)) return out;
        card::RecordSplitter s(
            [&](const QByteArray& r) { out << QByteArray(r.constData(), r.size()); });
        const QByteArray all = f.readAll();
        s.feed(all.constData(), all.size());
        s.finish();
        return out;
    }();
    return records;
}

void layout(benchmark::State& state, card::Layout l) {
    const QList<QByteArray> records = sample();
    if (records.isEmpty()) {
        state.SkipWithError("no sample records");
        return;
    }
    qsizetype i = 0;
    for (auto _ : state) {
        auto r = card::formatRecord(records[i++ % records.size()], l);
        benchmark::DoNotOptimize(r);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(layout, Card, card::Layout::Card);
BENCHMARK_CAPTURE(layout, Fields, card::Layout::Fields);
BENCHMARK_CAPTURE(layout, Raw, card::Layout::Raw);

} // namespace

BENCHMARK_MAIN();
