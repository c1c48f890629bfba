#!/usr/bin/env bash
# "/s /nr": the machine never restarts, although a driver was installed.
set -euo pipefail
# shellcheck source=lib/session.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/session.sh"

start_session suppressed 'VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01'
run_morvix /s /nr
promise "/s /nr ends with exit code 0" exit_code_is_zero
promise "/s /nr installs the driver" driver_installed
promise "/s /nr leaves the programs running" session_goes_on
promise "the session comes to rest when its programs have ended" end_bystander
promise "/s /nr does not restart" no_marker_written
begin_another_session
promise "a restart of this machine would have been seen" marker_written
end_promises
