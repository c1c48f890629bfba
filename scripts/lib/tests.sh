# shellcheck shell=bash
# A run of CTest over several build folders, with one count at its end. Sourced after common.sh.
# shellcheck disable=SC2154

# shellcheck source=reports.sh
source "$(dirname -- "${BASH_SOURCE[0]}")/reports.sh"

# Seconds after which a test hangs: the longest takes a fifth of it.
test_limit=1800

# Each processor with the number of programs in Wine that may share it.
list_processors() {
    python3 -c '
import json, os
processors = [{"id": str(number), "slots": 4} for number in sorted(os.sched_getaffinity(0))]
print(json.dumps({"version": {"major": 1, "minor": 0}, "local": [{"processors": processors}]}))'
}

# run_tests PRESETS ARGUMENT...: runs the tests of these presets' build folders that the arguments of ctest choose, and prints
# what failed and the counts. Fails when anything did or when nothing ran.
run_tests() {
    local status=0 folders=$build_dir/${flavour}tests report=$results_dir/ctest.xml preset
    local -a built=()
    for preset in $1; do
        built+=("$build_dir/$flavour$preset")
    done
    shift
    rm -rf -- "$results_dir"
    mkdir -p -- "$results_dir" "$folders"
    printf 'subdirs(%s)\n' "${built[*]}" >"$folders/CTestTestfile.cmake"
    list_processors >"$folders/processors.json"
    run_child ctest --test-dir "$folders" --parallel "$((3 * $(nproc)))" "$@" --timeout "$test_limit" --no-tests=ignore \
        --resource-spec-file "$folders/processors.json" --output-on-failure --output-junit "$report" \
        --test-output-size-failed 1000000 || status=$?
    [[ -s $report ]] || fail "ctest ended with exit code $status and without a report"
    python3 "$repo/scripts/lib/count.py" "$report" || return 1
    return "$status"
}
