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
# 1024, those are 2048, and 64 and 128 would let it go unheard. 256 is for rollback.
step_kinds() {
    is "$(cell CustomAction Action RunMorvix Type)" 3073 && is "$(cell CustomAction Action RunUninstaller Type)" 3073 &&
        is "$(cell CustomAction Action UndoRunMorvix Type)" 3329 &&
        is "$(cell CustomAction Action UndoRunUninstaller Type)" 3329 &&
        is "$(cell CustomAction Action AskForRestart Type)" 1 && is "$(cell CustomAction Action CheckCaller Type)" 1 &&
        is "$(cell CustomAction Action SaveRecords Type)" 1
}

# Every step on one of two conditions: a first installation or a repair of the whole product by an administrator, which is
# decided in one place, and a removal for good.
step_conditions() {
    local action
    is "$(condition_of DecideDriverStep)" \
        '(NOT Installed AND NOT REINSTALL) OR (REINSTALL~="ALL" AND CallerIsAdministrator)' || return 1
    for action in PrepareRunMorvix UndoRunMorvix RunMorvix AskForRestart; do
        is "$(condition_of "$action")" DriverStep || return 1
    done
    for action in PrepareRunUninstaller UndoRunUninstaller RunUninstaller; do
        is "$(condition_of "$action")" 'REMOVE~="ALL" AND NOT UPGRADINGPRODUCTCODE' || return 1
    done
    is "$(condition_of SaveRecords)" 'DriverStep OR (REMOVE~="ALL" AND NOT UPGRADINGPRODUCTCODE)' &&
        is "$(condition_of CheckCaller)" 'REINSTALL OR INSTALLDIR'
}

# INSTALLDIR counts for a first installation by an administrator; else it is where the kit lies, or the default.
folder_is_the_administrators() {
    is "$(condition_of ForgetGivenFolder)$(cell CustomAction Action ForgetGivenFolder Target)" '{}' &&
        is "$(condition_of KeepFolder)" 'KEPTFOLDER AND (Installed OR NOT INSTALLDIR OR NOT CallerIsAdministrator)' &&
        is "$(condition_of UseOwnFolder)" 'INSTALLDIR AND NOT KEPTFOLDER AND (Installed OR NOT CallerIsAdministrator)' &&
        in_order ForgetGivenFolder AppSearch CheckCaller KeepFolder UseOwnFolder CostInitialize
}

# A caller can give any property whose name has no lower-case letter: of the directories only the kit's folder has one.
one_folder_can_be_given() { is "$(rows Directory Directory | grep -vE '[a-z]' | LC_ALL=C sort | paste -sd ' ')" 'INSTALLDIR TARGETDIR'; }

# The installed file itself comes first, by its own reference.
step_starts_the_installed_file() {
    local file
    file=$(rows File File FileName | awk -F '\t' '$2 ~ /(^|\|)Morvix\.exe$/ { print $1 }')
    is "$(cell CustomAction Action PrepareRunMorvix Target)" "[#$file]|[OEMVARIANT]|[FAILONFAILURE]|[STEPTIMELIMIT]"
}

# 2032127 is full access, 1179817 reading and running.
folder_is_locked() {
    is "$(rows LockPermissions LockObject Table Domain User Permission | LC_ALL=C sort | tr '\t' ' ' | paste -sd ';')" \
        'INSTALLDIR CreateFolder  Administrators 2032127;INSTALLDIR CreateFolder  Everyone 1179817' &&
        in_order CreateFolders InstallFiles && [[ ! -e $tables/MsiLockPermissionsEx.idt ]]
}

# The engine of a user's own process hands over at once: nothing that it would work out reaches the service.
nothing_is_decided_for_the_user() { is "$(rows InstallUISequence Action)" ExecuteAction; }

arm64_is_refused() {
    is "$(cell LaunchCondition Condition 'Installed OR NOT MACHINEPROCESSOR~="ARM64"' Description)" \
        'Morvix cannot be installed on Windows for ARM64: its drivers are for x64 processors.' &&
        is "$(cell AppSearch Property MACHINEPROCESSOR Signature_)" MachineProcessor &&
        is "$(rows RegLocator Signature_ Root Key Name Type | grep '^MachineProcessor' | tr '\t' ' ')" \
            'MachineProcessor 2 SYSTEM\CurrentControlSet\Control\Session Manager\Environment PROCESSOR_ARCHITECTURE 18' &&
        in_order AppSearch LaunchConditions
}

no_mode_in_the_property_table() {
    is "$(property REINSTALLMODE)$(property REINSTALL)" '' &&
        is "$(cell CustomAction Action ReplaceEveryFile Target)" amus &&
        is "$(condition_of ReplaceEveryFile)" 'NOT REINSTALLMODE AND (NOT Installed OR REINSTALL~="ALL")' &&
        in_order ReplaceEveryFile CostInitialize FileCost
}

texts_for_the_steps() {
    is "$(rows ActionText Action Template | LC_ALL=C sort | tr '\t' ' ' | paste -sd ';')" \
        'RunMorvix [1];RunUninstaller [1];UndoRunMorvix ;UndoRunUninstaller '
}

# What the room calls; the compiler's own runtime is ignored.
no_library_is_loaded_at_run_time() {
    local calls
    calls=$(x86_64-w64-mingw32-nm "$build_dir/windows/packaging/actions/libactions.a" | sed -n 's/.* U __imp_//p')
    missing WaitForSingleObject "$calls" | complain 'the calls of the room cannot be seen, such as' &&
        sed -nE '/^(LoadLibrary|ShellExecute|WinExec|TerminateProcess)/p' <<<"$calls" | sort -u | complain 'call of'
}

