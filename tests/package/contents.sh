#!/usr/bin/env bash
# What a release says about itself: its bill of materials, the notices of what it links, and its manifests.
# shellcheck disable=SC2034,SC2154,SC2317 # the libraries read what is set here; promises call functions by name
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"
# shellcheck source=lib/tables.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/tables.sh"
# shellcheck source=lib/release.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/release.sh"

name=Morvix-$(product_version)
bill=$name.cdx.json

# Every file of the kit and the library of steps, each with its sum, and nothing else.
bill_lists_every_file() {
    diff <(jq -r '.components[] | select(.type == "file") | .hashes[0].content + "  " + .name' "$work/release/$bill" | LC_ALL=C sort) \
        <({
            (cd -- "$work/kit" && find . -type f -printf '%P\0' | xargs -0 sha256sum --)
            (cd -- "$work/actions" && sha256sum -- MorvixActions.dll)
        } | LC_ALL=C sort)
}

references_of_bill_resolve() {
    missing "$(jq -r '.dependencies[] | .ref, .dependsOn[]' "$work/release/$bill")" \
        "$(jq -r '.metadata.component["bom-ref"], .components[]["bom-ref"]' "$work/release/$bill")" | complain 'no such component'
}

# archives_linked TARGET: the Debian packages of the archives that the linker takes something from.
archives_linked() {
    local command
    command=$(ninja -C "$build_dir/windows" -t commands "$1" | tail -n 1)
    # The same command, with other output files and a list of what went in.
    command=$(sed -E "s| -o [^ ]+| -o $work/linked -Wl,-Map,$work/linked.map|; s|-Wl,--out-implib,[^ ]+|-Wl,--out-implib,$work/linked.a|" <<<"$command")
    rm -f -- "$work/linked.map"
    (cd -- "$build_dir/windows" && run_limited 120 bash -c "$command") >"$work/link.log" 2>&1 || fail "cannot link $1 again (see $work/link.log)"
    # Import libraries give names, not code.
    [[ -s $work/linked.map ]] || fail "the linker lists nothing for $1"
    sed -n '/^Archive member included/,/^Discarded input sections\|^Memory Configuration/s/^\(\/[^ (]*\.a\)(\([^)]*\))$/\1 \2/p' "$work/linked.map" |
        awk '$2 !~ /^d[0-9a-z_]*\.o$/ && $2 !~ /^lib.*[sht][0-9]*\.o$/ { print $1 }' | sort -u | xargs -r realpath -- |
        xargs -r dpkg -S -- | sed 's/:.*//' | sort -u
}

