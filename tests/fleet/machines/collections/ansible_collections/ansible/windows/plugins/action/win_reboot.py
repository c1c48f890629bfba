from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import RecordedAction


class ActionModule(RecordedAction):
    OPTIONS = {"msg": {}, "reboot_timeout": {"type": "float"}}

    def act(self, options, state):
        note(state, "restart")
        return {"changed": True, "rebooted": True, "elapsed": 1}
