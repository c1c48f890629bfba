#!/usr/bin/env bash
# The life of the package on a machine with two adapters: installed, installed once more, repaired, upgraded, not
# downgraded, removed.
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"

recorder=$build_dir/windows/tests/command_line_recorder.exe
version=$(product_version)
newer=$(next_version)

list_drive() { (cd -- "$drive" && find . -type f | LC_ALL=C sort); }

# What is on the drive that was not there before the first installation, but for the engine's own temporary files.
list_left() {
    list_drive | LC_ALL=C comm -13 "$work/before" - |
        grep -vE '^\./(users/[^/]*/(AppData/Local/)?Temp|windows/(temp|Installer))/' | LC_ALL=C sort
}

# The program has handed the system all INF files of the kit, with their catalogs, and the drivers of the two adapters.
list_system_copies() {
    local inf
    for inf in "$dist"/Drv/Win7x64/*.inf; do
        inf=$(basename -- "$inf" .inf)
        printf './windows/inf/%s\n' "$inf.inf" "$inf.pnf"
        printf './windows/system32/catroot/{f750e6c3-38ee-11d1-85e5-00c04fc295ee}/%s\n' "$inf.cat"
    done
    printf './windows/system32/drivers/%s\n' ngea62x64.sys nxga62x64.sys
}

only_system_copies_are_left() { diff <(list_system_copies | LC_ALL=C sort) <(list_left); }

uninstaller_never_ran() { [[ ! -e $journal ]]; }

uninstaller_ran_once() {
    [[ $(grep -c '^command line: ' "$journal") == 1 ]] &&
        grep -qxF 'command line: "C:\windows\system32\Tavunstl.exe" /nogui' "$journal"
}

both_bound() { bound "$gigabit" ngea62x64 && bound "$ten_gigabit" nxga62x64; }

both_recorded() {
    recorded Install SUCCESS && recorded TAVG_PCIE_Install SUCCESS && recorded TAVG_PCIE_Version 11.4.62.0 &&
        recorded TAVX_Install SUCCESS && recorded TAVX_Version 3.2.62.0 && recorded RebootNeeded ''
}

uninstall_entry_is() {
    local key
    key="HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\{$(product_code "$1")}"
    [[ $(registry_text "$key" DisplayName) == Morvix && $(registry_text "$key" Publisher) == Norda &&
        $(registry_text "$key" DisplayVersion) == "$1" &&
        $(registry_text "$key" InstallLocation) == "C:\\Program Files\\Norda\\Morvix\\" ]]
}

start_machine lifetime
plug_in "$gigabit" "$ten_gigabit"
list_drive >"$work/before"
journal=$drive/windows/system32/Tavunstl.exe.journal.txt

install "$package"
promise "an installation ends with 0" ends_with 0
promise "an installation copies the whole shippable folder" same_files "$dist" "$program_folder"
promise "an installation binds both adapters" both_bound
promise "an installation leaves the result keys right" both_recorded
promise "an installation logs the command line and the time limit" \
    logged 'running "C:\Program Files\Norda\Morvix\Morvix.exe" /s /m, at most 900 seconds'
promise "an installation logs the program's exit code" logged 'the program ended with exit code 0'
promise "an installation logs the result" logged 'Install = SUCCESS, Version = 3.2.62.0'
promise "an installation logs that no restart is needed" logged 'RebootNeeded is not recorded: no restart'
promise "the system lists the product with version, maker and folder" uninstall_entry_is "$version"
promise "the uninstall data is registered" test -f "$drive/windows/system32/Morvix.din"

install "$package"
promise "a second installation ends with 0" ends_with 0
promise "a second installation runs no step" not_logged ''
promise "a second installation leaves the files as they are" same_files "$dist" "$program_folder"
promise "a second installation leaves the result keys as they are" both_recorded

rm -f -- "$program_folder/NetInst.dll" "$drive/windows/system32/drivers/nxga62x64.sys"
printf 'damaged' >"$program_folder/Morvix.ini"
printf 'damaged' >"$program_folder/MorvixRes.dll"
install "$package" REINSTALL=ALL REINSTALLMODE=amus
promise "a repair ends with 0" ends_with 0
promise "a repair brings back missing and damaged files" same_files "$dist" "$program_folder"
promise "a repair runs the driver step" logged 'the program ended with exit code 0'
promise "a repair brings back a missing driver file" both_bound
promise "a repair leaves the product as it is" only_product "$version"

# The next version has one file less, one more, and one that is another.
kit=$work/next
mkdir -- "$kit"
find "$dist" -mindepth 1 -maxdepth 1 ! -name '*.msi' -exec cp -a -t "$kit" -- {} +
rm -r -- "$kit/Drv/WinXPx64"
printf '; of the next version\r\n' | tee -a "$kit/Morvix.ini" >"$kit/ReadMe of the next version.txt"
package_kit "$newer"
install "$kit_package"
promise "an upgrade ends with 0" ends_with 0
promise "an upgrade leaves the new version's files and no other" same_files "$kit" "$program_folder"
promise "an upgrade runs the driver step" logged 'the program ended with exit code 0'
promise "an upgrade keeps both adapters bound" both_bound
promise "an upgrade replaces the product" only_product "$newer"

install "$package"
promise "an older version is refused with 1603" ends_with 1603
promise "an older version changes no file" same_files "$kit" "$program_folder"
promise "an older version leaves the product as it is" only_product "$newer"
promise "an older version runs no step" not_logged ''

# The engine of Windows says in this property that it takes a version away for the next one; the one here does not.
cp -- "$recorder" "$drive/windows/system32/Tavunstl.exe"
remove "$kit_package" "UPGRADINGPRODUCTCODE={$(product_code 99.0.0)}"
promise "a removal for the next version does not run the uninstaller" uninstaller_never_ran
promise "a removal for the next version leaves no folder" no_program_folder
install "$kit_package"
promise "the uninstaller does not run when the package is installed once more" uninstaller_never_ran

remove "$kit_package"
promise "a removal ends with 0" ends_with 0
promise "a removal runs the uninstaller once, without its user interface" uninstaller_ran_once
promise "a removal logs the uninstaller's exit code" logged 'the uninstaller ended with exit code 7'
promise "a removal does not run the driver step" not_logged 'running "C:\Program Files'
rm -f -- "$drive/windows/system32/Tavunstl.exe" "$journal"
promise "a removal leaves the system's own copies of the drivers and no other file" only_system_copies_are_left
promise "a removal leaves no folder" no_program_folder
promise "a removal takes the product off the system's list" only_product none
promise "a removal takes the registration of the uninstall data away" \
    test -z "$(registry_text 'HKLM\SOFTWARE\Norda\Tavunstl\Dins' Morvix.din)"
promise "a removal leaves the adapters bound" both_bound

install "$package" 'INSTALLDIR=C:\kits\Morvix'
promise "INSTALLDIR moves the kit" same_files "$dist" "$drive/kits/Morvix"
promise "INSTALLDIR moves the driver step" logged 'running "C:\kits\Morvix\Morvix.exe" /s /m, at most 900 seconds'
install "$kit_package"
promise "an upgrade finds the moved kit" same_files "$kit" "$drive/kits/Morvix"
remove "$kit_package"
promise "a removal finds the moved kit" test ! -e "$drive/kits/Morvix"
promise "a removal without an uninstaller ends with 0" ends_with 0
promise "a removal without an uninstaller says so" logged 'there is no uninstaller C:\windows\system32\Tavunstl.exe'
end_promises
