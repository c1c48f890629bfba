from ansible.module_utils.basic import AnsibleModule
from ansible_collections.ansible.windows.plugins.module_utils.machine import RESULTS_KEY, machine, note

module = AnsibleModule({"path": {"required": True}}, supports_check_mode=True)
if module.params["path"] != RESULTS_KEY:
    module.fail_json(msg="nobody recorded " + module.params["path"])
with machine() as state:
    note(state, "read keys")
    values = state["registry"]
if not values:
    module.exit_json(changed=False, exists=False)
properties = {name: dict(value, raw_value=value["value"]) for name, value in values.items()}
module.exit_json(changed=False, exists=True, properties=properties, sub_keys=[])
