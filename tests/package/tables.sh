#!/usr/bin/env bash
# The tables of the package as build/dist has it, read without running it. The same checks refuse packages that were
# spoilt on purpose.
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"
# shellcheck source=lib/tables.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/tables.sh"

version=$(product_version)

is() { [[ $1 == "$2" ]] || { say "  \"$1\" instead of \"$2\""; return 1; }; }

# The package unpacked is the shippable folder.
unpacked_is_dist() {
    mkdir -p -- "$work/unpacked"
    run_limited 60 msiextract -C "$work/unpacked" "$package" >/dev/null && same_files "$dist" "$work/unpacked/Norda/Morvix"
}

# A file with a version is compared by it, any other by its hash: never by both or neither. The versions are those that
# the resource compiler was given.
versions_and_hashes() {
    missing "$(rows File File)" "$(rows File File Version | awk -F '\t' '$2 != "" { print $1 }'; rows MsiFileHash File_)" |
        complain 'file without version and hash' &&
        LC_ALL=C comm -12 <(rows File File Version | awk -F '\t' '$2 != "" { print $1 }' | LC_ALL=C sort) \
            <(rows MsiFileHash File_ | LC_ALL=C sort) | complain 'file with version and hash' &&
        is "$(version_of 'Morvix.exe')" "$version.0" && is "$(version_of 'MorvixRes.dll')" "$version.0" &&
        is "$(version_of 'NetInst.dll')" "$version.0" &&
        is "$(version_of 'ngea62x64.sys')" 11.4.62.0 && is "$(version_of 'nxga62x64.sys')" 3.2.62.0 &&
        is "$(version_of 'ngea62x64.inf')" '' && is "$(version_of 'Morvix.ini')" ''
}

version_of() { rows File FileName Version | awk -F '\t' -v name="$1" '{ sub(/.*\|/, "", $1) } $1 == name { print $2 }'; }

# Deferred, with the rights of the system, its failure stopping the installation: a library's entry point is 1, that is
# 1024, those are 2048, and 64 and 128 would let it go unheard.
step_kinds() {
    is "$(cell CustomAction Action RunMorvix Type)" 3073 && is "$(cell CustomAction Action RunUninstaller Type)" 3073 &&
        is "$(cell CustomAction Action AskForRestart Type)" 1
}

step_conditions() {
    is "$(condition_of RunMorvix)" 'NOT Installed OR REINSTALL' &&
        is "$(condition_of PrepareRunMorvix)" 'NOT Installed OR REINSTALL' &&
        is "$(condition_of AskForRestart)" 'NOT Installed OR REINSTALL' &&
        is "$(condition_of RunUninstaller)" 'REMOVE~="ALL" AND NOT UPGRADINGPRODUCTCODE'
}

product_properties() {
    is "$(property ProductVersion)" "$version" && is "$(property ProductCode)" "{$(product_code "$version")}" &&
        is "$(property UpgradeCode)" '{ED0FD907-DB1D-468A-B3EE-C525716BD32A}' && is "$(property ALLUSERS)" 1 &&
        is "$(property REINSTALLMODE)" amus && is "$(property STEPTIMELIMIT)" 900
}

# Older versions are found up to this one, newer ones from this one on; only newer ones are left alone (2).
upgrade_rows() {
    is "$(cell Upgrade ActionProperty OLDERFOUND VersionMin) $(cell Upgrade ActionProperty OLDERFOUND VersionMax) $(cell Upgrade ActionProperty OLDERFOUND Attributes)" \
        "0.0.0 $version 256" &&
        is "$(cell Upgrade ActionProperty NEWERFOUND VersionMin) $(cell Upgrade ActionProperty NEWERFOUND VersionMax) $(cell Upgrade ActionProperty NEWERFOUND Attributes)" \
            "$version  2" &&
        is "$(rows Upgrade UpgradeCode | sort -u)" "$(property UpgradeCode)"
}

summary() { run_limited 60 msiinfo suminfo "$1" | sed -n "s/^$2: //p"; }

# The library that travels in the package needs nothing that is not on every system.
library_needs_the_platform_only() {
    x86_64-w64-mingw32-objdump -p "$tables/_Streams/Binary.MorvixActions" | sed -n 's/.*DLL Name: //p' |
        others_than 'kernel32\.dll|advapi32\.dll|msi\.dll|msvcrt\.dll' | complain 'needs'
}

