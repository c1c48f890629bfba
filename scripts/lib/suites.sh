# shellcheck shell=bash
# Runs test programs, each started once, and records what they report. Sourced after common.sh, wine.sh and results.sh.
# shellcheck disable=SC2154

# wanted UNIT: whether the run was asked for this unit.
wanted() { [[ $1 =~ $only ]]; }

# The names of the tests that a build folder knows; a program without registration is a leftover.
registered_tests() { ctest --test-dir "$build_dir/$flavour$1" --show-only | sed -n 's/^ *Test *#[0-9]*: //p'; }

# run_program UNIT SECONDS REPORT COMMAND...: runs a GoogleTest program that writes REPORT. Answers 124 when it was
# stopped for taking too long.
run_program() {
    local unit=$1 limit=$2 report=$3 status=0 started=$SECONDS log=$results_dir/$1.log
    shift 3
    run_limited "$limit" "$@" >"$log" 2>&1 || status=$?
    if ((status == 124 || status == 137)); then
        record failed "$unit" "stopped after $limit seconds$(last_case "$log") (see $log)"
    elif [[ ! -s $report ]]; then
        record failed "$unit" "ended with exit code $status and without a report$(last_case "$log") (see $log)"
    else
        record_report "$unit" "$report"
        if ! grep -q "	$unit	" "$results"; then
            record failed "$unit" "reports no test at all (see $log)"
        elif ((status != 0)) && ! grep -q "^failed	$unit	" "$results"; then
            record failed "$unit" "every case passed, yet the exit code is $status (see $log)"
        fi
    fi
    report_unit "$unit" "$((SECONDS - started))"
    return "$status"
}

# The case that was running when a program stopped.
last_case() {
    local line
    line=$(grep -a '^\[ RUN ' "$1" | tail -n 1 | tr -d '\r')
    [[ -z $line ]] || printf ' in %s' "${line##* }"
}

run_pure_suites() {
    local test report others=$results_dir/host-other.xml status=0
    for test in $(registered_tests host); do
        if [[ $test == pure_* ]] && wanted "$test"; then
            report=$results_dir/$test.xml
            run_program "$test" 1500 "$report" "$host_build/tests/$test" "--gtest_output=xml:$report" || true
        fi
    done
    # What is no GoogleTest program counts one test each.
    if registered_tests host | grep -qv '^pure_' && wanted host-other; then
        run_program host-other 3000 "$others" ctest --test-dir "$host_build" --exclude-regex '^pure_' --no-tests=error \
            --timeout 1500 --output-on-failure --output-junit "$others" || true
    fi
}

# Each fuzz target with a fixed number of runs from a fixed start; scripts/fuzz lets them search for longer.
run_fuzz_targets() {
    local report=$results_dir/fuzz.xml
    wanted fuzz || return 0
    run_program fuzz 1500 "$report" ctest --test-dir "$build_dir/fuzz" --no-tests=error --timeout 600 --output-on-failure \
        --output-junit "$report" || true
}

# run_windows_program UNIT SECONDS PROGRAM: a GoogleTest program in the prefix in use.
run_windows_program() {
    local report=$results_dir/$1.xml status=0
    run_program "$1" "$2" "$report" wine "$3" "--gtest_output=xml:$(windows_path "$report")" || status=$?
    if ((status == 124 || status == 137)); then
        # What the stopped program has left running must not disturb the next one.
        stop_prefix "${WINEPREFIX##*/}"
        keep_server
    fi
}

# The suites that change the machine-wide registry, one after the other in one Windows.
run_windows_suites() {
    local test
    local -a tests=()
    for test in $(registered_tests windows); do
        if [[ $test == windows_* ]] && wanted "$test"; then
            tests+=("$test")
        fi
    done
    ((${#tests[@]} > 0)) || return 0
    start_display
    new_prefix test-suites
    keep_server
    for test in "${tests[@]}"; do
        run_windows_program "$test" 2000 "$windows_build/tests/$test.exe"
    done
}

# Runs of the shippable folder, in a Windows of their own.
run_end_to_end() {
    local program unit limit=4500
    local -a programs=()
    [[ -z ${MORVIX_FULL_MATRIX:-} ]] || limit=7200
    for program in "$windows_build"/tests/e2e/morvix_e2e*.exe; do
        unit=$(basename -- "$program" .exe)
        if wanted "$unit"; then
            programs+=("$program")
        fi
    done
    ((${#programs[@]} > 0)) || return 0
    start_display
    new_prefix test-e2e
    keep_server
    MORVIX_DIST=$(windows_path "$dist")
    MORVIX_DOUBLES=$(windows_path "$windows_build/tests/doubles")
    export MORVIX_DIST MORVIX_DOUBLES
    for program in "${programs[@]}"; do
        unit=$(basename -- "$program" .exe)
        if [[ ! -f $program ]]; then
            record failed "$unit" "there is no such program"
            continue
        fi
        run_windows_program "$unit" "$limit" "$program"
    done
}

# A Windows for runs with failing platform calls. Nobody looks at their windows, and without a display driver each costs a
# third.
prepare_faults() {
    new_prefix test-faults
    unset DISPLAY
    run_limited 60 wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /t REG_SZ /d null /f >/dev/null 2>&1 ||
        fail "the Windows for failing calls cannot be set up"
    keep_server
    MORVIX_DIST=$(windows_path "$dist")
    MORVIX_DOUBLES=$(windows_path "$windows_build/tests/doubles")
    export MORVIX_DIST MORVIX_DOUBLES
    faults_program=$windows_build/tests/faults/morvix_faults.exe
}

run_faults() {
    wanted morvix_faults || return 0
    prepare_faults
    run_windows_program morvix_faults 4500 "$faults_program"
}

# run_scripts KIND: the scripts in tests/<KIND>/. They print "ok - promise" or "not ok - promise" and bring what they need,
# such as a Windows of their own.
run_scripts() {
    local script unit log status started
    for script in "$repo/tests/$1"/*.sh; do
        unit=$1_$(basename -- "$script" .sh)
        wanted "$unit" || continue
        log=$results_dir/$unit.log
        status=0
        started=$SECONDS
        run_limited 5400 "$script" >"$log" 2>&1 || status=$?
        awk -v unit="$unit" '
            sub(/^ok - /, "") { printf "passed\t%s\t%s\n", unit, $0 }
            sub(/^not ok - /, "") { printf "failed\t%s\t%s\n", unit, $0 }
        ' "$log" >>"$results"
        if ! grep -q "	$unit	" "$results" || { ((status != 0)) && ! grep -q "^failed	$unit	" "$results"; }; then
            record failed "$unit" "ended with exit code $status (see $log)"
        fi
        report_unit "$unit" "$((SECONDS - started))"
    done
}

run_restarts() { run_scripts restart; }

run_packages() { run_scripts package; }

# What the documents say, and what drives many machines.
run_documents() { run_scripts docs; }

run_fleet() { run_scripts fleet; }

# morvix-kit on this machine.
run_planner() { run_scripts planner; }
