from ansible_collections.ansible.windows.plugins.module_utils.machine import note
from ansible_collections.ansible.windows.plugins.plugin_utils.recorded import RecordedAction


class ActionModule(RecordedAction):
    """Knows one script: the one that asks for a file's signature."""

    OPTIONS = {"script": {"required": True}, "parameters": {"type": "dict", "required": True}}

    def act(self, options, state):
        if "Get-AuthenticodeSignature -LiteralPath $Path" not in options["script"]:
            return {"failed": True, "msg": "nobody recorded this script"}
        if options["parameters"]["Path"] not in state.get("files", {}):
            return {"failed": True, "msg": "there is no file " + options["parameters"]["Path"]}
        note(state, "ask for signature")
        return {"changed": False, "result": state.get("signature", {"status": "NotSigned", "publisher": ""})}
