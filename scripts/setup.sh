#!/usr/bin/env bash
# Installs what building, testing and running need on Debian 12, and only what is missing.
#   scripts/setup.sh          everything
#   scripts/setup.sh run      only what scripts/run.sh needs
#   scripts/setup.sh tests    only what running built win32 tests needs; on Debian 13, too
#   scripts/setup.sh release  only what scripts/release.sh needs
#   scripts/setup.sh fleet    only what scripts/fleet.sh needs, which no other purpose brings
set -euo pipefail

readonly purpose=${1:-all}

# googletest: its sources are part of every configuration, also where no test is built.
# fp-utils: the compiler of the help file. gnulib: regular expressions for the target.
readonly build_packages=(
  cmake ninja-build g++-mingw-w64-i686-posix googletest fp-utils-3.2.2 gnulib)
wine_packages=(wine wine32:i386 wine64 fonts-wine)
readonly screen_packages=(xvfb openbox xdotool imagemagick x11-utils python3)
readonly run_packages=(locales tzdata)
# cmake: with ctest in it. wixl: builds the packages that the tests install. msitools: msibuild and
# msiinfo, which write and read a package's database without Wine. What reads the exports back: of
# workbooks python3-xlrd, ssconvert (gnumeric), LibreOffice and xls2csv (catdoc), of the file around
# them python3-olefile and gsf (libgsf-bin), of JSON lines jq. openssl: a secure server's certificate.
readonly test_run_packages=(
  cmake libchm-bin msitools openssl python3-pytest python3-pytest-xdist wixl
  catdoc gnumeric jq libgsf-bin libreoffice-calc-nogui python3-olefile python3-xlrd)
# python3-xlwt: writes workbooks for the bench to compare with.
readonly test_packages=(
  clang clang-format clang-tidy g++ g++-mingw-w64-x86-64-posix libbenchmark-dev
  libclang-rt-14-dev libgmock-dev libgtest-dev libxml2-dev python3-xlwt shellcheck)
# nsis: the compiler of the setup. osslsigncode: signs it.
readonly release_packages=(git nsis osslsigncode python3)
readonly fleet_packages=(postgresql python3 rsyslog rsyslog-pgsql)
# "NAME SOURCE", as localedef takes them.
readonly wanted_locales=("en_GB.UTF-8 en_GB" "de_DE.UTF-8 de_DE")

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo -- "$@"; fi
}

apt() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -y "$@" </dev/null
}

is_installed() {
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# The packages among the arguments that aren't installed, one a line.
missing() {
  local package
  for package in "$@"; do
    is_installed "$package" || echo "$package"
  done
}

refreshed=no
# Once a run. An index that can't be had is no failure yet: the packages may be had all the same.
refresh_indexes() {
  [ "$refreshed" = no ] || return 0
  apt update || echo "setup: some package indexes could not be refreshed; going on" >&2
  refreshed=yes
}

install_missing() {
  local packages
  mapfile -t packages < <(missing "$@")
  [ "${#packages[@]}" -gt 0 ] || return 0
  echo "setup: installing ${packages[*]}"
  refresh_indexes
  apt install --no-install-recommends "${packages[@]}"
}

# Both architectures of a library must have one version. Where the security suite can be had for
# one of them only, the main suite has to serve both.
install_from_main_suite() {
  local preferences status=0
  preferences=$(mktemp -d)
  chmod 755 "$preferences"
  cat >"$preferences/main-suite" <<'PINS'
Package: *
Pin: release l=Debian-Security
Pin-Priority: -1

Package: *
Pin: release l=Debian
Pin-Priority: 1001
PINS
  apt install --no-install-recommends --allow-downgrades \
    -o "Dir::Etc::PreferencesParts=$preferences" "$@" || status=$?
  rm -r "$preferences"
  return "$status"
}

# Wine 10, from Debian 13 on, is caught in a loop without it once a window covers a whole screen.
add_pointer_library() {
  local debian
  debian=$(sed -nE 's/^VERSION_ID="?([0-9]+).*/\1/p' /etc/os-release)
  [ "${debian:-13}" -lt 13 ] || wine_packages+=(libxi6:i386)
}

install_wine() {
  [ -n "$(missing "${wine_packages[@]}")" ] || return 0
  echo "setup: installing Wine with its 32-bit half"
  if ! dpkg --print-foreign-architectures | grep -x i386 >/dev/null; then
    as_root dpkg --add-architecture i386
    refreshed=no
  fi
  refresh_indexes
  apt install --no-install-recommends "${wine_packages[@]}" ||
    install_from_main_suite "${wine_packages[@]}"
}

# Left to itself the package makes a database and has the machine's own log written to it. What it
# finds it leaves as it is.
install_fleet() {
  local own_log=/etc/rsyslog.d/pgsql.conf
  if [ -n "$(missing rsyslog-pgsql)" ] && [ ! -e "$own_log" ]; then
    echo 'rsyslog-pgsql rsyslog-pgsql/dbconfig-install boolean false' |
      as_root debconf-set-selections
    as_root mkdir -p "${own_log%/*}"
    echo '# The log of this machine stays out of PostgreSQL.' | as_root tee "$own_log" >/dev/null
  fi
  install_missing "${fleet_packages[@]}"
}

make_locales() {
  local present wanted name source
  present=$(locale -a 2>/dev/null | tr '[:upper:]' '[:lower:]' | tr -d -)
  for wanted in "${wanted_locales[@]}"; do
    read -r name source <<<"$wanted"
    grep -qx "$(tr '[:upper:]' '[:lower:]' <<<"$name" | tr -d -)" <<<"$present" && continue
    echo "setup: making the locale $name"
    as_root localedef -i "$source" -f UTF-8 "$name"
  done
}

case $purpose in
  all) install_missing "${build_packages[@]}" "${screen_packages[@]}" "${run_packages[@]}" \
         "${test_packages[@]}" "${test_run_packages[@]}" "${release_packages[@]}" ;;
  run) install_missing "${build_packages[@]}" "${screen_packages[@]}" "${run_packages[@]}" ;;
  tests) install_missing "${screen_packages[@]}" "${run_packages[@]}" "${test_run_packages[@]}" ;;
  release) install_missing "${build_packages[@]}" "${release_packages[@]}"
    echo "setup: everything needed is installed"; exit ;;
  fleet) install_fleet; echo "setup: everything needed is installed"; exit ;;
  *) echo "usage: $0 [run | tests | release | fleet]" >&2; exit 2 ;;
esac
add_pointer_library
install_wine
make_locales
echo "setup: everything needed is installed"
