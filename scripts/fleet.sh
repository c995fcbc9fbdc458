#!/usr/bin/env bash
# Runs the pipeline of docs/fleet.md from end to end and fails if anything comes out that shouldn't:
# rsyslog tails the exports of three machines into PostgreSQL, the rest of a made-up fleet is loaded
# in bulk, and two questions are asked of two days. Uses a server, a daemon and a folder of its own,
# and leaves nothing.
#   scripts/fleet.sh [MACHINES]    10000 without it, which takes minutes and 10 GB below TMPDIR
# Names come from ZOLVANE_REALDATA where it is set.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

readonly count=${1:-10000}
readonly tailed=3
readonly patience=60
readonly python=/usr/bin/python3
readonly made=scripts/fleet/machines.py

case $count in '' | *[!0-9]*) echo "usage: $0 [MACHINES]" >&2; exit 2 ;; esac
[ "$count" -gt "$tailed" ] || { echo "fleet: more than $tailed machines are needed" >&2; exit 2; }

# The one machine that the second day finds new.
readonly newcomer=$((count - tailed))
server_pid='' shipper_pid='' owner=()

say() { printf 'fleet: %s\n' "$*"; }
fail() { printf 'fleet: FAILED: %s\n' "$*" >&2; exit 1; }

# The server doesn't run as root.
choose_owner() {
  [ "$(id -u)" -ne 0 ] || owner=(setpriv --reuid=postgres --regid=postgres --clear-groups)
}

make_folders() {
  work=$(mktemp -d "${TMPDIR:-/var/tmp}/fleet.XXXXXX")
  chmod 755 "$work"
  machines=$work/machines sent=$work/sent sockets=$work/sockets
  mkdir "$machines" "$sent" "$sockets" "$work/data"
  chmod 700 "$work/data"
  [ "${#owner[@]}" -eq 0 ] || chown postgres:postgres "$sockets" "$work/data"
  sed "s|@WORK@|$work|g; s|@SERVER@|$sockets|g" scripts/fleet/rsyslog.conf >"$work/rsyslog.conf"
}

# end PID SIGNAL: ends a process of ours and waits for it.
end() {
  [ -n "$1" ] || return 0
  kill "-$2" "$1" 2>/dev/null || true
  wait "$1" 2>/dev/null || true
}

stop_server() { end "$server_pid" INT; server_pid=''; }
stop_shipper() { end "$shipper_pid" TERM; shipper_pid=''; }

clean_up() {
  local status=$?
  trap - EXIT
  end "$shipper_pid" KILL
  stop_server
  [ "$status" -eq 0 ] || tail -n 20 "$work"/*.log >&2 || true
  rm -rf "$work"
  exit "$status"
}

query() {
  psql -X -q -At -v ON_ERROR_STOP=1 -h "$sockets" -U fleet -d "${database:-fleet}" "$@"
}

# wait_for TEXT COMMAND...: until the command prints the text.
wait_for() {
  local wanted=$1 found='' end=$((SECONDS + patience))
  shift
  until found=$("$@" 2>/dev/null) && [ "$found" = "$wanted" ]; do
    [ "$SECONDS" -lt "$end" ] || fail "'$*' gives '$found' and not '$wanted'"
    sleep 0.2
  done
}

# What makes loading quick may be lost with the power here; the questions only read.
start_server() {
  "${owner[@]}" "$programs/postgres" -D "$work/data" -k "$sockets" -h '' \
    -c shared_buffers=512MB -c work_mem=128MB -c maintenance_work_mem=256MB -c max_wal_size=4GB \
    -c wal_level=minimal -c max_wal_senders=0 -c fsync=off -c timezone=UTC \
    </dev/null >>"$work/postgres.log" 2>&1 &
  server_pid=$!
  database=postgres wait_for 1 query -c 'SELECT 1'
}

make_server() {
  local folders=(/usr/lib/postgresql/*/bin)
  programs=${folders[-1]}
  (cd "$work" && "${owner[@]}" "$programs/initdb" -D "$work/data" -U fleet --auth=trust \
    --encoding=UTF8 --locale=C.UTF-8 --no-sync) >"$work/initdb.log" 2>&1
  start_server
  database=postgres query -c 'CREATE DATABASE fleet'
  query -f scripts/fleet/schema.sql
}

