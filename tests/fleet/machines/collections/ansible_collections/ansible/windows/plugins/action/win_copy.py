import hashlib

from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import RecordedAction


class ActionModule(RecordedAction):
    OPTIONS = {"src": {"required": True}, "dest": {"required": True}}

    def act(self, options, state):
        folder = options["dest"].rpartition("\\")[0]
        if folder not in state.get("folders", []):
            return {"failed": True, "msg": "there is no folder " + folder}
        note(state, "copy")
        with open(options["src"], "rb") as file:
            checksum = hashlib.sha256(file.read()).hexdigest()
        files = state.setdefault("files", {})
        changed = files.get(options["dest"]) != checksum
        # Somebody else may write to the folder.
        files[options["dest"]] = state.get("exchanged_for", checksum)
        return {"changed": changed}
