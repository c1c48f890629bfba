"""Connection to a recorded machine: runs everything here, on the machine's own file, and is lost when the record says so."""

import os

from ansible.errors import AnsibleConnectionFailure
from ansible.plugins.connection.local import Connection as LocalConnection
from ansible_collections.ansible.windows.plugins.module_utils.machine import machine, note

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

    def machine_path(self):
        return os.path.join(os.environ["RECORDED_MACHINES"], self._play_context.remote_addr + ".json")

    def attempt(self):
        """Fails while the connection is lost; each attempt counts."""
        with machine(self.machine_path()) as state:
            lost = state.get("lost", 0)
            if lost > 0:
                state["lost"] = lost - 1
                note(state, "no connection")
            journal = list(state.get("journal", []))
            loses_answer = state.get("loses_answer_of_start", False)
        if lost > 0:
            raise AnsibleConnectionFailure("no connection")
        return loses_answer and "install" not in journal

    def exec_command(self, cmd, in_data=None, sudoable=True):
        loses_answer = self.attempt() and "async_wrapper" in cmd and "chmod" not in cmd
        result = super().exec_command(
            "RECORDED_MACHINE=" + self.machine_path() + " " + cmd, in_data=in_data, sudoable=sudoable
        )
        if loses_answer:
            raise AnsibleConnectionFailure("connection lost while the installation was starting")
        return result

    def put_file(self, in_path, out_path):
        self.attempt()
        super().put_file(in_path, out_path)
