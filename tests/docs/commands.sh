#!/usr/bin/env bash
# shellcheck disable=SC2016,SC2154,SC2317 # other programs' variables; promises call functions by name
# The commands of the administrator's guides, in their order, in a Windows with one gigabit adapter, and the output that
# is shown with them. What cannot run there is tried as far as it goes.
set -euo pipefail
# shellcheck source=lib/windows.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/windows.sh"

adapter='VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01'
results_key='HKLM\SOFTWARE\Norda\Basedrivers'

# run_block FILE: runs the lines as a batch file; what they print goes into FILE.output, `block_status` is the exit code of
# the last one. What an installation is to write must not stand there already.
run_block() {
    local batch=$WINEPREFIX/drive_c/block.cmd
    if grep -q 'msiexec /i' "$1"; then
        wine reg delete "$results_key" /f >/dev/null 2>&1 || true
    fi
    { printf '@echo off\n'; cat -- "$1"; printf 'exit %%ERRORLEVEL%%\n'; } | sed 's/$/\r/' >"$batch"
    block_status=0
    run_limited 300 wine cmd /c 'C:\block.cmd' >"$1.printed" 2>"$1.errors" || block_status=$?
    tr -d '\r' <"$1.printed" | sed 's/ *$//' | grep -v -e '^$' -e '^\(reg: \)\?The operation completed successfully' >"$1.output" || true
}

# The registry lists values in an order of its own.
same_lines() {
    diff <(sed 's/ *$//' "$1" | grep . | sort) <(sort "$2")
}

# names_are_written FILE: the key and every value that a script reads are those that a run writes. "RebootNeeded" needs a
# reason to restart, which this machine does not have; the program's own source tells its name.
names_are_written() {
    local name
    if grep -q 'Basedrivers' "$1"; then
        grep -qF 'HKLM:\SOFTWARE\Norda\Basedrivers' "$1" || return 1
        while read -r name; do
            grep -qE "^ +$name +REG_" "$written" || grep -qF "\"$name\"" "$repo/installer/base/ResultKeys.cpp" ||
                { printf 'no run writes %s\n' "$name"; return 1; }
        done < <(grep -oE '\$results\.[A-Za-z_]+' "$1" | sed 's/.*\.//' | sort -u)
    else
        # The only other thing that a script asks for is the query that runs as such.
        grep -q "Win32_PnPEntity -Filter \"DeviceID LIKE 'PCI\\\\\\\\VEN_5D1A%'\"" "$1"
    fi
}

# The commands that begin to run a playbook, up to the point where hosts are needed.
playbook_is_found() {
    local copy=$build_dir/docs/ansible
    rm -rf -- "$copy"
    mkdir -p -- "$copy/packaging" "$copy/home"
    cp -a -- "$repo/packaging/ansible" "$copy/packaging/"
    cp -- "$copy/packaging/ansible/hosts.example.yml" "$copy/packaging/ansible/hosts.yml"
    (cd -- "$copy" && HOME=$copy/home LC_ALL=C.UTF-8 ANSIBLE_LOCALHOST_WARNING=0 run_limited 120 bash -euc \
        'ansible-playbook() { command ansible-playbook --syntax-check --list-hosts "$@"; }; source "$1"' _ "$1")
}

# Scripts of this repository: they are there, and what runs them is known.
scripts_are_run() {
    local command
    while read -r command _; do
        case $command in
            scripts/setup | scripts/build | scripts/test) ;; # this run began with them
            scripts/demo) [[ -x $repo/tests/demo/shown.sh ]] ;;
            scripts/drawings) [[ -x $repo/tests/docs/form.sh ]] ;;
            scripts/promises) "$repo/scripts/promises" --check || return 1 ;;
            scripts/fuzz) run_limited 120 "$repo/scripts/fuzz" 1 || return 1 ;;
            # They take longer than a test may.
            scripts/pictures | scripts/package | scripts/coverage | scripts/mutations | scripts/faults | scripts/analyze | \
                scripts/bench) ;;
            *) printf '%s is run by nothing\n' "$command"; return 1 ;;
        esac
        [[ -x $repo/$command ]] || { printf '%s is not there\n' "$command"; return 1; }
    done <"$1"
}

