#!/usr/bin/env bash
# Test programs say what they do to a machine, and run only where they may. Each is started as on a real Windows.
# shellcheck disable=SC2154,SC2317 # the libraries set what is used here; promises call functions by name
set -euo pipefail
lib=$(dirname -- "$(readlink -f -- "$0")")/../../scripts/lib
# shellcheck source=../../scripts/lib/common.sh
source "$lib/common.sh"
# shellcheck source=../../scripts/lib/wine.sh
source "$lib/wine.sh"
# shellcheck source=../../scripts/lib/display.sh
source "$lib/display.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$lib/promises.sh"

# start_program VARIABLE...: the program, without any of its tests; `output` and `status` are what it says and its exit code.
start_program() {
    status=0
    output=$(run_limited 300 env "$@" wine "$program" --gtest_filter=-'*' 2>/dev/null | tr -d '\r') || status=$?
}

says_what_it_does() { [[ $output == *"This program $what."* ]]; }

refuses() { says_what_it_does && [[ $status == 4 && $output == *"Refused: $1"* && $output != *'[  PASSED  ]'* ]]; }

runs() { says_what_it_does && [[ $status == 0 && $output != *Refused* && $output == *'[  PASSED  ]'* ]]; }

# It keeps its number from here to its first window.
start_notepad() {
    { release_lock; exec wine notepad; } >/dev/null 2>&1 &
    notepad=$!
    wait_until 60 is_in_wine || fail "notepad does not start"
}

is_in_wine() { [[ $(readlink -- "/proc/$notepad/exe") == */wine64 ]]; }

has_fixed_addresses() { (((0x$(cat -- "/proc/$notepad/personality") & 0x40000) != 0)); }

enter_build_folder
new_prefix machine-guard
go_without_display
keep_server
if setarch --addr-no-randomize true; then
    start_notepad
    promise "programs of Windows have no random addresses, of which a few would end them at their start" has_fixed_addresses
else
    say "the kernel does not allow fixed addresses: now and then a program of Windows ends with 1 at its start"
fi
while IFS=$'\t' read -r program use what; do
    name=$(basename -- "$program" .exe)
    start_program
    promise "$name says what it does, and runs in Wine" runs
    start_program MORVIX_NOT_IN_WINE=1
    case $use in
        Harmless) promise "$name runs on every machine" runs ;;
        Changes)
            promise "$name refuses a machine that is not thrown away" refuses 'set MORVIX_DISPOSABLE=1'
            start_program MORVIX_NOT_IN_WINE=1 MORVIX_DISPOSABLE=1
            promise "$name runs on a machine that is thrown away" runs
            ;;
        NeedsWine)
            start_program MORVIX_NOT_IN_WINE=1 MORVIX_DISPOSABLE=1
            promise "$name refuses every real machine" refuses 'it runs in Wine only'
            ;;
    esac
done <"$build_dir/windows/tests/machine_uses.tsv"

end_promises
