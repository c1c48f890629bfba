#!/usr/bin/env bash
# "/s" on a machine without an adapter: there is no reason to restart.
set -euo pipefail
# shellcheck source=lib/session.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/session.sh"

start_session nothing-found
run_morvix /s
promise "/s without an adapter ends with exit code 0" exit_code_is_zero
promise "/s without an adapter leaves the programs running" session_goes_on
promise "the session comes to rest when its programs have ended" end_bystander
promise "/s without an adapter does not restart" no_marker_written
begin_another_session
promise "a restart of this machine would have been seen" marker_written
end_promises
