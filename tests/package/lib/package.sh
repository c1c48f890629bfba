# shellcheck shell=bash
# Packages and their engine: makes packages of the shippable folder and of changed copies of it, and has Windows Installer
# run them in a Windows of the script's own.
# shellcheck disable=SC2034,SC2154

lib=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/../../../scripts/lib
# shellcheck source=../../../scripts/lib/common.sh
source "$lib/common.sh"
# shellcheck source=../../../scripts/lib/msi.sh
source "$lib/msi.sh"
# shellcheck source=../../../scripts/lib/wine.sh
source "$lib/wine.sh"
# shellcheck source=../../../scripts/lib/display.sh
source "$lib/display.sh"
# shellcheck source=../../../scripts/lib/adapters.sh
source "$lib/adapters.sh"
# shellcheck source=../../../scripts/lib/promises.sh
source "$lib/promises.sh"

dist=$build_dir/dist
package=$dist/Morvix.msi
actions=$build_dir/actions/MorvixActions.dll
gigabit='VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01'
ten_gigabit='VEN_5D1A&DEV_1B3C&SUBSYS_00025D1A&REV_02'
result_key='HKLM\SOFTWARE\Norda\Basedrivers'

# start_work NAME: an empty folder `work` for what the script makes.
start_work() {
    [[ -f $package && -f $actions ]] || fail "there is no $package: run scripts/build first"
    enter_build_folder
    work=$build_dir/package-$1
    rm -rf -- "$work"
    mkdir -p -- "$work"
}

# start_machine NAME: a work folder, and a fresh Windows with a display.
start_machine() {
    start_work "$1"
    start_display
    new_prefix "package-$1"
    keep_server
    drive=$WINEPREFIX/drive_c
    program_folder="$drive/Program Files/Norda/Morvix"
    log=$work/msiexec.log
}

# copy_kit NAME: a copy of the shippable folder in the work folder, to be changed; `kit` is its path. It holds the drivers
# of the system at hand only, which makes small packages.
copy_kit() {
    kit=$work/$1
    mkdir -- "$kit"
    find "$dist" -mindepth 1 -maxdepth 1 ! -name '*.msi' ! -name Drv -exec cp -a -t "$kit" -- {} +
    mkdir -- "$kit/Drv"
    cp -a -- "$dist/Drv/Win7x64" "$kit/Drv/"
}

# package_kit [VERSION]: makes the package of the copy; `kit_package` is its path.
package_kit() {
    kit_package=$kit.msi
    make_msi "$kit" "$actions" "$kit_package" "$@"
}

plug_in() {
    local adapter
    {
        printf 'REGEDIT4\n\n'
        for adapter in "$@"; do
            adapter_registration "$adapter"
        done
    } >"$work/adapters.reg"
    import_registry "$work/adapters.reg"
}

# unplug ADAPTER...: removes the adapters and their driver files.
unplug() {
    local adapter
    for adapter in "$@"; do
        run_limited 60 wine reg delete "HKLM\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\$adapter" /f >/dev/null 2>&1
    done
    rm -f -- "$drive"/windows/system32/drivers/n*x64.sys
}

# run_msi ARGUMENT...: a quiet run of the engine; `exit_code` is its whole exit code, `log` its log.
run_msi() {
    local status=0
    rm -f -- "$log"
    # A shell of this machine sees the lowest byte of an exit code only. The output goes to a file: a program that is left
    # running would keep a pipe open.
    run_limited 120 wine cmd /c "msiexec $* /qn /norestart /l*v $(windows_path "$log") & call echo exit=%^errorlevel%" \
        >"$work/output" 2>/dev/null || status=$?
    exit_code=$(tr -d '\r' <"$work/output" | sed -n 's/^exit=//p')
    # The shell ends with a status of its own; without its line the engine has not ended.
    [[ -n $exit_code ]] || exit_code="none ($status)"
}

