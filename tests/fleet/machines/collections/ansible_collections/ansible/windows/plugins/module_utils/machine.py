"""A recorded machine: a JSON file that stands for a host."""

import fcntl
import json
from contextlib import contextmanager


@contextmanager
def machine(path):
    """The machine's state, for reading and changing; nobody else has it meanwhile."""
    with open(path, "r+") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        state = json.load(file)
        yield state
        file.seek(0)
        json.dump(state, file, indent=1)
        file.truncate()


def note(state, what):
    state.setdefault("journal", []).append(what)
