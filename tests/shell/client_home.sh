# Sourced by the scripts that run the real client under Xvfb: checks what they need
# (exit 77 when something is missing), then makes a home of its own in $work (removed on
# exit): the demo database $work/orvane.db from the database tool, a user ODBC data
# source OrvaneCGTest for it, and the client's profile on that source.
# Needs $bin (the build's bin folder).
command -v xvfb-run >/dev/null || { echo "xvfb-run is not installed"; exit 77; }
odbcinst -q -d -n SQLite3 >/dev/null 2>&1 || { echo "the SQLite3 ODBC driver is not registered"; exit 77; }
# orvane-xkeys types through the XTest library (Debian libxtst6). Not grep -q: under
# pipefail its early exit would fail the listing with SIGPIPE, and the test would skip.
"$(command -v ldconfig || echo /sbin/ldconfig)" -p | grep 'libXtst\.so\.6' >/dev/null ||
  { echo "libXtst.so.6 (libxtst6) is not installed"; exit 77; }

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
