# shellcheck shell=bash
# What is handed out: the package, the folder and its debug symbols as archives, sums of all of them, and signatures when
# there is a certificate. The same commit gives the same bytes. Sourced after common.sh and msi.sh.
# shellcheck disable=SC2154

# sign FILE...: signs programs, libraries, drivers or packages in place, when a certificate was given.
sign() {
    local file
    local -a arguments=(-pkcs12 "${sign_pkcs12:-}" -h sha256 -n Morvix -time "$(source_date)")
    [[ -n ${sign_pkcs12:-} ]] || return 0
    if [[ -n ${sign_password_file:-} ]]; then
        arguments+=(-readpass "$sign_password_file")
    else
        arguments+=(-pass '')
    fi
    [[ -z ${sign_timestamp_url:-} ]] || arguments+=(-ts "$sign_timestamp_url")
    for file in "$@"; do
        run_limited 120 osslsigncode sign "${arguments[@]}" -in "$file" -out "$file.signed" >"$release_log" 2>&1 ||
            fail "cannot sign ${file##*/} (see $release_log)"
        # Written over, not moved: the file keeps its mode.
        cat -- "$file.signed" >"$file"
        rm -f -- "$file.signed"
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

# make_release BUILT TARGET: a release of what was built in the build folder BUILT, as the folder TARGET.
make_release() {
    local built=$1 new=$2.new name parts=$2.parts
    local -a programs
    release_log=$2.log
    name=Morvix-$(product_version)
    rm -rf -- "$new" "$parts"
    mkdir -p -- "$new" "$parts/symbols"
    {
        collect_built "$built" dist "$parts/kit" --strip && collect_built "$built" package "$parts/actions" --strip &&
            collect_built "$built" dist "$parts/unstripped" && collect_built "$built" package "$parts/unstripped"
    } >"$release_log" 2>&1 || fail "the files of the release cannot be collected (see $release_log)"
    extract_symbols "$parts/unstripped" "$parts/symbols"
    mapfile -d '' -t programs < <(programs_in "$parts/kit")
    sign "${programs[@]}" "$parts/actions/MorvixActions.dll"
    make_msi "$parts/kit" "$parts/actions/MorvixActions.dll" "$new/$name.msi"
    sign "$new/$name.msi"
    archive "$parts/kit" "$new/$name.zip"
    archive "$parts/symbols" "$new/$name-symbols.zip"
    (cd -- "$new" && sha256sum -- "$name.msi" "$name.zip" "$name-symbols.zip" >SHA256SUMS)
    rm -rf -- "$parts" "$2" "$release_log"
    mv -- "$new" "$2"
}
