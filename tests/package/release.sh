#!/usr/bin/env bash
# A release: built from a copy of the sources in another folder it has the same bytes; its archives hold what they say;
# with a throw-away certificate everything in it is signed.
# shellcheck disable=SC2154
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"
# shellcheck source=lib/tables.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/tables.sh"
# shellcheck source=../../scripts/lib/release.sh
source "$lib/release.sh"

name=Morvix-$(product_version)

# Every file of the sources, and nothing that was built.
copy_sources() {
    mkdir -p -- "$other"
    (
        cd -- "$repo"
        find . -path ./build -prune -o -path ./.git -prune -o -type f -print0 | xargs -0 cp --parents -p -t "$other" --
    )
}

# Builds everything again, with the compiler and no results of earlier runs.
release_elsewhere() {
    copy_sources
    spread_over_processors
    run_limited 1500 env -u MORVIX_BUILD_LOCKED -u CMAKE_CXX_COMPILER_LAUNCHER -u CMAKE_C_COMPILER_LAUNCHER \
        "SOURCE_DATE_EPOCH=$(source_date)" "$other/scripts/package" >"$work/package.log" 2>&1
}

holds_sums_of_all() { (cd -- "$1" && sha256sum --check --quiet --strict SHA256SUMS && (($(wc -l <SHA256SUMS) == 3)) && (($(find . -type f | wc -l) == 4))); }

unpack() { run_limited 60 unzip -q -d "$2" "$1"; }

# The debug symbols of the program lead from an address to the line in the sources.
symbols_lead_to_sources() {
    local address
    address=$(x86_64-w64-mingw32-nm "$work/symbols/Morvix.exe.debug" | sed -n 's/ T WinMain$//p')
    [[ -n $address ]] || { say "  no WinMain among the symbols"; return 1; }
    x86_64-w64-mingw32-addr2line -e "$work/symbols/Morvix.exe.debug" "0x$address" | grep -q 'installer/WinMain\.cpp:[1-9]'
}

shipped_files_are_stripped() { ! x86_64-w64-mingw32-objdump -h "$work/unpacked/Morvix.exe" | grep -q '\.debug'; }

nothing_names_the_build_folder() { ! grep -rlaF -- "$repo" "$work/symbols" "$work/unpacked"; }

make_certificate() {
    openssl req -x509 -newkey rsa:2048 -nodes -days 36500 -subj '/CN=Throw-away' -addext extendedKeyUsage=codeSigning \
        -keyout "$work/key.pem" -out "$work/certificate.pem" 2>/dev/null
    printf 'not a secret' >"$work/password"
    openssl pkcs12 -export -inkey "$work/key.pem" -in "$work/certificate.pem" -out "$work/certificate.p12" \
        -passout "file:$work/password"
}

has_good_signature() { run_limited 60 osslsigncode verify -CAfile "$work/certificate.pem" -in "$1" >"$work/verify.log" 2>&1; }

all_have_good_signatures() {
    local file
    (($# > 0)) || return 1
    for file in "$@"; do
        has_good_signature "$file" || { say "  not signed: ${file##*/}"; return 1; }
    done
}

signature_of_a_changed_file_is_bad() {
    local size
    cp -- "$1" "$work/changed"
    size=$(stat -c %s "$1")
    printf 'X' | dd of="$work/changed" bs=1 seek="$((size / 3))" conv=notrunc status=none
    ! cmp -s -- "$1" "$work/changed" && ! has_good_signature "$work/changed"
}

signs_the_same_twice() {
    local turn
    for turn in 1 2; do
        cp -- "$dist/Morvix.exe" "$work/signed-$turn.exe"
        sign "$work/signed-$turn.exe"
    done
    has_good_signature "$work/signed-1.exe" && cmp -- "$work/signed-1.exe" "$work/signed-2.exe"
}

refuses() { ! run_limited 60 "$repo/scripts/package" "$@" >/dev/null 2>&1; }

start_work release
other=$work/in/another/folder
make_release "$build_dir/windows" "$work/release"
promise "a release builds from the sources alone, in another folder" release_elsewhere
for file in "$name.msi" "$name.zip" "$name-symbols.zip" SHA256SUMS; do
    promise "built in another folder, $file has the same bytes" cmp -- "$work/release/$file" "$other/build/release/$file"
done
promise "the package of the release is the one that is tested" cmp -- "$package" "$work/release/$name.msi"
promise "the sums are those of the three files, and there is nothing else" holds_sums_of_all "$work/release"

unpack "$work/release/$name.zip" "$work/unpacked"
unpack "$work/release/$name-symbols.zip" "$work/symbols"
promise "the archive holds the shippable folder" same_files "$dist" "$work/unpacked"
promise "the shipped files hold no debug symbols" shipped_files_are_stripped
promise "the debug symbols lead from an address to a line of the sources" symbols_lead_to_sources
promise "the library of the steps has its debug symbols too" test -s "$work/symbols/MorvixActions.dll.debug"
promise "nothing in the release names the folder that it was built in" nothing_names_the_build_folder

make_certificate
sign_pkcs12=$work/certificate.p12 sign_password_file=$work/password
make_release "$build_dir/windows" "$work/signed"
unpack "$work/signed/$name.zip" "$work/signed-files"
mapfile -d '' -t programs < <(programs_in "$work/signed-files")
promise "every program, library and driver is signed" all_have_good_signatures "${programs[@]}"
promise "the package is signed" has_good_signature "$work/signed/$name.msi"
promise "a signed file that was changed is found out" signature_of_a_changed_file_is_bad "$work/signed-files/Morvix.exe"
promise "a signed package that was changed is found out" signature_of_a_changed_file_is_bad "$work/signed/$name.msi"
promise "signing twice gives the same bytes" signs_the_same_twice
read_tables "$work/signed/$name.msi"
promise "the signed package has sound tables" tables_are_sound
run_limited 60 msiextract -C "$work/signed-kit" "$work/signed/$name.msi" >/dev/null
promise "the signed package holds the signed files" same_files "$work/signed-files" "$work/signed-kit/Norda/Morvix"
cp -- "$tables/_Streams/Binary.MorvixActions" "$work/MorvixActions.dll"
promise "the library in the signed package is signed" has_good_signature "$work/MorvixActions.dll"
promise "the sums of a signed release are right" holds_sums_of_all "$work/signed"
promise "a password without a certificate is refused" refuses --password-file "$work/password"
promise "an unknown option is refused" refuses --sign x
end_promises
