# shellcheck shell=bash
# The reports of the tests, in JUnit's form. Sourced after common.sh.
# shellcheck disable=SC2034,SC2154

results_dir=$build_dir/${flavour}test

# new_report TEST: `report` is the file that the test writes; one of an earlier run is gone.
new_report() {
    report=$results_dir/$1.xml
    mkdir -p -- "$results_dir"
    rm -f -- "$report"
}
