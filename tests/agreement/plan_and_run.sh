#!/usr/bin/env bash
# shellcheck disable=SC2317 # promises call functions by name
# plan_and_run.sh [SEED [CASE]]
# A plan of morvix-kit is what a run does: random kits on random machines, each run by the shipped program in a Windows and
# planned from an export of the same registry. 200 cases, 2000 when MORVIX_FULL_MATRIX is set; CASE alone repeats one. The
# cases stay in build/agreement/.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/wine.sh
source "$tests/../../scripts/lib/wine.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"

seed=${1:-1}
first=${2:-0}
count=200
[[ -z ${MORVIX_FULL_MATRIX:-} ]] || count=2000
[[ $# -lt 2 ]] || count=1
program=${MORVIX_KIT:-$host_build/planner/morvix-kit}
[[ -x $program ]] || fail "there is no $program: run scripts/build host first"
[[ -f $dist/Morvix.exe ]] || fail "there is no $dist/Morvix.exe: run scripts/build windows first"
work=$build_dir/agreement
cases=$work/cases
export ASAN_OPTIONS=detect_leaks=0
share_build_folder

run_cases() {
    (
        own_cleanups
        new_prefix agreement
        go_without_display
        keep_server
        run_limited 7200 wine "$windows_build/tests/agreement/agreement_runs.exe" "$(windows_path "$cases")" \
            "$(windows_path "$windows_build/planner/morvix-kit.exe")" 2>"$work/runs.log" || { cat -- "$work/runs.log"; exit 1; }
    )
}

# happens KIND [TIMES]: so many cases were of this kind.
happens() {
    awk -F '\t' -v kind="$1" -v times="${2:-1}" '$1 == kind { found = $2 } END { exit !(found >= times) }' "$work/counts" ||
        { printf '# not often enough: %s\n' "$1"; return 1; }
}

every_kind_happens() {
    local kind
    local -a rare=(fault "no INF for a device" "DMA engine" "UTF-16 INF" "long section" "section without lines" "no driver family"
        "result value" "several devices installed" "several files stored" "a file met again is not stored again" "planned live"
        "passed over: "{excluded,other-signature,other-brand,not-listed} "rejected: "{no-instance,no-compatible-ids,other-device}
        "system "{WinXP32,WinXP32E,WinSrv2K332E,WinVista32E,WinSrv2K832E,Win732E,WinSrv2K8R232E,Win832E,"without section"})
    for kind in "${rare[@]}"; do happens "$kind" || return 1; done
    for kind in 1 2 3 4; do happens "match in pass $kind" 5 || return 1; done
}

printf '# seed %s, cases %d to %d\n' "$seed" "$first" "$((first + count - 1))"
rm -rf -- "$work"
mkdir -p -- "$cases"
run_limited 300 python3 "$tests/cases.py" "$cases" "$seed" "$first" "$count" "$dist" "$windows_build/tests/doubles/NetInst.dll"
promise "the shipped program runs on every kit" run_cases
promise "trace of the device pass, driver store, installs and results of $count runs are those of their plans" \
    run_limited 3600 python3 "$tests/compare.py" "$cases" "$program" "$seed"
sed 's/^/# /' "$work/counts"
if [[ $# -lt 2 ]]; then
    promise "every kind of match, refusal and system is among them" every_kind_happens
    promise "a run that strays from its plan is noticed" run_limited 120 python3 "$tests/compare.py" "$cases" "$program" --changed
fi
end_promises
