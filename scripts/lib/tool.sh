# shellcheck shell=bash
# What hands out morvix-kit: a Debian package for this machine's processor and an archive for Windows. The same build gives
# the same bytes. Sourced after common.sh, msi.sh, signing.sh, publisher.sh and release.sh.
# shellcheck disable=SC2154

# put MODE FILE TARGET: copies a file with these rights, whatever those of the sources are. (The tests have an "install" of their
# own.)
put() { command install -D -m "$1" -- "$2" "$3"; }

# put_packed FILE TARGET: the same compressed, without name and time.
put_packed() {
    mkdir -p -- "${2%/*}"
    gzip -9 -n <"$1" >"$2" && chmod 644 -- "$2"
}

# What both hold beside the program: what collects a machine's description, and the schemas of the answers.
put_shared() {
    local schema
    put 644 "$repo/kit/collect.cmd" "$1/collect.cmd"
    for schema in "$repo"/docs/schemas/*.json; do
        put 644 "$schema" "$1/schemas/${schema##*/}"
    done
}

# The maker as Debian names people, with an address when the contact is one.
maker_address() {
    local contact
    contact=$(publisher contact)
    printf '%s' "$(publisher maker)"
    [[ $contact != *@* ]] || printf ' <%s>' "$contact"
}

# Debian's own form, which has no sections; what changed is in the changes of the product.
debian_changelog() {
    printf 'morvix-kit (%s) stable; urgency=medium\n\n  * See CHANGELOG.md of Morvix.\n\n -- %s  %s\n' \
        "$(product_version)" "$(maker_address)" "$(LC_ALL=C TZ=UTC date -R -d "@$(source_date)")"
}

# libraries_of PROGRAM: the Debian packages that a program needs, with their versions.
libraries_of() (
    mkdir -p -- "$parts/debian"
    printf 'Source: morvix-kit\n\nPackage: morvix-kit\nArchitecture: any\n' >"$parts/debian/control"
    cd -- "$parts" && dpkg-shlibdeps -O -e "$1" 2>"$parts/libraries.log" | sed -n 's/^shlibs:Depends=//p'
)

debian_control() {
    local needed
    needed=$(libraries_of "$1/usr/bin/morvix-kit")
    [[ -n $needed ]] || fail "the libraries of morvix-kit are not known (see $parts/libraries.log)"
    cat <<END
Package: morvix-kit
Version: $(product_version)
Section: admin
Priority: optional
Architecture: $(dpkg --print-architecture)
Maintainer: $(maker_address)
Installed-Size: $(find "$1" -type f -printf '%k\n' | awk '{ sum += $1 } END { print sum }')
Depends: $needed
Description: tells what the Morvix driver installer would do on a machine
 Says for registry exports, offline SYSTEM hives and whole fleets of them which
 network adapter would get which driver of a kit, in which pass of the search,
 and why; and what changes when one kit takes the place of another. It decides
 with the installer's own code and touches neither kit nor machine.
END
}

# make_debian_package PROGRAM FILE
make_debian_package() {
    local tree=$parts/tree completion
    command install -D -m 755 --strip --strip-program=strip -- "$1" "$tree/usr/bin/morvix-kit"
    # A number of the whole build, debug information and its paths included.
    objcopy --remove-section=.note.gnu.build-id --remove-section=.comment "$tree/usr/bin/morvix-kit"
    put_packed "$repo/planner/morvix-kit.1" "$tree/usr/share/man/man1/morvix-kit.1.gz"
    completion=$tree/usr/share/bash-completion/completions/morvix-kit
    put 644 "$repo/planner/completions/morvix-kit.bash" "$completion"
    put 644 "$repo/planner/completions/_morvix-kit" "$tree/usr/share/zsh/vendor-completions/_morvix-kit"
    put_shared "$tree/usr/share/morvix-kit"
    put 644 "$repo/packaging/morvix-kit.copyright" "$tree/usr/share/doc/morvix-kit/copyright"
    put_packed <(debian_changelog) "$tree/usr/share/doc/morvix-kit/changelog.gz"
    mkdir -p -- "$tree/DEBIAN"
    debian_control "$tree" >"$tree/DEBIAN/control"
    (cd -- "$tree" && find usr -type f -print0 | LC_ALL=C sort -z | xargs -0 md5sum) >"$tree/DEBIAN/md5sums"
    find "$tree" -type d -exec chmod 755 -- {} +
    find "$tree" -exec touch -h -d "@$(source_date)" -- {} +
    SOURCE_DATE_EPOCH=$(source_date) run_limited 300 dpkg-deb --root-owner-group -Zxz --threads-max=1 --build "$tree" "$2" \
        >"$parts/package.log" || fail "${2##*/} cannot be made (see $parts/package.log)"
}

# make_windows_archive PROGRAM FILE
make_windows_archive() {
    local folder=$parts/windows
    put 644 "$1" "$folder/morvix-kit.exe"
    SOURCE_DATE_EPOCH=$(source_date) x86_64-w64-mingw32-strip "$folder/morvix-kit.exe"
    sign "$folder/morvix-kit.exe"
    put_shared "$folder"
    # The man page as text: no bold or underlined letters, and Windows' ends of lines.
    run_limited 60 mandoc -T ascii "$repo/planner/morvix-kit.1" | sed 's/.\x08//g; s/$/\r/' >"$folder/morvix-kit.txt"
    sed 's/$/\r/' "$repo/packaging/morvix-kit.copyright" >"$folder/COPYRIGHT.txt"
    sed 's/\r*$/\r/' "$repo/packaging/THIRD-PARTY-NOTICES.txt" >"$folder/THIRD-PARTY-NOTICES.txt"
    archive "$folder" "$2"
}

# make_tool_packages PROGRAM WINDOWS_PROGRAM TARGET: the packages of morvix-kit in the folder TARGET, of the programs as they
# were built for this machine and for Windows.
make_tool_packages() {
    local parts=$3.parts version
    version=$(product_version)
    rm -rf -- "$parts" "$3"
    mkdir -p -- "$parts" "$3"
    make_debian_package "$1" "$3/morvix-kit_${version}_$(dpkg --print-architecture).deb"
    make_windows_archive "$2" "$3/morvix-kit-$version-windows-x64.zip"
    rm -rf -- "$parts"
}