# same_libraries TARGET FILE: the bill has for a file the packages that its link shows.
same_libraries() {
    local packages
    packages=$(archives_linked "$1")
    diff <(printf '%s\n' "$packages" | sed '/^$/d') <(jq -r --arg ref "file $2" '
        [.dependencies[] | select(.ref == $ref) | .dependsOn[]] as $libraries |
        .components[] | select(.["bom-ref"] | IN($libraries[])) | .purl | capture("debian/(?<name>[^@]*)@").name | gsub("%2B"; "+")' \
        "$work/release/$bill" | sort -u)
}

versions_are_installed() {
    local purl found=0
    while IFS=$'\t' read -r purl version; do
        found=$((found + 1))
        [[ $version == "$(dpkg-query -W -f '${Version}' "$purl")" ]] || return 1
    done < <(jq -r '.components[] | select(.type == "library") | [(.purl | capture("debian/(?<name>[^@]*)@").name | gsub("%2B"; "+")), .version] | @tsv' "$work/release/$bill")
    ((found == 3))
}

# The licences of the run-time's own code, as its Debian package states them, word by word, and the compiler's exception.
notices_are_complete() {
    run_limited 60 python3 - "$repo/packaging/THIRD-PARTY-NOTICES.txt" <<'END'
import re, sys

def words(text):
    return " ".join(re.sub(r"^ \.$", "", text, flags=re.M).split())

notices = words(open(sys.argv[1]).read())
paragraphs = [paragraph.strip("\n") for paragraph in open("/usr/share/doc/mingw-w64-x86-64-dev/copyright").read().split("\n\n")]
licences = {}
for paragraph in paragraphs:
    if paragraph.startswith("License:"):
        name, _, text = paragraph[9:].partition("\n")
        licences[name] = text
missing, found = [], 0
for paragraph in paragraphs:
    files = re.match(r"Files: (.*?)\n(?=Copyright)", paragraph, re.S)
    if not files or not re.search(r"^\*$|mingw-w64-crt/(?!profile)", files[1]):
        continue
    names, _, text = re.search(r"^License: (.*)$", paragraph, re.S | re.M)[1].partition("\n")
    texts = [text] if text else [licences[name] for name in names.split(" and ")]
    if names == "public-domain":
        continue
    holders = re.search(r"^Copyright: (.*?)\n(?=License)", paragraph, re.S | re.M)[1].split("\n")
    for wanted in [words(text) for text in texts] + [words(holder) for holder in holders]:
        found += 1
        if wanted not in notices:
            missing.append(wanted[:70])
exception = open("/usr/share/doc/g++-mingw-w64-x86-64-win32/copyright").read()
exception = exception[exception.index("GCC RUNTIME LIBRARY EXCEPTION"):]
exception = exception[: exception.index("license of GCC.", exception.index("No Weakening"))]
if words(exception) not in notices:
    missing.append("the compiler's exception")
for each in missing:
    print("  not among the notices:", each)
sys.exit(bool(missing) or found < 10)
END
}

notices_travel() { cmp -- "$repo/packaging/THIRD-PARTY-NOTICES.txt" "$work/kit/THIRD-PARTY-NOTICES.txt"; }

# What another program says of the hashes, tests/package/lab_kit.sh looks at.
catalogs_list_what_is_shipped() {
    cp -a -- "$work/kit/Drv" "$work/catalogs" && find "$work/catalogs" -name '*.cat' -delete -printf . >"$work/found" &&
        make_catalogs "$work/catalogs" && same_files "$work/kit/Drv" "$work/catalogs" && [[ $(stat -c %s "$work/found") == 20 ]]
}

fill_publisher() {
    sed 's|^contact=.*|contact=Help desk|; s|^support_url=.*|support_url=https://www.test/help|
        s|^product_url=.*|product_url=https://www.test/morvix|; s|^download_url=.*|download_url=https://www.test/get|
        s|^license=.*|license=Norda licence|; s|^license_url=.*|license_url=https://www.test/licence|' \
        "$repo/packaging/publisher.conf" >"$work/publisher.conf"
    publisher_file=$work/publisher.conf
}

yaml_field() { python3 -c 'import sys, yaml; print(eval("document" + sys.argv[2], {"document": yaml.safe_load(open(sys.argv[1]))}))' "$winget.$1" "$2"; }

manifest_names_the_package() {
    local sum
    sum=$(sha256sum -- "$published/$name.msi" | cut -d ' ' -f 1)
    [[ $(yaml_field installer.yaml '["Installers"][0]["InstallerSha256"]') == "${sum^^}" &&
        $(yaml_field installer.yaml '["Installers"][0]["InstallerUrl"]') == "https://www.test/get/$name.msi" &&
        $(yaml_field installer.yaml '["ProductCode"]') == "$(property ProductCode)" &&
        $(yaml_field installer.yaml '["AppsAndFeaturesEntries"][0]["UpgradeCode"]') == "$(property UpgradeCode)" &&
        $(yaml_field yaml '["PackageVersion"]') == "$(property ProductVersion)" ]] &&
        grep -qF "checksum64     = '$sum'" "$published/chocolatey/tools/chocolateyinstall.ps1" &&
        grep -qF "url64bit       = 'https://www.test/get/$name.msi'" "$published/chocolatey/tools/chocolateyinstall.ps1"
}

nuspec_fits() { xmllint --noout --schema "$repo/tests/package/schemas/nuspec.xsd" "$1" 2>"$work/xmllint.log"; }

nuspec_does_not_fit() {
    sed "$1" "$published/chocolatey/morvix.nuspec" >"$work/misfit"
    ! cmp -s -- "$published/chocolatey/morvix.nuspec" "$work/misfit" && ! nuspec_fits "$work/misfit"
}

start_work contents
make_release "$build_dir/windows" "$work/release" >"$work/release.out"
unpack "$work/release/$name.zip" "$work/kit"
read_tables "$work/release/$name.msi"
mkdir -- "$work/actions"
cp -- "$tables/_Streams/Binary.MorvixActions" "$work/actions/MorvixActions.dll"
promise "the bill of materials fits its schema" fits_schema cyclonedx-1.5.json "$work/release/$bill"
promise "a bill of another version does not" does_not_fit cyclonedx-1.5.json "$work/release/$bill" 's/"1.5"/"1.4"/'
promise "a bill with a sum cut off does not" does_not_fit cyclonedx-1.5.json "$work/release/$bill" 's/"content": "./"content": "/'
promise "the bill lists every file with its sum" bill_lists_every_file
promise "what the bill refers to is in it" references_of_bill_resolve
promise "the bill names the compiler and libraries that are installed" versions_are_installed
for pair in Morvix:Morvix.exe NetInst:NetInst.dll MorvixActions:MorvixActions.dll; do
    promise "the bill names the libraries that ${pair#*:} links" same_libraries "${pair%%:*}" "${pair#*:}"
done
for pair in MorvixRes:MorvixRes.dll kit_ngea62x64:Drv/Win7x64/ngea62x64.sys; do
    promise "the bill names no library for ${pair#*:}, which links none" same_libraries "${pair%%:*}" "${pair#*:}"
done
promise "the notices hold the licences of what is linked" notices_are_complete
promise "the notices are shipped with the programs" notices_travel
promise "each catalog of the sample kit lists the INF file and the driver that are shipped" catalogs_list_what_is_shipped

promise "without a publisher's addresses there are no manifests" test ! -e "$work/release/winget" -a ! -e "$work/release/chocolatey"
promise "what is missing for them is named" \
    grep -qF 'publisher.conf has no support_url product_url download_url license license_url' "$work/release.out"
fill_publisher
published=$work/published
make_release "$build_dir/windows" "$published" >"$work/release.out"
read_tables "$published/$name.msi"
winget=$published/winget/Norda.Morvix
promise "the version manifest of winget fits its schema" fits_schema winget-1.6.0-version.json "$winget.yaml"
promise "the installer manifest of winget fits its schema" fits_schema winget-1.6.0-installer.json "$winget.installer.yaml"
promise "the locale manifest of winget fits its schema" fits_schema winget-1.6.0-defaultLocale.json "$winget.locale.en-US.yaml"
promise "an installer manifest with a bad sum does not" does_not_fit winget-1.6.0-installer.json "$winget.installer.yaml" 's/Sha256: "./Sha256: "/'
promise "an installer manifest with a relative address does not" does_not_fit winget-1.6.0-installer.json "$winget.installer.yaml" 's|https://||'
promise "a locale manifest without a licence does not" does_not_fit winget-1.6.0-defaultLocale.json "$winget.locale.en-US.yaml" '/^License:/d'
promise "the Chocolatey package fits its schema" nuspec_fits "$published/chocolatey/morvix.nuspec"
promise "a Chocolatey package without a description does not" nuspec_does_not_fit '/<description>/d'
promise "a Chocolatey package with an unknown field does not" nuspec_does_not_fit 's/summary>/remark>/g'
promise "the manifests name the package, its sum and its product" manifest_names_the_package
promise "the sums cover the manifests" holds_sums_of "$published" 9
sign_unsigned_kit=yes
make_manifests "$published/$name.msi" "$work/unsigned" >"$work/release.out"
promise "a release of an unsigned kit has no manifests" test ! -e "$work/unsigned"
end_promises
