# shellcheck shell=bash
# Sourced first by every script: where things are, how a script says what is wrong, and how it ends.

repo=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
script_name=$(realpath --relative-base="$repo" -- "$0")
build_dir=$repo/build
# What was built, and how the tests of it went. A script that builds with options of its own has folders of its own.
flavour=${MORVIX_FLAVOUR:-}
# shellcheck disable=SC2034
host_build=$build_dir/${flavour}host
# shellcheck disable=SC2034
windows_build=$build_dir/${flavour}windows
# shellcheck disable=SC2034
dist=$build_dir/${flavour}dist

# The caller's compiler settings belong to other projects; the presets say all that this one needs.
unset CC CXX CFLAGS CXXFLAGS CPPFLAGS LDFLAGS CPATH C_INCLUDE_PATH CPLUS_INCLUDE_PATH LIBRARY_PATH CMAKE_GENERATOR
unset CMAKE_TOOLCHAIN_FILE CMAKE_PREFIX_PATH DESTDIR GTEST_FILTER GTEST_OUTPUT CDPATH

say() { printf '%s\n' "$*"; }

# Ends the script with the one line that says what is missing or went wrong.
fail() {
    printf '%s: %s\n' "$script_name" "$*" >&2
    exit 1
}

# --- The end of a script ---------------------------------------------------------------------------------------------
# What a script starts it stops again on every way out. Entries run in reverse order; a subshell calls `own_cleanups`
# first, because it must not undo what its parent has started.
cleanups=()
child=
exec {lock}>/dev/null

at_exit() { cleanups+=("$(printf '%q ' "$@")"); }

end_quietly() { kill -TERM "$1" 2>/dev/null; }

stop_child() {
    [[ -n $child ]] || return 0
    kill -TERM "$child" 2>/dev/null
    wait "$child" 2>/dev/null
    child=
}

finish() {
    local status=$?
    # A second signal must not cut the clean-up short.
    trap '' INT TERM HUP
    trap - EXIT
    set +e
    stop_child
    while ((${#cleanups[@]} > 0)); do
        eval "${cleanups[-1]}"
        unset 'cleanups[-1]'
    done
    if ((status != 0 && BASH_SUBSHELL == 0)) && [[ $(free_megabytes) -lt 100 ]]; then
        say "$script_name: the disk that holds $build_dir is full" >&2
    fi
    exit "$status"
}

own_cleanups() {
    cleanups=()
    child=
    trap finish EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    trap 'exit 129' HUP
}
own_cleanups

# run_child COMMAND...: runs a command that may take long. The shell waits beside it, so that a signal ends the script at
# once; the command is stopped with the script, even when an outright kill left no time for a clean-up.
run_child() {
    local status=0
    # A subshell whose script was killed outright must not start anything more.
    kill -0 $$ 2>/dev/null || exit 1
    { release_lock; exec setpriv --pdeathsig TERM "$@"; } &
    child=$!
    wait "$child" || status=$?
    child=
    return "$status"
}

# run_limited SECONDS COMMAND...: the same with a limit that guards against hanging; 124 when the time was up.
run_limited() { run_child timeout --kill-after=15 "$@"; }

# wait_until SECONDS COMMAND...: asks again and again until the command succeeds; fails when the time is up.
wait_until() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.1
    done
}

# In a background job: lets go of the build folder, so that nothing that outlives the script keeps others waiting.
release_lock() { exec {lock}>&-; }

# --- The build folder ------------------------------------------------------------------------------------------------
free_megabytes() {
    local folder=$build_dir
    [[ -d $folder ]] || folder=$repo
    df --output=avail -B1M -- "$folder" 2>/dev/null | tail -n 1
}

# Makes the build folder and keeps other runs out of it until this one ends. Scripts that start each other share the hold.
enter_build_folder() {
    local needed_megabytes=5000
    if ! mkdir -p -- "$build_dir" 2>/dev/null || [[ ! -w $build_dir ]]; then
        fail "cannot write to $build_dir"
    fi
    if [[ ! -O $build_dir ]]; then
        fail "$build_dir belongs to user $(stat -c %U -- "$build_dir"): remove it, or run as that user"
    fi
    if (($(free_megabytes) < needed_megabytes)); then
        fail "too little disk space: $(free_megabytes) MB free below $build_dir, $needed_megabytes MB needed"
    fi
    hold_build_folder --exclusive
}

# Keeps builds out of the build folder until this script ends; other tests may run beside it.
share_build_folder() { hold_build_folder --shared; }

hold_build_folder() {
    [[ -z ${MORVIX_BUILD_LOCKED:-} ]] || return 0
    exec {lock}>&-
    exec {lock}>"$build_dir/.lock"
    if ! flock --nonblock "$1" "$lock"; then
        say "waiting for another run in $build_dir to end"
        flock "$1" "$lock" &
        child=$!
        wait "$child"
        child=
    fi
    export MORVIX_BUILD_LOCKED=1
}
