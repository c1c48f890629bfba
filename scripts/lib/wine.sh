# shellcheck shell=bash
# The Windows that programs run in: Wine prefixes below build/wine/, each with a server of its own that is stopped when the
# script ends. Sourced after common.sh.
# shellcheck disable=SC2154

wine_dir=$build_dir/wine
# The `wine` that is found there starts as reliably as it can.
steady=$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/steady
# Servers and their programs meet in a folder of temporary files; it has to be the same one for all of them.
export TMPDIR=$wine_dir/tmp

# Points this shell at one prefix. Home and configuration folders lie below build/ too, so that Wine leaves no menu
# entries, links or caches in the user's own.
use_prefix() {
    # The shell itself may not know the locale that Windows programs are given: nobody needs its complaint.
    unset LC_ALL LC_CTYPE LC_MESSAGES LANGUAGE 2>/dev/null
    unset WINELOADER WINESERVER WINEPATH WINEDLLPATH XDG_RUNTIME_DIR
    export WINEPREFIX=$wine_dir/$1
    export WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES='winemenubuilder.exe=d' LANG=en_US.UTF-8
    # Without a character set that the machine knows, file names could have no letters beyond ASCII.
    export LC_CTYPE=C.UTF-8
    export HOME=$wine_dir/home
    export XDG_CONFIG_HOME=$HOME/.config XDG_CACHE_HOME=$HOME/.cache XDG_DATA_HOME=$HOME/.local/share
    # Where programs that count their lines write to, whatever their current drive is.
    export GCOV_PREFIX=Z: GCOV_PREFIX_STRIP=0
    [[ $PATH == "$steady:"* ]] || export PATH=$steady:$PATH
    mkdir -p -- "$HOME" "$TMPDIR"
    stay_on_processor
}

# Keeps this shell, and what it starts from here on, on the processor that CTest has given to it, else on the first one.
# Nearly every call of a Windows program wakes its server and waits; when the two are on different processors, that takes
# many times as long.
stay_on_processor() {
    local given=${CTEST_RESOURCE_GROUP_0_PROCESSORS:-}
    given=${given#id:}
    [[ -n $given ]] || given=$(python3 -c 'import os; print(min(os.sched_getaffinity(0)))')
    taskset --cpu-list --pid "${given%%,*}" "$BASHPID" >/dev/null
}

# For what such a shell starts that is no Windows program, such as a build.
spread_over_processors() { taskset --cpu-list --pid "0-$(($(nproc --all) - 1))" "$BASHPID" >/dev/null; }

# The path by which Windows programs know a file of this machine.
windows_path() { printf 'Z:%s' "${1//\//\\}"; }

# Ends everything that runs in a prefix and waits until its server has gone.
stop_prefix() {
    local prefix=$wine_dir/$1 folder
    [[ -d $prefix ]] || return 0
    # The server notes the name of its socket folder in the prefix when it starts.
    folder=$(cat -- "$prefix/wineserver" 2>/dev/null) || return 0
    WINEPREFIX=$prefix wineserver -k >/dev/null 2>&1 || true
    if ! WINEPREFIX=$prefix timeout 20 wineserver -w >/dev/null 2>&1; then
        WINEPREFIX=$prefix wineserver -k9 >/dev/null 2>&1 || true
        WINEPREFIX=$prefix timeout 20 wineserver -w >/dev/null 2>&1 || true
    fi
    [[ -z $folder ]] || rm -rf -- "${TMPDIR:?}/$folder"
    rm -f -- "$prefix/wineserver"
}

remove_prefix() {
    stop_prefix "$1"
    rm -rf -- "${wine_dir:?}/$1"
}

# Makes the fresh Windows that every prefix is a copy of, unless the one of an earlier run fits the Wine in use. Several
# scripts may ask for it at the same time.
make_template() {
    mkdir -p -- "$wine_dir"
    (
        own_cleanups
        flock "$making"
        make_template_anew
    ) {making}>"$wine_dir/template.lock" || exit
}

make_template_anew() {
    local version log=$build_dir/wine-template.log
    version="$(WINEDEBUG=-all wine --version), no crash dialog, no window manager, patient with services" || fail "wine does not start"
    [[ "$(cat -- "$wine_dir/template/made-by" 2>/dev/null)" != "$version" ]] || return 0
    say "making a fresh Windows ($version)"
    remove_prefix template
    remove_prefix template.new
    (
        own_cleanups
        at_exit stop_prefix template.new
        use_prefix template.new
        # Neither a display nor the browser and .NET replacements are there at the first start; do not ask for them.
        unset DISPLAY
        export WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe='
        run_limited 300 wineboot --init
        # There is no window manager here: without this, the end of every window waits two seconds for one.
        run_limited 60 wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /t REG_SZ /d N /f
        # A program that crashes ends; nobody is there to close a box about it.
        run_limited 60 wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f
        # On a busy machine a driver may take longer to start than ten seconds.
        run_limited 60 wine reg add 'HKLM\System\CurrentControlSet\Control' /v ServicesPipeTimeout /t REG_DWORD /d 60000 /f
        run_limited 120 wineserver --wait
    ) >"$log" 2>&1 || fail "Wine cannot make a Windows (see $log)"
    [[ -f $wine_dir/template.new/system.reg ]] || fail "Wine made no Windows (see $log)"
    printf '%s\n' "$version" >"$wine_dir/template.new/made-by"
    mv -- "$wine_dir/template.new" "$wine_dir/template"
}

# new_prefix NAME: a fresh Windows of that name, in use by this shell from here on; gone when the shell ends.
new_prefix() {
    make_template
    remove_prefix "$1"
    cp -a --reflink=auto -- "$wine_dir/template" "$wine_dir/$1" || fail "cannot copy the fresh Windows to $wine_dir/$1"
    at_exit remove_prefix "$1"
    use_prefix "$1"
}

# start_server --persistent[=SECONDS]: starts the server of the prefix in use. It lives on for SECONDS after its last
# program, without a number until the shell ends. It stays a child of this shell and is told to end when the shell is gone,
# even by a kill that no clean-up survives. Programs must not start before it listens: they would start another one.
start_server() {
    local waited=0
    { release_lock; exec setpriv --pdeathsig TERM wineserver --foreground "$1"; } >/dev/null 2>&1 &
    until compgen -G "$TMPDIR/$(cat -- "$WINEPREFIX/wineserver" 2>/dev/null)/server-*/socket" >/dev/null; do
        ((++waited < 600)) || fail "the Windows in $WINEPREFIX does not start"
        sleep 0.05
    done
}

# Keeps the Windows in use running between programs.
keep_server() {
    start_server --persistent
    # The first program starts the session's services, which later ones then find running.
    run_limited 120 wine cmd /c exit >/dev/null 2>&1 || fail "Windows programs do not start in $WINEPREFIX"
}

# For runs whose windows nobody looks at: without a display driver each costs a third.
go_without_display() {
    unset DISPLAY
    run_limited 300 wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /t REG_SZ /d null /f >/dev/null 2>&1 ||
        fail "the Windows in $WINEPREFIX cannot be set up"
}
