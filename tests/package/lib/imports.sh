# shellcheck shell=bash
# What programs import, and the lists that they are held to (tests/e2e/imports.txt says how a list is written).

# imported FILE...: what the programs and libraries import, as "library name", sorted.
imported() {
    x86_64-w64-mingw32-objdump -p "$@" |
        awk '/DLL Name:/ { library = tolower($3) } /^\t[0-9a-f]+\t *[0-9]+ +[A-Za-z_]/ { print library, $3 }' | LC_ALL=C sort -u
}

# listed FILE...: the names of the lists that systems from 5.2 on have, in the same form.
listed() { awk '!/^#/ && NF == 3 && $3 <= 5.2 { print $1, $2 }' "$@" | LC_ALL=C sort -u; }
