from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import LIBRARY, RecordedAction


class ActionModule(RecordedAction):
    OPTIONS = {
        "path": {"required": True},
        "name": {"required": True},
        "state": {"choices": ["absent"], "required": True},
    }

    def act(self, options, state):
        note(state, "remove " + options["name"])
        values = state.get("library", {}) if options["path"] == LIBRARY else state["registry"]
        return {"changed": values.pop(options["name"], None) is not None}
