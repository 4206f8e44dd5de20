#!/usr/bin/env bash
# orvane-card against yaz-marcdump, side by side on the same generated file of records.
#   bench/card/run_bench.sh [count=100000] [runs=5]
# Run by hand: installs yaz when it is missing (needs root), builds a Release tree of its
# own (build-card-bench), writes the records, then times each command `runs` times with
# its output thrown away, and prints the medians and the ratio yaz / orvane-card (above 1:
# orvane-card is the faster).
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
count=${1:-100000}
runs=${2:-5}
build=${ORVANE_CARD_BENCH_BUILD:-$root/build-card-bench}
data=${TMPDIR:-/tmp}/orvane-card-bench-$count.mrc

if ! command -v yaz-marcdump >/dev/null; then
    echo "installing yaz (for yaz-marcdump)"
    apt-get update -qq && apt-get install -y -qq yaz >/dev/null
fi

cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVANE_TESTS=OFF \
    -DORVANE_BENCH=ON -DORVANE_SANITIZE=OFF >/dev/null
nice cmake --build "$build" -j1 --target orvane-card card_bench_gen >/dev/null

if [ ! -s "$data" ]; then
    "$build/bin/card_bench_gen" "$data" "$count"
fi
echo "records: $count, file: $data ($(du -h "$data" | cut -f1)), runs: $runs"

# Median wall time of a command, in seconds.
median() {
    local times=()
    for _ in $(seq "$runs"); do
        local start end
        start=$(date +%s.%N)
        "$@" >/dev/null 2>&1 || true
        end=$(date +%s.%N)
        times+=("$(awk -v a="$start" -v b="$end" 'BEGIN {printf "%.3f", b - a}')")
    done
    printf '%s\n' "${times[@]}" | sort -g | awk '{a[NR]=$1} END {print (NR%2 ? a[(NR+1)/2] : (a[NR/2]+a[NR/2+1])/2)}'
}

# The card tool must also succeed on the file (no refused record).
"$build/bin/orvane-card" "$data" >/dev/null

yaz=$(median yaz-marcdump "$data")
yazconv=$(median yaz-marcdump -f GBK -t UTF-8 "$data")
printf '%-40s %8.3f s\n' "yaz-marcdump" "$yaz"
printf '%-40s %8.3f s\n' "yaz-marcdump -f GBK -t UTF-8" "$yazconv"
for mode in --card --fields --raw; do
    t=$(median "$build/bin/orvane-card" "$mode" "$data")
    ratio=$(awk -v a="$yaz" -v b="$t" 'BEGIN {printf "%.2f", a / b}')
    printf '%-40s %8.3f s   yaz/orvane-card = %s\n' "orvane-card $mode" "$t" "$ratio"
done
