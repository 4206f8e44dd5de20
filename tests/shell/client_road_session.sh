#!/usr/bin/env bash
# Inside the virtual display: the road of one title typed into the real client, with a
# picture of each screen worth seeing, and the title's row saved after each step.
#   client_road_session.sh BIN_DIR OUT_DIR DB
# Keys only, but for the start screen's 确定, clicked. Xvfb runs no window manager, so
# when a dialog closes the frame is given the keyboard back ({focus:...}) as one would.
set -euo pipefail
bin=$1
out=$2
db=$3
frame='Orvane图书馆管理集成系统V4.1-------图书采购'
box='操作提示' # the title of every message box: none may stand open after a step

"$bin/orvanecg" &
client=$!
trap 'kill "$client" 2>/dev/null; wait "$client" 2>/dev/null || true' EXIT
keys() { "$bin/orvane-xkeys" "$@"; }
shot() { "$bin/orvane-xshot" "$out/$1.png" --crop --timeout 20; }
# Saves the title's row as NAME.txt once it stands at STATUS (polled, for up to 10 s).
# The client may be writing when we look: wait for its lock, and look again if it held on.
row() {
  local i
  for i in $(seq 100); do
    sqlite3 -cmd ".timeout 2000" -cmd ".load $bin/liborvane_sqlite_compat.so" "$db" \
      "select * from cgk where isbn='7-302-12345-4' and status=$2" >"$out/$1.txt" || true
    [ -s "$out/$1.txt" ] && return 0
    sleep 0.1
  done
  echo "no row at status $2 after the step"
  return 1
}

# Log in; the start screen comes over the frame.
keys '{wait:Orvane图书馆管理系统-------采购子系统}' admin '{Tab}' admin '{Return}' \
  '{wait:Orvane图书馆管理集成系统}' '{click:695,510}' '{gone:Orvane图书馆管理集成系统}' \
  "{focus:$frame}"

# Step 1. 采购订单 (Ctrl+G), 增加 (Alt+A): the duplicate check. Alt+1 is the ISBN search
# and puts the cursor in its box; the bare number is hyphenated on leaving the box.
keys '{Ctrl+g}' '{Alt+a}' '{wait:检索结果}' '{Alt+1}' 7302123450 '{Return}'
shot road-1-check
# 确定 finds nothing: the check closes and the entry form is adding, with ISBN, publisher,
# place, the source (the publisher) and today filled; the cursor stands on the source.
keys '{Alt+a}' '{gone:检索结果}' "{none:$box}" "{focus:$frame}"
# Enter walks the fields in order; the filled ones are passed over.
keys '{Return}' 'Rust in Action' '{Return}' 'Tim McNamara' '{Return}' 'ZD-2026-15' '{Return}' \
  '{Return}' '{Return}' '{Return}' '2021.8' '{Return}' '1st' '{Return}' '456' '{Return}' \
  '{Return}' 'tp312' '{Return}' '{Return}' '{Return}' '89' '{Return}' '现购' '{Return}' \
  '{Return}' '5' '{Return}' "{none:$box}"
shot road-1-entry
keys '{Alt+s}'
row order 0
keys "{none:$box}"
shot road-1-saved

# Step 2. 书目验收 (F4): the source typed, 确定 (Alt+A) lists its open orders.
keys '{F4}' '{sleep:1500}' '清华大学出版社'
shot road-2-source
keys '{Alt+a}' '{sleep:1500}' "{none:$box}"
# Our order is the later of the two: Down, Space chooses it with all copies; then over to
# 验收册数 (four to the right), Enter edits the cell: 3 of the 5 came.
keys '{Down}' '{space}' '{Right}' '{Right}' '{Right}' '{Right}' '{Return}' 3 '{Return}'
shot road-2-grid
# 验收 (Alt+N): the voucher, the source first, then batch, amount (as proposed), invoice.
keys '{Alt+n}' '{wait:采购验收--*}' '{Return}' 2026-15 '{Return}' '{Return}' FP20261123 '{Return}'
shot road-2-voucher
keys '{Alt+a}' '{gone:采购验收--*}' "{none:$box}" "{focus:$frame}"
row accepted 1
shot road-2-accepted
kill -0 "$client" # still running
