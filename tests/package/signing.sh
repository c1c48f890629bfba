#!/usr/bin/env bash
# Signed releases: with throw-away certificates, a token in software and a time-stamping service of this machine, everything
# is signed and stamped; a kit without catalogs is not called signed.
# shellcheck disable=SC2034,SC2154,SC2317 # the signing library reads what is set here; promises call functions by name
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"
# shellcheck source=lib/tables.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/tables.sh"
# shellcheck source=../../scripts/lib/documents.sh
source "$lib/documents.sh"
# shellcheck source=lib/release.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/release.sh"
# shellcheck source=../../scripts/lib/lab_kit.sh
source "$lib/lab_kit.sh"

name=Morvix-$(product_version)
token_library=/usr/lib/softhsm/libsofthsm2.so

make_root() {
    openssl req -x509 -newkey rsa:2048 -nodes -days 36500 -subj '/CN=Root' -keyout "$work/Root.key" -out "$work/Root.pem" 2>/dev/null
}

# make_certificate NAME PURPOSE: a certificate that leads to the root, with the root after it, and its key.
make_certificate() {
    openssl req -x509 -newkey rsa:2048 -nodes -days 36500 -subj "/CN=$1" -CA "$work/Root.pem" -CAkey "$work/Root.key" \
        -addext basicConstraints=CA:false -addext "extendedKeyUsage=$2" -keyout "$work/$1.key" -out "$work/$1.pem" 2>/dev/null
    cat -- "$work/Root.pem" >>"$work/$1.pem"
}

make_pkcs12() {
    printf 'not a secret' >"$work/password"
    openssl pkcs12 -export -inkey "$work/Throw-away.key" -in "$work/Throw-away.pem" -out "$work/certificate.p12" \
        -passout "file:$work/password"
}

make_token() {
    mkdir -- "$work/tokens"
    printf 'directories.tokendir = %s\nlog.level = ERROR\n' "$work/tokens" >"$work/softhsm.conf"
    export SOFTHSM2_CONF=$work/softhsm.conf
    printf '567890' >"$work/pin"
    softhsm2-util --init-token --free --label maker --so-pin 123456 --pin 567890 >/dev/null
    softhsm2-util --import "$work/Throw-away.key" --token maker --label release --id 01 --pin 567890 >/dev/null
}

# Starts the service; `stamper` is its address.
start_stamper() {
    mkdir -- "$work/tsa"
    cp -- "$work/Stamper.pem" "$work/Stamper.key" "$work/tsa/"
    printf '01\n' >"$work/tsa/serial"
    cat >"$work/tsa/tsa.cnf" <<'END'
[tsa]
default_tsa = service
[service]
serial = serial
signer_cert = Stamper.pem
signer_key = Stamper.key
signer_digest = sha256
default_policy = 1.2.3.4
digests = sha256
accuracy = secs:1
ess_cert_id_chain = no
END
    python3 "$repo/tests/package/lib/time_stamper.py" "$work/tsa" &
    at_exit end_quietly $!
    local tries
    for ((tries = 0; tries < 300; ++tries)); do
        [[ ! -e $work/tsa/address ]] || break
        sleep 0.1
    done
    stamper=$(<"$work/tsa/address")
}

# signed_kit FOLDER: a copy of the kit of one system with its catalogs signed.
signed_kit() {
    mkdir -p -- "$1/Drv"
    cp -a -- "$dist/Drv/Win7x64" "$1/Drv/"
    sign_catalogs "$1/Drv"
}

# The catalogs that the tests make are ones that another program accepts.
catalogs_are_sound() {
    local driver
    for driver in "$1"/Drv/Win7x64/*.sys; do
        run_limited 60 osslsigncode verify -catalog "${driver%.sys}.cat" -CAfile "$work/Root.pem" -in "$driver" >"$work/verify.log" 2>&1 ||
            return 1
    done
}

# finds_in_kit TEXT COMMAND...: after this change of a signed kit, a signed release is refused with this text.
finds_in_kit() {
    local text=$1
    rm -rf -- "$work/spoilt"
    cp -a -- "$work/kit" "$work/spoilt"
    (cd -- "$work/spoilt/Drv/Win7x64" && "${@:2}") || return 1
    (require_signed_kit "$work/spoilt") >"$work/refusal" 2>&1 && return 1
    grep -qF -- "$text" "$work/refusal" && grep -qF 'the kit is not signed' "$work/refusal"
}

has_good_signature() {
    run_limited 60 osslsigncode verify -CAfile "$work/Root.pem" -TSA-CAfile "$work/Root.pem" -in "$1" >"$work/verify.log" 2>&1
}

is_stamped() { has_good_signature "$1" && grep -q '^Timestamp Server Signature verification: ok' "$work/verify.log"; }

is_not_signed() { ! has_good_signature "$1" && grep -qE 'No signature found|has no signature' "$work/verify.log"; }

# all_are CHECK FILE...
all_are() {
    local file
    (($# > 1)) || return 1
    for file in "${@:2}"; do
        "$1" "$file" || { say "  not so: ${file##*/}"; return 1; }
    done
}

