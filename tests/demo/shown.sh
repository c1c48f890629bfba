#!/usr/bin/env bash
# shellcheck disable=SC2154,SC2317 # promises call functions by name
# The demonstration, as the first page promises it: three adapters, the plan, three drivers, the result keys, the pictures.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"
# shellcheck source=../../scripts/lib/agreement.sh
source "$tests/../../scripts/lib/agreement.sh"

log=$build_dir/docs/demo.log
mkdir -p -- "$build_dir/docs"

printed() { grep -q -- "$1" "$log"; }
printed_times() { [[ $(grep -c -- "$2" "$log") == "$1" ]]; }
not_empty() { [[ -s $1 ]]; }

device='VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01'
kit='Z:\Kit'
plan=$build_dir/demo/plan.json
planned_first() { [[ $(grep -nm 1 '^    driver  *Drv/' "$log" | cut -d: -f1) -lt $(grep -nm 1 '^running Morvix.exe' "$log" | cut -d: -f1) ]]; }

# differs CHANGE: with this change of the plan, the run is another one.
differs() {
    local inf pass
    IFS='|' read -r inf pass _ <<<"$(from_plan "$plan" "$device")"
    inf="$kit\\${inf//\//\\}"
    jq "$1" "$plan" >"$build_dir/docs/other-plan.json"
    agrees_with_plan "$plan" "$device" "$kit" "$inf" "$pass" || return 1
    ! agrees_with_plan "$build_dir/docs/other-plan.json" "$device" "$kit" "$inf" "$pass" >/dev/null
}
any_difference_counts() {
    differs '.machines[0].devices[0].match.pass = 3' && differs '.machines[0].devices[0].match.inf = "Drv/Win7x64/other.inf"' &&
        differs '.machines[0].devices[0].match = null' && differs 'del(.machines[0].devices[0])' &&
        mapfile -t planned < <(jq -r '.machines[0].devices[].key' "$plan") && plans_only "$plan" "${planned[@]}" &&
        ! plans_only "$plan" "${planned[@]:1}"
}

demonstrate() { run_limited 2000 "$repo/scripts/demo" >"$log" 2>&1; }

promise "scripts/demo succeeds" demonstrate
promise "scripts/demo shows three adapters, each with a driver and its version" printed_times 3 '^  driver .*\.sys version [0-9]'
promise "scripts/demo prints the plan before it installs" planned_first
promise "scripts/demo says for each adapter that plan and run agreed" printed_times 3 '^  plan  *agreed: '
promise "scripts/demo says that plan and run agreed" printed '^plan and run agreed on all 3 devices'
promise "the comparison notices another INF, another pass, a missing driver and a missing device" any_difference_counts
promise "scripts/demo shows the result keys" printed 'Install *REG_EXPAND_SZ *SUCCESS'
promise "scripts/demo leaves the trace" not_empty "$build_dir/demo/trace.txt"
promise "scripts/demo leaves pictures of the dialog" not_empty "$build_dir/demo/2-done.png"
end_promises
