#!/usr/bin/env bash
# shellcheck disable=SC2154,SC2317 # promises call functions by name
# Every example of the kit author's guide: the program runs on a kit made of the lines shown there. The installer
# library is a stand-in that binds nothing; the search is the program's own.
set -euo pipefail
# shellcheck source=lib/windows.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/windows.sh"

guide=$repo/docs/KIT-AUTHORS.md
blocks=$build_dir/docs/kit-authors
adapter='VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03'

# blocks_of KIT LANGUAGE: number and words of each, separated by a tab.
blocks_of() {
    awk -F '\t' -v kit="kit=$1" -v language="$2" '
        { split($4, words, " ") } $3 == language && words[1] == kit { print $1 "\t" $4 }' "$blocks/index"
}

# The base INF with the sections of a fragment in place of its own.
complete_inf() {
    awk '
        /^\[/ { section = $0 }
        FNR == NR { fragment[section] = fragment[section] $0 "\n"; if (/^\[/) order[++sections] = section; next }
        !(section in fragment) { print }
        END { for (i = 1; i <= sections; ++i) printf "%s\n", fragment[order[i]] }
    ' "$1" "$base_inf"
}

with_windows_line_ends() { sed 's/$/\r/'; }

# lay_down KIT: the kit of an example; what the example does not show is the smallest kit's.
lay_down() {
    local kit=$1 ini number words file
    rm -rf -- "$folder"
    mkdir -p -- "$folder/Setup"
    cp -- "$build_dir"/dist/*.exe "$build_dir"/dist/*.dll "$build_dir/dist/Morvix.din" "$folder/Setup/"
    cp -- "$build_dir/windows/tests/doubles/NetInst.dll" "$folder/Setup/"
    ini=$(blocks_of "$kit" ini | cut -f 1)
    with_windows_line_ends <"$blocks/${ini:-$(blocks_of smallest ini | cut -f 1)}" >"$folder/Setup/Morvix.ini"
    { blocks_of "$kit" inf | grep . || blocks_of smallest inf; } >"$folder/infs"
    while IFS=$'\t' read -r number words; do
        file=$(word "$words" file)
        file=$folder/${file//\\//}
        mkdir -p -- "${file%/*}"
        complete_inf "$blocks/$number" | with_windows_line_ends >"$file"
    done <"$folder/infs"
}

# installs TRACE INF: the adapter was installed from that file, and from nothing else; "none": not at all.
installs() {
    local expected='' actual
    [[ $2 == none ]] || expected="2K/XP install: PCI\\$adapter, C:\\KIT\\${2^^}"
    actual=$(grep '^2K/XP install: ' "$1" || true)
    [[ $actual == "$expected" ]] || { printf 'installed: "%s"\n' "$actual"; return 1; }
}

# Every example that an INI or INF block shows has a trace; a changed name would leave it untried.
every_example_has_a_trace() {
    local kit
    awk -F '\t' '$4 !~ /^kit=[a-z-]+( |$)/ { print "line " $2 " belongs to no kit"; missing = 1 } END { exit missing }' \
        "$blocks/index" || return 1
    for kit in "${kits[@]}"; do
        [[ -n $(blocks_of "$kit" text) ]] || { printf 'no trace: %s\n' "$kit"; return 1; }
    done
}

extract_blocks "$guide" "$blocks"
base_inf=$blocks/$(blocks_of smallest inf | cut -f 1)
mapfile -t kits < <(cut -f 4 "$blocks/index" | sed -n 's/^kit=\([^ ]*\).*/\1/p' | awk '!seen[$0]++')
promise "every example has a kit and a trace" every_example_has_a_trace

start_windows docs-kit "$adapter"
folder=$WINEPREFIX/drive_c/Kit
for kit in "${kits[@]}"; do
    lay_down "$kit"
    trace=$build_dir/docs/$kit.trace
    status=0
    run_traced "$trace" 'C:\Kit\Setup\Morvix.exe' /s /nr || status=$?
    promise "$kit: the run ends with exit code 0" test "$status" -eq 0
    while IFS=$'\t' read -r number words; do
        promise "$kit: the trace holds the lines shown" holds_in_order "$trace" "$blocks/$number"
        promise "$kit: the driver comes from $(word "$words" wins)" installs "$trace" "$(word "$words" wins)"
    done < <(blocks_of "$kit" text)
done
end_promises
