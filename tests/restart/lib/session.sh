# shellcheck shell=bash
# One Windows session in which Morvix.exe runs, and the proof whether that session was restarted.
# shellcheck disable=SC2154

lib=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/../../../scripts/lib
# shellcheck source=../../../scripts/lib/common.sh
source "$lib/common.sh"
# shellcheck source=../../../scripts/lib/wine.sh
source "$lib/wine.sh"
# shellcheck source=../../../scripts/lib/display.sh
source "$lib/display.sh"
# shellcheck source=../../../scripts/lib/adapters.sh
source "$lib/adapters.sh"
# shellcheck source=../../../scripts/lib/promises.sh
source "$lib/promises.sh"

morvix=$dist/Morvix.exe
# start_session NAME [ADAPTER...]: a fresh Windows with these adapters. Whenever a session of it begins, it writes the
# marker file, once. A bystander, a program with a window, runs for as long as the present session lasts.
start_session() {
    local registry=$build_dir/restart-$1.reg
    [[ -f $morvix ]] || fail "there is no $morvix: run scripts/build first"
    enter_build_folder
    start_display
    new_prefix "restart-$1"
    marker=$WINEPREFIX/drive_c/restarted.txt
    shift
    start_server --persistent=3
    { release_lock; exec wine notepad; } >/dev/null 2>&1 &
    bystander=$!
    at_exit end_quietly "$bystander"
    # Returns when the session has begun, so that only a later one can find the command below.
    run_limited 120 wine cmd /c exit
    {
        printf 'REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\RunOnce]\n'
        printf '"RestartProof"="cmd /c echo restarted>C:\\\\restarted.txt"\n\n'
        local adapter
        for adapter in "$@"; do
            adapter_registration "$adapter"
        done
    } >"$registry"
    import_registry "$registry"
    rm -f -- "$registry"
    if [[ -e $marker ]] || ! session_goes_on; then
        fail "the session was restarted before the run"
    fi
}

session_goes_on() { kill -0 "$bystander" 2>/dev/null; }

session_has_ended() { ! session_goes_on; }

marker_written() { [[ -e $marker ]]; }

no_marker_written() { [[ ! -e $marker ]]; }

driver_installed() { compgen -G "$WINEPREFIX/drive_c/windows/system32/drivers/ngea*.sys" >/dev/null; }

exit_code_is_zero() { ((exit_code == 0)); }

# Runs Morvix.exe with these options; `exit_code` is what it ended with.
run_morvix() {
    exit_code=0
    run_limited 120 wine "$(windows_path "$morvix")" "$@" || exit_code=$?
}

# Waits until nothing runs any more in this Windows: a restarted session has then run what it was told to run.
wait_for_silence() { run_limited 60 wineserver --wait; }

# Ends the bystander. A restart that was already asked for when the run ended takes place before the silence.
end_bystander() {
    kill -TERM "$bystander" 2>/dev/null || true
    wait "$bystander" 2>/dev/null || true
    wait_for_silence
}

# Begins another session after the silence: shows that the marker would have been written by a restart.
begin_another_session() {
    run_limited 120 wine cmd /c exit
    wait_for_silence
}
