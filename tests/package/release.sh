#!/usr/bin/env bash
# A release: built from a copy of the sources in another folder it has the same bytes, and its archives hold what they say.
# shellcheck disable=SC2154
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"
# shellcheck source=lib/release.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/release.sh"
# shellcheck source=../../scripts/lib/tool.sh
source "$lib/tool.sh"
# shellcheck source=../../scripts/lib/proof.sh
source "$lib/proof.sh"

version=$(product_version)
name=Morvix-$version

# Every file of the sources, and nothing that was built here. What the last run has built there stays: only what depends on
# changed sources is built again.
copy_sources() {
    mkdir -p -- "$other"
    run_limited 60 rsync --archive --delete --exclude=/build --exclude=/.git -- "$repo/" "$other"
}

# Builds with the compiler itself, not with results that it shares with other builds.
release_elsewhere() {
    copy_sources
    spread_over_processors
    run_limited 3000 env -u MORVIX_BUILD_LOCKED -u CMAKE_CXX_COMPILER_LAUNCHER -u CMAKE_C_COMPILER_LAUNCHER \
        "SOURCE_DATE_EPOCH=$(source_date)" "$other/scripts/package" >"$work/package.log" 2>&1
}

# The debug symbols of the program lead from an address to the line in the sources.
symbols_lead_to_sources() {
    local address
    address=$(x86_64-w64-mingw32-nm "$work/symbols/Morvix.exe.debug" | sed -n 's/ T WinMain$//p')
    [[ -n $address ]] || { say "  no WinMain among the symbols"; return 1; }
    x86_64-w64-mingw32-addr2line -e "$work/symbols/Morvix.exe.debug" "0x$address" | grep -q 'installer/WinMain\.cpp:[1-9]'
}

shipped_files_are_stripped() { ! x86_64-w64-mingw32-objdump -h "$work/unpacked/Morvix.exe" | grep -q '\.debug'; }

nothing_names_the_build_folder() { ! grep -rlaF -- "$repo" "$work/symbols" "$work/unpacked"; }

start_work release
other=$build_dir/package-release-elsewhere/in/another/folder
# A run of this test alone has not built it.
run_limited 1500 "$repo/scripts/build" tool >"$work/tool.log" 2>&1 || fail "morvix-kit cannot be built (see $work/tool.log)"
make_tool_packages "$build_dir/tool/planner/morvix-kit" "$build_dir/windows/planner/morvix-kit.exe" "$work/tool"
# shellcheck disable=SC2034 # release.sh reads it
release_proof=yes
make_release "$build_dir/windows" "$work/release" "$work/tool"/*
promise "a release builds from the sources alone, in another folder" release_elsewhere
for file in "$name.msi" "$name.zip" "$name-symbols.zip" "$name.cdx.json" "morvix-kit-$version-windows-x64.zip" \
    "morvix-kit_${version}_$(dpkg --print-architecture).deb" "morvix-proof-$version.zip" SHA256SUMS; do
    promise "built in another folder, $file has the same bytes" cmp -- "$work/release/$file" "$other/build/release/$file"
done
promise "the package of the release is the one that is tested" cmp -- "$package" "$work/release/$name.msi"
promise "the sums are those of all files, and there is nothing else" holds_sums_of "$work/release" 7

unpack "$work/release/$name.zip" "$work/unpacked"
unpack "$work/release/$name-symbols.zip" "$work/symbols"
promise "the archive holds the shippable folder" same_files "$dist" "$work/unpacked"
promise "the shipped files hold no debug symbols" shipped_files_are_stripped
promise "the debug symbols lead from an address to a line of the sources" symbols_lead_to_sources
promise "the library of the steps has its debug symbols too" test -s "$work/symbols/MorvixActions.dll.debug"
promise "nothing in the release names the folder that it was built in" nothing_names_the_build_folder

end_promises
