# shellcheck shell=bash
# Test scripts: each prints one line for each promise, "ok - ..." or "not ok - ...", and fails when one is broken.

broken=0

# promise TEXT COMMAND...: the promise is kept when the command succeeds.
promise() {
    local text=$1
    shift
    if "$@"; then
        printf 'ok - %s\n' "$text"
    else
        printf 'not ok - %s\n' "$text"
        broken=1
    fi
}

end_promises() { exit "$broken"; }
