#!/usr/bin/env bash
# The packages of morvix-kit, unpacked into a folder: the program in them runs, and all that belongs to it is there.
# shellcheck disable=SC2154
set -euo pipefail
# shellcheck source=lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/package.sh"
# shellcheck source=lib/release.sh
source "$(dirname -- "$(readlink -f -- "$0")")/lib/release.sh"
# shellcheck source=../../scripts/lib/tool.sh
source "$lib/tool.sh"

version=$(product_version)
debian_package=morvix-kit_${version}_$(dpkg --print-architecture).deb
windows_archive=morvix-kit-$version-windows-x64.zip

make_both() {
    make_tool_packages "$build_dir/tool/planner/morvix-kit" "$build_dir/windows/planner/morvix-kit.exe" "$work/$1"
}

field() { dpkg-deb --field "$work/first/$debian_package" "$1"; }

says_version() { [[ $("$root/usr/bin/morvix-kit" --version) == *"$version"* ]]; }

depends_on_its_libraries() {
    local library
    for library in libc6 libstdc++6 libhivex0; do
        [[ $(field Depends) == *"$library"* ]] || { say "  $library is missing: $(field Depends)"; return 1; }
    done
}

belongs_to_root() { ! dpkg-deb --contents "$work/first/$debian_package" | grep -v ' root/root '; }

only_program_is_executable() { [[ $(cd -- "$root" && find . -type f -perm /111) == ./usr/bin/morvix-kit ]]; }

sums_are_right() (
    dpkg-deb --control "$work/first/$debian_package" "$work/control"
    cd -- "$root" && md5sum --check --quiet --strict "$work/control/md5sums" &&
        (($(wc -l <"$work/control/md5sums") == $(find . -type f | wc -l)))
)

man_page_is_found() { MANPATH=$root/usr/share/man mandoc -T lint -W error "$root/usr/share/man/man1/morvix-kit.1.gz"; }

completion_knows_commands() {
    bash -c 'source "$1"; complete -p morvix-kit' bash "$root/usr/share/bash-completion/completions/morvix-kit" >/dev/null &&
        grep -q '^#compdef morvix-kit' "$root/usr/share/zsh/vendor-completions/_morvix-kit"
}

# has_shared FOLDER: what both packages hold beside the program.
has_shared() { cmp -- "$repo/kit/collect.cmd" "$1/collect.cmd" && diff -r -- "$repo/docs/schemas" "$1/schemas"; }

no_debug_information() {
    ! x86_64-w64-mingw32-objdump -h "$work/windows/morvix-kit.exe" | grep -q '\.debug' &&
        ! objdump -h "$root/usr/bin/morvix-kit" | grep -q '\.debug'
}

# Text for Windows' own editor: every line ends as there, and nothing is written over itself.
man_is_plain_text() {
    grep -q 'what Morvix would do' "$work/windows/morvix-kit.txt" && ! grep -q $'\b' "$work/windows/morvix-kit.txt" &&
        ! grep -qv $'\r$' "$work/windows/morvix-kit.txt"
}

names_licences() { grep -q 'University of Cincinnati' "$1" && grep -q 'Redistributions in binary form' "$1"; }

names_no_build_folder() { ! grep -rlaF -- "$repo" "$root" "$work/windows"; }

start_work tool
root=$work/root
make_both first
make_both second
promise "made twice, the packages of morvix-kit have the same bytes" same_files "$work/first" "$work/second"

dpkg-deb --extract "$work/first/$debian_package" "$root"
promise "the program of the Debian package runs and says its version" says_version
promise "the Debian package has the version of the product" test "$(field Version)" = "$version"
promise "the Debian package depends on the libraries of its program" depends_on_its_libraries
promise "everything in the Debian package belongs to root" belongs_to_root
promise "nothing but the program is executable" only_program_is_executable
promise "the sums in the Debian package are those of all its files" sums_are_right
promise "the man page is there, compressed" man_page_is_found
promise "completions for both shells are there" completion_knows_commands
promise "collect.cmd and the schemas are in the Debian package" has_shared "$root/usr/share/morvix-kit"
promise "the Debian package names the licences of what its program holds" names_licences "$root/usr/share/doc/morvix-kit/copyright"

unpack "$work/first/$windows_archive" "$work/windows"
promise "collect.cmd and the schemas are in the archive for Windows" has_shared "$work/windows"
promise "the archive for Windows has the man page as plain text" man_is_plain_text
promise "the archive for Windows names the licences of what its program holds" names_licences "$work/windows/COPYRIGHT.txt"
promise "the archive for Windows holds the terms of the run-time libraries" grep -q 'GCC RUNTIME LIBRARY EXCEPTION' "$work/windows/THIRD-PARTY-NOTICES.txt"
promise "the packaged programs hold no debug information" no_debug_information
promise "nothing in the packages of morvix-kit names the folder that it was built in" names_no_build_folder

end_promises
