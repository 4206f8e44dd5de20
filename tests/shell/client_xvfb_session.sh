#!/usr/bin/env bash
# Inside the virtual display: start the client, picture the login, log in as admin,
# picture the frame, stop the client.
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
