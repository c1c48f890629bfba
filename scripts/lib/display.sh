# shellcheck shell=bash
# An X display of the script's own, on a number that nobody else uses. (xvfb-run leaves its server running when it is killed
# outright, and two of them may pick the same number.) Sourced after common.sh.
# shellcheck disable=SC2154

# Starts the display and exports DISPLAY; the server is stopped when the shell ends, even by an outright kill.
start_display() {
    local pipe number
    pipe=$(mktemp -u -- "$build_dir/display.XXXXXX")
    mkfifo -- "$pipe"
    # Opened for both directions, so that a server that dies at once does not block the read for ever.
    exec {display_pipe}<>"$pipe"
    rm -f -- "$pipe"
    {
        release_lock
        exec setpriv --pdeathsig TERM Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset
    } 3>&"$display_pipe" >/dev/null 2>"$build_dir/display.log" &
    at_exit stop_display "$!"
    read -r -t 30 -u "$display_pipe" number || fail "the X server does not start (see $build_dir/display.log)"
    exec {display_pipe}>&-
    export DISPLAY=:$number
    unset XAUTHORITY WAYLAND_DISPLAY
}

stop_display() {
    kill -TERM "$1" 2>/dev/null
    wait "$1" 2>/dev/null
}
