#!/usr/bin/env bash
# Installer and planning tool decide with the same code: the linker's maps show it.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"

[[ -f $host_build/link-maps/morvix-kit.map ]] || fail "there is no map of morvix-kit in $host_build: run scripts/build host first"
promise "each decision is defined once, and Morvix.exe, NetInst.dll and morvix-kit have it from there" \
    run_limited 120 python3 "$tests/decisions.py" "$host_build" "$windows_build"
end_promises
