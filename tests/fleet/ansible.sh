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
# shellcheck source=../../scripts/lib/msi.sh
source "$tests/../../scripts/lib/msi.sh"

ansible=$repo/packaging/ansible
work=$build_dir/fleet
machines=$work/machines
reports=$work/reports
package=$work/Morvix-$(product_version).msi

unset "${!ANSIBLE@}"

# Runs in the role's folder with a home of its own: nobody's settings, no traces in anybody's home.
in_ansible() {
    (
        cd -- "$ansible"
        export HOME=$work/home LC_ALL=C.UTF-8 ANSIBLE_NOCOLOR=1 NO_COLOR=1 ANSIBLE_PIPELINING=1 ANSIBLE_CONFIG=$ansible/ansible.cfg
        run_limited 500 "$@"
    )
}

# On the recorded machines: their connection, and modules that stand in for the Windows ones.
play() {
    (
        export ANSIBLE_COLLECTIONS_PATH=$tests/machines/collections ANSIBLE_CONNECTION_PLUGINS=$tests/machines/connection_plugins
        export PYTHONDONTWRITEBYTECODE=1 ANSIBLE_FORKS=20 RECORDED_MACHINES=$machines
        in_ansible ansible-playbook --inventory "$tests/machines/hosts.yml" --extra-vars "work=$work morvix_package=$package morvix_report_folder=$reports" \
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

# The variables that have a default have the same one in argument_specs.yml, which names every variable.
defaults_are_named() {
    diff <(as_json defaults/main.yml | jq -S 'del(.morvix_version)') \
        <(as_json meta/argument_specs.yml | jq -S '.argument_specs.main.options | map_values(select(has("default")) | .default)') &&
        diff <(as_json defaults/main.yml | jq -r 'keys[]' | cat - <(printf 'morvix_package\n') | sort) \
            <(as_json meta/argument_specs.yml | jq -r '.argument_specs.main.options | keys[]' | sort)
}

as_json() { python3 -c 'import json, sys, yaml; json.dump(yaml.safe_load(open(sys.argv[1])), sys.stdout)' "$ansible/roles/morvix/$1"; }

# What the tasks name is what requirements.yml brings, and the example's way of logging on is in requirements.txt.
requirements_are_named() {
    local collection
    while read -r collection; do
        grep -qx "  - name: $collection" "$ansible/requirements.yml" || { printf 'nothing brings %s\n' "$collection"; return 1; }
    done < <(grep -rohE '^ *[a-z_]+\.[a-z_]+\.[a-z_]+:$' "$ansible/roles/morvix/tasks" | sed 's/ //g; s/\.[a-z_]*:$//' | grep -vx 'ansible\.builtin' | sort -u)
    grep -q 'ansible_winrm_transport: kerberos' "$ansible/hosts.example.yml" && grep -q '^pywinrm\[kerberos\]' "$ansible/requirements.txt"
}

# refuses REASON ARGUMENT...: a run with these arguments ends with this reason before the host is changed.
refuses() {
    local reason=$1
    cp -- "$tests/machines/recorded/no-adapter.json" "$machines/"
    ! play --limit no-adapter,localhost "${@:2}" >"$work/refusal.log" 2>&1 &&
        grep -qF -- "$reason" "$work/refusal.log" && did_not no-adapter folder && did_not no-adapter install
}

# Everything that the machines have but the journal of what was asked of them.
without_journals() {
    local machine
    for machine in "$machines"/*.json; do
        jq -S 'del(.journal, .lost)' "$machine"
    done
}

# no_change_in_recap: every host of the last run counts no change.
no_change_in_recap() {
    ! sed -n '/^PLAY RECAP/,$p' "$work/play.log" | grep -v 'changed=0 ' | grep 'changed='
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

rm -rf -- "$work"
mkdir -p -- "$machines" "$reports" "$work/home"
promise "ansible-lint finds nothing" in_ansible ansible-lint --offline --strict site.yml roles
promise "the playbook has no syntax error" in_ansible ansible-playbook --syntax-check --inventory hosts.example.yml site.yml
mapfile -t modules < <(grep -ohE 'ansible\.windows\.[a-z_]+' "$ansible"/roles/morvix/tasks/*.yml | sort -u)
in_ansible ansible-doc --json "${modules[@]}" >"$work/modules.json" || fail "ansible-doc does not know ${modules[*]}"
promise "the role asks the Windows modules for what they offer" options_are_offered
promise "argument_specs.yml names every variable with its default" defaults_are_named
promise "the collections and the way of logging on are required" requirements_are_named

cp -- "$tests"/machines/recorded/*.json "$machines/"
printf 'package' >"$package"
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
promise "properties reach the package, with their blanks and quotes" \
    test "$(jq -r '.properties | to_entries[] | "\(.key)=\(.value)"' "$machines/refused-driver.json" | paste -sd ';')" == \
    'FAILONFAILURE=1;INSTALLDIR=D:\Kit "A" of Norda;OEMVARIANT=1'
promise "a product that is registered early does not end the wait: the results do" \
    reports_that registers-first installed "not needed" TAVG_PCIE 12.1.63.0 SUCCESS
promise "a host without an adapter that lost its notes is waited for to the end" \
    reports_that no-adapter-loses-job "no adapter" "not needed"
promise "a package that was exchanged on the host is not installed" did_not exchanged-package install
promise "an exchanged package is reported" run_says "exchanged-package: failed"
promise "a package with its sum and signed by its publisher is installed" reports_that signed-package installed "not needed" TAVG_PCIE 12.1.63.0 SUCCESS
promise "a package of another publisher is not installed" did_not other-publisher install
promise "a package whose signature does not hold is not installed" did_not bad-signature install
promise "a product that is there does not hide the failure that was recorded" \
    reports_that standing-failure "driver failed" "not needed" TAVG_PCIE 12.1.63.0 SUCCESS TAVX "" FAILURE
promise "the host is asked for the product that the package is" did signed-package "ask for {$(product_code "$(product_version)")}"
promise "results of an earlier run are not taken for this one's" reports_that no-adapter "no adapter" "not needed"
promise "an installed package is left alone" did_not owes-restart install
promise "a host with nothing to do reports the recorded results, and a restart that was not allowed before is made up for" \
    reports_that owes-restart current "done" TAVG_PCIE 12.1.63.0 SUCCESS TAVX 3.2.63.0 SUCCESS
promise "a restart that only the installer library has recorded is made up for too" \
    reports_that library-owes-restart current "done" TAVG_PCIE 12.1.63.0 SUCCESS TAVX 3.2.63.0 SUCCESS
promise "a failed package is reported with its code and reason" \
    test "$(fact broken-package '.outcome, .code, .reason' | paste -sd ' ')" == "failed 1603 the installation failed"
promise "a host that never comes back is reported as lost" reports_that stays-away lost "not needed"
promise "a host that was never there is reported as unreachable" reports_that never-there unreachable "not needed"
promise "a failed task is reported with its reason" \
    test "$(fact full-disk '.outcome, .reason' | paste -sd ' ')" == "failed There is not enough space on the disk."
promise "without a package on the host nothing is installed" did_not full-disk install
promise "the playbook fails when hosts need somebody" same 2 "$status"
for host in broken-package stays-away never-there full-disk exchanged-package other-publisher bad-signature; do
    promise "the playbook names $host" run_says "$host needs somebody"
done
promise "the playbook's last lines hold family, version and outcome" \
    run_says '"msg": "loses-connection: installed; restart not needed; TAVG_PCIE 12.1.63.0 SUCCESS; TAVX 3.2.63.0 SUCCESS"'

promise "the guide's example is this run" guide_shows_this_run

# Hosts that are to be installed again, and those that have nothing to do.
settled=loses-connection,restart-allowed,owes-restart,library-owes-restart,signed-package,standing-failure,localhost
for turn in second third; do
    play --limit "$settled" >"$work/play.log" 2>&1 || true
    promise "a $turn run changes nothing" no_change_in_recap
done
promise "a second run installs nothing" same "1 1" "$(times loses-connection install) $(times signed-package install)"
promise "a second run restarts nobody" same "1 1" "$(times restart-allowed restart) $(times owes-restart restart)"

cp -- "$tests"/machines/recorded/{no-adapter,refused-driver,owes-restart,standing-failure}.json "$machines/"
without_journals >"$work/before"
cp -a -- "$reports" "$work/reports.before"
status=0
play --check --limit no-adapter,refused-driver,owes-restart,standing-failure,never-there,localhost >"$work/play.log" 2>&1 || status=$?
without_journals >"$work/after"
promise "check mode changes no host" diff "$work/before" "$work/after"
promise "check mode changes no report" diff -r "$work/reports.before" "$reports"
promise "check mode says what a run would install" run_says "no-adapter: would be installed; restart not needed"
promise "check mode says so of every host that lacks the product" run_says "refused-driver: would be installed"
promise "check mode says what a run would restart" run_says "owes-restart would be restarted"
promise "check mode tells of the failure that was recorded" run_says "standing-failure: driver failed"
promise "check mode finds a host that does not answer" run_says "never-there: unreachable"
promise "check mode counts what a run would change" grep -qE '^no-adapter .*changed=1 ' "$work/play.log"

sum=$(sha256sum "$package" | cut -d ' ' -f 1)
promise "a package that is not there is refused" refuses "there is no package $work/none-1.0.0.msi" \
    --extra-vars "morvix_package=$work/none-1.0.0.msi"
promise "a package that is not there is refused in check mode too" refuses "there is no package $work/none-1.0.0.msi" \
    --check --extra-vars "morvix_package=$work/none-1.0.0.msi"
promise "a package with another sum is refused" refuses "has the sum $sum, not 00" --extra-vars morvix_package_sha256=00
cp -- "$package" "$work/Morvix.msi"
promise "a package of unknown version is refused" refuses "give morvix_version" --extra-vars "morvix_package=$work/Morvix.msi"
promise "a name that is no property is refused" refuses "no public properties: lower" --extra-vars '{"morvix_properties":{"lower":1}}'
promise "a folder that is not the host's is refused" refuses "no folder of the host" --extra-vars '{"morvix_folder":"\\\\server\\share"}'
promise "a value of another type is refused" refuses "morvix_limit" --extra-vars morvix_limit=soon
end_promises
