#!/usr/bin/env bash
# shellcheck disable=SC2317 # promises call functions by name
# The Ansible role: its form, that it asks the Windows modules only for what they offer, and what it decides on recorded
# machines. Ansible itself runs, with its own way of installing in the background; only the machines are recorded.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"
# shellcheck source=../../scripts/lib/documents.sh
source "$tests/../../scripts/lib/documents.sh"

ansible=$repo/packaging/ansible
work=$build_dir/fleet
machines=$work/machines
reports=$work/reports

unset "${!ANSIBLE@}"

# Runs in the role's folder with a home of its own: nobody's settings, no traces in anybody's home.
in_ansible() {
    (
        cd -- "$ansible"
        export HOME=$work/home LC_ALL=C.UTF-8 ANSIBLE_NOCOLOR=1 NO_COLOR=1 ANSIBLE_PIPELINING=1 ANSIBLE_CONFIG=$ansible/ansible.cfg
        run_limited 500 "$@"
    )
}

# On the recorded machines: their connection, and modules that stand for the Windows ones.
play() {
    (
        export ANSIBLE_COLLECTIONS_PATH=$tests/machines/collections ANSIBLE_CONNECTION_PLUGINS=$tests/machines/connection_plugins
        export PYTHONDONTWRITEBYTECODE=1 ANSIBLE_FORKS=20 RECORDED_MACHINES=$machines
        in_ansible ansible-playbook --inventory "$tests/machines/hosts.yml" --extra-vars "work=$work morvix_package=$work/Morvix.msi morvix_report_folder=$reports" \
            site.yml "$@"
    )
}

