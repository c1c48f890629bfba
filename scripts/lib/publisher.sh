# shellcheck shell=bash
# What packaging/publisher.conf says. Sourced after common.sh.
# shellcheck disable=SC2154

publisher_file=$repo/packaging/publisher.conf

# publisher KEY: the text of a line; nothing for an empty one.
publisher() {
    local text
    text=$(sed -n "s/^$1=//p" "$publisher_file")
    # It goes into queries, manifests and scripts, whose quotes it must not end.
    if [[ $text == *[\'\"\`\$\<\>\&\\]* || ($1 == *_url && -n $text && ! $text =~ ^https?://[^[:space:]]+$) ]]; then
        fail "$publisher_file: $1 cannot be used: $text"
    fi
    printf '%s' "$text"
}

# require_publisher KEY...: fails with the keys that are empty.
require_publisher() {
    local key
    local -a empty=()
    for key in "$@"; do
        [[ -n $(publisher "$key") ]] || empty+=("$key")
    done
    ((${#empty[@]} == 0)) || { printf '%s' "${empty[*]}"; return 1; }
}
