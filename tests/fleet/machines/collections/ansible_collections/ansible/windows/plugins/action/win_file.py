from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import RecordedAction


class ActionModule(RecordedAction):
    OPTIONS = {"path": {"required": True}, "state": {"choices": ["directory"], "required": True}}

    def act(self, options, state):
        note(state, "folder")
        folders = state.setdefault("folders", [])
        changed = options["path"] not in folders
        if changed:
            folders.append(options["path"])
        return {"changed": changed}
