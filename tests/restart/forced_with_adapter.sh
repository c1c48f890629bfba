#!/usr/bin/env bash
# "/s /r" with an adapter: the driver is installed first, then the machine restarts.
set -euo pipefail
# shellcheck source=lib/session.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/session.sh"

start_session forced-with-adapter 'VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01'
run_morvix /s /r
promise "/s /r comes to rest after the restart" wait_for_silence
promise "/s /r installs the driver" driver_installed
promise "/s /r restarts after the installation" marker_written
end_promises