# identifiers PACKAGE: path and identifier of each component.
identifiers() {
    read_tables "$1"
    LC_ALL=C join -t "$(printf '\t')" <(rows Component KeyPath ComponentId | LC_ALL=C sort) \
        <(rows File File FileName | LC_ALL=C sort)
}

# finds CHECK QUERY: the check refuses a copy of the package that was changed so.
finds() {
    cp -- "$package" "$work/spoilt.msi"
    run_limited 60 msibuild "$work/spoilt.msi" -q "$2" >/dev/null 2>&1 || { say "  the copy cannot be spoilt"; return 1; }
    read_tables "$work/spoilt.msi"
    ! "$1" >/dev/null
}

# The list of programs shows an icon, which is one, and the maker; what the publisher has left empty is not there.
shown_in_list() {
    is "$(property ARPPRODUCTICON)" Morvix.ico && cmp -- "$tables/_Streams/Icon.Morvix.ico" "$repo/packaging/Morvix.ico" &&
        [[ $(identify -- "ico:$tables/_Streams/Icon.Morvix.ico" | wc -l) == 3 ]] && is "$(property Manufacturer)" "$(publisher maker)" &&
        is "$(property ARPCONTACT)$(property ARPHELPLINK)$(property ARPURLINFOABOUT)$(property ARPURLUPDATEINFO)" \
            "$(publisher contact)$(publisher support_url)$(publisher product_url)$(publisher update_url)"
}

published() {
    is "$(property ARPCONTACT)" 'Help desk, +00 000' && is "$(property ARPHELPLINK)" https://help.test/morvix &&
        is "$(property ARPURLINFOABOUT)" https://www.test/ && is "$(property ARPURLUPDATEINFO)" https://www.test/new
}

refuses_publisher() { ! (publisher_file=$2 && publisher "$1") >/dev/null 2>&1; }

start_work tables
read_tables "$package"
promise "every cell fits the rule of its column" cells_fit_their_rules
promise "no reference to another table is unresolved" references_resolve
promise "every key path is there" key_paths_resolve
promise "every action and its library entry point is there" actions_resolve
promise "every property that is used is known" properties_resolve
promise "what a caller may set reaches the steps" public_properties_are_passed_on
promise "every component keeps the rules" component_rules
promise "names are unique and have short forms" file_names
promise "every sequence is an order" sequences_are_orders
promise "the cabinet is in the package and holds the files" media_holds_files
promise "the package unpacked is the shippable folder" unpacked_is_dist
promise "every file has a version or a hash" versions_and_hashes
promise "product, upgrade code and version are right" product_properties
promise "older versions are replaced and newer ones left alone" upgrade_rows
promise "the steps run deferred without impersonation, and the wish for a restart does not" step_kinds
promise "the steps run on first installation, upgrade and repair, the uninstaller on removal" step_conditions
promise "an older version goes within the transaction" \
    in_order InstallInitialize RemoveExistingProducts ProcessComponents InstallFiles InstallFinalize
promise "the program runs when its files are there, and the restart is asked for behind the transaction" \
    in_order InstallFiles PrepareRunMorvix RunMorvix InstallFinalize AskForRestart
promise "the uninstaller runs before the files go" in_order InstallInitialize RunUninstaller RemoveFiles InstallFinalize
promise "the folder is remembered before the folders are worked out" \
    in_order AppSearch KeepFolder CostInitialize CostFinalize
promise "a quiet run leaves the restart to its caller" is "$(condition_of LeaveRestartToCaller)" 'UILevel=2 AND NOT REBOOT'
promise "the list of programs shows icon, maker and what the publisher has filled in" shown_in_list
promise "the package is for x64" is "$(summary "$package" Template)" 'x64;1033'
promise "the package is compressed and asks for elevation" is "$(summary "$package" Source)" '2 (2)'
promise "the library of the steps needs the platform only" library_needs_the_platform_only

copy_kit next
printf 'more\r\n' >>"$kit/Morvix.ini"
package_kit "$version"
cp -- "$repo/packaging/publisher.conf" "$work/publisher.conf"
sed -i 's|^contact=.*|contact=Help desk, +00 000|; s|^support_url=.*|support_url=https://help.test/morvix|
    s|^product_url=.*|product_url=https://www.test/|; s|^update_url=.*|update_url=https://www.test/new|' "$work/publisher.conf"
