"""Connection to a recorded machine: runs everything here, on the machine's own file, and is lost when the record says so."""

import fcntl
import json
import os

from ansible.errors import AnsibleConnectionFailure
from ansible.plugins.connection.local import Connection as LocalConnection

DOCUMENTATION = """
    name: recorded
    short_description: a recorded machine
    description: Runs modules against a recorded machine.
    author: Norda
    extends_documentation_fragment:
        - connection_pipelining
"""


class Connection(LocalConnection):
    transport = "recorded"

    def _path(self):
        return os.path.join(os.environ["RECORDED_MACHINES"], self._play_context.remote_addr + ".json")

    def _attempt(self):
        """Fails while the connection is lost; each attempt counts."""
        with open(self._path(), "r+") as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            state = json.load(file)
            lost = state.get("lost", 0)
            if lost > 0:
                state["lost"] = lost - 1
                state.setdefault("journal", []).append("no connection")
                file.seek(0)
                json.dump(state, file, indent=1)
                file.truncate()
        if lost > 0:
            raise AnsibleConnectionFailure("no connection")
        return state

    def exec_command(self, cmd, in_data=None, sudoable=True):
        state = self._attempt()
        starts = "async_wrapper" in cmd and "chmod" not in cmd and "install" not in state.get("journal", [])
        result = super().exec_command(
            "RECORDED_MACHINE=" + self._path() + " " + cmd, in_data=in_data, sudoable=sudoable
        )
        if starts and state.get("loses_answer_of_start"):
            raise AnsibleConnectionFailure("connection lost while the installation was starting")
        return result

    def put_file(self, in_path, out_path):
        self._attempt()
        super().put_file(in_path, out_path)
