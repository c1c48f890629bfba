# shellcheck shell=bash
# Checks of the sources. Each check counts as one test. Sourced after common.sh, results.sh, suites.sh and tidy.sh.
# shellcheck disable=SC2154

# Every file of the tree that is not a build result, null-separated; arguments are further conditions for find.
tree_files() { find "$repo" -path "$repo/build" -prune -o -path "$repo/.git" -prune -o -type f "$@" -print0; }

# check UNIT COMMAND...: one check; its output is shown when it fails.
check() {
    local unit=$1 log=$results_dir/$1.log status=0 started=$SECONDS
    shift
    wanted "$unit" || return 0
    "$@" >"$log" 2>&1 || status=$?
    if ((status == 0)); then
        record passed "$unit" "$unit"
    else
        cat -- "$log"
        record failed "$unit" "see $log"
    fi
    report_unit "$unit" "$((SECONDS - started))"
}

check_format() {
    local list=$results_dir/format.files
    tree_files \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) >"$list"
    [[ -s $list ]] || { say "no source files found"; return 1; }
    run_limited 300 xargs -0 -a "$list" clang-format --dry-run -Werror
}

check_scripts() {
    local list=$results_dir/shellcheck.files
    { find "$repo/scripts" "$repo/.ci" -maxdepth 1 -type f -print0; tree_files -name '*.sh'; } >"$list"
    run_limited 300 xargs -0 -a "$list" shellcheck --external-sources --source-path=SCRIPTDIR
}

# The product and the stand-ins of its tests, in one go: some findings need all files.
check_cppcheck() {
    local -a folders=(Common/Src Common/Src/settings config devices installer installer/base netinst platform resources)
    local -a arguments=("--std=c++20" --platform=win64 -D_WIN32 -D_WIN64
        "--enable=warning,style,performance,portability" --error-exitcode=1 --quiet --inline-suppr -j "$(nproc)"
        "--suppressions-list=$repo/scripts/lib/cppcheck.txt" "--cppcheck-build-dir=$build_dir/cppcheck")
    mkdir -p -- "$build_dir/cppcheck"
    run_limited 300 cppcheck "${arguments[@]}" "${folders[@]/#/-I}" -Ipackaging/actions -Itests/support -Itests/doubles \
        Common config devices installer netinst packaging platform tools tests/support tests/doubles
}

# Every fault of the list that scripts/mutations runs must still fit the sources.
check_mutations() { run_limited 60 python3 "$repo/tests/mutations/mutate.py" check; }

source_checks() {
    check format check_format
    check shellcheck check_scripts
    check cppcheck check_cppcheck
    check mutations check_mutations
    check tidy check_tidy
}