signature_of_a_changed_file_is_bad() {
    local size
    cp -- "$1" "$work/changed"
    size=$(stat -c %s "$1")
    printf 'X' | dd of="$work/changed" bs=1 seek="$((size / 3))" conv=notrunc status=none
    ! cmp -s -- "$1" "$work/changed" && ! has_good_signature "$work/changed"
}

sums_are_signed() {
    run_limited 60 openssl cms -verify -binary -inform PEM -in "$1/SHA256SUMS.p7s" -content "$1/SHA256SUMS" \
        -CAfile "$work/Root.pem" -purpose any -out "$work/verified" >"$work/verify.log" 2>&1
}

signature_of_the_sums_is_stamped() {
    run_limited 60 openssl ts -verify -data "$1/SHA256SUMS.p7s" -in "$1/SHA256SUMS.tsr" -CAfile "$work/Root.pem" >"$work/verify.log" 2>&1
}

signature_of_changed_sums_is_bad() {
    rm -rf -- "$work/changed-sums"
    mkdir -- "$work/changed-sums"
    cp -- "$1"/SHA256SUMS* "$work/changed-sums/"
    sed -i 's/^./x/' "$work/changed-sums/SHA256SUMS"
    sums_are_signed "$1" && ! sums_are_signed "$work/changed-sums"
}

signs_the_same_twice() {
    local turn
    for turn in 1 2; do
        cp -- "$dist/Morvix.exe" "$work/signed-$turn.exe"
        printf 'sums' >"$work/sums-$turn"
        sign "$work/signed-$turn.exe"
        sign_sums "$work/sums-$turn"
    done
    has_good_signature "$work/signed-1.exe" && cmp -- "$work/signed-1.exe" "$work/signed-2.exe" && cmp -- "$work/sums-1.p7s" "$work/sums-2.p7s"
}

# Nothing is built when the arguments are wrong.
refuses() {
    ! run_limited 60 "$repo/scripts/package" "$@" >"$work/refusal" 2>&1 && ! grep -q '^building' "$work/refusal"
}

# sign_with SIGNER...: "file" or "token", and a stamp.
sign_with() {
    sign_pkcs12='' sign_pkcs11='' sign_key='' sign_certificate='' sign_unsigned_kit=''
    sign_stamp=$2
    if [[ $1 == token ]]; then
        sign_pkcs11=$token_library sign_key='pkcs11:token=maker;object=release;type=private'
        sign_certificate=$work/Throw-away.pem sign_password_file=$work/pin
    else
        sign_pkcs12=$work/certificate.p12 sign_password_file=$work/password
    fi
}

start_work signing
release_log=$work/release.log
make_root
make_certificate Throw-away codeSigning
make_certificate Stamper critical,timeStamping
make_pkcs12
make_token
start_stamper
sign_with file none
signed_kit "$work/kit"
promise "the catalogs of this test are sound" catalogs_are_sound "$work/kit"

# An unsigned release, with the sample kit.
sign_pkcs12='' sign_stamp='' sign_password_file=''
make_release "$build_dir/windows" "$work/unsigned" >/dev/null
promise "a release without a key is not signed" is_not_signed "$work/unsigned/$name.msi"
promise "a release without a key has no signature of its sums" test ! -e "$work/unsigned/SHA256SUMS.p7s"

sign_with file none
promise "a kit whose INF files have signed catalogs is called signed" require_signed_kit "$work/kit"
promise "the sample kit is not called signed" \
    finds_in_kit 'qdatdma.inf: its catalog qdatdma.cat is not signed' cp -- "$dist/Drv/Win7x64/qdatdma.cat" .
promise "an INF file that names no catalog is found" finds_in_kit 'qdatdma.inf: names no catalog' sed -i /^CatalogFile/d qdatdma.inf
promise "a kit without INF files is not called signed" finds_in_kit 'no INF file is there' find . -name '*.inf' -delete
promise "a catalog that is not there is missed" finds_in_kit 'ngea62x64.cat is not there' rm ngea62x64.cat
promise "a catalog that nobody has signed is found" \
    finds_in_kit 'ngea62x64.cat is not signed' python3 "$repo/scripts/lib/kit_catalogs.py" make ngea62x64.inf
promise "a file that is no catalog is found" finds_in_kit 'ngea62x64.cat is no catalog' cp -- "$work/Throw-away.pem" ngea62x64.cat
promise "an INF file that was changed after its catalog was made is found" \
    finds_in_kit 'ngea62x64.cat does not list ngea62x64.inf as it is' sed -i 's/Norda/Other/' ngea62x64.inf
promise "a driver that was changed after its catalog was made is found" \
    finds_in_kit 'ngea62x64.cat does not list ngea62x64.sys as it is' cp -- nxga62x64.sys ngea62x64.sys

make_release_fails() { ! (make_release "$build_dir/windows" "$work/none") >"$work/refusal" 2>&1 && [[ ! -e $work/none ]]; }
promise "a signed release of the sample kit is refused" make_release_fails

