# shellcheck shell=bash
# The bundle that proves the program on a real Windows: kit, packages, test programs and the runner. The same build gives the
# same bytes. Sourced after common.sh, msi.sh, signing.sh and release.sh.
# shellcheck disable=SC2154

# put_next_kit KIT FOLDER: a kit that differs from the given one as the next version might: a file more, and one that is another.
put_next_kit() {
    mkdir -p -- "$2"
    cp -a -- "$1/." "$2"
    printf '; of the next version\r\n' | tee -a "$2/Morvix.ini" >"$2/ReadMe of the next version.txt"
}

# make_proof BUILT KIT PACKAGE LIBRARY FILE: the bundle as the .zip file FILE, of what was built in the build folder BUILT, a
# kit, its package, and the library of the package's steps.
make_proof() {
    local built=$1 kit=$2 package=$3 library=$4 parts=$5.parts folder=$5.parts/bundle
    rm -rf -- "$parts"
    mkdir -p -- "$folder/dist" "$folder/packages"
    collect_built "$built" proof "$folder" --strip >"$5.log" 2>&1 || fail "the bundle cannot be collected (see $5.log)"
    cp -a -- "$kit/." "$folder/dist"
    cp -- "$package" "$folder/packages/morvix-old.msi"
    put_next_kit "$kit" "$parts/next"
    make_msi "$parts/next" "$library" "$folder/packages/morvix-new.msi" "$(next_version)"
    sign "$folder/packages/morvix-new.msi"
    (
        cd -- "$folder" && find . -type f -printf '%P\0' | LC_ALL=C sort -z | xargs -0 sha256sum -- >"$parts/sums.txt"
    ) || fail "the sums of the bundle cannot be made"
    mv -- "$parts/sums.txt" "$folder/sums.txt"
    archive "$folder" "$5"
    rm -rf -- "$parts" "$5.log"
}
