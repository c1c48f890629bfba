#!/usr/bin/env bash
# Who can run the driver step and when, and who may set the kit's folder: a self-repair, repairs by an administrator and
# by a standard user, properties of callers, a machine with another processor, what a watcher sees meanwhile.
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"

version=$(product_version)
product="{$(product_code "$version")}"
environment='HKLM\System\CurrentControlSet\Control\Session Manager\Environment'

step_ran() { logged 'the program ended with exit code 0'; }

no_step_ran() { not_logged 'running '; }

# as_user ARGUMENT...: a quiet run of the engine by a user without the rights of an administrator.
as_user() {
    rm -f -- "$work/msiexec.log"
    call_installer user as-user "C:\\windows\\system32\\msiexec.exe $* /qn /norestart /l*v $(windows_path "$work/msiexec.log")"
    log=$work/msiexec.log
}

self_repair() {
    rm -- "$program_folder/NetInst.dll"
    call_installer heal heal "$product"
    promise "a self-repair ends with 0" ends_with 0
    promise "a self-repair is one of the feature" grep -qaE 'REINSTALL = Morvix\b' "$log"
    promise "a self-repair brings the lost file back" same_files "$dist" "$program_folder"
    promise "a self-repair does not run the driver step" no_step_ran

    rm -- "$program_folder/NetInst.dll"
    run_msi /i "$(windows_path "$package")" REINSTALL=Morvix REINSTALLMODE=omus
    promise "a repair of the feature brings the lost file back" same_files "$dist" "$program_folder"
    promise "a repair of the feature does not run the driver step" no_step_ran
}

whole_repair() {
    rm -- "$program_folder/NetInst.dll"
    call_installer repair repair "$product"
    promise "a repair from the list of programs ends with 0" ends_with 0
    promise "a repair from the list of programs is one of the whole product" grep -qaE 'REINSTALL = ALL\b' "$log"
    promise "a repair from the list of programs brings the lost file back" same_files "$dist" "$program_folder"
    promise "a repair from the list of programs runs the driver step" step_ran
}

standard_user() {
    rm -- "$program_folder/NetInst.dll"
    as_user "/i $(windows_path "$package") REINSTALL=ALL REINSTALLMODE=amus"
    promise "a repair by a standard user ends with 0" ends_with 0
    promise "a repair by a standard user brings the lost file back" same_files "$dist" "$program_folder"
    promise "a repair by a standard user does not run the driver step" no_step_ran
    promise "a repair by a standard user says why there is no step" \
        logged 'started without administrator rights: a repair leaves the driver step out, and INSTALLDIR is ignored'
}

nothing_elsewhere() { [[ ! -e $drive/elsewhere ]]; }

folders() {
    install "$package" REINSTALL=ALL REINSTALLMODE=amus 'INSTALLDIR=C:\elsewhere'
    promise "a repair ignores INSTALLDIR" ends_with 0
    promise "a repair starts the installed program, whatever INSTALLDIR says" \
        logged 'running "C:\Program Files\Norda\Morvix\Morvix.exe" /s /m, at most 900 seconds'
    remove "$package"

    install "$package" 'KEPTFOLDER=C:\elsewhere'
    promise "only the registry says where the kit was before" same_files "$dist" "$program_folder"
    remove "$package"
    install "$package" 'VendorFolder=C:\elsewhere'
    promise "the folder above the kit cannot be moved" same_files "$dist" "$program_folder"
    remove "$package"
    as_user "/i $(windows_path "$package") INSTALLDIR=C:\\elsewhere"
    promise "INSTALLDIR of a standard user is ignored" same_files "$dist" "$program_folder"
    remove "$package"
    promise "no caller has made another folder" nothing_elsewhere

    install "$package" 'INSTALLDIR=C:\kits\Morvix'
    as_user "/i $(windows_path "$package") REINSTALL=ALL REINSTALLMODE=amus INSTALLDIR=C:\\elsewhere"
    promise "a repair by a standard user leaves a moved kit where it is" same_files "$dist" "$drive/kits/Morvix"
    remove "$package"
    promise "no repair has made another folder" nothing_elsewhere
}

