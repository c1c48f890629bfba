#!/usr/bin/env bash
# shellcheck disable=SC2154,SC2317 # other files' variables; promises call functions by name
# The page of morvix-kit report, in a real browser without a network and on paper.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"
# shellcheck source=../planner/lib/exports.sh
source "$tests/../planner/lib/exports.sh"

program=${MORVIX_KIT:-$host_build/planner/morvix-kit}
axe=$build_dir/page-checks/node_modules/axe-core/axe.min.js
[[ -x $program ]] || fail "there is no $program: run scripts/build host first"
[[ -s $axe ]] || fail "there is no $axe: run scripts/setup first"
export ASAN_OPTIONS=detect_leaks=0
unset SOURCE_DATE_EPOCH
work=$build_dir/pages-test
rm -rf -- "$work"
mkdir -p -- "$work"
cd -- "$work"

# report FILE ARGUMENT...: the page of that name; exit code 3 because of the machines that cannot be read is fine.
report() {
    local page=$1 status=0
    shift
    run_limited 300 "$program" report "$@" -o "$page" --quiet >report.out 2>report.err </dev/null || status=$?
    [[ $status == 0 || $status == 3 ]] || { cat report.err; return 1; }
    [[ -s $page && ! -s report.out ]]
}

# hostile_kit FOLDER NAME: the sample kit with one INF whose texts are the name.
hostile_kit() {
    cp -r -- "$repo/kit" "$1"
    NAME=$2 perl -pi -e 's/^(NGEA1A2B\.\S+\s*=\s*).*/$1"$ENV{NAME}"/; s/^(DriverVer\s*=).*/$1 $ENV{NAME}/' \
        "$1/Drv/Win8x64/ngea63x64.inf"
}

cp -r -- "$repo/kit" kit
cp -r -- kit new
rm -- new/Drv/Win7x64/ngea62x64.inf
python3 "$repo/scripts/lib/sample_fleet.py" fleet 240
report fleet.html new fleet --old kit || fail "there is no page"
run_limited 300 "$program" plan new fleet --ndjson --quiet >plans.ndjson 2>/dev/null </dev/null || true
# Everybody with an adapter but no driver for it.
jq -r '.machines[] | select(any(.devices[]; .match == null)) | .name' plans.ndjson >bad.txt

markup='<img src=x onerror=owned=1><!--</script><script>owned=1</script>'
hostile_kit hostile "$markup"$'\x27 \xe2\x80\xae\xe2\x80\xa8\xff'
hostile_kit plain plain
mkdir -p -- hostile-fleet plain-fleet
write_export hostile-fleet/$'=cmd|\x27 "onerror=owned()" \xe2\x80\xae\x1b.reg' 6.2 WinNT "$gigabit_card" 'VEN_5D1A&DEV_10<script>owned=1&REV_01'
write_export plain-fleet/plain.reg 6.2 WinNT "$gigabit_card" 'VEN_5D1A&DEV_10plain&REV_01'
report hostile.html hostile hostile-fleet || fail "there is no page"
report plain.html plain plain-fleet || fail "there is no page"

run_limited 900 python3 "$tests/lib/fleet_page.py" "$work" "$axe" results || fail "the pages were not looked at"

# kept NAME: what the browser saw is as it was promised.
kept() { grep -qx "$1" results || { grep "^$1:" results || printf 'nothing about %s\n' "$1"; return 1; }; }

promise "the fleet page opens without a network, a request or a complaint, in light, in dark and on a narrow screen" kept opens_quietly
promise "machines that lose or lack a driver come first, and every machine is there once" kept trouble_comes_first
promise "groups are sorted by keyboard, and the headings say how" kept sorts_by_keyboard
promise "machines are filtered by keyboard, and the number of those left is said" kept filters_by_keyboard
promise "states are shown and hidden by keyboard" kept states_are_chosen_by_keyboard
promise "an adapter leads to the way in which its driver is found" kept adapters_lead_to_their_way
promise "the saved values are those of the plan, device by device" kept saves_values
promise "no saved value is a formula for a spreadsheet" kept values_are_no_formulas
promise "hostile names of machines, devices and drivers make no element, no request and no script" kept names_are_no_markup
promise "without its script the page has all of its content and nothing that does nothing" kept reads_without_script
promise "paper has every machine and the way of every device" kept prints_everything
promise "paper has every machine without the script too" kept prints_without_script
promise "paper has what is filtered, and says that it is a part" kept prints_what_is_filtered
promise "an accessibility checker finds nothing in light, in dark and on a narrow screen" kept serves_everybody

same_bytes() {
    report again.html new fleet --old kit && cmp fleet.html again.html
}
promise "the same input makes the same page" same_bytes
tells_its_time() { ! grep -q UTC fleet.html && SOURCE_DATE_EPOCH=1353542400 report dated.html kit fleet && grep -q '2012-11-22 00:00 UTC' dated.html; }
promise "the page tells a time only when SOURCE_DATE_EPOCH gives one" tells_its_time
end_promises
