# shellcheck shell=bash
# An interactive run on Windows 98, which offers the restart whatever it finds. Sourced after session.sh.
# shellcheck disable=SC2154

# shellcheck source=../../../scripts/lib/dialog.sh
source "$repo/scripts/lib/dialog.sh"

# start_offer NAME: a fresh Windows 98 in which a user has pressed OK and the dialog counts down. The trace tells when.
start_offer() {
    local registry=$build_dir/restart-$1-system.reg
    trace=$build_dir/restart-$1.trace.txt
    rm -f -- "$trace"
    start_session "$1"
    {
        printf 'REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norda\\Basedrivers\\Debug]\n\n'
        printf '[HKEY_LOCAL_MACHINE\\Enum\\PCI]\n\n'
        printf '[HKEY_CURRENT_USER\\Software\\Wine\\AppDefaults\\Morvix.exe]\n"Version"="win98"\n'
    } >"$registry"
    import_registry "$registry"
    rm -f -- "$registry"
    { release_lock; exec timeout 120 wine "$windows_build/tools/debugview.exe" "$(windows_path "$trace")" \
        "$(windows_path "$morvix")"; } >/dev/null 2>&1 &
    at_exit end_quietly "$!"
    wait_until 60 find_dialog || fail "the dialog does not appear (see $trace)"
    press_return
    wait_until 60 grep -qs 'Exit -> InstallDrivers()' "$trace" || fail "the run does not offer the restart (see $trace)"
}

# How often the countdown has shown its seconds: it looks the text up each time.
count_ticks() { sed -n '/Exit -> InstallDrivers()/,$p' "$trace" | grep -c 'Entering - GetLanguageSpecificString' || true; }

twenty_one_ticks() { (($(count_ticks) == 21)); }

restart_was_asked_for_early() { grep -q 'Entering - RestartMachine' "$trace" && (($(count_ticks) < 20)); }
