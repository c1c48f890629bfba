# shellcheck shell=bash
# Test-signed kits for a lab: the sample kit, for another card if need be, with its catalogs signed. Sourced after common.sh,
# msi.sh and signing.sh.
# shellcheck disable=SC2034,SC2154

# The vendor whose adapters the program serves.
served_vendor=5D1A
# The INF files whose card is replaced, and that card.
replaced_infs='ngea*.inf' replaced_card='VEN_5D1A&DEV_1A2B'

# read_card_ids TEXT: fills card_device, card_subsystem and card_revision from a hardware ID; the last two may be empty.
read_card_ids() {
    [[ ${1^^} =~ ^(PCI\\)?VEN_([0-9A-F]{4})\&DEV_([0-9A-F]{4})(\&SUBSYS_([0-9A-F]{8})(\&REV_([0-9A-F]{2}))?)?$ ]] ||
        fail "\"$1\" is not a hardware ID such as VEN_5D1A&DEV_7E57, VEN_5D1A&DEV_7E57&SUBSYS_00075D1A or the same with &REV_07"
    [[ ${BASH_REMATCH[2]} == "$served_vendor" ]] ||
        fail "Morvix ignores cards of vendor ${BASH_REMATCH[2]}: let the hypervisor give the card vendor $served_vendor (docs/REAL-CARD.md)"
    card_device=${BASH_REMATCH[3]} card_subsystem=${BASH_REMATCH[5]} card_revision=${BASH_REMATCH[7]}
}

# require_free_device FOLDER: no INF file of the kit but those to be changed lists the device.
require_free_device() {
    local inf
    while IFS= read -r -d '' inf; do
        ! grep -q "VEN_$served_vendor&DEV_$card_device" "$inf" ||
            fail "the kit lists VEN_$served_vendor&DEV_$card_device already, in ${inf##*/}: choose another device number"
    done < <(find "$1" -iname '*.inf' ! -name "$replaced_infs" -print0 | LC_ALL=C sort -z)
}

# set_card FOLDER: the kit's gigabit INF files list the card that was read, in each form that its ID has.
set_card() {
    local -a changes=()
    require_free_device "$1"
    [[ -n $card_revision ]] || changes+=(-e '/, PCI.*&REV_/d')
    [[ -n $card_subsystem ]] || changes+=(-e '/, PCI.*&SUBSYS_/d')
    find "$1" -name "$replaced_infs" -exec sed -i -E "${changes[@]}" \
        -e "s/$replaced_card/VEN_$served_vendor\&DEV_$card_device/" -e "s/&SUBSYS_[0-9A-F]{8}/\&SUBSYS_$card_subsystem/" \
        -e "s/&REV_[0-9A-F]{2}/\&REV_$card_revision/" -- {} +
    [[ -z $(find "$1" -name "$replaced_infs" -exec grep -L "&DEV_$card_device" -- {} +) ]] || fail "the kit does not list $replaced_card"
}

# make_lab_certificate FOLDER: a certificate for code signing as FOLDER/lab.pem, and with its key as FOLDER/lab.p12. It is
# its own root, and cannot sign other certificates.
make_lab_certificate() {
    (
        cd -- "$1" && openssl req -x509 -newkey rsa:3072 -sha256 -nodes -days 365 -subj '/CN=Morvix lab' \
            -addext basicConstraints=critical,CA:false -addext keyUsage=critical,digitalSignature \
            -addext extendedKeyUsage=codeSigning -keyout lab.key -out lab.pem &&
            openssl pkcs12 -export -inkey lab.key -in lab.pem -out lab.p12 -passout pass: && rm -- lab.key
    ) >"$release_log" 2>&1 || fail "cannot make a certificate (see $release_log)"
}

# sign_catalogs FOLDER: makes the catalogs of the INF files below the folder for the files as they are now, and signs them.
sign_catalogs() {
    local catalog
    make_catalogs "$1" >"$release_log" 2>&1 || fail "cannot make the catalogs (see $release_log)"
    while IFS= read -r -d '' catalog; do
        sign "$catalog"
    done < <(find "$1" -name '*.cat' -print0 | LC_ALL=C sort -z)
}

# make_lab_kit KIT TARGET: the kit, a copy of the shippable folder, as TARGET/kit with signed catalogs, and TARGET/lab.cer,
# the certificate that its machines must trust. The key is gone then: nothing else can be signed for those machines. When
# read_card_ids has read a card, the kit is for it.
make_lab_kit() {
    local new=$2.new
    release_log=$build_dir/lab-kit.log
    rm -rf -- "$new"
    mkdir -p -- "$new/kit"
    at_exit rm -rf -- "$new"
    find "$1" -mindepth 1 -maxdepth 1 ! -name '*.msi' -exec cp -a -t "$new/kit" -- {} +
    [[ -z ${card_device:-} ]] || set_card "$new/kit/Drv"
    make_lab_certificate "$new"
    sign_pkcs12=$new/lab.p12 sign_stamp=none
    sign_catalogs "$new/kit/Drv"
    require_signed_kit "$new/kit"
    openssl x509 -in "$new/lab.pem" -outform DER -out "$new/lab.cer" || fail "cannot write the certificate"
    rm -f -- "$new/lab.p12" "$new/lab.pem"
    mv -- "$new" "$2"
    rm -f -- "$release_log"
}
