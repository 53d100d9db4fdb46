#!/usr/bin/env bash
# replay_test.sh PROGRAM: inputs without a fault pass, and one with it is named last.
set -euo pipefail

program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/corpus"
printf 'harmless' >"$work/corpus/one"

fail() {
    echo "replay_test: $*" >&2
    exit 1
}

"$program" "$work/corpus" || fail "a harmless input failed"
printf 'h\xff' >"$work/corpus/two"
printf 'harmless' >"$work/corpus/three"
! "$program" "$work/corpus" 2>"$work/messages" || fail "the fault wasn't found"
grep -A1 "^$work/corpus/two$" "$work/messages" | grep -q '^Not true: the second byte is below 255$' ||
    fail "the input isn't named"
mkdir "$work/empty"
! "$program" "$work/empty" || fail "a folder without inputs passed"
