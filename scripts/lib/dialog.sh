# shellcheck shell=bash
# Pictures of the interactive dialog, driven as a user drives it: by looking and by pressing keys. Sourced after wine.sh
# and display.sh.
# shellcheck disable=SC2154

# The screen without the empty part around the windows.
take_picture() { timeout 30 import -window root -trim +repage "$1"; }

# still_picture FILE: a picture of a screen that has finished painting: two in a row are the same and show something.
still_picture() {
    local file=$1 second=${1%.png}.second.png deadline=$((SECONDS + 20))
    # The screen may still be empty, which cannot be trimmed.
    take_picture "$file" 2>/dev/null || true
    until take_picture "$second" 2>/dev/null && same_pictures "$file" "$second" && shows_something "$file"; do
        ((SECONDS < deadline)) || fail "the screen does not come to rest for $file"
        [[ ! -f $second ]] || mv -- "$second" "$file"
    done
    rm -f -- "$second"
}

same_pictures() { [[ "$(compare -metric AE "$1" "$2" null: 2>&1)" == 0 ]]; }

shows_something() { (($(identify -format %k "$1" 2>/dev/null || printf 0) > 1)); }

find_dialog() {
    dialog=$(timeout 5 xdotool search --onlyvisible --class '^morvix' 2>/dev/null | head -n 1)
    [[ -n $dialog ]]
}

press_return() {
    timeout 10 xdotool windowfocus --sync "$dialog"
    timeout 10 xdotool key Return
}

# photograph_dialog FOLDER: runs Morvix.exe interactively and leaves 1-welcome.png and 2-done.png in FOLDER.
photograph_dialog() {
    local folder=$1 trace=$1/dialog-trace.txt run
    { release_lock; exec timeout 120 wine "$windows_build/tools/debugview.exe" "$(windows_path "$trace")" \
        "$(windows_path "$dist/Morvix.exe")"; } >"$folder/dialog.log" 2>&1 &
    run=$!
    at_exit end_quietly "$run"
    wait_until 30 find_dialog || fail "the dialog does not appear (see $trace)"
    still_picture "$folder/1-welcome.png"
    press_return
    wait_until 60 grep -q 'Exit -> InstallDrivers()' "$trace" || fail "the interactive run does not finish (see $trace)"
    still_picture "$folder/2-done.png"
    press_return
    wait "$run" || fail "the interactive run ended with exit code $? (see $trace)"
}
