// Per-record cost of the three layouts over the first thousand records card_bench_gen makes.

#include "bench/card/card_maker.h"
#include "card/cardcli.h"

#include <benchmark/benchmark.h>

namespace {

void layout(benchmark::State& state, card::Layout l) {
    cardbench::Maker maker(2709);
    QList<QByteArray> records;
    for (int i = 1; i <= 1000; ++i) records << maker.record(i);
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
