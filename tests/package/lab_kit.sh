#!/usr/bin/env bash
# Test-signed kits for a lab: scripts/lab-kit makes of the sample kit one for another card, with signed catalogs that list every
# file; the kit is as sound as the sample, and the program installs its driver for that card.
# shellcheck disable=SC2030,SC2031,SC2034,SC2154,SC2317 # kits are made in shells of their own; promises call functions by name
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"
# shellcheck source=../../scripts/lib/signing.sh
source "$lib/signing.sh"
# shellcheck source=../../scripts/lib/lab_kit.sh
source "$lib/lab_kit.sh"
# shellcheck source=../planner/lib/exports.sh
source "$repo/tests/planner/lib/exports.sh"

program=$host_build/planner/morvix-kit
[[ -x $program ]] || fail "there is no $program: run scripts/build host first"
card='VEN_5D1A&DEV_7E57&SUBSYS_00075D1A&REV_07'

# lab_kit NAME [HARDWARE-ID]: makes a kit as the command does, from what is built.
lab_kit() (
    own_cleanups
    [[ -z ${2:-} ]] || read_card_ids "$2"
    make_lab_kit "$dist" "$work/$1"
)

# Of the INF files, nothing but the card's lines is new; all other files but the catalogs are the sample's.
differs_in_ids_only() {
    local changes
    changes=$(diff -r -x '*.cat' -x '*.msi' -- "$dist" "$work/kit-of-card/kit" | grep '^[<>O]' | tr -d '\r' |
        sed -E 's/^([<>]) %NGEA1A2B\.(Rev01|Server)?\.?DeviceDesc% = NGEA\.ndi, PCI\\/\1 /' | sort | uniq -c | sed 's/^ *[0-9]* //')
    same "$changes" "$(printf '%s\n' '< VEN_5D1A&DEV_1A2B' '< VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A' '< VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01' \
        '> VEN_5D1A&DEV_7E57' '> VEN_5D1A&DEV_7E57&SUBSYS_00075D1A' '> VEN_5D1A&DEV_7E57&SUBSYS_00075D1A&REV_07')"
}

# lists_only HARDWARE-ID LISTED...: the gigabit INF file for Windows 8 of the kit for this ID lists these, in its two sections.
lists_only() {
    rm -rf -- "$work/kit-of-part"
    lab_kit kit-of-part "$1"
    same "$(sed -n 's/.*, PCI\\\([^ \r]*\)\r*$/\1/p' "$work/kit-of-part/kit/Drv/Win8x64/ngea63x64.inf" | sort -u | paste -sd ' ')" "${*:2}"
}

# Every INF file has a catalog of its own, and every file of a package is in it by the hash of a reader of its own.
catalogs_list_everything() {
    local inf catalog driver hash listed infs=0
    for inf in "$work"/kit-of-card/kit/Drv/*/*.inf; do
        infs=$((infs + 1)) catalog=${inf%.inf}.cat
        grep -q "^CatalogFile = $(basename -- "$catalog")"$'\r$' "$inf" || { say "  $inf names another catalog"; return 1; }
        hash=$(sha256sum <"$inf")
        listed=$(openssl asn1parse -inform DER -in "$catalog" | sed -n 's/.*OCTET STRING *\[HEX DUMP\]://p')
        grep -qix "${hash%% *}" <<<"$listed" || { say "  $inf is not listed"; return 1; }
        driver=${inf%/*}/$(sed -n 's/^ServiceBinary = %12%\\\([a-z0-9.]*\).*/\1/p' "$inf")
        run_limited 60 osslsigncode verify -catalog "$catalog" -CAfile "$work/lab.pem" -in "$driver" >"$work/verify.log" 2>&1 ||
            { say "  $driver is not listed, or its catalog is not signed"; return 1; }
    done
    ((infs == 20))
}

names_systems() {
    local text
    text=$(tr -d '\0' <"$work/kit-of-card/kit/Drv/Win8x64/ngea63x64.cat" | LC_ALL=C grep -aoE 'OSAttr.*2:[0-9.:,]+')
    [[ $text == *2:5.2,2:6.0,2:6.1,2:6.2,2:6.3,2:10.0 ]]
}

# A driver or an INF file that is changed afterwards is not what its catalog lists.
changes_are_found() {
    local file
    for file in ngea63x64.inf ngea.sys; do
        rm -rf -- "$work/changed"
        cp -a -- "$work/kit-of-card/kit" "$work/changed"
        printf 'x' >>"$work/changed/Drv/Win8x64/$file"
        ! run_limited 60 python3 "$repo/scripts/lib/kit_catalogs.py" check "$work/changed" >"$work/refusal" 2>&1 &&
            grep -qF "ngea63x64.cat does not list $file as it is" "$work/refusal" || return 1
    done
    ! run_limited 60 osslsigncode verify -catalog "$work/changed/Drv/Win8x64/ngea63x64.cat" -CAfile "$work/lab.pem" \
        -in "$work/changed/Drv/Win8x64/ngea.sys" >"$work/verify.log" 2>&1
}

