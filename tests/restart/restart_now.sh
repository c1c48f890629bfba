#!/usr/bin/env bash
# The dialog offers the restart and the user takes it: Return presses the button that has the focus.
set -euo pipefail
# shellcheck source=lib/session.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/session.sh"
# shellcheck source=lib/offered.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/offered.sh"

start_offer restart-now
promise "the offer alone leaves the programs running" session_goes_on
press_return
promise "the restart button comes to rest after the restart" wait_for_silence
promise "the restart button asks for the restart before the countdown does" restart_was_asked_for_early
promise "the restart button ends the programs that were running" session_has_ended
promise "the restart button restarts the machine" marker_written
end_promises
