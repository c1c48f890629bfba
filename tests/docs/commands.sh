#!/usr/bin/env bash
# shellcheck disable=SC2016,SC2154,SC2317 # other programs' variables; promises call functions by name
# The commands of the administrator's guides, in their order, in a Windows with one gigabit adapter, and the output that
# is shown with them. What cannot run there is tried as far as it goes.
set -euo pipefail
# shellcheck source=lib/windows.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/windows.sh"
# shellcheck source=../../scripts/lib/msi.sh
source "$repo/scripts/lib/msi.sh"

adapter='VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01'
results_key='HKLM\SOFTWARE\Norda\Basedrivers'

# run_block FILE: runs the lines as a batch file; what they print goes into FILE.output, `block_status` is the exit code of
# the last one. What an installation will write must not exist already.
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

# names_are_written FILE: what a script reads is what a run writes, and it reads the 64-bit view whoever starts it.
# "RebootNeeded" needs a reason to restart, which this machine does not have; the program's own source has its name.
names_are_written() {
    local name
    if grep -q 'Basedrivers' "$1"; then
        grep -qF "OpenBaseKey('LocalMachine', 'Registry64')" "$1" && ! grep -q 'HKLM:' "$1" && grep -qF "'SOFTWARE\Norda\Basedrivers'" "$1" || return 1
        while read -r name; do
            grep -qE "^ +$name +REG_" "$written" || grep -qF "\"$name\"" "$repo/platform/RecordNames.h" ||
                { printf 'no run writes %s\n' "$name"; return 1; }
        done < <(grep -oE "\\\$results\.GetValue\('[A-Za-z_]+'" "$1" | sed "s/.*'\(.*\)'/\1/" | sort -u)
    else
        # The only other thing that a script asks for is the query that runs as such.
        grep -q "Win32_PnPEntity -Filter \"DeviceID LIKE 'PCI\\\\\\\\VEN_5D1A%'\"" "$1"
    fi
}

# A script can end with 0 at one place only, after it has found a success; an error does not.
ends_well_once() {
    [[ $(grep -c 'exit 0' "$1") == 1 ]] && awk '/Install.*-ne .SUCCESS/ { asked = 1 } /exit 0/ { exit !asked }' "$1" &&
        tail -n 1 "$1" | grep -qE '^catch \{.* exit 1 \}$'
}

# The detection script asks for what the table of rules asks for, but for the driver.
asks_for_the_rules() {
    grep -qF "\$product = '{$(product_code "$(product_version)")}'" "$1" && grep -qF "\$version = '$(product_version)'" "$1" &&
        grep -qF 'SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall\$product' "$1" && grep -qF "GetValue('DisplayVersion') -ne \$version" "$1" &&
        grep -qF "GetValue('Install') -ne 'SUCCESS'" "$1"
}

# The rules that detect an installation, from the guide's table: key, value, and what it must be.
rules() { sed -n '/^| asks for | key/,/^$/s/^| [a-z ]* | `\([^`]*\)` | `\([^`]*\)` | \([^|]*\) |$/\1\t\2\t\3/p' "$repo/docs/FLEET.md"; }

registry_value() { run_limited 60 wine reg query "$1" /v "$2" /reg:64 2>/dev/null | tr -d '\r' | sed -n 's/^ *[^ ]* *REG_[A-Z_]* *//p'; }

