from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import RecordedAction


class ActionModule(RecordedAction):
    OPTIONS = {"path": {"required": True}}

    def act(self, options, state):
        note(state, "read keys")
        values = state["registry"]
        if not values:
            return {"changed": False, "exists": False}
        properties = {name: dict(value, raw_value=value["value"]) for name, value in values.items()}
        return {"changed": False, "exists": True, "properties": properties, "sub_keys": []}