publisher_file=$work/publisher.conf
make_msi "$kit" "$actions" "$work/published.msi"
read_tables "$work/published.msi"
promise "what the publisher has filled in is in the list of programs" published
promise "a package with these has sound tables" tables_are_sound
publisher_file=$repo/packaging/publisher.conf
sed 's|^support_url=.*|support_url=example|' "$publisher_file" >"$work/publisher.bad"
promise "a link that is none is refused" refuses_publisher support_url "$work/publisher.bad"
sed "s|^contact=.*|contact=it's|" "$publisher_file" >"$work/publisher.bad"
promise "a quote in a publisher's text is refused" refuses_publisher contact "$work/publisher.bad"
promise "other content is another package" \
    test "$(summary "$package" 'Revision number (UUID)')" != "$(summary "$kit_package" 'Revision number (UUID)')"
package_kit 99.0.0
identifiers "$package" >"$work/identifiers"
identifiers "$kit_package" >"$work/identifiers.next"
promise "a component keeps its identifier in the next version" \
    test -s "$work/identifiers.next" -a -z "$(LC_ALL=C comm -13 "$work/identifiers" "$work/identifiers.next")"
promise "the next version is another product" is "$(property ProductCode)" "{$(product_code 99.0.0)}"
promise "the next version has sound tables" tables_are_sound

promise "the checks find a column without a rule" \
    finds cells_fit_their_rules "DELETE FROM \`_Validation\` WHERE \`Column\` = 'DefaultDir'"
promise "the checks find a value out of its range" \
    finds cells_fit_their_rules "UPDATE \`Component\` SET \`Attributes\` = 512 WHERE \`Component\` = 'KeptFolder'"
promise "the checks find a value outside its set" \
    finds cells_fit_their_rules "UPDATE \`RemoveFile\` SET \`InstallMode\` = 4"
promise "the checks find an identifier that is none" \
    finds cells_fit_their_rules "UPDATE \`CustomAction\` SET \`Source\` = '1ST' WHERE \`Action\` = 'RecordFolder'"
promise "the checks find an identifier in small letters" \
    finds cells_fit_their_rules "UPDATE \`Component\` SET \`ComponentId\` = '{c60e375d-c9b4-5271-9c15-dbcdc4baedd5}' WHERE \`Component\` = 'KeptFolder'"
promise "the checks find a bracket that is left open" \
    finds cells_fit_their_rules "UPDATE \`CustomAction\` SET \`Target\` = '[KEPTFOLDER' WHERE \`Action\` = 'KeepFolder'"
promise "the checks find a folder without a row" \
    finds references_resolve "DELETE FROM \`Directory\` WHERE \`Directory\` = 'INSTALLDIR'"
promise "the checks find a component without its file" \
    finds key_paths_resolve "UPDATE \`Component\` SET \`KeyPath\` = 'gone' WHERE \`Component\` = 'KeptFolder'"
promise "the checks find an action that is not there" \
    finds actions_resolve "DELETE FROM \`CustomAction\` WHERE \`Action\` = 'AskForRestart'"
promise "the checks find an entry point that is not there" \
    finds actions_resolve "UPDATE \`CustomAction\` SET \`Target\` = 'None' WHERE \`Action\` = 'RunMorvix'"
promise "the checks find a property that nobody sets" \
    finds properties_resolve "UPDATE \`InstallExecuteSequence\` SET \`Condition\` = 'NOBODY' WHERE \`Action\` = 'RunMorvix'"
promise "the checks find a property that is not passed on" \
    finds public_properties_are_passed_on "UPDATE \`Property\` SET \`Value\` = 'INSTALLDIR' WHERE \`Property\` = 'SecureCustomProperties'"
promise "the checks find an identifier used twice" \
    finds component_rules "UPDATE \`Component\` SET \`ComponentId\` = '{C60E375D-C9B4-5271-9C15-DBCDC4BAEDD5}'"
promise "the checks find a name used twice" finds file_names "UPDATE \`File\` SET \`FileName\` = 'same.txt'"
promise "the checks find a number used twice" \
    finds sequences_are_orders "UPDATE \`InstallExecuteSequence\` SET \`Sequence\` = 6700 WHERE \`Action\` = 'RunMorvix'"
promise "the checks find a file behind the last one" finds media_holds_files "UPDATE \`Media\` SET \`LastSequence\` = 2"
end_promises