sign_with file "$stamper"
release_kit=$work/kit
make_release "$build_dir/windows" "$work/signed" >/dev/null
unpack "$work/signed/$name.zip" "$work/signed-files"
find_signed_programs "$work/signed-files"
promise "every program and library is signed and stamped" all_are is_stamped "${programs[@]}"
promise "the package is signed and stamped" is_stamped "$work/signed/$name.msi"
promise "the drivers and their catalogs are those of the kit" same_files "$work/kit/Drv" "$work/signed-files/Drv"
promise "a signed file that was changed is found out" signature_of_a_changed_file_is_bad "$work/signed-files/Morvix.exe"
promise "a signed package that was changed is found out" signature_of_a_changed_file_is_bad "$work/signed/$name.msi"
read_tables "$work/signed/$name.msi"
promise "the signed package has sound tables" tables_are_sound
run_limited 60 msiextract -C "$work/signed-kit" "$work/signed/$name.msi" >/dev/null
promise "the signed package holds the signed files" same_files "$work/signed-files" "$work/signed-kit/Norda/Morvix"
cp -- "$tables/_Streams/Binary.MorvixActions" "$work/MorvixActions.dll"
promise "the library in the signed package is signed and stamped" is_stamped "$work/MorvixActions.dll"
promise "the sums of a signed release are right" holds_sums_of "$work/signed" 4
promise "the sums are signed" sums_are_signed "$work/signed"
promise "the signature of the sums is stamped" signature_of_the_sums_is_stamped "$work/signed"
promise "sums that were changed are found out" signature_of_changed_sums_is_bad "$work/signed"

# The commands of the guide, in the folder of the release.
guide_verifies() {
    local number
    extract_blocks "$repo/docs/SIGNING.md" "$work/guide"
    number=$(awk -F '\t' '$3 == "text" && $4 == "verify" { print $1 }' "$work/guide/index")
    cp -- "$work/Root.pem" "$1/root.pem"
    (cd -- "$1" && run_limited 60 bash -euc "$(<"$work/guide/$number")") >"$work/verify.log" 2>&1
}
promise "the guide's commands verify a release" guide_verifies "$work/signed"

sign_with token "$stamper"
cp -- "$dist/Morvix.exe" "$work/token.exe"
cp -- "$work/unsigned/$name.msi" "$work/token.msi"
mkdir -- "$work/token"
cp -- "$work/unsigned/SHA256SUMS" "$work/token/"
sign "$work/token.exe" "$work/token.msi"
sign_sums "$work/token/SHA256SUMS"
promise "a key in a token signs and stamps programs and packages" all_are is_stamped "$work/token.exe" "$work/token.msi"
promise "a key in a token signs the sums" sums_are_signed "$work/token"
promise "the signature by a token is stamped" signature_of_the_sums_is_stamped "$work/token"

sign_with token none
promise "without a stamp, signing by a token twice gives the same bytes" signs_the_same_twice
promise "without a stamp a file is signed only" test -z "$(is_stamped "$work/signed-1.exe" && echo stamped)"
sign_with file none
promise "without a stamp, signing by a file twice gives the same bytes" signs_the_same_twice

printf 'wrong' >"$work/wrong"
sign_with token none
sign_password_file=$work/wrong
wrong_pin_is_refused() { ! (sign "$work/token.exe") >"$work/refusal" 2>&1 && grep -q 'cannot sign token.exe' "$work/refusal"; }
promise "a wrong PIN is refused" wrong_pin_is_refused
sign_with file http://127.0.0.1:1/
no_stamp_is_refused() { ! (sign "$work/token.exe") >"$work/refusal" 2>&1 && ! (stamp "$work/pin" "$work/pin.tsr") >>"$work/refusal" 2>&1 && grep -q 'does not stamp pin' "$work/refusal"; }
promise "a service that does not answer is refused" no_stamp_is_refused

sign_with file none
sign_unsigned_kit=yes release_kit=
make_release "$build_dir/windows" "$work/half" >/dev/null
promise "a release of an unsigned kit says so in its names" holds_sums_of "$work/half" 4
promise "its package is signed" has_good_signature "$work/half/$name-unsigned-kit.msi"

promise "a password without a key is refused" refuses --password-file "$work/password"
promise "signing without a word about the stamp is refused" refuses --pkcs12 "$work/certificate.p12"
promise "a token without a key's name is refused" refuses --pkcs11 "$token_library" --certificate "$work/Throw-away.pem" --no-timestamp
promise "a token without a certificate is refused" refuses --pkcs11 "$token_library" --key pkcs11:object=release --no-timestamp
promise "two keys are refused" refuses --pkcs12 "$work/certificate.p12" --pkcs11 "$token_library" --key pkcs11:object=release \
    --certificate "$work/Throw-away.pem" --no-timestamp
promise "a certificate that is not there is refused" refuses --pkcs12 "$work/nowhere.p12" --no-timestamp
promise "a word about the kit's signature without a key is refused" refuses --unsigned-kit
promise "an unknown option is refused" refuses --sign x
end_promises
