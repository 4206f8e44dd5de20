#!/usr/bin/env bash
# The real client on a virtual display, in a home of its own: a demo database from the
# database tool, a user ODBC data source for it, the profile; then the login typed into
# the login window, and pictures of the login and of the frame it opens.
#   client_xvfb_test.sh BIN_DIR OUT_DIR
set -euo pipefail
bin=$(cd "$1" && pwd)
mkdir -p "$2"
out=$(cd "$2" && pwd)
here=$(cd "$(dirname "$0")" && pwd)

command -v xvfb-run >/dev/null || { echo "xvfb-run is not installed"; exit 77; }
odbcinst -q -d -n SQLite3 >/dev/null 2>&1 || { echo "the SQLite3 ODBC driver is not registered"; exit 77; }
# orvane-xkeys types through the XTest library (Debian libxtst6).
"$(command -v ldconfig || echo /sbin/ldconfig)" -p | grep -c 'libXtst\.so\.6' >/dev/null || { echo "libXtst.so.6 (libxtst6) is not installed"; exit 77; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work/home XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
export XDG_RUNTIME_DIR=$work/run ODBCINI=$work/odbc.ini
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME"
mkdir -m 700 "$XDG_RUNTIME_DIR"
unset QT_QPA_PLATFORM

"$bin/orvane-dbinit" --demo "$work/orvane.db" >/dev/null
printf '[OrvaneCGTest]\nDriver=SQLite3\nDatabase=%s\nLoadExt=%s\n' \
  "$work/orvane.db" "$bin/liborvane_sqlite_compat.so" >"$ODBCINI"
[ "$("$bin/orvane-setting" set-if-missing 'PROVIDER=MSDASQL;DSN=OrvaneCGTest;UID=orvane;PWD=;')" = stored ]
# A stored profile is never overwritten.
[ "$("$bin/orvane-setting" set-if-missing 'PROVIDER=MSDASQL;DSN=Other;')" = kept ]

rm -f "$out/login.png" "$out/frame.png"
xvfb-run -a -s "-screen 0 1024x768x24" "$here/client_xvfb_session.sh" "$bin" "$out"

size() { "$bin/orvane-xshot" --size "$1"; }
login=$(size "$out/login.png")
frame=$(size "$out/frame.png")
echo "login window ${login}, frame ${frame}"
# The frame (11800 x 7200 twips) is far wider than the login window: only a good login
# brings it up.
[ "${frame%x*}" -ge 760 ] || { echo "no frame after the login"; exit 1; }
[ "${login%x*}" -lt 600 ] || { echo "the first window is not the login"; exit 1; }
echo "pictures: $out/login.png $out/frame.png"