start_shipper() {
  rm -rf "$work/state" "$work/rsyslogd.pid"
  mkdir "$work/state"
  rsyslogd -n -f "$work/rsyslog.conf" -i "$work/rsyslogd.pid" \
    </dev/null >>"$work/rsyslogd.log" 2>&1 &
  shipper_pid=$!
}

# export_as LETTER DAY [MOST]: the machine's next pass. What it wrote is kept to compare with.
export_as() {
  local letter=$1 day=$2
  "$python" "$made" file "$day" "${number[$letter]}" "$machines/$letter.ndjson" "${@:3}"
  cp "$machines/$letter.ndjson" "$sent/$letter$day.ndjson"
}

# One machine more, with what the built program itself writes, where Wine can run it.
export_by_program() {
  local program=build/win32/zolvane.exe
  if ! command -v wine >/dev/null || ! grep -aq -e -export "$program" 2>/dev/null; then
    say "  (without the program's own export: it isn't built, or there is no Wine)"
    return 0
  fi
  timeout 300 "$python" tests/e2e/in_prefix.py bash -c "wine reg import scripts/sample.reg /reg:64 &&
    wine $program -export 'Z:$machines/program.ndjson'" </dev/null >"$work/program.log" 2>&1 ||
    fail "the program's own export"
  cp "$machines/program.ndjson" "$sent/program.ndjson"
  expect_arrived "the program's own export, $(wc -l <"$sent/program.ndjson") packages"
}

# The file anew, with what it held.
export_again() {
  cp "$machines/$1.ndjson" "$machines/$1.new"
  mv "$machines/$1.new" "$machines/$1.ndjson"
}

# expect_arrived WHAT: every line that was sent has arrived, each once, and no other.
expect_arrived() {
  wait_for "$(cat "$sent"/*.ndjson | wc -l)" query -c 'SELECT count(*) FROM inbox'
  query -c 'SELECT line FROM inbox' | "$python" "$made" compare "$sent"/*.ndjson || fail "$1"
  say "  $1: all $(cat "$sent"/*.ndjson | wc -l) lines there, each once"
}

expect_repeated() {
  wait_for "$1" query -c 'SELECT repeated FROM intake'
}

check_shipping() {
  local repeat_count
  say "three machines through rsyslog"
  export_as a -9; export_as b -9; export_as c -9
  start_shipper
  expect_arrived "first pass"
  export_by_program
  stop_shipper
  start_shipper
  export_as a -8
  export_as b -8 5
  expect_arrived "stopped and started; replaced by rename, one of them by a shorter file"
  repeat_count=$(query -c 'SELECT repeated FROM intake')
  export_again c
  expect_repeated "$((repeat_count + $(wc -l <"$machines/c.ndjson")))"
  expect_arrived "replaced by a file with the same content"
  stop_shipper
  export_as a -7
  export_as b -7
  export_again c
  start_shipper
  expect_arrived "replaced while rsyslogd was stopped"
  check_failures
}

check_failures() {
  stop_server
  export_as a -6
  sleep 2
  stop_shipper
  start_shipper
  export_as b -6
  sleep 2
  start_server
  expect_arrived "while PostgreSQL was away and rsyslogd was stopped and started"
  stop_server
  export_as c -6
  sleep 2
  start_server
  expect_arrived "while PostgreSQL was away"
  export_as b -5
  end "$shipper_pid" KILL
  start_shipper
  expect_arrived "after rsyslogd was killed"
  # Five lines that are no export's, and one that is, but long.
  printf '%s\n' '{"hostName":"torn' 'a '\''quote'\'', a \ and 100 %s' '{"hostName":"no time"}' \
    >"$machines/foreign.new"
  printf 'not UTF-8: \xff\xfe\na byte \0 in it\n' >>"$machines/foreign.new"
  mv "$machines/foreign.new" "$machines/foreign.ndjson"
  wait_for 4 sed -n '$=' "$work/rejected.log"
  wait_for 1 query -c 'SELECT count(*) FROM rejected'
  "$python" "$made" lines -4 "${number[c]}" 1 1 |
    sed "s/\"comments\":\"/&$(printf '%0100000d' 0)/" >"$sent/long.ndjson"
  cp "$sent/long.ndjson" "$machines/long.new"
  mv "$machines/long.new" "$machines/long.ndjson"
  expect_arrived "beside lines that are no export's, and one of 100 KB"
  rm -f "$machines"/{foreign,long,program}.ndjson "$sent"/*
  query -c 'TRUNCATE inbox, rejected'
}

# timed WHAT COMMAND...: runs it and tells how long it took.
timed() {
  local what=$1 start
  shift
  start=$(date +%s%N)
  "$@"
  say "  $what: $((($(date +%s%N) - start) / 1000000)) ms"
}

load() {
  "$python" "$made" lines "$@" |
    query -c '\copy inbox (line) from pstdin with (format csv, delimiter E'\''\x02'\'', quote E'\''\x01'\'')'
}

fold() { query -o /dev/null -c "SELECT fold_passes('0 s')"; }

# pass DAY OTHERS: the day's passes, three of them through rsyslog.
pass() {
  local letter
  rm -f "$sent"/*
  for letter in a b c; do export_as "$letter" "$1"; done
  expect_arrived "day $1 of three machines"
  timed "$2 others loaded in bulk" load "$1" 1 "$2"
  timed "folded into the history" fold
}

# ask QUESTION NUMBER [VARIABLE...]: three times; the answer must be the one expected.
ask() {
  local question=$1 number=$2 times answer=$work/$1.answer
  shift 2
  times=$(for _ in 1 2 3; do
    query -o "$answer" "$@" -c '\timing on' -f "scripts/fleet/$question.sql"
  done | sed -nE 's/^Time: ([0-9.]+ ms).*/\1/p' | paste -sd,)
  [ "$question" != where ] || { cut -d'|' -f1 "$answer" >"$answer.1"; mv "$answer.1" "$answer"; }
  "$python" "$made" "$question" "$count" "$number" >"$work/$question.expected"
  [ -s "$answer" ] || fail "no answer to $question"
  cmp "$answer" "$work/$question.expected" || fail "the answer to $question isn't the one expected"
  say "  $question: $(wc -l <"$answer") rows as expected, in ${times//,/, }"
}

