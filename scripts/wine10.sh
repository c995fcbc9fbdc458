#!/usr/bin/env bash
# Runs a command in a Debian 13 with its Wine 10, on this checkout at the same place. Needs root.
#   scripts/wine10.sh COMMAND...
# The system is made at the first call, in build/soak/wine10/root, and takes some minutes. Mounts
# and processes are in namespaces of their own: whichever way the command or this script ends, they
# are gone, and from outside the checkout never stands below that folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
exec </dev/null

export LC_ALL=en_GB.UTF-8 TZ=Europe/Berlin
readonly checkout=$PWD
readonly base=$checkout/build/soak/wine10
readonly root=$base/root
# What tests write, and others read: each Wine has its own.
readonly own_folders=(build/screenshots build/win32/results build/win32/Testing)

confined() {
  setpriv --pdeathsig KILL unshare --mount --propagation private --pid --fork --kill-child \
    --mount-proc "$@"
}

in_root() {
  env -u TMPDIR HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
    DEBIAN_FRONTEND=noninteractive chroot "$root" env -C "$checkout" "$@"
}

# Where the present system has its packages from; empty if it doesn't say.
mirror() {
  apt-get indextargets --format "\$(REPO_URI)" 'Created-By: Packages' 'Label: Debian' | sed -n 1p
}

# The folder gets its name once the system is whole; what an interrupted call has left is removed.
make_root() {
  [ ! -d "$root" ] || return 0
  echo "wine10: making a Debian 13 in $root"
  command -v debootstrap >/dev/null ||
    DEBIAN_FRONTEND=noninteractive apt-get -y install --no-install-recommends debootstrap
  rm -rf --one-file-system "$root.new"
  local from
  from=$(mirror)
  if ! confined debootstrap --variant=minbase trixie "$root.new" ${from:+"$from"} \
    >"$base/debootstrap.log" 2>&1; then
    tail -n 20 "$base/debootstrap.log"
    echo "wine10: debootstrap has failed; see $base/debootstrap.log"
    return 1
  fi
  mv "$root.new" "$root"
}

mount_all() {
  local folder
  mkdir -p "$root$checkout"
  mount --bind "$checkout" "$root$checkout"
  for folder in "${own_folders[@]}"; do
    mkdir -p "$folder" "$base/${folder##*/}"
    mount --bind "$base/${folder##*/}" "$root$checkout/$folder"
  done
  mount -t proc proc "$root/proc"
  mount --bind /dev "$root/dev"
  mount --bind /dev/pts "$root/dev/pts"
  mount -t tmpfs tmpfs "$root/dev/shm"
  mount -t tmpfs tmpfs "$root/tmp"
}

# At each call: it takes a second where nothing is missing, and goes on where it was interrupted.
set_up() {
  cp -L /etc/resolv.conf "$root/etc/resolv.conf"
  { in_root dpkg --configure -a && in_root scripts/setup.sh tests; } >"$base/setup.log" 2>&1 ||
    {
      tail -n 20 "$base/setup.log"
      echo "wine10: setting up has failed, see $base/setup.log"
      echo "wine10: if it doesn't get further, remove $root to have all made anew"
      return 1
    }
}

case ${1:-} in
  "")
    sed -n '3s/^# *//p' "$0"
    exit 2
    ;;
  --inside)
    # The first process of the namespaces, and by waiting the one that takes care of orphans.
    shift
    mount_all
    set_up
    status=0
    in_root "$@" || status=$?
    exit "$status"
    ;;
esac
[ "$(id -u)" -eq 0 ] || { echo "wine10: needs root" >&2; exit 2; }
mkdir -p "$base"
# One at a time; held by whatever runs in there, too.
exec 9>"$base/lock"
flock -n 9 || { echo "wine10: another call is under way; waiting for its end"; flock 9; }
make_root
confined scripts/wine10.sh --inside "$@"
