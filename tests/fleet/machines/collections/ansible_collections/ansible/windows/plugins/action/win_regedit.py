from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import RecordedAction


class ActionModule(RecordedAction):
    OPTIONS = {
        "path": {"required": True},
        "name": {"required": True},
        "state": {"choices": ["absent"], "required": True},
    }

    def act(self, options, state):
        note(state, "remove " + options["name"])
        return {"changed": state["registry"].pop(options["name"], None) is not None}