# The newest version of the program, and the oldest, which many machines have no more.
ask_all() {
  local asked step
  for step in 2 0; do
    mapfile -t asked < <("$python" "$made" question "$step")
    ask where "$step" -v "program=${asked[0]}" -v "version=${asked[1]}"
  done
  ask changes "$newcomer" -v 'since=2026-03-03'
}

# After the part of a pass the packages that it lacks are taken for removed, for the time being.
expect_part_folded() {
  [ "$(query -c 'SELECT count(*) FROM installed WHERE until IS NOT NULL')" -ge 100 ] ||
    fail "the part of a pass was not taken for the whole"
}

check_history() {
  say "$count machines, two days"
  # One machine is new on the second day.
  pass 1 "$((newcomer - 1))"
  # Of one machine only a part has come when its pass is folded, the rest later.
  load 2 1 1 100
  fold
  expect_part_folded
  pass 2 "$newcomer"
  # Passes that come after later ones say nothing about today.
  load 1 2 "$((count < 50 ? 2 : 40))"
  fold
  query -c 'VACUUM ANALYZE'
  say "  installed: $(query -c 'SELECT count(*) FROM installed') rows," \
    "$(query -c 'SELECT pg_size_pretty(pg_total_relation_size('\''installed'\''))') with indexes;" \
    "$(query -c 'SELECT count(*) FROM package') packages"
  wait_for 0 query -c 'SELECT count(*) FROM inbox'
  wait_for 0 query -c 'SELECT count(*) FROM rejected'
  ask_all
}

scripts/setup.sh fleet
PATH=$PATH:/usr/sbin
declare -A number=([a]=$((count - 2)) [b]=$((count - 1)) [c]=$count)
choose_owner
make_folders
trap clean_up EXIT
make_server
check_shipping
check_history
stop_shipper
say "ok, $SECONDS s"
