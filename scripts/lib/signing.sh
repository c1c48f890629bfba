# shellcheck shell=bash
# Signatures of a release: by a key in a file or in a token, stamped by a time-stamping service. Sourced after common.sh and
# msi.sh.
# shellcheck disable=SC2154

# How to sign; see scripts/package. `sign_stamp` is the address of a service, or "none".
sign_pkcs12='' sign_pkcs11='' sign_key='' sign_certificate='' sign_password_file='' sign_stamp='' sign_unsigned_kit=''

signs() { [[ -n $sign_pkcs12$sign_pkcs11 ]]; }

# Whether what was given fits together: one key or none, a decision about the stamp, nothing left over.
signing_makes_sense() {
    if [[ -n $sign_pkcs11 ]]; then
        [[ -z $sign_pkcs12 && -n $sign_key && -n $sign_certificate && -n $sign_stamp ]]
    elif [[ -n $sign_pkcs12 ]]; then
        [[ -z $sign_key$sign_certificate && -n $sign_stamp ]]
    else
        [[ -z $sign_key$sign_certificate$sign_password_file$sign_stamp$sign_unsigned_kit ]]
    fi
}

# sign FILE...: signs programs, libraries or packages in place, when there is a key.
sign() {
    local file
    local -a arguments=(-h sha256 -n Morvix -time "$(source_date)")
    signs || return 0
    if [[ -n $sign_pkcs11 ]]; then
        arguments+=(-pkcs11module "$sign_pkcs11" -key "$sign_key" -certs "$sign_certificate")
    else
        arguments+=(-pkcs12 "$sign_pkcs12")
    fi
    if [[ -n $sign_password_file ]]; then
        arguments+=(-readpass "$sign_password_file")
    else
        arguments+=(-pass '')
    fi
    [[ $sign_stamp == none ]] || arguments+=(-ts "$sign_stamp")
    for file in "$@"; do
        run_limited 120 osslsigncode sign "${arguments[@]}" -in "$file" -out "$file.signed" >"$release_log" 2>&1 ||
            fail "cannot sign ${file##*/} (see $release_log)"
        # Written over, not moved: the file keeps its mode.
        cat -- "$file.signed" >"$file"
        rm -f -- "$file.signed"
    done
}

# sign_sums FILE: writes FILE.p7s, a signature that openssl verifies, and FILE.tsr, the stamp of the signature.
sign_sums() {
    # Without signed attributes there is no time in it: the same sums and key give the same bytes.
    local -a arguments=(-sign -binary -noattr -md sha256 -in "$1" -outform PEM -out "$1.p7s") password=(-passin pass:)
    local certificates=$1.certificates
    signs || return 0
    [[ -z $sign_password_file ]] || password=(-passin "file:$sign_password_file")
    if [[ -n $sign_pkcs11 ]]; then
        arguments+=(-engine pkcs11 -keyform engine -inkey "$sign_key")
        cp -- "$sign_certificate" "$certificates"
    else
        arguments+=(-inkey "$sign_pkcs12")
        run_limited 60 openssl pkcs12 -in "$sign_pkcs12" "${password[@]}" -nokeys -out "$certificates" >"$release_log" 2>&1 ||
            fail "cannot read $sign_pkcs12 (see $release_log)"
    fi
    # The first certificate is the signer's, those after it lead to its root.
    arguments+=(-signer "$certificates")
    awk '/^-----BEGIN CERTIFICATE-----/ { ++count } count > 1' "$certificates" >"$certificates.chain"
    [[ ! -s $certificates.chain ]] || arguments+=(-certfile "$certificates.chain")
    PKCS11_MODULE_PATH=$sign_pkcs11 run_limited 120 openssl cms "${arguments[@]}" "${password[@]}" >"$release_log" 2>&1 ||
        fail "cannot sign the sums (see $release_log)"
    rm -f -- "$certificates" "$certificates.chain"
    [[ $sign_stamp == none ]] || stamp "$1.p7s" "$1.tsr"
}

# stamp FILE ANSWER: has the service stamp the file.
stamp() {
    if ! run_limited 60 openssl ts -query -data "$1" -sha256 -cert -out "$2.query" >"$release_log" 2>&1 ||
        ! run_limited 120 curl --silent --show-error --fail --header 'Content-Type: application/timestamp-query' \
            --data-binary "@$2.query" --output "$2" "$sign_stamp" >"$release_log" 2>&1 ||
        ! run_limited 60 openssl ts -reply -in "$2" -text >"$release_log" 2>&1 || ! grep -q '^Status: Granted' "$release_log"; then
        fail "the service does not stamp ${1##*/} (see $release_log)"
    fi
    rm -f -- "$2.query"
}

# require_signed_kit FOLDER: a release that is signed has a kit that is signed too, or says in its name that it is not.
require_signed_kit() {
    local missing
    if signs && [[ -z $sign_unsigned_kit ]]; then
        missing=$(run_limited 60 python3 "$repo/scripts/lib/kit_catalogs.py" check "$1" 2>&1) ||
            fail "the kit is not signed; sign it first (docs/SIGNING.md), or give --unsigned-kit:
$missing"
    fi
}
