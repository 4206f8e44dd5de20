#!/usr/bin/env bash
# For ./run: the demo database in the user's data folder (made once), a user ODBC data
# source "OrvaneCG" for it through the SQLite3 driver with the compat extension, and the
# client's profile for that data source unless a profile is stored already.
#   run-demo-setup.sh BIN_DIR
set -euo pipefail
bin=$1
data=${XDG_DATA_HOME:-$HOME/.local/share}/OrvaneCG
db=$data/orvane.db
ext=$data/liborvane_sqlite_compat.so
dsn=OrvaneCG
mkdir -p "$data"

if [ ! -e "$db" ]; then
  "$bin/orvane-dbinit" --demo "$db"
else
  echo "Demo database: $db (already there, kept)"
fi

# The data source loads the extension from the data folder, so it does not depend on
# where this clone lies; a newer build replaces it (by rename: a running client keeps its copy).
if ! cmp -s "$bin/liborvane_sqlite_compat.so" "$ext"; then
  cp "$bin/liborvane_sqlite_compat.so" "$ext.new"
  mv -f "$ext.new" "$ext"
fi
printf '[%s]\nDescription=OrvaneCG demo database\nDriver=SQLite3\nDatabase=%s\nLoadExt=%s\n' \
  "$dsn" "$db" "$ext" | odbcinst -i -s -h -r >/dev/null
echo "ODBC data source (user): $dsn -> $db"

profile="PROVIDER=MSDASQL;DSN=$dsn;UID=orvane;PWD=;"
case "$("$bin/orvane-setting" set-if-missing "$profile")" in
  stored) echo "Connection profile stored: $profile" ;;
  *) echo "Connection profile kept: $("$bin/orvane-setting" get)" ;;
esac

cat <<'TEXT'

Demo login:  admin / admin   (has the right to the acquisitions subsystem)
             guest / guest   (has not: refused at login)

TEXT
