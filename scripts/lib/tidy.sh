# shellcheck shell=bash
# clang-tidy over the product and what its tests share, as the windows preset compiles them. The stand-ins are left out: they
# declare the platform's functions again. Sourced after common.sh and results.sh.
# shellcheck disable=SC2154

tidy_dir=$build_dir/tidy

# Looks at every source once; a source that was found clean is looked at again when anything has changed that it was
# judged by.
check_tidy() {
    local source fingerprint
    local -a arguments
    mkdir -p -- "$tidy_dir/clean"
    list_tidy_arguments
    list_tidy_commands >"$tidy_dir/compile_commands.json"
    [[ -s $tidy_dir/sources ]] || { say "no source files found"; return 1; }
    list_fingerprints >"$tidy_dir/fingerprints"
    # Each source that the compiler has read must be among them: none is left out unseen.
    if [[ $(wc -l <"$tidy_dir/fingerprints") != $(wc -l <"$tidy_dir/sources") ]]; then
        say "not every source has been compiled: $(cut -f 2 "$tidy_dir/fingerprints" | sort | comm -13 - <(sort "$tidy_dir/sources"))"
        return 1
    fi
    while IFS=$'\t' read -r fingerprint source; do
        [[ -e $tidy_dir/clean/$fingerprint ]] || printf '%s\0' "$tidy_dir/clean/$fingerprint" "$source"
    done <"$tidy_dir/fingerprints" >"$tidy_dir/to-do"
    # shellcheck disable=SC2016
    run_limited 4500 xargs -0 -r -a "$tidy_dir/to-do" -n 2 -P "$(nproc)" \
        bash -c 'clang-tidy "${@:1:$#-2}" "${@: -1}" && : >"${@: -2:1}"' tidy "${arguments[@]}"
}

# clang brings the headers of the processor's instructions itself and takes all others from the cross compiler, whose
# printf attribute it does not know.
list_tidy_arguments() {
    local headers
    arguments=(--quiet "-p=$tidy_dir" --extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-Wno-ignored-attributes
        --extra-arg=-Wreserved-identifier)
    while read -r headers; do
        arguments+=("--extra-arg=-isystem$headers")
    done < <(x86_64-w64-mingw32-g++-win32 -xc++ -E -v /dev/null 2>&1 >/dev/null |
        sed -n '/^#include <\.\.\.>/,/^End of search/s/^ //p' | grep -E '/(c\+\+|x86_64-w64-mingw32/include)(/|$)')
}

# The compile commands of these sources, the first of each; their names go into the file `sources`.
list_tidy_commands() {
    awk -v skip="^($build_dir|/usr|$repo/tests|$repo/bench)/" -v list="$tidy_dir/sources" '
        /^{/ { entry = "" }
        { entry = entry $0 "\n" }
        match($0, /"file": ".*"/) { file = substr($0, RSTART + 9, RLENGTH - 10) }
        /^}/ && file ~ /\.(c|cpp)$/ && file !~ skip && !seen[file]++ {
            sub(/,?\n$/, "", entry)
            printf "%s%s", (count++ ? ",\n" : "[\n"), entry
            print file >list
        }
        END { print "\n]" }
    ' "$build_dir/windows/compile_commands.json"
}

# For each source, a number made of all that it is judged by, and its name: the checks, the tool, the compile command, and
# the content of the source and of every header that the compiler read for it.
list_fingerprints() {
    local judge source line
    judge=$(sha256sum <(clang-tidy --version) "$repo/.clang-tidy" <(say "${arguments[*]}") | cut -d ' ' -f 1 | paste -sd ' ')
    ninja -C "$build_dir/windows" -t deps | awk '
        / \(VALID\)$/ { source = ""; next }
        /^    / { if (source == "") source = $0; if ($0 !~ /^ *\/usr\//) print substr(source, 5) "\t" substr($0, 5) }
    ' | sort -u >"$tidy_dir/read"
    cut -f 2 "$tidy_dir/read" | sort -u | tr '\n' '\0' | xargs -0 sha256sum -- >"$tidy_dir/contents" || true
    awk -v judge="$judge" '
        FILENAME == ARGV[1] { content[substr($0, 67)] = substr($0, 1, 64); next }
        FILENAME == ARGV[2] { split($0, pair, "\t"); judged[pair[1]] = judged[pair[1]] " " content[pair[2]]; next }
        /"command": / { command = $0 }
        match($0, /"file": ".*"/) { commands[substr($0, RSTART + 9, RLENGTH - 10)] = command }
        FILENAME == ARGV[3] { next }
        $0 in judged { print $0 "\t" judge " " commands[$0] judged[$0] }
    ' "$tidy_dir/contents" "$tidy_dir/read" "$tidy_dir/compile_commands.json" "$tidy_dir/sources" |
        while IFS=$'\t' read -r source line; do
            printf '%s\t%s\n' "$(sha256sum <<<"$line" | cut -c 1-64)" "$source"
        done
}
