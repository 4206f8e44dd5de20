// Writes a file of made-up records for timing against yaz-marcdump (see card_maker.h):
//   card_bench_gen <out.mrc> [count]

#include "bench/card/card_maker.h"

#include <QFile>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: card_bench_gen <out.mrc> [count]\n");
        return 2;
    }
    const int count = argc == 3 ? std::atoi(argv[2]) : 100000;
    QFile out(QString::fromLocal8Bit(argv[1]));
    if (count <= 0 || !out.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "card_bench_gen: cannot write %s\n", argv[1]);
        return 1;
    }
    cardbench::Maker maker(2709);
    for (int i = 1; i <= count; ++i) out.write(maker.record(i));
    return 0;
}
