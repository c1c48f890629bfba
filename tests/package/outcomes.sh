#!/usr/bin/env bash
# What becomes of the package when the driver step ends otherwise than well: no adapter, a broken kit, an adapter that
# fails, a needed restart, a program or an uninstaller that does not end, Cancel; what is rolled back; and what the OEM
# variant changes.
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"

doubles=$build_dir/windows/tests/doubles
recorder=$build_dir/windows/tests/command_line_recorder.exe
network_class='{4D36E972-E325-11CE-BFC1-08002BE10318}'

# Looks at the processes of this Windows only: others may run beside it.
program_runs() {
    local pid
    for pid in $(pgrep -f 'Morvix\.exe"? /s /m'); do
        if grep -qzxF "WINEPREFIX=$WINEPREFIX" "/proc/$pid/environ" 2>/dev/null; then
            return 0
        fi
    done
    return 1
}

# Notes in the work folder that the program was seen running.
watch_for_program() {
    local waited
    for ((waited = 0; waited < 600; ++waited)); do
        if program_runs; then
            : >"$work/seen"
            return
        fi
        sleep 0.1
    done
}

no_product() { [[ $(installed_products) != *"$(product_code "$1")"* ]]; }

was_called_with() { [[ $(grep -c '^command line: ' "$journal") == 1 ]] && grep -qxF "command line: $1" "$journal"; }

# The adapter has had a driver before: the FCoE library is asked under the ID that the network stack gave it then.
plug_in_boot_adapter() {
    plug_in "$1"
    {
        printf 'REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\%s\\3&11583659&0&C8]\n' "$1"
        printf '"Driver"="%s\\\\9001"\n\n' "$network_class"
        printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Class\\%s\\9001]\n' "$network_class"
        printf '"NetCfgInstanceId"="{5D1A0001-0000-4000-8000-00AA00BB00CC}"\n'
    } >"$work/boot.reg"
    import_registry "$work/boot.reg"
}

no_adapter() {
    install "$package" FAILONFAILURE=1
    promise "without an adapter the package succeeds even when failures fail it" ends_with 0
    promise "without an adapter the log says so" logged 'Install is not recorded: no adapter was matched'
    promise "without an adapter the kit is installed" same_files "$dist" "$program_folder"
    remove "$package"
    promise "a package without an adapter can be removed" no_program_folder
}

oem_variant() {
    copy_kit recorder
    cp -- "$recorder" "$kit/Morvix.exe"
    package_kit
    journal=$program_folder/Morvix.exe.journal.txt
    install "$kit_package"
    promise "the program gets /s /m" was_called_with '"C:\Program Files\Norda\Morvix\Morvix.exe" /s /m'
    promise "the program runs in the kit's folder" grep -qxF 'directory: C:\Program Files\Norda\Morvix' "$journal"
    promise "an exit code other than success is logged" logged 'the program ended with exit code 7'
    rm -f -- "$journal"
    remove "$kit_package"
    install "$kit_package" OEMVARIANT=1
    promise "the OEM variant gets /s /md" was_called_with '"C:\Program Files\Norda\Morvix\Morvix.exe" /s /md'
    rm -f -- "$journal"
    remove "$kit_package"
}

broken_ini() {
    plug_in "$gigabit"
    copy_kit broken-ini
    printf '\0\1[[[Win732E\r\nInfDir\r\n=\r\n' >"$kit/Morvix.ini"
    package_kit
    install "$kit_package"
    promise "a kit whose INI is broken does not block the package" ends_with 0
    promise "a kit whose INI is broken binds nothing, and the log says so" \
        logged 'Install is not recorded: no adapter was matched'
    remove "$kit_package"
    promise "a kit whose INI is broken can be removed" ends_with 0
    promise "a removed kit whose INI is broken leaves nothing" no_program_folder

    copy_kit no-ini
    rm -- "$kit/Morvix.ini"
    package_kit
    install "$kit_package"
    promise "a kit without its INI does not block the package" ends_with 0
    promise "the log says that the program refused to start" logged 'the program ended with exit code -1'
    promise "the log says that the package goes on" logged 'the package goes on: FAILONFAILURE is not 1'
    remove "$kit_package"
    install "$kit_package" FAILONFAILURE=1
    promise "a kit without its INI fails the package when failures fail it" ends_with 1603
    promise "the log says why the package fails" logged 'the package fails: FAILONFAILURE is 1'
    promise "a failed installation leaves no file" no_program_folder
    promise "a failed installation leaves no product" only_product none
}

