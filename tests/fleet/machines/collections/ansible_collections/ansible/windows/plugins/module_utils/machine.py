"""A recorded machine: a JSON file that the modules read and change, named by the connection."""

import fcntl
import json
import os
from contextlib import contextmanager

RESULTS_KEY = "HKLM:\\SOFTWARE\\Norda\\Basedrivers"


@contextmanager
def machine():
    """The machine's state, for reading and changing; nobody else has it meanwhile."""
    path = os.environ["RECORDED_MACHINE"]
    with open(path, "r+") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        state = json.load(file)
        yield state
        file.seek(0)
        json.dump(state, file, indent=1)
        file.truncate()


def note(state, what):
    state.setdefault("journal", []).append(what)


def refuse(module, state, name):
    """Ends the module as failed when the machine is recorded as refusing it."""
    message = state.get("refuses", {}).get(name)
    if message:
        module.fail_json(msg=message)