# Whether every rule holds.
detected() {
    local key value wanted found count=0
    while IFS=$'\t' read -r key value wanted; do
        count=$((count + 1))
        found=$(registry_value "$key" "$value") || true
        case $wanted in
            'at least `'*) [[ -n $found && $(printf '%s\n' "${wanted:10:-1}" "$found" | sort -V | head -n 1) == "${wanted:10:-1}" ]] || return 1 ;;
            *) [[ \`$found\` == "$wanted" ]] || return 1 ;;
        esac
    done < <(rules)
    ((count == 3))
}

not_detected() { ! detected; }

# set_value KEY VALUE TEXT [VIEW]
set_value() { run_limited 60 wine reg add "$1" /v "$2" /d "$3" /f "/reg:${4:-64}" >/dev/null 2>&1; }

# Each state that must not be taken for an installation, and the two that must.
try_detection() {
    local uninstall='HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall' driver
    local -a install=(wine msiexec /i 'C:\Deploy\Morvix.msi' /qn /norestart)
    uninstall+="\\{$(product_code "$(product_version)")}"
    promise "FLEET.md: the rules name the product and the version of the package" \
        same "$(rules | head -n 1)" "$uninstall"$'\tDisplayVersion\t'"\`$(product_version)\`"
    run_limited 120 wine msiexec /x 'C:\Deploy\Morvix.msi' /qn /norestart >/dev/null 2>&1 || true
    run_limited 60 wine reg delete "$results_key" /f >/dev/null 2>&1 || true
    promise "FLEET.md: nothing is detected before the installation" not_detected
    run_limited 120 "${install[@]}" >/dev/null 2>&1 || true
    promise "FLEET.md: an installation is detected" detected
    set_value "$results_key" Install FAILURE
    promise "FLEET.md: a refused driver is not detected" not_detected
    set_value "$results_key" Install SUCCESS
    set_value "$uninstall" DisplayVersion 0.9.0
    promise "FLEET.md: another version is not detected" not_detected
    set_value "$uninstall" DisplayVersion "$(product_version)"
    driver=$(registry_value "$results_key" TAVG_PCIE_Version)
    set_value "$results_key" TAVG_PCIE_Version 9.9.99.0
    promise "FLEET.md: an older driver is not detected" not_detected
    set_value "$results_key" TAVG_PCIE_Version "$driver"
    promise "FLEET.md: restored, the installation is detected again" detected
    run_limited 120 wine msiexec /x 'C:\Deploy\Morvix.msi' /qn /norestart >/dev/null 2>&1 || true
    promise "FLEET.md: a removal leaves the results" same "$(registry_value "$results_key" Install)" SUCCESS
    promise "FLEET.md: after a removal nothing is detected" not_detected
    run_limited 120 "${install[@]}" >/dev/null 2>&1 || true
    run_limited 60 wine reg delete "$results_key" /f >/dev/null 2>&1 || true
    set_value "$results_key" Install SUCCESS 32
    set_value "$results_key" TAVG_PCIE_Version "$driver" 32
    promise "FLEET.md: results in the 32-bit view are not detected" not_detected
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
            scripts/proof-report) [[ -x $repo/tests/proof/bundle.sh ]] ;;
            scripts/drawings) [[ -x $repo/tests/docs/form.sh ]] ;;
            scripts/lab-kit) [[ -x $repo/tests/package/lab_kit.sh ]] ;;
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

# shows_output FOLDER NUMBER: the block after this one shows what it prints.
shows_output() {
    awk -F '\t' -v number="$2" 'after { found = $3 == "text" && $4 == "output"; exit } $1 == number { after = 1 }
        END { exit !found }' "$1/index"
}

# try_document NAME: every block of it, in order.
try_document() {
    local name=$1 blocks=$build_dir/docs/$1 number line language words ran=''
    extract_blocks "$document" "$blocks"
    while IFS=$'\t' read -r number line language words; do
        case "$language $words" in
            # planning.sh tries it, and what is shown with it
            'sh planning'*) ran='' ;;
            'bat run'*)
                run_block "$blocks/$number"
                ran=$blocks/$number.output
                if ! shows_output "$blocks" "$number"; then
                    promise "$name:$line: the commands succeed" test "$block_status" -eq 0
                fi
                ;;
            'text output')
                if [[ -n $ran ]]; then
                    promise "$name:$line: the commands above print this" same_lines "$blocks/$number" "$ran"
                fi
                ;;
            'wql run') promise "$name:$line: the query finds the adapter" query_finds_adapter "$blocks/$number" ;;
            'powershell names'*)
                wine reg query "$results_key" 2>/dev/null | tr -d '\r' >"$written" || true
                promise "$name:$line: names are those that a run writes" names_are_written "$blocks/$number"
                if grep -q 'exit 0' "$blocks/$number"; then
                    promise "$name:$line: only a success ends with 0" ends_well_once "$blocks/$number"
                fi
                if [[ $words == *detects ]]; then
                    promise "$name:$line: the script asks for what the rules ask for" asks_for_the_rules "$blocks/$number"
                fi
                ;;
            'text flow')
                wine reg add "$results_key\\Debug" /f >/dev/null 2>&1
                run_traced "$build_dir/docs/flow.trace" 'C:\Kit\Morvix.exe' /s /nr || true
                promise "$name:$line: the trace of a run holds these lines" holds_in_order "$build_dir/docs/flow.trace" "$blocks/$number"
                ;;
            'sh ansible') promise "$name:$line: Ansible finds the playbook and its hosts" playbook_is_found "$blocks/$number" ;;
            'sh scripts') promise "$name:$line: the scripts are there and run by tests" scripts_are_run "$blocks/$number" ;;
            # tried elsewhere: the fleet test, the kit author's guide, the signed releases
            'text ansible' | 'text verify' | 'text trace' | 'text ' | 'ini shown') ;;
            # tools of Windows that are not here
            'text kit-tool') ;;
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
for document in "$repo/docs/ADMINISTRATORS.md" "$repo/docs/FLEET.md" "$repo/docs/SIGNING.md" "$repo/docs/ARCHITECTURE.md" \
    "$repo/docs/REAL-CARD.md" "$repo/README.md"; do
    try_document "$(basename -- "$document")"
done
try_detection
end_promises
