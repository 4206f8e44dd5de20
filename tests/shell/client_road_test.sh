#!/usr/bin/env bash
# The first two steps of one title's road, typed into the real client under Xvfb on a
# fresh demo database: an order for a new ISBN (the duplicate check finds nothing, the entry
# form is filled and saved), then its acceptance with fewer copies than ordered (the source,
# the order chosen, the count, the voucher). Each step is checked in the database; the
# pictures of the screens go to OUT_DIR.
#   client_road_test.sh BIN_DIR OUT_DIR
set -euo pipefail
bin=$(cd "$1" && pwd)
mkdir -p "$2"
out=$(cd "$2" && pwd)
here=$(cd "$(dirname "$0")" && pwd)

command -v sqlite3 >/dev/null || { echo "sqlite3 is not installed"; exit 77; }
source "$here/client_home.sh"
"$bin/orvane-setting" set-if-missing 'PROVIDER=MSDASQL;DSN=OrvaneCGTest;UID=orvane;PWD=;' >/dev/null
sql() { sqlite3 -cmd ".load $bin/liborvane_sqlite_compat.so" "$work/orvane.db" "$@"; }
fail() {
  echo "FAILED: $*"
  exit 1
}

source='清华大学出版社'
isbn='7-302-12345-4'
[ "$(sql "select count(*) from (select isbn from zsk where isbn='$isbn' union all
      select isbn from cgk where isbn='$isbn' union all select isbn from taolutable where isbn='$isbn')")" = 0 ] ||
  fail "the ISBN is in the demo data already: the duplicate check would find it"
[ "$(sql "select count(*) from cggys where publisher='$source'")" = 1 ] ||
  fail "the source is not a known supplier: saving would ask to add it"
id=$(sql "select code from global where type='cgkid'")
others=$(sql "select group_concat(cgkid) from cgk where status=0 and bookfrom='$source'")

rm -f "$out"/road-*.png "$out"/order.txt "$out"/accepted.txt
start=$(date +%s)
xvfb-run -a -s "-screen 0 1024x768x24" "$here/client_road_session.sh" "$bin" "$out" "$work/orvane.db" ||
  fail "the walk stopped; the pictures so far are in $out"
echo "the walk took $(($(date +%s) - start)) s"
today=$(date +%Y-%m-%d)

# Step 1: a new row under the next id, with what was typed and what the check filled in,
# ordered and not yet accepted; the counter moved on.
got=$(cut -d'|' -f1-21 "$out/order.txt")
want="$id|$source|Rust in Action|Tim McNamara|ZD-2026-15|$isbn|$source|北京|2021.8|1st|456||TP312|||89.0|现购|$today|5|admin|0"
[ "$got" = "$want" ] || fail "the order: got [$got], want [$want]"
[ "$(sql "select code from global where type='cgkid'")" = $((id + 1)) ] || fail "the cgkid counter did not move on"

# Step 2: the same row accepted short: 3 of 5 copies at the price, the batch, the invoice
# and no receipt, the voucher's amount; the ordered count stays. The source's other open
# order, not chosen, is still open.
got=$(cut -d'|' -f1,18-29 "$out/accepted.txt")
want="$id|$today|5|admin|1|2026-15|admin|$today|89.0|3|FP20261123||267.0"
[ "$got" = "$want" ] || fail "the acceptance: got [$got], want [$want]"
[ "$(sql "select count(*) from cgk where sjcode is null and cgkid=$id")" = 1 ] || fail "sjcode is not NULL"
[ "$(sql "select group_concat(cgkid) from cgk where status=0 and bookfrom='$source'")" = "$others" ] ||
  fail "the source's other open orders changed"

for p in road-1-check road-1-entry road-1-saved road-2-source road-2-grid road-2-voucher road-2-accepted; do
  [ -s "$out/$p.png" ] || fail "no picture $p.png"
done
echo "pictures: $out/road-*.png"