# What the detection rules look for is what a run writes.
detection_rule_finds() {
    grep -qE '^ +Install +REG_EXPAND_SZ +SUCCESS$' "$written" && grep -qE '^ +TAVG_PCIE_Version +REG_SZ +[0-9.]+$' "$written"
}

# query_finds_adapter FILE: the query, asked through the system's own scripting, names the adapter and nothing else.
query_finds_adapter() {
    local script=$WINEPREFIX/drive_c/query.vbs found
    {
        printf 'For Each entity In GetObject("winmgmts:\\\\.\\root\\CIMv2").ExecQuery("%s")\r\n' "$(sed 's/"/""/g' "$1")"
        printf 'WScript.Echo entity.DeviceID\r\nNext\r\n'
    } >"$script"
    found=$(run_limited 60 wine cscript //nologo 'C:\query.vbs' | tr -d '\r')
    [[ $found == "PCI\\$adapter\\"* && $found != *$'\n'* ]] || { printf 'found: %s\n' "$found"; return 1; }
}

# shows_output FOLDER NUMBER: the block behind this one shows what it prints.
shows_output() {
    awk -F '\t' -v number="$2" 'behind { found = $3 == "text" && $4 == "output"; exit } $1 == number { behind = 1 }
        END { exit !found }' "$1/index"
}

# try_document NAME: every block of it, in order.
try_document() {
    local name=$1 blocks=$build_dir/docs/$1 number line language words ran=''
    extract_blocks "$document" "$blocks"
    while IFS=$'\t' read -r number line language words; do
        case "$language $words" in
            'bat run'*)
                run_block "$blocks/$number"
                ran=$blocks/$number.output
                if ! shows_output "$blocks" "$number"; then
                    promise "$name:$line: the commands succeed" test "$block_status" -eq 0
                fi
                ;;
            'text output') promise "$name:$line: the commands above print this" same_lines "$blocks/$number" "$ran" ;;
            'wql run') promise "$name:$line: the query finds the adapter" query_finds_adapter "$blocks/$number" ;;
            'powershell names')
                wine reg query "$results_key" 2>/dev/null | tr -d '\r' >"$written" || true
                promise "$name:$line: names are those that a run writes" names_are_written "$blocks/$number"
                ;;
            'text flow')
                wine reg add "$results_key\\Debug" /f >/dev/null 2>&1
                run_traced "$build_dir/docs/flow.trace" 'C:\Kit\Morvix.exe' /s /nr || true
                promise "$name:$line: the trace of a run holds these lines" holds_in_order "$build_dir/docs/flow.trace" "$blocks/$number"
                ;;
            'sh ansible') promise "$name:$line: Ansible finds the playbook and its hosts" playbook_is_found "$blocks/$number" ;;
            'sh scripts') promise "$name:$line: the scripts are there and run by tests" scripts_are_run "$blocks/$number" ;;
            # tried elsewhere: the fleet test, the kit author's guide
            'text ansible' | 'text trace' | 'text ' | 'ini shown') ;;
            *) promise "$name:$line: a block of \"$language $words\" is tried" false ;;
        esac
    done <"$blocks/index"
}

start_windows docs-commands "$adapter"
written=$build_dir/docs/written
cp -a -- "$build_dir/dist" "$WINEPREFIX/drive_c/Kit"
mkdir -p -- "$WINEPREFIX/drive_c/Deploy"
cp -- "$build_dir"/dist/*.msi "$WINEPREFIX/drive_c/Deploy/" 2>/dev/null || true
# The trace is off until the guide switches it on.
run_limited 60 wine reg delete "$results_key\\Debug" /f >/dev/null 2>&1
for document in "$repo/docs/ADMINISTRATORS.md" "$repo/docs/FLEET.md" "$repo/docs/ARCHITECTURE.md" "$repo/README.md"; do
    try_document "$(basename -- "$document")"
done
promise "FLEET.md: the detection rules find what a run writes" detection_rule_finds
end_promises
