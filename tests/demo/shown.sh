#!/usr/bin/env bash
# shellcheck disable=SC2154,SC2317 # promises call functions by name
# The demonstration, as the first page promises it: three adapters, three drivers, the result keys, the pictures.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"

log=$build_dir/docs/demo.log
mkdir -p -- "$build_dir/docs"

printed() { grep -q -- "$1" "$log"; }
printed_times() { [[ $(grep -c -- "$2" "$log") == "$1" ]]; }
not_empty() { [[ -s $1 ]]; }

demonstrate() { run_limited 2000 "$repo/scripts/demo" >"$log" 2>&1; }

promise "scripts/demo succeeds" demonstrate
promise "scripts/demo shows three adapters, each with a driver and its version" printed_times 3 '^  driver .*\.sys version [0-9]'
promise "scripts/demo shows the result keys" printed 'Install *REG_EXPAND_SZ *SUCCESS'
promise "scripts/demo leaves the trace" not_empty "$build_dir/demo/trace.txt"
promise "scripts/demo leaves pictures of the dialog" not_empty "$build_dir/demo/2-done.png"
end_promises
