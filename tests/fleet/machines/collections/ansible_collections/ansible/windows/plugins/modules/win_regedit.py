from ansible.module_utils.basic import AnsibleModule
from ansible_collections.ansible.windows.plugins.module_utils.machine import RESULTS_KEY, machine, note

module = AnsibleModule(
    {"path": {"required": True}, "name": {"required": True}, "state": {"choices": ["absent"], "required": True}}
)
if module.params["path"] != RESULTS_KEY:
    module.fail_json(msg="nobody recorded " + module.params["path"])
with machine() as state:
    changed = state["registry"].pop(module.params["name"], None) is not None
    note(state, "remove " + module.params["name"])
module.exit_json(changed=changed)
