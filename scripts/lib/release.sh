# shellcheck shell=bash
# What is handed out: the package, the folder and its debug symbols as archives, the bill of materials, manifests, and sums of
# all of them; signed when there is a key. The same commit gives the same bytes. Sourced after common.sh, msi.sh, signing.sh,
# sbom.sh and manifests.sh, and with release_proof after proof.sh.
# shellcheck disable=SC2154

# A folder whose kit is released instead of the sample.
release_kit=''
# Not empty: the release has the bundle for a real Windows too. Its test programs have been built.
release_proof=''

# put_kit FOLDER: puts the given kit in the place of the sample.
put_kit() {
    local file
    [[ -n $release_kit ]] || return 0
    [[ -d $release_kit/Drv ]] || fail "there is no $release_kit/Drv"
    rm -rf -- "$1/Drv"
    for file in Drv Morvix.ini Morvix.din; do
        [[ ! -e $release_kit/$file ]] || cp -a -- "$release_kit/$file" "$1/"
    done
}

# programs_in FOLDER: the files below the folder that Windows loads, null-separated.
programs_in() { find "$1" -type f \( -iname '*.exe' -o -iname '*.dll' -o -iname '*.sys' \) -print0 | LC_ALL=C sort -z; }

# extract_symbols FOLDER TARGET: the debug information of the files that were built, each as <its path>.debug.
extract_symbols() {
    local built path
    while IFS= read -r -d '' built; do
        path=$2/$(realpath --relative-to="$1" -- "$built").debug
        # A file without code has none.
        x86_64-w64-mingw32-objdump -h "$built" | grep -q ' \.debug_info ' || continue
        mkdir -p -- "${path%/*}"
        SOURCE_DATE_EPOCH=$(source_date) x86_64-w64-mingw32-objcopy --only-keep-debug "$built" "$path" || fail "cannot take the debug symbols out of $built"
        chmod 644 -- "$path"
    done < <(programs_in "$1")
}

# archive FOLDER FILE: what is in the folder as a .zip file, in a fixed order, with one time and without anything of this
# machine. A .zip file holds local times.
archive() {
    find "$1" -type f -exec chmod 644 -- {} +
    find "$1" -exec touch -h -d "@$(source_date)" -- {} +
    rm -f -- "$2"
    (
        cd -- "$1"
        find . -type f -printf '%P\n' | LC_ALL=C sort | TZ=UTC run_limited 120 zip -q -X -9 -@ "$2"
    ) || fail "cannot make ${2##*/}"
}

# Fills `programs` with the files of a kit that a release signs. A driver is signed with its catalog and left as it is.
find_signed_programs() {
    mapfile -d '' -t programs < <(find "$1" -type f \( -iname '*.exe' -o -iname '*.dll' \) -print0 | LC_ALL=C sort -z)
}

# write_sums FOLDER: the sums of all files below it.
write_sums() {
    (
        cd -- "$1" && find . -type f ! -name 'SHA256SUMS*' -printf '%P\0' | LC_ALL=C sort -z | xargs -0 sha256sum -- >SHA256SUMS
    ) || fail "the sums cannot be made"
}

# make_release BUILT TARGET [FILE...]: a release of what was built in the build folder BUILT, and of further files, as the
# folder TARGET.
make_release() {
    local built=$1 new=$2.new name parts=$2.parts
    local -a programs
    release_log=$2.log
    name=Morvix-$(product_version)${sign_unsigned_kit:+-unsigned-kit}
    rm -rf -- "$new" "$parts"
    mkdir -p -- "$new" "$parts/symbols"
    {
        collect_shippable "$built" "$parts/kit" && collect_built "$built" package "$parts/actions" --strip &&
            collect_built "$built" dist "$parts/unstripped" && collect_built "$built" package "$parts/unstripped"
    } >"$release_log" 2>&1 || fail "the files of the release cannot be collected (see $release_log)"
    put_kit "$parts/kit"
    require_signed_kit "$parts/kit"
    extract_symbols "$parts/unstripped" "$parts/symbols"
    find_signed_programs "$parts/kit"
    sign "${programs[@]}" "$parts/actions/MorvixActions.dll"
    make_msi "$parts/kit" "$parts/actions/MorvixActions.dll" "$new/$name.msi"
    sign "$new/$name.msi"
    [[ -z $release_proof ]] || make_proof "$built" "$parts/kit" "$new/$name.msi" "$parts/actions/MorvixActions.dll" \
        "$new/morvix-proof-$(product_version).zip"
    make_sbom "$parts/kit" "$parts/actions/MorvixActions.dll" "$new/$name.cdx.json"
    archive "$parts/kit" "$new/$name.zip"
    archive "$parts/symbols" "$new/$name-symbols.zip"
    (($# == 2)) || cp -- "${@:3}" "$new/"
    make_manifests "$new/$name.msi" "$new"
    write_sums "$new"
    sign_sums "$new/SHA256SUMS"
    rm -rf -- "$parts" "$2" "$release_log"
    mv -- "$new" "$2"
}
