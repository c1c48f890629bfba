#!/usr/bin/env bash
# run_program.sh TEST host|windows|windows-without-display PROGRAM
# Runs a GoogleTest program for CTest, for Windows in a fresh Windows of its own, and only the cases that MORVIX_CASE names
# when it is set. Judges the report too, which neither CTest nor GoogleTest does: a case that was skipped or disabled has
# proved nothing, and in Wine a program that crashes may end with exit code 0.
set -euo pipefail
here=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=common.sh
source "$here/common.sh"
# shellcheck source=wine.sh
source "$here/wine.sh"
# shellcheck source=display.sh
source "$here/display.sh"
# shellcheck source=reports.sh
source "$here/reports.sh"

# Read as a whole before anything runs, so that a change of this file cannot confuse a run.
main() {
    local test=$1 kind=$2 program=$3 report status=0
    share_build_folder
    new_report "$test"
    [[ -z ${MORVIX_CASE:-} ]] || export GTEST_FILTER=$MORVIX_CASE
    if [[ $kind == host ]]; then
        run_child "$program" "--gtest_output=xml:$report" || status=$?
    else
        new_prefix "test-$test"
        if [[ $kind == windows ]]; then
            start_display
        else
            go_without_display
        fi
        keep_server
        run_child wine "$program" "--gtest_output=xml:$(windows_path "$report")" || status=$?
    fi
    [[ -s $report ]] || fail "$test ended with exit code $status and without a report"
    if ! grep -q '<testcase ' "$report"; then
        [[ -n ${MORVIX_CASE:-} ]] || fail "$test reports no case"
    elif grep -E '<testcase .*(status="notrun"|result="(skipped|suppressed)")' "$report"; then
        fail "$test left out these cases"
    fi
    return "$status"
}

main "$@"
exit
