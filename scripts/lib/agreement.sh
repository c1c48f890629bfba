# shellcheck shell=bash
# Whether a run did what its plan said, device by device. Sourced after common.sh.

# from_plan PLAN DEVICE: INF, pass, result value and what it will say, separated by "|", of a plan as JSON; nothing for a
# device that gets no driver.
from_plan() {
    jq -r --arg device "$2" '.machines[0].devices[] | select(.key == $device and .match != null) |
        [.match.inf, .match.pass, .report.value // "", .report.ifBound // ""] | map(tostring) | join("|")' "$1"
}

# agrees_with_plan PLAN DEVICE KIT INF PASS: the run bound the planned INF, found in the planned pass. KIT and INF are paths
# on the machine, in whatever letter case the run wrote them. Says what is otherwise.
agrees_with_plan() {
    local planned inf pass ran=${4^^} kit=${3^^}
    ran=${ran#"$kit\\"}
    IFS='|' read -r inf pass _ <<<"$(from_plan "$1" "$2")"
    planned=${inf^^}
    if [[ -z $inf || $ran != "${planned//\//\\}" || $5 != "$pass" ]]; then
        printf 'planned %s in pass %s, ran %s in pass %s' "${inf:-nothing}" "${pass:-none}" "${4:-nothing}" "${5:-none}"
        return 1
    fi
}

# plans_only PLAN DEVICE...: the plan serves these devices and no others.
plans_only() {
    local plan=$1
    shift
    diff <(jq -r '.machines[0].devices[].key' "$plan" | sort) <(printf '%s\n' "$@" | sort) >/dev/null
}
