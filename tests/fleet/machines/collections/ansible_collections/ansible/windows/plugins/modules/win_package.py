"""A module of its own, not a part of Ansible's process: it goes on in the background while the connection is lost."""

import os
import time

from ansible.module_utils.basic import AnsibleModule
from ansible_collections.ansible.windows.plugins.module_utils.machine import machine, note

PATH = os.environ["RECORDED_MACHINE"]


def properties_of(command_line):
    """The properties as Windows Installer reads them: blanks part them outside quotes, and a doubled quote within is one."""
    words, word, quoted, at = [], "", False, 0
    while at < len(command_line):
        character = command_line[at]
        if character == '"' and quoted and command_line[at + 1 : at + 2] == '"':
            word += character
            at += 1
        elif character == '"':
            quoted = not quoted
        elif character == " " and not quoted:
            words.append(word)
            word = ""
        else:
            word += character
        at += 1
    return dict(each.split("=", 1) for each in words + [word] if each)


def looks_at(path):
    """How often the results have been read so far."""
    with machine(path) as state:
        return state.get("journal", []).count("read keys")


module = AnsibleModule(
    {
        "path": {"required": True},
        "arguments": {"type": "raw"},
        "log_path": {},
        "state": {"choices": ["present"], "default": "present"},
    },
    supports_check_mode=True,
)
with machine(PATH) as state:
    if module.params["path"] not in state.get("files", {}):
        module.fail_json(msg="there is no package " + module.params["path"])
    wanted = not state["product_installed"]
    if not module.check_mode:
        note(state, "install")
        state["properties"] = properties_of(module.params["arguments"] or "")
        # From here on the machine can only be reached after so many attempts.
        state["lost"] = state.get("loses", 0)
    recorded = state.get("installation", {})
    # The engine may register the product long before the drivers are bound.
    state["product_installed"] = state["product_installed"] or recorded.get("registers_first", False)
if module.check_mode or not wanted:
    module.exit_json(changed=wanted, reboot_required=False)

time.sleep(recorded.get("seconds", 0))
# It may last until the results were looked at so often; the limit only guards against hanging.
end = time.monotonic() + 300
while looks_at(PATH) < recorded.get("until_looks", 0) and time.monotonic() < end:
    time.sleep(0.1)
with machine(PATH) as state:
    # The program takes the request of an earlier run back when it starts.
    if recorded.get("program_runs", True):
        state["registry"].pop("RebootNeeded", None)
    state["registry"].update(recorded.get("registry", {}))
    code = recorded.get("code", 0)
    state["product_installed"] = code in (0, 3010)
    note(state, "installed")
if code not in (0, 3010):
    module.fail_json(msg="unexpected rc from the package: %d" % code, rc=code, changed=True, reboot_required=False)
module.exit_json(changed=True, rc=code, reboot_required=code == 3010)
