#!/usr/bin/env bash
# driver_test.sh PROGRAM: a finding ends the driver and leaves its input, which alone shows it again.
set -euo pipefail

program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/corpus"
printf 'harmless' >"$work/corpus/one"

fail() {
    echo "driver_test: $*" >&2
    exit 1
}

"$program" --input "$work/input" "$work/corpus" || fail "the kept input failed"
[ ! -e "$work/input" ] || fail "an input stayed without a finding"
! "$program" --seconds 20 --input "$work/input" "$work/corpus" || fail "found nothing"
[ "$(od -An -tu1 -j1 -N1 "$work/input" | tr -d ' ')" = 255 ] || fail "left another input"
! "$program" --input "$work/again" "$work/input" || fail "the input didn't fail again"
