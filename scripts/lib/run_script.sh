#!/usr/bin/env bash
# run_script.sh TEST SCRIPT
# Runs a script that prints its promises in the Test Anything Protocol, for CTest. `prove` judges what it prints, its plan
# and its exit code, and writes the report.
set -euo pipefail
here=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=common.sh
source "$here/common.sh"
# shellcheck source=reports.sh
source "$here/reports.sh"

# Read as a whole before anything runs, so that a change of this file cannot confuse a run.
main() {
    local test=$1 script=$2 report status=0
    share_build_folder
    new_report "$test"
    # What it printed, for people.
    export PERL_TEST_HARNESS_DUMP_TAP=$report.tap
    run_child prove --formatter TAP::Formatter::JUnit --exec "setpriv --pdeathsig TERM" "$script" >"$report" || status=$?
    cat -- "$report.tap$script" || true
    rm -rf -- "$report.tap"
    return "$status"
}

main "$@"
exit
