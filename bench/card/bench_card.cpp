// Per-record cost of the three layouts over the records card_bench_gen makes.

#include "bench/card/card_maker.h"
#include "card/cardcli.h"

#include <benchmark/benchmark.h>

namespace {

// The first thousand records card_bench_gen writes.
QList<QByteArray> sample() {
    static const QList<QByteArray> records = [] {
        cardbench::Maker maker(2709);
        QList<QByteArray> out;
        for (int i = 1; i <= 1000; ++i) out << maker.record(i);
        return out;
    }();
    return records;
}

void layout(benchmark::State& state, card::Layout l) {
    const QList<QByteArray> records = sample();
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
