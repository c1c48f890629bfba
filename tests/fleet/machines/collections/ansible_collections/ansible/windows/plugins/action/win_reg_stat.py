from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import LIBRARY, REGISTRATIONS, RecordedAction


class ActionModule(RecordedAction):
    OPTIONS = {"path": {"required": True}}
    ONLY_LOOKS = True

    def act(self, options, state):
        if options["path"].startswith(REGISTRATIONS):
            note(state, "ask for " + options["path"][len(REGISTRATIONS) :])
            return {"changed": False, "exists": state["product_installed"]}
        note(state, "read keys")
        values = state.get("library", {}) if options["path"] == LIBRARY else state["registry"]
        if not values:
            return {"changed": False, "exists": False}
        properties = {name: dict(value, raw_value=value["value"]) for name, value in values.items()}
        return {"changed": False, "exists": True, "properties": properties, "sub_keys": []}
