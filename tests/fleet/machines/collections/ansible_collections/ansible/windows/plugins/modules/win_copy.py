import os

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.ansible.windows.plugins.module_utils.machine import machine, note, refuse

module = AnsibleModule({"src": {"required": True}, "dest": {"required": True}})
with machine() as state:
    refuse(module, state, "win_copy")
    folder = module.params["dest"].rpartition("\\")[0]
    if folder not in state.get("folders", []):
        module.fail_json(msg="there is no folder " + folder)
    size = os.path.getsize(module.params["src"])
    files = state.setdefault("files", {})
    changed = files.get(module.params["dest"]) != size
    files[module.params["dest"]] = size
    note(state, "copy")
module.exit_json(changed=changed)