product_properties() {
    is "$(property ProductVersion)" "$version" && is "$(property ProductCode)" "{$(product_code "$version")}" &&
        is "$(property UpgradeCode)" '{ED0FD907-DB1D-468A-B3EE-C525716BD32A}' && is "$(property ALLUSERS)" 1 &&
        is "$(property STEPTIMELIMIT)" 900
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
promise "only the upgrade properties are secure" only_upgrade_properties_are_secure
promise "only an administrator's folder counts, and only at the first installation" folder_is_the_administrators
promise "no other folder can be given" one_folder_can_be_given
promise "the step starts the installed file by its own reference" step_starts_the_installed_file
promise "only administrators may write into the kit's folder" folder_is_locked
promise "nothing is decided in the user's own process" nothing_is_decided_for_the_user
promise "Windows for ARM64 is refused with a sentence" arm64_is_refused
promise "no mode is in the property table, and all files are written" no_mode_in_the_property_table
promise "the steps have texts for a user interface" texts_for_the_steps
promise "the steps load no library at run time and end no program" no_library_is_loaded_at_run_time
promise "every component keeps the rules" component_rules
promise "names are unique and have short forms" file_names
promise "every sequence is an order" sequences_are_orders
promise "the cabinet is in the package and holds the files" media_holds_files
promise "the package unpacked is the shippable folder" unpacked_is_dist
promise "every file has a version or a hash" versions_and_hashes
promise "product, upgrade code and version are right" product_properties
promise "older versions are replaced and newer ones left alone" upgrade_rows
promise "the steps and their rollbacks run deferred without impersonation, what prepares them does not" step_kinds
promise "the steps run on first installation, upgrade and repair of the whole, the uninstaller on removal" step_conditions
promise "an older version goes within the transaction" \
    in_order InstallInitialize RemoveExistingProducts ProcessComponents InstallFiles InstallFinalize
promise "the program runs when its files are there and before anybody can find the product installed" \
    in_order InstallFiles WriteRegistryValues PrepareRunMorvix RunMorvix RegisterUser RegisterProduct PublishFeatures \
    PublishProduct InstallFinalize
promise "the restart is asked for after the transaction" in_order InstallFinalize AskForRestart
promise "a rollback is in the script before its step" in_order InstallInitialize SaveRecords UndoRunMorvix RunMorvix InstallFinalize
promise "the uninstaller runs before the files go, with its rollback before it" \
    in_order InstallInitialize SaveRecords PrepareRunUninstaller UndoRunUninstaller RunUninstaller RemoveFiles InstallFinalize
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
promise "a text that is not a link is refused" refuses_publisher support_url "$work/publisher.bad"
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
promise "the checks find an invalid identifier" \
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
promise "the checks find a property that everybody may set" \
    finds only_upgrade_properties_are_secure "UPDATE \`Property\` SET \`Value\` = 'INSTALLDIR;NEWERFOUND;OLDERFOUND' WHERE \`Property\` = 'SecureCustomProperties'"
promise "the checks find a step that starts something else" \
    finds step_starts_the_installed_file "UPDATE \`CustomAction\` SET \`Target\` = '[INSTALLDIR]Morvix.exe|||' WHERE \`Action\` = 'PrepareRunMorvix'"
promise "the checks find a folder that everybody may write into" \
    finds folder_is_locked "UPDATE \`LockPermissions\` SET \`Permission\` = 2032127 WHERE \`User\` = 'Everyone'"
promise "the checks find a step that anybody's repair runs" \
    finds step_conditions "UPDATE \`InstallExecuteSequence\` SET \`Condition\` = 'NOT Installed OR REINSTALL' WHERE \`Action\` = 'DecideDriverStep'"
promise "the checks find a folder that any caller may give" \
    finds folder_is_the_administrators "UPDATE \`InstallExecuteSequence\` SET \`Condition\` = 'KEPTFOLDER AND NOT INSTALLDIR' WHERE \`Action\` = 'KeepFolder'"
promise "the checks find a mode in the property table" \
    finds no_mode_in_the_property_table "INSERT INTO \`Property\` (\`Property\`, \`Value\`) VALUES ('REINSTALLMODE', 'amus')"
promise "the checks find ARM64 not refused" finds arm64_is_refused "DELETE FROM \`AppSearch\` WHERE \`Property\` = 'MACHINEPROCESSOR'"
promise "the checks find a rollback that runs as a step" \
    finds step_kinds "UPDATE \`CustomAction\` SET \`Type\` = 3073 WHERE \`Action\` = 'UndoRunMorvix'"
promise "the checks find an identifier used twice" \
    finds component_rules "UPDATE \`Component\` SET \`ComponentId\` = '{C60E375D-C9B4-5271-9C15-DBCDC4BAEDD5}'"
promise "the checks find a name used twice" finds file_names "UPDATE \`File\` SET \`FileName\` = 'same.txt'"
promise "the checks find a number used twice" \
    finds sequences_are_orders "UPDATE \`InstallExecuteSequence\` SET \`Sequence\` = 6700 WHERE \`Action\` = 'RunMorvix'"
promise "the checks find a file after the last one" finds media_holds_files "UPDATE \`Media\` SET \`LastSequence\` = 2"
end_promises
