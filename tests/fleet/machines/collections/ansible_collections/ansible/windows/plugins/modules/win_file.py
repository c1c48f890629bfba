from ansible.module_utils.basic import AnsibleModule
from ansible_collections.ansible.windows.plugins.module_utils.machine import machine, note, refuse

module = AnsibleModule({"path": {"required": True}, "state": {"choices": ["directory"], "required": True}})
with machine() as state:
    refuse(module, state, "win_file")
    folders = state.setdefault("folders", [])
    changed = module.params["path"] not in folders
    if changed:
        folders.append(module.params["path"])
    note(state, "folder")
module.exit_json(changed=changed)
