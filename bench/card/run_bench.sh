#!/usr/bin/env bash
# orvane-card against yaz-marcdump, side by side on the same generated file of records.
#   bench/card/run_bench.sh [count=100000] [runs=5]
# Run by hand: installs yaz when it is missing (needs root), builds a Release tree of its
# own (build-card-bench), writes the records, then times each command `runs` times with
# its output thrown away, and prints the medians and the ratio yaz / orvane-card (above 1:
# orvane-card is the faster). CPU time is printed too: it says less about what a
# librarian waits for, but is steadier when other work shares the machine.
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

# The commands run in turns, run after run, so that a burst of other work on the machine
# falls on all of them alike. Wall time and CPU time (user + system) of each run are kept.
names=("yaz-marcdump" "yaz-marcdump -f GBK -t UTF-8" "orvane-card --card" "orvane-card --fields"
       "orvane-card --raw")
cmds=("yaz-marcdump $data" "yaz-marcdump -f GBK -t UTF-8 $data" "$build/bin/orvane-card --card $data"
      "$build/bin/orvane-card --fields $data" "$build/bin/orvane-card --raw $data")

# The card tool must also succeed on the file (no refused record).
"$build/bin/orvane-card" "$data" >/dev/null

declare -A wall cpu
TIMEFORMAT='%R %U %S'
for _ in $(seq "$runs"); do
    for k in "${!cmds[@]}"; do
        # shellcheck disable=SC2086
        read -r r u s < <({ time ${cmds[$k]} >/dev/null 2>&1; } 2>&1)
        wall[$k]+="$r "
        cpu[$k]+="$(awk -v a="$u" -v b="$s" 'BEGIN {printf "%.3f", a + b}') "
    done
done

median() { tr ' ' '\n' | grep . | sort -g | awk '{a[NR]=$1} END {print (NR%2 ? a[(NR+1)/2] : (a[NR/2]+a[NR/2+1])/2)}'; }

yazWall=$(echo "${wall[0]}" | median)
yazCpu=$(echo "${cpu[0]}" | median)
printf '%-30s %10s %10s %14s\n' "median of $runs runs" "wall s" "cpu s" "yaz/this wall"
for k in "${!cmds[@]}"; do
    w=$(echo "${wall[$k]}" | median)
    c=$(echo "${cpu[$k]}" | median)
    printf '%-30s %10.3f %10.3f %14s\n' "${names[$k]}" "$w" "$c" \
        "$(awk -v a="$yazWall" -v b="$w" 'BEGIN {printf "%.2f", a / b}')"
done
