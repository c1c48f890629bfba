# shellcheck shell=bash
# Machines as registry exports, for the tests of morvix-kit. Sourced after common.sh.
# shellcheck disable=SC2034 # the cards are for those who source this

gigabit_card='VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01'
other_card='VEN_5D1A&DEV_1B3C&SUBSYS_00015D1A&REV_02'
served_id='PCI\VEN_5D1A&CC_020000'

# hex_list TEXT: the text as a list of texts in UTF-16, in the notation of exports.
hex_list() { printf '%s\0\0' "$1" | iconv -f UTF-8 -t UTF-16LE | od -An -v -tx1 | tr -d '\n' | sed 's/^ //; s/ /,/g'; }

# write_export FILE VERSION PRODUCT CARD...: an export of an x64 machine with these cards, as reg.exe writes it.
write_export() {
    local file=$1 version=$2 product=$3 card
    shift 3
    {
        printf 'Windows Registry Editor Version 5.00\n\n'
        printf '[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion]\n"CurrentVersion"="%s"\n"CurrentBuildNumber"="9200"\n\n' "$version"
        printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\ProductOptions]\n"ProductType"="%s"\n\n' "$product"
        printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment]\n"PROCESSOR_ARCHITECTURE"="AMD64"\n\n'
        printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage]\n"ACP"="1252"\n\n'
        printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI]\n\n'
        for card in "$@"; do
            printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\%s]\n\n' "$card"
            printf '[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\%s\\3&11583659&0&18]\n' "$card"
            # shellcheck disable=SC2154
            printf '"CompatibleIDs"=hex(7):%s\n\n' "$(hex_list "$served_id")"
        done
    } | sed 's/$/\r/' | { printf '\xff\xfe'; iconv -f UTF-8 -t UTF-16LE; } >"$file"
}
