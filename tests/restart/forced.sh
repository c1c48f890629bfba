#!/usr/bin/env bash
# "/s /r": the machine restarts whatever was found.
set -euo pipefail
# shellcheck source=lib/session.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/session.sh"

start_session forced
run_morvix /s /r
promise "/s /r comes to rest after the restart" wait_for_silence
promise "/s /r ends the programs that were running" session_has_ended
promise "/s /r restarts although no adapter was found" marker_written
end_promises