# Every option that the role gives to a Windows module is one of the real module's.
options_are_offered() {
    local module option offered
    while read -r module option; do
        offered=$(jq -r --arg name "$module" '.[$name].doc.options | keys[]' "$work/modules.json")
        grep -qx -- "$option" <<<"$offered" || { printf '%s has no option %s\n' "$module" "$option"; return 1; }
    done < <(awk '
        /^ *ansible\.windows\.[a-z_]+:$/ { match($0, /[^ ]/); depth = RSTART; module = $1; sub(/:$/, "", module); next }
        module != "" { match($0, /[^ ]/); if (RSTART <= depth) module = ""
            else if (RSTART == depth + 2) { option = $1; sub(/:$/, "", option); print module, option } }
    ' "$ansible"/roles/morvix/tasks/*.yml)
}

# fact HOST FILTER: what the report of a host says.
fact() { jq -r "$2" "$reports/$1.json"; }

# reports_that HOST OUTCOME RESTART [FAMILY VERSION OUTCOME]...
reports_that() {
    local host=$1 expected actual
    expected=$(printf '%s\n' "$2" "$3" "${@:4}")
    actual=$(fact "$host" '.outcome, .restart, (.families[] | .family, .version, .outcome)')
    [[ $actual == "$expected" ]] || { printf '%s reports %s\n' "$host" "${actual//$'\n'/ | }"; return 1; }
}

# The machine's journal, one word for each thing done to it.
journal() { jq -r '.journal[]?' "$machines/$1.json"; }
times() { journal "$1" | grep -cx -- "$2" || true; }
did() { (($(times "$1" "$2") > 0)); }
did_not() { (($(times "$1" "$2") == 0)); }
owes_restart() { [[ $(jq '.registry.RebootNeeded.value' "$machines/$1.json") == 1 ]]; }
owes_no_restart() { ! owes_restart "$1"; }

copied_before_installed() {
    journal "$1" | awk '/^copy$/ { copied = NR } /^install$/ { installed = NR } END { exit !(copied && copied < installed) }'
}

# The network was gone between the start and the end as the role saw it.
lost_meanwhile() { journal "$1" | sed -n '/^install$/,$p' | grep -qx 'no connection'; }

# run_says TEXT: what Ansible wrote has it.
run_says() { grep -qF -- "$1" "$work/play.log"; }

# The lines that the guide shows are among the last ones of the run.
guide_shows_this_run() {
    local line shown=0
    extract_blocks "$repo/docs/FLEET.md" "$work/guide"
    while read -r line; do
        run_says "\"msg\": \"$line\"" || { printf 'the run does not say "%s"\n' "$line"; return 1; }
        shown=$((shown + 1))
    done <"$work/guide/$(awk -F '\t' '$3 == "text" && $4 == "ansible" { print $1 }' "$work/guide/index")"
    ((shown > 0))
}

same() { [[ $1 == "$2" ]]; }

rm -rf -- "$work"
mkdir -p -- "$machines" "$reports" "$work/home"
promise "ansible-lint finds nothing" in_ansible ansible-lint --offline --strict site.yml roles
promise "the playbook has no syntax error" in_ansible ansible-playbook --syntax-check --inventory hosts.example.yml site.yml
mapfile -t modules < <(grep -ohE 'ansible\.windows\.[a-z_]+' "$ansible"/roles/morvix/tasks/*.yml | sort -u)
in_ansible ansible-doc --json "${modules[@]}" >"$work/modules.json" || fail "ansible-doc does not know ${modules[*]}"
promise "the role asks the Windows modules for what they offer" options_are_offered

cp -- "$tests"/machines/recorded/*.json "$machines/"
printf 'package' >"$work/Morvix.msi"
status=0
play >"$work/play.log" 2>&1 || status=$?

promise "a host that loses its connection is waited for" lost_meanwhile loses-connection
promise "a host that lost its connection is installed and reports both families" \
    reports_that loses-connection installed "not needed" TAVG_PCIE 12.1.63.0 SUCCESS TAVX 3.2.63.0 SUCCESS
promise "a host that loses its connection is installed once" same 1 "$(times loses-connection install)"
promise "the package is on the host before its network driver is replaced" copied_before_installed loses-connection
promise "the report holds the package's code" same "0 3010" "$(fact loses-connection .code) $(fact restart-allowed .code)"
promise "the answer to the start may be lost" reports_that loses-answer installed "not needed" TAVG_PCIE 12.1.63.0 SUCCESS
promise "a host whose answer was lost is installed once" same 1 "$(times loses-answer install)"
promise "the notes about the job may be lost; RebootNeeded then restarts without a code" \
    reports_that loses-job installed "done" TAVG_PCIE 12.1.63.0 SUCCESS
promise "3010 restarts a host that may be restarted" reports_that restart-allowed installed "done" TAVG_PCIE 12.1.63.0 SUCCESS
promise "such a host is restarted once" same 1 "$(times restart-allowed restart)"
promise "a restarted host owes no restart any more" owes_no_restart restart-allowed
promise "3010 is only reported when the host may not be restarted" \
    reports_that restart-refused installed needed TAVG_PCIE 12.1.63.0 SUCCESS
promise "a host that may not be restarted is not restarted" did_not restart-refused restart
promise "a host that was not restarted still owes it" owes_restart restart-refused
promise "a refused driver is reported with its family and without an old version" \
    reports_that refused-driver "driver failed" "not needed" TAVG_PCIE 12.1.63.0 SUCCESS TAVX "" FAILURE
promise "properties reach the package" test "$(jq -r .arguments "$machines/refused-driver.json")" == "FAILONFAILURE=1 OEMVARIANT=1"
promise "results of an earlier run are not taken for this one's" reports_that no-adapter "no adapter" "not needed"
promise "an installed package is left alone" did_not owes-restart install
promise "a host with nothing to do reports what stands there, and a restart that was not allowed before is made up for" \
    reports_that owes-restart current "done" TAVG_PCIE 12.1.63.0 SUCCESS TAVX 3.2.63.0 SUCCESS
promise "a failed package is reported with its code" test "$(fact broken-package '.outcome, .code' | paste -sd ' ')" == "failed 1603"
promise "a host that never comes back is reported as lost" reports_that stays-away lost "not needed"
promise "a host that was never there is reported as unreachable" reports_that never-there unreachable "not needed"
promise "a failed task is reported with its reason" \
    test "$(fact full-disk '.outcome, .reason' | paste -sd ' ')" == "failed There is not enough space on the disk."
promise "without a package on the host nothing is installed" did_not full-disk install
promise "the playbook fails when hosts need somebody" same 2 "$status"
for host in broken-package stays-away never-there full-disk; do
    promise "the playbook names $host" run_says "$host needs somebody"
done
promise "the playbook's last lines hold family, version and outcome" \
    run_says '"msg": "loses-connection: installed; restart not needed; TAVG_PCIE 12.1.63.0 SUCCESS; TAVX 3.2.63.0 SUCCESS"'

promise "the guide's example is this run" guide_shows_this_run

status=0
play --limit loses-connection,restart-allowed,owes-restart,localhost >"$work/play.log" 2>&1 || status=$?
promise "a second run installs nothing" same 1 "$(times loses-connection install)"
promise "a second run restarts nobody" same "1 1" "$(times restart-allowed restart) $(times owes-restart restart)"
end_promises