failing_adapter() {
    copy_kit no-driver
    rm -- "$kit/Drv/Win7x64/ngea62x64.sys"
    package_kit
    install "$kit_package"
    promise "an adapter that fails does not block the package" ends_with 0
    promise "an adapter that fails is recorded" recorded Install FAILURE
    promise "an adapter that fails is logged" logged 'Install = FAILURE'
    promise "an adapter that fails is logged with its family" logged 'FAILURE of family TAVG_PCIE'
    promise "the log says that the package goes on after a failure" logged 'the package goes on: FAILONFAILURE is not 1'
    remove "$kit_package"
    install "$kit_package" FAILONFAILURE=1
    promise "an adapter that fails fails the package when failures fail it" ends_with 1603
    promise "the log names the family of the failure that fails the package" logged 'FAILURE of family TAVG_PCIE'
    promise "the error is reported" logged 'the drivers were not installed'
    promise "a failed adapter leaves no file when it fails the package" no_program_folder

    unplug "$gigabit"
    install "$package" FAILONFAILURE=1
    promise "a failure of an earlier run does not fail a later one" ends_with 0
    promise "a failure of an earlier run does not count as a new one" logged 'Install is not recorded: no adapter was matched'
    remove "$package"
}

failed_upgrade() {
    local version newer
    version=$(product_version)
    newer=${version%.*}.$((${version##*.} + 1))
    plug_in "$gigabit"
    install "$package"
    kit=$work/no-driver
    package_kit "$newer"
    # The older version's driver file stays where it is: that does not make the new one a success.
    install "$kit_package" FAILONFAILURE=1
    promise "an upgrade that fails ends with 1603" ends_with 1603
    # The engine of Windows restores the old version. Wine's removes it in a separate transaction, so only the new version's
    # part is visible.
    promise "an upgrade that fails leaves nothing of the new version" no_program_folder
    promise "an upgrade that fails is not on the system's list" no_product "$newer"
}

needed_restart() {
    unplug "$gigabit"
    plug_in_boot_adapter "$gigabit"
    copy_kit fcoe
    cp -- "$doubles/nordhapi.dll" "$kit/"
    printf '[Answers]\r\nFlags=1\r\n' >"$kit/nordhapi.answers.ini"
    package_kit
    install "$kit_package"
    promise "a needed restart ends the quiet run with 3010" ends_with 3010
    promise "a needed restart is recorded by the program" recorded RebootNeeded 0x1
    promise "a needed restart is logged" logged 'RebootNeeded is recorded: a restart is asked for'
    promise "the driver is installed before the restart" bound "$gigabit" ngea62x64
    install "$kit_package"
    promise "a second installation requests no second restart" ends_with 0
    install "$kit_package" REINSTALL=ALL REINSTALLMODE=amus
    promise "a repair that needs a restart ends with 3010" ends_with 3010
    rm -f -- "$program_folder/journal.txt"
    remove "$kit_package"
    promise "a removal requests no restart" ends_with 0
}

# What the uninstaller's data and the result values say; the machine's own before a run that is rolled back.
records_are_the_earlier_ones() {
    recorded Install SUCCESS && recorded TAVX_Install '' && recorded Version 1.2.3.4 && recorded RebootNeeded 0x1 &&
        [[ $(registry_text 'HKLM\SOFTWARE\Norda\Tavunstl\Dins' Morvix.din) == Earlier.Uninstall ]] &&
        [[ $(cat -- "$data_file") == 'of an earlier kit' ]]
}

no_records() {
    [[ ! -e $data_file && -z $(registry_text 'HKLM\SOFTWARE\Norda\Tavunstl\Dins' Morvix.din) ]] &&
        ! run_limited 60 wine reg query "$result_key" >/dev/null 2>&1
}

lay_earlier_records() {
    {
        printf 'REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norda\\Basedrivers]\n"Install"="SUCCESS"\n"Version"="1.2.3.4"\n'
        printf '"RebootNeeded"=dword:00000001\n\n'
        printf '[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norda\\Tavunstl\\Dins]\n"Morvix.din"="Earlier.Uninstall"\n'
    } >"$work/earlier.reg"
    import_registry "$work/earlier.reg"
    printf 'of an earlier kit' >"$data_file"
}

# One adapter gets its driver, which leaves records; the other one fails.
rolled_back() {
    data_file=$drive/windows/system32/Morvix.din
    run_limited 60 wine reg delete 'HKLM\SOFTWARE\Norda' /f >/dev/null 2>&1 || true
    rm -f -- "$data_file"
    plug_in "$gigabit" "$ten_gigabit"
    copy_kit half
    rm -- "$kit/Drv/Win7x64/nxga62x64.sys"
    package_kit
    install "$kit_package" FAILONFAILURE=1
    promise "a package that fails ends with 1603" ends_with 1603
    promise "a package that fails had bound the other adapter" bound "$gigabit" ngea62x64
    promise "what was not there before the step is rolled back" no_records
    promise "the rollback is logged" logged 'rolled back: the result values'
    promise "what cannot be rolled back is logged" \
        logged 'cannot be rolled back: a driver that was bound to an adapter, or removed from it'

    lay_earlier_records
    install "$kit_package" FAILONFAILURE=1
    promise "what was there before the step is put back" records_are_the_earlier_ones
    install "$kit_package"
    promise "without a rollback the records are those of the run" recorded TAVX_Install FAILURE
    remove "$kit_package"
    unplug "$ten_gigabit"
}

end_programs() {
    local pid
    for pid in $(pgrep -f 'Morvix\.exe"? /s /m'); do
        if grep -qzxF "WINEPREFIX=$WINEPREFIX" "/proc/$pid/environ" 2>/dev/null; then
            kill -- "$pid"
        fi
    done
    while program_runs; do sleep 0.1; done
}

endless_program() {
    copy_kit endless
    cp -- "$doubles/NetInst.dll" "$kit/"
    # A system that the program knows but has no flow for: its hidden dialog stays for ever.
    printf '[Answers]\r\nFamily=Windows NT\r\n' >"$kit/NetInst.answers.ini"
    package_kit
    watch_for_program &
    at_exit end_quietly "$!"
    install "$kit_package" STEPTIMELIMIT=3
    promise "a program that does not end was running" test -e "$work/seen"
    promise "a program that does not end fails the package, also when failures do not" ends_with 1603
    promise "a program that does not end is left running" program_runs
    promise "the log says that the program is left running" \
        logged 'the program did not end within 3 seconds and was left running'
    promise "the log says what may still be going on" \
        logged 'a device installation may still be going on: leave the machine on until Morvix.exe has ended'
    promise "the error says what may still be going on" \
        logged 'the program did not end within 3 seconds and was left running: a device installation may still be going on'
    promise "a program that does not end leaves no product" only_product none
    end_programs
}

cancelled() {
    copy_kit cancelled
    hold_program "$kit/Morvix.exe"
    package_kit
    call_installer cancel cancel "$(windows_path "$kit_package")" FAILONFAILURE=0
    # 1602, by its lowest byte.
    promise "Cancel during the step ends the run with 1602" ends_with $((1602 % 256))
    promise "Cancel during the step is logged" logged 'the installation was cancelled and the program left running'
    promise "Cancel during the step leaves no product" only_product none
    rm -f -- "$program_folder/Morvix.exe.hold"
    log=$work/msiexec.log
}

endless_uninstaller() {
    local uninstaller=$drive/windows/system32/Tavunstl.exe
    copy_kit plain
    package_kit
    install "$kit_package"
    hold_program "$uninstaller"
    remove "$kit_package" STEPTIMELIMIT=2
    promise "an uninstaller that does not end fails the removal" ends_with 1603
    promise "the error says that the uninstaller may go on" \
        logged 'the uninstaller did not end within 2 seconds and was left running: it may still be removing drivers'
    promise "an uninstaller that does not end is left running" test "$(grep -c '^command line: ' "$uninstaller.journal.txt")" = 1
    # The engine of Windows also brings the product's registration back; the one here does not.
    # The installed copies of the doubles have written their journals.
    promise "a failed removal leaves the kit" diff -r -x '*.msi' -x '*journal.txt' -- "$kit" "$program_folder"
    rm -- "$uninstaller.hold"
    remove "$kit_package"
    promise "the removal can be done once more" ends_with 0
    promise "the removal that was done once more leaves no product" only_product none
}

start_machine outcomes
no_adapter
oem_variant
broken_ini
failing_adapter
failed_upgrade
needed_restart
rolled_back
endless_program
cancelled
endless_uninstaller
end_promises