# start_msi ARGUMENT...: the same run beside the script; finish_msi waits for it.
start_msi() {
    rm -f -- "$work/exit-code"
    {
        run_msi "$@"
        printf '%s' "$exit_code" >"$work/exit-code"
    } &
    running_msi=$!
    at_exit end_quietly "$running_msi"
}

finish_msi() {
    wait "$running_msi"
    exit_code=$(cat -- "$work/exit-code")
}

# wait_for_file FILE: until a program has written it; the limit only guards against hanging.
wait_for_file() { wait_until 120 test -e "$1"; }

# hold_program PROGRAM: puts the recorder in its place. It runs until its file ".hold" is removed.
hold_program() {
    cp -- "$build_dir/windows/tests/command_line_recorder.exe" "$1"
    : >"$1.hold"
}

install() { run_msi /i "$(windows_path "$1")" "${@:2}"; }

remove() { run_msi /x "$(windows_path "$1")" "${@:2}"; }

# call_installer NAME ARGUMENT...: makes the engine do what msiexec cannot; `exit_code` is the lowest byte of its result,
# `log` the run's log.
call_installer() {
    exit_code=0 log=$work/$1.log
    shift
    run_limited 120 wine "$build_dir/windows/tests/installer_caller.exe" "$(windows_path "$log")" "$@" >/dev/null 2>&1 ||
        exit_code=$?
}

# ends_with CODE: the last run ended with this exit code.
ends_with() {
    [[ $exit_code == "$1" ]] || { say "  exit code $exit_code instead of $1"; return 1; }
}

# logged LINE: the engine's log has this line of ours, as a whole.
logged() {
    grep -qaxF "Morvix: $1" <(tr -d '\r' <"$log") ||
        { say "  not in the log: $1"; grep -a 'Morvix: ' "$log" | sed 's/^/    /'; return 1; }
}

not_logged() { ! grep -qaF "Morvix: $1" "$log"; }

# holds_all PATH FOLDER: both folders hold the same files with the same bytes.
same_files() { diff -r -x '*.msi' -- "$1" "$2"; }

no_program_folder() { [[ ! -e $drive/Program\ Files/Norda ]]; }

registry_text() {
    run_limited 60 wine reg query "$1" /v "$2" 2>/dev/null | tr -d '\r' | sed -n 's/^ *[^ ]* *REG_[A-Z_]* *//p'
}

# recorded NAME TEXT: a result value.
recorded() {
    local text
    text=$(registry_text "$result_key" "$1") || true
    [[ $text == "$2" ]] || { say "  $1 is \"$text\" instead of \"$2\""; return 1; }
}

# bound ADAPTER DRIVER: the adapter has the driver, and the driver's file is there.
bound() {
    local instance="HKLM\\SYSTEM\\CurrentControlSet\\Enum\\PCI\\$1\\3&11583659&0&C8" service image
    [[ -n $(registry_text "$instance" Driver) ]] || { say "  $1 has no driver"; return 1; }
    service=$(registry_text "$instance" Service)
    image=$(registry_text "HKLM\\SYSTEM\\CurrentControlSet\\Services\\${service:-none}" ImagePath)
    [[ ${image##*\\} == "$2.sys" ]] || { say "  the service of $1 is $image"; return 1; }
    cmp -- "$drive/windows/system32/drivers/$2.sys" "$dist/Drv/Win7x64/$2.sys"
}

# installed_products: the product codes that the engine has on its list.
installed_products() {
    run_limited 60 wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' 2>/dev/null |
        tr -d '\r' | sed -n 's/.*\\\({[0-9A-F-]*}\)$/\1/p' | sort | paste -sd ' '
}

# only_product VERSION|none: the engine knows this version of ours and no other product.
only_product() {
    local expected=
    [[ $1 == none ]] || expected="{$(product_code "$1")}"
    [[ $(installed_products) == "$expected" ]] || { say "  products: $(installed_products)"; return 1; }
}
