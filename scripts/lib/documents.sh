# shellcheck shell=bash
# The fenced blocks of the documents. Words after a block's language say how it is tried: "key=value", or "key" alone.
# Sourced after common.sh.
# shellcheck disable=SC2154

# shellcheck disable=SC2034
documents=("$repo/README.md" "$repo"/docs/*.md)

# extract_blocks DOCUMENT FOLDER: each block becomes a file FOLDER/<number>; FOLDER/index has a line for each: number,
# line in the document, language, words, separated by tabs.
extract_blocks() {
    rm -rf -- "$2"
    mkdir -p -- "$2"
    : >"$2/index"
    awk -v folder="$2" '
        !inside && /^ *```/ {
            inside = 1; ++count; file = sprintf("%s/%02d", folder, count)
            match($0, /`/); indent = RSTART
            language = $1; sub(/^```/, "", language)
            words = $0; sub(/^ *```[^ ]* */, "", words)
            printf "%02d\t%d\t%s\t%s\n", count, NR, language, words >>(folder "/index")
            printf "" >file
            next
        }
        inside && /^ *```$/ { inside = 0; close(file); next }
        inside { print substr($0, indent) >file }
        END { exit inside }
    ' "$1" || fail "$1 has a block without an end"
}

# word WORDS KEY: the value of "key=value" among the words.
word() {
    local each
    for each in $1; do
        [[ $each != "$2="* ]] || { printf '%s' "${each#*=}"; return; }
    done
}
