# Debian packages the project needs, installed when missing. Sourced by ./run and ./test.
ORVANE_PACKAGES=(
  cmake ninja-build g++ pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6sql6-odbc libgl-dev
  unixodbc unixodbc-dev odbcinst libsqliteodbc libsqlite3-dev sqlite3 tdsodbc
  googletest libgtest-dev libbenchmark-dev
  xvfb xauth libxtst6 fonts-noto-cjk
  libxlsxwriter-dev poppler-utils unzip ccache
)

ensure_packages() {
  local missing=()
  local p
  for p in "${ORVANE_PACKAGES[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "Installing: ${missing[*]}"
  local sudo=()
  [ "$(id -u)" -ne 0 ] && sudo=(sudo)
  export DEBIAN_FRONTEND=noninteractive
  "${sudo[@]}" apt-get update -qq
  "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null
}

# The SQLite3 ODBC driver registers itself when its package is installed; make sure of it.
ensure_sqlite_driver() {
  if ! odbcinst -q -d -n SQLite3 >/dev/null 2>&1; then
    local lib
    lib=$(dpkg -L libsqliteodbc 2>/dev/null | grep 'libsqlite3odbc.so$' | head -n 1)
    [ -n "$lib" ] || { echo "libsqliteodbc is not installed" >&2; return 1; }
    local sudo=()
    [ "$(id -u)" -ne 0 ] && sudo=(sudo)
    printf '[SQLite3]\nDescription=SQLite3 ODBC Driver\nDriver=%s\nSetup=%s\n' "$lib" "$lib" \
      | "${sudo[@]}" odbcinst -i -d -r >/dev/null
  fi
}
