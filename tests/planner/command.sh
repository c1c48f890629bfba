#!/usr/bin/env bash
# shellcheck disable=SC2016,SC2154,SC2317 # promises call functions by name
# morvix-kit as its users call it: what it prints where, how it ends, and what it makes of bad input.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"
# shellcheck source=lib/exports.sh
source "$tests/lib/exports.sh"

program=${MORVIX_KIT:-$host_build/planner/morvix-kit}
[[ -x $program ]] || fail "there is no $program: run scripts/build host first"
sarif_schema=$build_dir/page-checks/node_modules/@microsoft/jest-sarif/lib/schemas/sarif-2.1.0-rtm.5.json
[[ -s $sarif_schema ]] || fail "there is no $sarif_schema: run scripts/setup first"
work=$build_dir/planner-test
rm -rf -- "$work"
mkdir -p -- "$work/fleet"
cd -- "$work"
unset NO_COLOR
export ASAN_OPTIONS=detect_leaks=0

# run_kit ARGUMENT...: leaves what it printed in ./out and ./err, and its exit code in `status`.
run_kit() {
    status=0
    run_limited 120 "$program" "$@" >out 2>err </dev/null || status=$?
}

ends_with() {
    local code=$1
    shift
    run_kit "$@"
    [[ $status == "$code" ]] || { printf 'exit code %s instead of %s: %s\n' "$status" "$code" "$(cat err)"; return 1; }
}

# says PATTERN: standard error is one line of the program that fits.
says() {
    if [[ $(wc -l <err) != 1 ]] || ! grep -qE -- "^morvix-kit: .*$1" err; then
        printf 'said: %s\n' "$(cat err)"
        return 1
    fi
}

valid_json() { python3 -m json.tool "$1" >/dev/null; }

