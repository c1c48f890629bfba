# shellcheck shell=bash
# The bill of materials of a release, in the format CycloneDX 1.5. Sourced after common.sh and msi.sh.
# shellcheck disable=SC2154

# What the files that are built link statically: name, Debian package that it comes from, licence.
linked_libraries='libstdc++|g++-mingw-w64-x86-64-win32|GPL-3.0-or-later WITH GCC-exception-3.1
libgcc|gcc-mingw-w64-x86-64-win32|GPL-3.0-or-later WITH GCC-exception-3.1
mingw-w64 runtime|mingw-w64-x86-64-dev|ZPL-2.1'
# The files that do.
linking_files='Morvix.exe NetInst.dll MorvixActions.dll'

debian_version() { dpkg-query -W -f '${Version}' "$1" 2>/dev/null || fail "the Debian package $1 is not installed"; }

# list_files FOLDER: path and SHA-256 sum of each file as lines of JSON.
list_files() {
    (cd -- "$1" && find . -type f -printf '%P\0' | LC_ALL=C sort -z | xargs -0 sha256sum --) |
        jq -R 'capture("^(?<sum>[0-9a-f]{64})  (?<path>.*)$")'
}

list_libraries() {
    local name package licence
    while IFS='|' read -r name package licence; do
        jq -n --arg name "$name" --arg package "$package" --arg licence "$licence" --arg version "$(debian_version "$package")" '$ARGS.named'
    done <<<"$linked_libraries"
}

# make_sbom KIT LIBRARY FILE: the bill of the files of a kit and of the library of steps that is in the package only.
make_sbom() {
    local name
    name=$(sha256sum -- <(list_files "$1") "$2" | cut -d ' ' -f 1 | paste -sd ' ')
    jq -n -S --slurpfile files <(list_files "$1"; list_files "${2%/*}") --slurpfile libraries <(list_libraries) \
        --arg version "$(product_version)" --arg maker "$(publisher maker)" \
        --arg serial "$(named_guid "bill $(product_version) $name")" --arg linking "$linking_files" \
        --arg compiler "$(debian_version g++-mingw-w64-x86-64-win32)" --argjson date "$(source_date)" '
        ($linking | split(" ")) as $linking |
        {
            bomFormat: "CycloneDX", specVersion: "1.5", version: 1, serialNumber: ("urn:uuid:" + ($serial | ascii_downcase)),
            metadata: {
                timestamp: ($date | todate),
                tools: {components: [{type: "application", name: "g++-mingw-w64-x86-64-win32", version: $compiler}]},
                component: {"bom-ref": "Morvix", type: "application", name: "Morvix", version: $version, supplier: {name: $maker}}
            },
            components: (
                [$files[] | {"bom-ref": ("file " + .path), type: "file", name: .path, hashes: [{alg: "SHA-256", content: .sum}]}] +
                [$libraries[] | {"bom-ref": ("library " + .name), type: "library", name, version, licenses: [{expression: .licence}],
                    purl: ("pkg:deb/debian/" + (.package | @uri) + "@" + (.version | @uri))}]),
            dependencies: (
                [{ref: "Morvix", dependsOn: [$files[] | "file " + .path]}] +
                [$files[] | select(.path as $path | $linking | index($path)) |
                    {ref: ("file " + .path), dependsOn: [$libraries[] | "library " + .name]}])
        }' >"$3" || fail "the bill of materials cannot be made"
}
