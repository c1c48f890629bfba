#!/usr/bin/env bash
# shellcheck disable=SC2154,SC2317 # other files' variables; promises call functions by name
# The stories of docs/PLANNING.md and the example of the first page: their commands run, end and print as shown.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")/..
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/documents.sh
source "$tests/../scripts/lib/documents.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../scripts/lib/promises.sh"
# shellcheck source=../planner/lib/exports.sh
source "$tests/planner/lib/exports.sh"

program=${MORVIX_KIT:-$host_build/planner/morvix-kit}
[[ -x $program ]] || fail "there is no $program: run scripts/build host first"
export ASAN_OPTIONS=detect_leaks=0
work=$build_dir/docs/planning-work

# A folder as the stories expect it.
prepare() {
    rm -rf -- "$work"
    mkdir -p -- "$work/bin" "$work/fleet"
    ln -s -- "$program" "$work/bin/morvix-kit"
    cp -r -- "$repo/kit" "$work/kit"
    write_export "$work/PC7.reg" 6.2 WinNT "$gigabit_card" "$other_card"
    write_export "$work/fleet/LAB-3.reg" 5.2 WinNT "$gigabit_card"
    write_export "$work/fleet/OFFICE-1.reg" 6.1 WinNT "$gigabit_card"
    write_export "$work/fleet/SERVER-2.reg" 6.2 ServerNT "$gigabit_card" 'VEN_5D1A&DEV_1FFF&SUBSYS_00015D1A&REV_01'
}

# run_block FILE: leaves the output in FILE.output and the exit code of the last command in block_status.
run_block() {
    block_status=0
    (cd -- "$work" && PATH=$work/bin:$PATH run_limited 120 bash -e "$1") >"$1.output" 2>"$1.errors" </dev/null || block_status=$?
}

# try_document FILE
try_document() {
    local name number line language words ran='' wanted
    name=$(basename -- "$1")
    blocks=$build_dir/docs/planning-${name%.md}
    prepare
    extract_blocks "$1" "$blocks"
    while IFS=$'\t' read -r number line language words; do
        case "$language $words" in
            'sh planning'*)
                wanted=$(word "$words" status)
                run_block "$blocks/$number"
                ran=$blocks/$number.output
                promise "$name:$line: the commands end with ${wanted:-0} and complain of nothing" \
                    test "$block_status" -eq "${wanted:-0}" -a ! -s "$blocks/$number.errors"
                tried=$((tried + 1))
                ;;
            'text output')
                if [[ -n $ran ]]; then
                    promise "$name:$line: the commands above print this" diff "$blocks/$number" "$ran"
                    ran=''
                fi
                ;;
        esac
    done <"$blocks/index"
}

tried=0
try_document "$repo/docs/PLANNING.md"
try_document "$repo/README.md"
promise "the stories have their commands" test "$tried" -ge 7
end_promises
