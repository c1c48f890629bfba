#!/usr/bin/env bash
# "/s" on a machine that boots over FCoE, with a management extension that copes with new drivers: they are installed, then
# the machine restarts.
# shellcheck disable=SC2154
set -euo pipefail
# shellcheck source=lib/session.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/session.sh"

adapter='VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01'
network_class='{4D36E972-E325-11CE-BFC1-08002BE10318}'

# The adapter has had a driver before: the FCoE library is asked under the ID that the network stack gave it then.
write_installed_adapter() {
    local registry=$build_dir/restart-fcoe-boot-adapter.reg
    {
        printf 'REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\%s\\3&11583659&0&C8]\n' "$adapter"
        printf '"Driver"="%s\\\\9001"\n\n' "$network_class"
        printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Class\\%s\\9001]\n' "$network_class"
        printf '"NetCfgInstanceId"="{5D1A0001-0000-4000-8000-00AA00BB00CC}"\n\n'
        printf '[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norda\\Network_Services\\TERN]\n"OEMVersion"="16.2"\n'
    } >"$registry"
    import_registry "$registry"
    rm -f -- "$registry"
}

# A shippable folder with the FCoE library beside the program; its ports say that the machine was booted through them.
use_fcoe_library() {
    local kit=$WINEPREFIX/drive_c/kit library=$windows_build/tests/doubles/nordhapi.dll
    [[ -f $library ]] || fail "there is no $library: run scripts/build windows first"
    cp -a -- "$dist" "$kit"
    cp -- "$library" "$kit/"
    printf '[Answers]\r\nFlags=1\r\n' >"$kit/nordhapi.answers.ini"
    morvix=$kit/Morvix.exe
}

start_session fcoe-boot "$adapter"
write_installed_adapter
use_fcoe_library
run_morvix /s
promise "/s comes to rest after the restart of an FCoE-booted machine" wait_for_silence
promise "/s asks the FCoE library about the boot port" \
    grep -q '^NORDA_GetFCAndNICProperties' "$WINEPREFIX/drive_c/kit/journal.txt"
promise "/s installs the driver of a boot port" driver_installed
promise "/s restarts an FCoE-booted machine" marker_written
promise "/s ends the programs that were running" session_has_ended
end_promises
