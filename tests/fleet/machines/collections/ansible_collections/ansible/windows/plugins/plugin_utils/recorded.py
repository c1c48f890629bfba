"""What stands for a Windows module: it does to a recorded machine what the real one does to a host."""

from ansible.plugins.action import ActionBase

from ansible_collections.ansible.windows.plugins.module_utils.machine import machine

RESULTS_KEY = "HKLM:\\SOFTWARE\\Norda\\Basedrivers"


class RecordedAction(ActionBase):
    OPTIONS = {}

    def run(self, tmp=None, task_vars=None):
        result = super().run(tmp, task_vars)
        dummy, options = self.validate_argument_spec(argument_spec=self.OPTIONS)
        self._connection.attempt()
        with machine(self._connection.machine_path()) as state:
            refusal = state.get("refuses", {}).get(self._task.action.rpartition(".")[2])
            if refusal:
                result.update(failed=True, msg=refusal)
            elif options.get("path", RESULTS_KEY).startswith("HKLM") and options.get("path", RESULTS_KEY) != RESULTS_KEY:
                result.update(failed=True, msg="nobody recorded " + options["path"])
            else:
                result.update(self.act(options, state))
        return result
