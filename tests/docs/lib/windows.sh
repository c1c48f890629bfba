# shellcheck shell=bash
# A Windows of its own in which what the documents say is tried.
# shellcheck disable=SC2154

lib=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/../../../scripts/lib
# shellcheck source=../../../scripts/lib/common.sh
source "$lib/common.sh"
# shellcheck source=../../../scripts/lib/wine.sh
source "$lib/wine.sh"
# shellcheck source=../../../scripts/lib/display.sh
source "$lib/display.sh"
# shellcheck source=../../../scripts/lib/adapters.sh
source "$lib/adapters.sh"
# shellcheck source=../../../scripts/lib/documents.sh
source "$lib/documents.sh"
# shellcheck source=../../../scripts/lib/promises.sh
source "$lib/promises.sh"

# start_windows NAME [ADAPTER...]: a fresh Windows 8 with these adapters and the trace switched on.
start_windows() {
    local registry=$build_dir/docs/$1.reg adapter
    [[ -f $build_dir/dist/Morvix.exe ]] || fail "there is no $build_dir/dist/Morvix.exe: run scripts/build first"
    enter_build_folder
    mkdir -p -- "$build_dir/docs"
    start_display
    new_prefix "$1"
    shift
    keep_server
    {
        printf 'REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norda\\Basedrivers\\Debug]\n\n'
        printf '[HKEY_CURRENT_USER\\Software\\Wine]\n"Version"="win8"\n\n'
        for adapter in "$@"; do
            adapter_registration "$adapter"
        done
    } >"$registry"
    import_registry "$registry"
}

# run_traced TRACE PROGRAM ARGUMENTS...: runs a program; its trace, without "Morvix: ", goes into the file.
run_traced() {
    local trace=$1 status=0
    shift
    run_limited 120 wine "$build_dir/windows/tools/debugview.exe" "$(windows_path "$trace.raw")" "$@" || status=$?
    sed 's/^Morvix: //; s/\r$//' "$trace.raw" >"$trace"
    return "$status"
}

# holds_in_order TRACE LINES: the lines are in the trace in this order, with others between them or not.
holds_in_order() {
    awk '
        { sub(/[ \r]+$/, "") }
        FNR == NR { wanted[++lines] = $0; next }
        found < lines && $0 == wanted[found + 1] { ++found }
        END { if (found < lines) { print "missing: " wanted[found + 1]; exit 1 } }
    ' "$2" "$1"
}
