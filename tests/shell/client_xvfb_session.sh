#!/usr/bin/env bash
# Inside the virtual display: start the client, picture the login, log in as admin,
# picture the frame, open the entry form and picture it, stop the client.
set -euo pipefail
bin=$1
out=$2
"$bin/orvanecg" &
client=$!
trap 'kill "$client" 2>/dev/null || true' EXIT
"$bin/orvane-xshot" "$out/login.png" --crop --timeout 60
kill -0 "$client"
"$bin/orvane-xkeys" admin '{Tab}' admin '{Return}'
"$bin/orvane-xshot" "$out/frame.png" --crop --timeout 60 --differs-from "$out/login.png"
kill -0 "$client" # still running: the frame carries the process
# Enter on the start screen's button closes it; then the entry form in the frame (Ctrl+G),
# on its first record (Alt+F).
"$bin/orvane-xkeys" '{Return}' '{sleep:500}' '{Control_L+g}' '{sleep:1500}' '{Alt_L+f}' '{sleep:800}'
"$bin/orvane-xshot" "$out/entry.png" --crop --timeout 60 --differs-from "$out/frame.png"
kill -0 "$client"