# follows SCHEMA FILE: a document, or one on each line.
follows() {
    local schema=$1
    [[ $schema == /* ]] || schema=$repo/docs/schemas/$1
    [[ -e $schema ]] || schema=$tests/$1
    python3 - "$schema" "$2" <<'END'
import json, sys, jsonschema
schema = json.load(open(sys.argv[1], encoding="utf-8"))
validator = jsonschema.validators.validator_for(schema)
validator.check_schema(schema)
lines = open(sys.argv[2], encoding="utf-8").read().splitlines()
assert lines, "nothing was printed"
for line in lines:
    validator(schema).validate(json.loads(line))
END
}

cp -r -- "$repo/kit" kit
write_export PC7.reg 6.2 WinNT "$gigabit_card" "$other_card"
write_export fleet/A.reg 6.1 WinNT "$gigabit_card"
write_export fleet/B.reg 6.2 ServerNT "$gigabit_card" 'VEN_5D1A&DEV_FFFF&SUBSYS_0&REV_01'
write_export fleet/C.reg 5.2 WinNT "$gigabit_card"

# --- help ------------------------------------------------------------------------------------------------------------
fits_a_screen() {
    local command
    for command in '' plan explain diff report check rules; do
        # shellcheck disable=SC2086
        ends_with 0 $command --help || return 1
        [[ $(wc -l <out) -le 23 && $(wc -L <out) -le 80 && ! -s err ]] || { cat out; return 1; }
    done
}
promise "help fits a screen of 24 lines and 80 columns" fits_a_screen

# options_of COMMAND: as its help has them, without the values.
options_of() {
    run_kit "$1" --help
    grep -oE '^  --[a-z-]+' out | tr -d ' ' | sort
}
man_and_completions_agree() {
    local command option
    mandoc -T lint -W warning "$repo/planner/morvix-kit.1" || return 1
    for command in plan explain diff report check rules; do
        for option in $(options_of "$command"); do
            grep -qE "^\.It Fl -${option#--}( |\$)" "$repo/planner/morvix-kit.1" ||
                { printf 'the man page lacks %s\n' "$option"; return 1; }
            grep -qE "[['*]?$option\[" "$repo/planner/completions/_morvix-kit" ||
                { printf 'zsh lacks %s\n' "$option"; return 1; }
        done
        diff <(options_of "$command") <(
            # shellcheck source=../../planner/completions/morvix-kit.bash disable=SC1091
            source "$repo/planner/completions/morvix-kit.bash"
            COMP_WORDS=(morvix-kit "$command" --) COMP_CWORD=2
            _morvix_kit
            printf '%s\n' "${COMPREPLY[@]}" | sort
        ) || return 1
    done
    diff <(grep -oE '^\.It Fl -[a-z-]+' "$repo/planner/morvix-kit.1" | sed 's/.*Fl -/--/' | sort) \
        <({ options_of plan; options_of explain; options_of diff; options_of report; options_of check; options_of rules; printf '%s\n' --version; } | sort -u)
}
promise "man page and completions have the options of the help, and no others" man_and_completions_agree

# --- exit codes ------------------------------------------------------------------------------------------------------
wrong_usage_is_two() {
    ends_with 2 && says COMMAND\|subcommand && ends_with 2 frobnicate kit && says 'frobnicate is no command' && ends_with 2 plan kit && says MACHINE &&
        ends_with 2 plan nokit PC7.reg && says 'nokit: no such folder' &&
        ends_with 2 plan fleet PC7.reg && says 'Morvix.ini' &&
        ends_with 2 plan kit PC7.reg --system Win95 && says 'Win732E' &&
        ends_with 2 plan kit PC7.reg --family 'Windows XP' && says 'Windows Vista' &&
        ends_with 2 plan kit PC7.reg --reader other && says 'windows, wine' &&
        ends_with 2 plan kit PC7.reg --map 'D:' && says FOLDER=DIR &&
        ends_with 2 plan kit PC7.reg --map 'D:\=nowhere' && says 'not a folder' &&
        ends_with 2 plan kit PC7.reg --json --trace && says 'exclude' &&
        ends_with 2 explain kit PC7.reg VEN_5D1A && says 'more than one device' &&
        ends_with 2 explain kit PC7.reg FFFF && says 'no such device' &&
        ends_with 2 plan kit PC7.reg --output nowhere/file && says 'cannot be written \(No such file'
}
promise "wrong usage ends with 2 and one line that says what and how" wrong_usage_is_two
empty_arguments_are_named() {
    ends_with 2 plan '' && says 'an argument is empty' && ends_with 2 plan '' PC7.reg && says 'an argument is empty' &&
        ends_with 2 '' && says 'an argument is empty' && ends_with 2 explain kit PC7.reg '' && says 'an argument is empty' &&
        ends_with 2 plan --kit= && says '--kit= has no value' && ends_with 2 plan kit PC7.reg --output= && says '--output= has no value' &&
        ends_with 2 plan kit PC7.reg --output '' && says 'an argument is empty' && ends_with 2 plan kit PC7.reg --map='D:\=' && says FOLDER=DIR
}
promise "an argument that is empty, or an option without its value, is named, exit code 2" empty_arguments_are_named
starts_without_its_own_name() { (exec -a '' "$program" plan kit PC7.reg) >out 2>err </dev/null; }
promise "a program whose own name is empty works as usual" starts_without_its_own_name
driver_is_required() {
    ends_with 0 plan kit fleet && ends_with 1 plan kit fleet --require-driver && ends_with 0 plan kit PC7.reg --require-driver
}
promise "plan --require-driver ends with 1 when a served device gets no driver" driver_is_required
diff_ends_with_one() {
    cp -r -- kit less && rm -- less/Drv/Win7x64/ngea62x64.inf && ends_with 0 diff kit kit fleet &&
        ends_with 1 diff kit less fleet && grep -q '^  lost ' out && ends_with 0 diff less kit fleet && grep -q '^  gained ' out
}
promise "diff ends with 1 when a machine would lose a driver" diff_ends_with_one
diff_names_other_infs() {
    cp -r -- kit moved && mv -- moved/Drv/Win8x64/ngea63x64.inf moved/Drv/Win8x64/other.inf &&
        ends_with 0 diff kit moved PC7.reg && grep -q '^ *same version, other INF file; result value TAVG_PCIE_Install -> none$' out &&
        grep -q ' 0 would lose a driver, 1 would change otherwise, ' out && ends_with 0 diff kit moved PC7.reg --json &&
        follows morvix-diff-1.json out && [[ $(jq -c '[.machines[].devices[] | select(.otherInf) | .change, .new.result]' out) == '["same",null]' ]]
}
promise "diff says when another INF file of the same version takes over, with what it means for the result" diff_names_other_infs

# --- outputs ---------------------------------------------------------------------------------------------------------
json_follows_the_schema() {
    ends_with 0 plan kit PC7.reg fleet --json && valid_json out && follows morvix-plan-1.json out &&
        ends_with 0 plan kit PC7.reg fleet --ndjson && [[ $(wc -l <out) == 4 ]] && follows morvix-plan-1.json out &&
        ends_with 1 diff kit less fleet --json && follows morvix-diff-1.json out
}
plan_names_findings() {
    local each='[.machines[].devices[] | select(.match != null) | .findings] | unique'
    # Windows XP needs no catalog.
    ends_with 0 plan kit-without-catalogs PC7.reg fleet/A.reg --json --findings && follows morvix-plan-1.json out &&
        [[ $(jq -c "$each" out) == '[["MK505"]]' ]] &&
        ends_with 0 plan kit-without-catalogs fleet/C.reg --ndjson --findings && [[ $(jq -c "$each" out) == '[[]]' ]] &&
        ends_with 0 plan kit-without-catalogs PC7.reg --json && [[ $(jq -c "$each" out) == '[[]]' ]] &&
        ends_with 2 plan kit-complete PC7.reg --findings && says '--json' &&
        ends_with 2 plan kit-complete PC7.reg --findings --trace && says '--json'
}
promise "JSON follows its schemas, each line of NDJSON too" json_follows_the_schema
order_is_that_of_the_input() {
    local number
    mkdir -p many
    for number in $(seq 100 299); do cp -- fleet/A.reg "many/$number.reg"; done
    ends_with 0 plan kit many --ndjson && diff <(jq -r '.machines[].name' out) <(seq 100 299)
}
promise "many machines are answered in the order of the input" order_is_that_of_the_input
output_goes_to_a_file() {
    ends_with 0 plan kit PC7.reg && cp out expected && ends_with 0 plan kit PC7.reg --output file && [[ ! -s out ]] && cmp expected file
}
promise "--output writes the same to a file" output_goes_to_a_file
no_file_is_lost() {
    printf 'kept\n' >keep && cp -- PC7.reg victim.reg &&
        ends_with 2 plan nokit PC7.reg --output keep && ends_with 2 explain kit PC7.reg FFFF --output keep && grep -qx kept keep &&
        ends_with 2 plan kit victim.reg -o victim.reg && says 'is also read' && cmp PC7.reg victim.reg &&
        ends_with 2 diff kit kit fleet -o fleet/A.reg && says 'is also read' && ends_with 0 plan kit fleet
}
promise "--output takes no file's content when nothing is answered, and never that of an input" no_file_is_lost
report_is_one_page() {
    ends_with 0 report kit PC7.reg fleet -o page.html && [[ ! -s out && ! -s err ]] && grep -q 'Of 4 machines, 1 lacks a driver;' page.html &&
        ends_with 0 report kit PC7.reg fleet && cmp out page.html && ends_with 0 report less fleet --old kit &&
        grep -q 'Of 3 machines, 1 loses a driver and 1 lacks a driver;' out
}
promise "report writes one page, and with --old says who loses a driver" report_is_one_page
# on_terminal ARGUMENT...: leaves in ./screen what the program prints on a terminal.
on_terminal() { TERM=xterm run_limited 120 script -qec "$(printf '%q ' "$program" "$@")" screen >/dev/null </dev/null; }
colours_are_for_terminals() {
    ends_with 0 plan kit PC7.reg && ! grep -q $'\e' out && on_terminal plan kit PC7.reg && grep -q $'\e\[' screen &&
        NO_COLOR=1 on_terminal plan kit PC7.reg && ! grep -q $'\e\[' screen &&
        on_terminal plan kit PC7.reg --output file && ! grep -q $'\e\[' file
}
promise "colours are for terminals, and NO_COLOR turns them off" colours_are_for_terminals
progress_is_for_terminals() {
    ends_with 0 plan kit many && [[ ! -s err ]] && on_terminal plan kit many --output file && grep -q 'of 200 machines' screen &&
        on_terminal plan kit many --output file --quiet && ! grep -q 'of 200 machines' screen
}
promise "progress is shown on a terminal only, and not when quiet" progress_is_for_terminals
standard_input_is_a_machine() {
    status=0
    # A limited command runs beside the shell, which gives it no input.
    run_limited 60 bash -c '"$1" plan kit - --system Win832E <PC7.reg' _ "$program" >out 2>err || status=$?
    [[ $status == 0 ]] && grep -q ngea63x64.inf out
}
promise "a machine can come from standard input" standard_input_is_a_machine
trace_is_the_device_pass() {
    ends_with 0 plan kit PC7.reg --trace && [[ $(head -n 1 out) == 'Morvix: ************ enumerating registry for devices...' ]] &&
        [[ $(tail -n 1 out) == 'Morvix: ************ finished enumerating registry for devices' ]]
}
promise "--trace is the device pass from its first to its last line" trace_is_the_device_pass

# --- check -----------------------------------------------------------------------------------------------------------
# The drivers are built elsewhere, and then the catalogs; what they are named, the INF files say.
cp -r -- kit kit-complete
for inf in kit-complete/Drv/*/*.inf; do
    sed -nE 's/^(ServiceBinary = %12%.|CatalogFile = )([a-z0-9.]*).*/\2/p' "$inf" | while read -r file; do printf x >"${inf%/*}/$file"; done
done
cp -r -- kit-complete kit-without-catalogs
rm -- kit-without-catalogs/Drv/*/*.cat
cp -r -- kit checked
sed -i 's/^InfDir=Drv.Win8x64/InfDir=..\\Drv\\Win8x64/' checked/Morvix.ini
check_ends_by_severity() {
    ends_with 1 check checked --system Win832E && grep -q 'error MK105' out && ends_with 0 check kit-complete --system Win832E &&
        ends_with 0 check kit-without-catalogs && ends_with 1 check kit-without-catalogs --fail-on warning && ends_with 2 check kit --fail-on never &&
        says 'error, warning, note' && ends_with 2 check kit --system Win95 && says Win732E && ends_with 2 check nokit &&
        ends_with 2 check kit --format xml && says 'text, json, sarif' && ends_with 2 check kit --reader other
}
baseline_accepts() {
    ends_with 1 check checked --write-baseline accepted.txt && ends_with 0 check checked --baseline accepted.txt --fail-on note &&
        grep -q '^0 errors, 0 warnings, 0 notes, [1-9][0-9]* accepted before' out || return 1
    sed -i '1i ; a line above' checked/Morvix.ini
    ends_with 0 check checked --baseline accepted.txt --fail-on note && printf 'InfDir=.\\other\n' >>checked/Morvix.ini &&
        ends_with 1 check checked --baseline accepted.txt && ends_with 2 check checked --baseline none.txt && says none.txt &&
        printf 'x\n' >broken.txt && ends_with 2 check checked --baseline broken.txt && says 'line 1'
}
promise "plan --findings names beside each device the findings in the kit that concern it" plan_names_findings
promise "check --baseline leaves out what was accepted, wherever its line has moved, and nothing else" baseline_accepts
promise "check ends with 1 from the severity of --fail-on on" check_ends_by_severity
check_formats() {
    ends_with 1 check checked --format json && follows morvix-check-1.json out &&
        ends_with 1 check checked --format sarif && follows sarif.json out &&
        follows "$sarif_schema" out &&
        [[ $(jq '.runs[0] as $run | all($run.results[]; .ruleId == $run.tool.driver.rules[.ruleIndex].id)' out) == true ]] &&
        [[ $(jq -r '.runs[0].results[] | select(.ruleId == "MK105") | .locations[].physicalLocation.artifactLocation.uri' out |
            sort -u) == checked/Morvix.ini ]]
}
promise "check writes JSON by its schema, SARIF by the official one, and of SARIF what services take" check_formats
# What the schema of SARIF takes and what it does not: otherwise the promise above would mean nothing.
sarif_schema_is_strict() {
    ends_with 1 check checked --format sarif && jq -c '.runs[0].results[0].level = "fatal"' out >broken.sarif &&
        ! follows "$sarif_schema" broken.sarif 2>/dev/null && jq -c 'del(.runs[0].tool)' out >broken.sarif &&
        ! follows "$sarif_schema" broken.sarif 2>/dev/null
}
promise "the schema of SARIF refuses what is no SARIF" sarif_schema_is_strict
sample_kit_is_sound() {
    ends_with 0 check kit-complete --fail-on note && grep -qx '0 errors, 0 warnings, 0 notes on 7 systems' out && [[ ! -s err ]]
}
promise "the sample kit has no findings" sample_kit_is_sound
# findings_on_page: the rules of the findings on the page in ./out.
findings_on_page() { { grep -oE '<code>MK[0-9]+</code>' out || true; } | sort -u | tr -d '\n'; }
report_shows_findings() {
    ends_with 0 report checked PC7.reg && [[ $(findings_on_page) == *'<code>MK105</code>'* ]] &&
        ends_with 0 report checked fleet/A.reg && [[ $(findings_on_page) != *'<code>MK105</code>'* ]] &&
        ends_with 0 report kit-without-catalogs PC7.reg fleet && [[ $(findings_on_page) == '<code>MK505</code>' ]] &&
        ends_with 0 report kit-complete PC7.reg fleet && [[ -z $(findings_on_page) ]]
}
promise "report shows the findings of the kit for the machines' systems; of the sample kit, none" report_shows_findings
rules_are_explained() {
    ends_with 0 rules && [[ $(grep -c '^MK[1-9]' out) == 40 ]] && ends_with 0 rules mk102 && grep -q '518' out &&
        ends_with 2 rules MK999 && says 'no rule' && ends_with 0 rules --markdown && cmp out "$repo/docs/RULES.md"
}
promise "rules lists all rules, explains one, and writes docs/RULES.md" rules_are_explained
workflow_command_works() {
    local command
    command=$(sed -n 's/^ *run: \.\/morvix-kit //p' "$repo/docs/examples/check-kit.yml")
    # shellcheck disable=SC2086
    ends_with 1 $command && [[ -s morvix-kit.sarif ]] && follows sarif.json morvix-kit.sarif
}
promise "the command of the example of a workflow works" workflow_command_works

# --- bad input -------------------------------------------------------------------------------------------------------
broken_machines_are_named() {
    mkdir -p broken
    cp -- many/1*.reg broken/
    head -c 400 PC7.reg >broken/cut.reg
    printf 'hello\n' >broken/none.reg
    : >broken/empty.reg
    ends_with 3 plan kit broken --ndjson || return 1
    [[ $(wc -l <out) == 103 ]] && follows morvix-plan-1.json out || return 1
    local name
    for name in cut none empty; do
        grep -q "^morvix-kit: broken/$name.reg" err || { printf 'nothing about %s: %s\n' "$name" "$(cat err)"; return 1; }
    done
    [[ $(jq -r 'select(.machines[].outcome == "ok") | 1' out | wc -l) == 100 ]]
}
report_names_broken_machines() {
    ends_with 3 report kit broken nothing.reg -o page.html && grep -q 'Of 104 machines, 4 could not be read;' page.html &&
        grep -q '<code>broken/cut.reg</code>' page.html && grep -q '<code>nothing.reg</code>' page.html && grep -q 'nothing.reg' err &&
        ends_with 2 report kit fleet --old nokit && says 'nokit: no such folder'
}
promise "three broken machines among many are named on standard error, the others answered, exit code 3" broken_machines_are_named
missing_machines_are_named() { ends_with 3 plan kit nothing.reg PC7.reg && grep -q 'nothing.reg' err && grep -q ngea63x64.inf out; }
promise "report names the machines that it could not read, and ends with 3" report_names_broken_machines
promise "a machine that is not there is named, the others answered" missing_machines_are_named
control_characters_stay_out() {
    write_export hostile.reg 6.2 WinNT $'VEN_5D1A&DEV_1\e]0;owned\a\e[2J&REV_01'
    local format
    for format in '' --json --ndjson --trace; do
        # shellcheck disable=SC2086
        run_kit plan kit hostile.reg $format
        ! LC_ALL=C grep -qP '[\x00-\x09\x0b-\x1f\x7f]' out err || { cat -v out; return 1; }
        grep -q 'owned' out || return 1
    done
    run_kit explain kit hostile.reg owned
    ! LC_ALL=C grep -qP '[\x00-\x09\x0b-\x1f\x7f]' out err
}
promise "control characters of names are escaped in every output" control_characters_stay_out
read_only_kit_is_planned() {
    cp -r -- kit readonly && chmod -R a-w readonly && ends_with 0 plan readonly PC7.reg && chmod -R u+w readonly
}
promise "a kit in a read-only folder is planned" read_only_kit_is_planned
# plan_without FILE: plans with a kit of which nobody may read one file.
plan_without() {
    local -a restricted=()
    # An administrator may read everything, unless that right is taken away.
    ((EUID != 0)) || restricted=(setpriv --bounding-set '-dac_override,-dac_read_search')
    rm -rf -- denied && cp -r -- kit denied && chmod 000 "denied/$1"
    status=0
    run_limited 120 "${restricted[@]}" "$program" plan denied PC7.reg >out 2>err </dev/null || status=$?
}
unreadable_inf_is_named() {
    plan_without Drv/Win8x64/ngea63x64.inf
    [[ $status == 3 ]] && says 'denied/Drv/Win8x64/ngea63x64.inf: cannot be read \(Permission denied\), and counts as empty'
}
promise "an INF file that cannot be read is named with the cause, exit code 3" unreadable_inf_is_named
unreadable_setup_ini_is_named() {
    plan_without Morvix.ini
    [[ $status == 2 ]] && says 'denied/Morvix.ini: cannot be read \(Permission denied\)'
}
promise "a setup INI that cannot be read is named with the cause, exit code 2" unreadable_setup_ini_is_named
unknown_folder_is_named() {
    cp -r -- kit far && sed -i 's/^InfDir=Drv.Win8x64/InfDir=E:\\Drivers/' far/Morvix.ini && mkdir -p drivers &&
        cp -- kit/Drv/Win8x64/*.inf drivers/ && ends_with 0 plan far PC7.reg && says "--map 'E:.=DIR'" &&
        ends_with 0 plan far PC7.reg --map 'E:\Drivers=drivers' --require-driver && [[ ! -s err ]]
}
promise "a folder of the machine that is not known here is named with the option that helps" unknown_folder_is_named
full_disk_is_said() { [[ ! -e /dev/full ]] || { ends_with 2 plan kit PC7.reg --output /dev/full && says 'cannot be written'; }; }
promise "output that cannot be written is reported, exit code 2" full_disk_is_said

end_promises
