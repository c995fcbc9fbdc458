#!/usr/bin/env bash
# Builds Zolvane and opens it. With a screen: there, until its window is closed. Without one: on a
# virtual screen, with a picture of the window in build/zolvane.png.
#   scripts/run.sh [SWITCH...]    switches go to the program, where there is a screen
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

readonly uninstall='Software\Microsoft\Windows\CurrentVersion\Uninstall'

has_screen() {
  [ -n "${DISPLAY:-}" ] && xdpyinfo >/dev/null 2>&1
}

# The prefix of the environment, else the user's own, else one of the project's.
choose_prefix() {
  if [ -z "${WINEPREFIX:-}" ]; then
    WINEPREFIX=${HOME:-/nonexistent}/.wine
    [ -d "$WINEPREFIX" ] || WINEPREFIX=$PWD/build/prefix
  fi
  export WINEPREFIX WINEDEBUG=${WINEDEBUG:--all}
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    echo "run: making the Wine prefix $WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    # Neither .NET nor HTML is needed, and nobody should be asked to download them.
    WINEDLLOVERRIDES='mscoree,mshtml=' wineboot --init >/dev/null 2>&1
    wineserver -w
  fi
}

# Whether any of the three Uninstall keys has a subkey.
has_programs() {
  {
    wine reg query "HKLM\\$uninstall" /reg:32 || true
    wine reg query "HKLM\\$uninstall" /reg:64 || true
    wine reg query "HKCU\\$uninstall" || true
  } 2>/dev/null | grep -iF "$uninstall\\" >/dev/null
}

seed_if_empty() {
  has_programs && return
  echo "run: nothing is installed in $WINEPREFIX; adding the invented programs of scripts/sample.reg"
  wine reg import scripts/sample.reg /reg:64 >/dev/null 2>&1
}

build() {
  cmake --preset win32
  cmake --build --preset win32 -j "$(nproc)" --target "$@"
}

take_picture() {
  # A server that was started without a screen never shows a window on one. It ends by itself.
  timeout 30 wineserver -w || true
  /usr/bin/python3 tests/e2e/take_picture.py build/win32 build/zolvane.png
  # Other programs may be running in a prefix that isn't the project's own.
  if [ "$WINEPREFIX" = "$PWD/build/prefix" ]; then wineserver -k || true; fi
  echo "run: there is no screen; a picture of the window is in build/zolvane.png"
}

scripts/setup.sh run
if has_screen; then
  build zolvane
  choose_prefix
  seed_if_empty
  # The viewer of the help looks for its file in the current folder.
  cd build/win32
  exec wine zolvane.exe "$@"
else
  unset DISPLAY
  build zolvane zolvane-driver zolvane-probe
  choose_prefix
  seed_if_empty
  take_picture
fi
