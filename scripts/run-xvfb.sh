#!/usr/bin/env bash
# For ./run inside xvfb-run: start the client, save a picture of its login window once
# the screen has settled, then stop the client again.
#   run-xvfb.sh BIN_DIR OUT.png
set -euo pipefail
bin=$1
shot=$2
unset QT_QPA_PLATFORM
"$bin/orvanecg" &
client=$!
trap 'kill "$client" 2>/dev/null || true' EXIT
"$bin/orvane-xshot" "$shot" --crop --timeout 60
