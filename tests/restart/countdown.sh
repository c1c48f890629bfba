#!/usr/bin/env bash
# The dialog offers the restart and nobody answers: the 21st tick restarts.
set -euo pipefail
# shellcheck source=lib/session.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/session.sh"
# shellcheck source=lib/offered.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/offered.sh"

start_offer countdown
started=$SECONDS
promise "the offer alone leaves the programs running" session_goes_on
promise "the countdown comes to rest after the restart" wait_for_silence
promise "the countdown takes twenty seconds and more" test "$((SECONDS - started))" -ge 20
promise "the countdown asks for the restart on its 21st tick" twenty_one_ticks
promise "the countdown ends the programs that were running" session_has_ended
promise "the countdown restarts the machine" marker_written
end_promises
