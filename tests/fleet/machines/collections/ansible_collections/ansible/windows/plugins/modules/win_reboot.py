from ansible.module_utils.basic import AnsibleModule
from ansible_collections.ansible.windows.plugins.module_utils.machine import machine, note

module = AnsibleModule({"msg": {}, "reboot_timeout": {"type": "float"}})
with machine() as state:
    note(state, "restart")
module.exit_json(changed=True, rebooted=True, elapsed=1)