mode_is() { grep -qaxF "Property(S): REINSTALLMODE = $1" <(tr -d '\r' <"$log") || { say "  the mode is not $1"; return 1; }; }

# The kit of the next version has an older driver than the one in the folder. The engine here ignores the mode; that of
# Windows would keep a newer file without it.
older_driver() {
    copy_kit older
    cp -- "$dist/Drv/WinXPx64/ngea.sys" "$kit/Drv/Win7x64/ngea62x64.sys"
    package_kit 99.0.0
    install "$package"
    promise "an installation writes all files, whatever their versions" mode_is amus
    install "$kit_package"
    promise "an upgrade writes all files, whatever their versions" mode_is amus
    promise "the next version goes back to an older driver" same_files "$kit" "$program_folder"
    run_msi /i "$(windows_path "$kit_package")" REINSTALL=ALL
    promise "a repair without a mode writes all files, whatever their versions" mode_is amus
    run_msi /i "$(windows_path "$kit_package")" REINSTALL=ALL REINSTALLMODE=omus
    promise "a repair with a mode of the caller's keeps it" mode_is omus
    remove "$kit_package"
}

# What a management tool sees while the program runs, and what it finds afterwards.
watcher() {
    copy_kit held
    hold_program "$kit/Morvix.exe"
    package_kit
    start_msi /i "$(windows_path "$kit_package")"
    promise "the program was started" wait_for_file "$program_folder/Morvix.exe.journal.txt"
    promise "while the program runs, the product is not installed yet" only_product none
    # As the library does for a binding that takes effect only after a restart.
    run_limited 60 wine reg add 'HKLM\SOFTWARE\Norda\NetInst' /v RestartNeeded /t REG_DWORD /d 1 /f >/dev/null 2>&1
    rm -- "$program_folder/Morvix.exe.hold"
    finish_msi
    promise "when the program has ended, the product is installed" only_product "$version"
    promise "a restart that NetInst recorded ends the quiet run with 3010" ends_with 3010
    promise "a restart that NetInst recorded is logged" logged 'NetInst has recorded a restart: it is asked for'
    rm -- "$program_folder/Morvix.exe.journal.txt"
    remove "$kit_package"
    rm -- "$kit/Morvix.exe.hold"
    package_kit
    install "$kit_package"
    promise "a NetInst mark from an earlier run requests no restart" ends_with 0
    rm -- "$program_folder/Morvix.exe.journal.txt"
    remove "$kit_package"
}

other_processor() {
    run_limited 60 wine reg add "$environment" /v PROCESSOR_ARCHITECTURE /d ARM64 /f >/dev/null 2>&1
    install "$package"
    promise "Windows for ARM64 is refused" ends_with 1603
    promise "a refused installation leaves nothing" no_program_folder
    promise "a refused installation runs no step" not_logged ''
    install "$package" MACHINEPROCESSOR=AMD64
    promise "a caller cannot name another processor" ends_with 1603
    run_limited 60 wine reg add "$environment" /v PROCESSOR_ARCHITECTURE /d AMD64 /f >/dev/null 2>&1
    install "$package"
    promise "the same machine with its own processor is accepted" ends_with 0
    run_limited 60 wine reg add "$environment" /v PROCESSOR_ARCHITECTURE /d ARM64 /f >/dev/null 2>&1
    remove "$package"
    promise "what is installed can be removed on any processor" no_program_folder
    run_limited 60 wine reg add "$environment" /v PROCESSOR_ARCHITECTURE /d AMD64 /f >/dev/null 2>&1
}

start_machine rights
plug_in "$gigabit"
install "$package"
self_repair
whole_repair
standard_user
folders
older_driver
watcher
other_processor
end_promises
