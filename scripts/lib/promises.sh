# shellcheck shell=bash
# Test scripts: each says its promises in the Test Anything Protocol, and fails when one is broken. (Bats would run each
# promise in a process of its own; these look one after the other at one machine, which the shell knows.)

promises=0
broken=0

# promise TEXT COMMAND...: the promise is kept when the command succeeds.
promise() {
    local text=$1
    shift
    promises=$((promises + 1))
    if "$@"; then
        printf 'ok - %s\n' "$text"
    else
        printf 'not ok - %s\n' "$text"
        broken=1
    fi
}

# same FOUND WANTED: the texts are equal.
same() { [[ $1 == "$2" ]] || { printf '  "%s" instead of "%s"\n' "$1" "$2"; return 1; }; }

# Ends the script. A script that ends elsewhere has no plan, and that is a failure.
end_promises() {
    printf '1..%d\n' "$promises"
    exit "$broken"
}
