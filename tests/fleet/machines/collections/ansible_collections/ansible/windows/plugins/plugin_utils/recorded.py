"""What stands for a Windows module: it does to a recorded machine what the real one does to a host."""

from ansible.plugins.action import ActionBase

from ansible_collections.ansible.windows.plugins.module_utils.machine import machine

RESULTS_KEY = "HKLM:\\SOFTWARE\\Norda\\Basedrivers"
REGISTRATIONS = "HKLM:\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"
LIBRARY = "HKLM:\\SOFTWARE\\Norda\\NetInst"


class RecordedAction(ActionBase):
    OPTIONS = {}
    # What a module that only looks is allowed to do in check mode.
    ONLY_LOOKS = False

    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        dummy, options = self.validate_argument_spec(argument_spec=self.OPTIONS)
        self._connection.attempt()
        path = options.get("path", RESULTS_KEY)
        with machine(self._connection.machine_path()) as state:
            refusal = state.get("refuses", {}).get(self._task.action.rpartition(".")[2])
            if refusal:
                result.update(failed=True, msg=refusal)
            elif path.startswith("HKLM") and path not in (RESULTS_KEY, LIBRARY) and not path.startswith(REGISTRATIONS):
                result.update(failed=True, msg="nobody recorded " + path)
            elif self._play_context.check_mode and not self.ONLY_LOOKS:
                result.update(failed=True, msg=self._task.action + " in check mode is not recorded")
            else:
                result.update(self.act(options, state))
        return result
