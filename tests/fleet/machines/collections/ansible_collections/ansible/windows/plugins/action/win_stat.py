from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import RecordedAction


class ActionModule(RecordedAction):
    OPTIONS = {"path": {"required": True}, "checksum_algorithm": {"choices": ["sha256"], "required": True}}
    ONLY_LOOKS = True

    def act(self, options, state):
        note(state, "compare")
        checksum = state.get("files", {}).get(options["path"])
        return {"changed": False, "stat": {"exists": True, "checksum": checksum} if checksum else {"exists": False}}
