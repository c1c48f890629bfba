# shellcheck shell=bash
# Simulated adapters: what a system writes into its registry when it finds a card. Sourced after wine.sh.

# adapter_registration KEY-NAME: the text for a REGEDIT4 file that makes the network adapter of that name appear.
adapter_registration() {
    local key=$1 without_revision=${1%&REV_*} vendor_and_device=${1%&SUBSYS_*} vendor=${1%%&*}
    printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\%s\\3&11583659&0&C8]\n' "$key"
    printf '"HardwareID"=%s\n' "$(multi_string "PCI\\$key" "PCI\\$without_revision" "PCI\\$vendor_and_device")"
    printf '"CompatibleIDs"=%s\n' "$(multi_string "PCI\\$vendor&CC_020000" "PCI\\$vendor&CC_0200" "PCI\\CC_020000" "PCI\\CC_0200")"
    printf '"ClassGUID"="{4D36E972-E325-11CE-BFC1-08002BE10318}"\n"Class"="Net"\n\n'
}

# The texts as a REGEDIT4 file writes a REG_MULTI_SZ: their bytes, each text and the whole ended by a zero.
multi_string() {
    local bytes
    bytes=$({ printf '%s\0' "$@"; printf '\0'; } | od -An -v -tx1 | tr -s ' \n' ' ')
    bytes=${bytes# }
    bytes=${bytes% }
    printf 'hex(7):%s' "${bytes// /,}"
}

# import_registry FILE: merges a .reg file into the Windows in use.
import_registry() {
    run_limited 60 wine regedit /S "$(windows_path "$1")" || fail "the registry values of $1 cannot be written"
}