# What the certificate is for: code signing alone, by nobody but the one who has thrown its key away.
certificate_is_narrow() {
    local text
    text=$(openssl x509 -in "$work/lab.pem" -noout -text)
    [[ $text == *'CA:FALSE'* && $text == *'Code Signing'* && $(grep -A 1 'Extended Key Usage' <<<"$text" | tail -n 1 | tr -d ' ') == CodeSigning ]]
}
key_is_gone() {
    [[ $(cd -- "$work/kit-of-card" && echo *) == 'kit lab.cer' ]] && ! grep -rlE 'PRIVATE KEY' "$work/kit-of-card" &&
        [[ -z $(find "$work" -name '*.p12' -o -name '*.key') ]]
}
each_kit_has_its_own() { ! cmp -s -- "$work/kit-of-card/lab.cer" "$work/kit-of-samples/lab.cer"; }

is_sound() {
    if ! run_limited 60 "$program" check "$1" --fail-on note >"$work/check.txt" 2>&1 ||
        ! grep -q '^0 errors, 0 warnings, 0 notes' "$work/check.txt"; then
        cat -- "$work/check.txt"
        return 1
    fi
}

plan_finds_it() {
    write_export "$work/lab.reg" 6.2 WinNT "$card"
    run_limited 60 "$program" plan "$work/$1/kit" "$work/lab.reg" --json >"$work/plan.json" 2>"$work/plan.log" || return 1
    same "$(jq -r '.machines[].devices[] | "\(.match.inf // "none") \(.match.pass // 0)"' "$work/plan.json")" "$2"
}

# refuses TEXT ARGUMENT...: the command says why, before it builds anything.
refuses() {
    if run_limited 60 "$repo/scripts/lab-kit" "${@:2}" >"$work/refusal" 2>&1 || ! grep -qF -- "$1" "$work/refusal" ||
        grep -q '^building' "$work/refusal"; then
        cat -- "$work/refusal"
        return 1
    fi
}

installs_its_driver() {
    local instance="HKLM\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\$card\\3&11583659&0&C8" service
    run_limited 120 wine "$work/kit-of-card/kit/Morvix.exe" /s /nr || { say "  exit code $?"; return 1; }
    service=$(registry_text "$instance" Service)
    [[ $service == NGEA && -n $(registry_text "$instance" Driver) ]] && recorded Install SUCCESS && recorded TAVG_PCIE_Install SUCCESS
}

start_machine lab-kit
export ASAN_OPTIONS=detect_leaks=0
lab_kit kit-of-card "$card"
lab_kit kit-of-samples
openssl x509 -inform DER -in "$work/kit-of-card/lab.cer" -out "$work/lab.pem"
promise "the kit of another card differs from the sample kit in its IDs and its catalogs only" differs_in_ids_only
promise "a card without subsystem and revision is listed by its device alone" \
    lists_only 'pci\ven_5d1a&dev_7e57' 'VEN_5D1A&DEV_7E57'
promise "a card without revision is listed by its subsystem and its device" \
    lists_only 'VEN_5D1A&DEV_7E57&SUBSYS_00075D1A' 'VEN_5D1A&DEV_7E57' 'VEN_5D1A&DEV_7E57&SUBSYS_00075D1A'
promise "each INF file has a signed catalog, which lists it and its driver" catalogs_list_everything
promise "the catalogs name the systems from Windows XP x64 to Windows 10 and later" names_systems
promise "a kit that is changed after it was signed is found out" changes_are_found
promise "the certificate of a lab is for signing code and for nothing else" certificate_is_narrow
promise "the key of a lab's kit is thrown away" key_is_gone
promise "each kit of a lab has a certificate of its own" each_kit_has_its_own
promise "a lab's kit has no findings" is_sound "$work/kit-of-card/kit"
promise "the sample kit has no findings, as it is shipped" is_sound "$dist"
promise "the plan for a machine with the card finds its INF file" plan_finds_it kit-of-card 'Drv/Win8x64/ngea63x64.inf 1'
promise "the plan for that machine finds nothing in a kit with the sample's IDs" plan_finds_it kit-of-samples 'none 0'

plug_in "$card"
promise "the program installs the driver of a lab's kit for the card" installs_its_driver

promise "a card of another vendor is refused, with what to do" refuses 'let the hypervisor give the card vendor 5D1A' --ids 'VEN_1234&DEV_11E9' -o "$work/none"
for ids in VEN_5D1A DEV_7E57 'VEN_5D1A&DEV_7E5' 'VEN_5D1A&DEV_7E57&REV_07' 'VEN_5D1A&DEV_7E57&SUBSYS_5D1A' 'VEN_5D1A&DEV_7E57 ' 'USB\VEN_5D1A&DEV_7E57'; do
    promise "an ID that Windows would not write is refused: $ids" refuses 'is not a hardware ID such as' --ids "$ids" -o "$work/none"
done
promise "a device that the kit lists already is refused" refuses 'in nxga' --ids 'VEN_5D1A&DEV_1B3C' -o "$work/none"
promise "a folder that is there is not written to" refuses 'is there already' -o "$work/kit-of-card"
promise "a call without a folder is refused" refuses 'usage:' --ids "$card"
promise "an unknown option of scripts/lab-kit is refused" refuses 'usage:' --card "$card"
promise "after a refusal there is no kit" test ! -e "$work/none"
end_promises
