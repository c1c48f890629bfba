#!/usr/bin/env bash
# The bundle for a real Windows, run here by the command processor of Wine: where it does not start, what it leaves, and how
# it goes on after a step that crashes, hangs, is cut off or wants a restart. With MORVIX_FULL_MATRIX it runs every step.
# shellcheck disable=SC2016,SC2154,SC2317 # Markdown quotes are the shell's; the libraries set what is used here; promises call functions by name
set -euo pipefail
# shellcheck source=../package/lib/package.sh
source "$(dirname -- "$(readlink -f -- "$0")")/../package/lib/package.sh"
# shellcheck source=../package/lib/imports.sh
source "$(dirname -- "$(readlink -f -- "$0")")/../package/lib/imports.sh"
# shellcheck source=../package/lib/release.sh
source "$(dirname -- "$(readlink -f -- "$0")")/../package/lib/release.sh"
# shellcheck source=../../scripts/lib/proof.sh
source "$lib/proof.sh"

# What is quick here; the other test programs run as tests of their own.
steps='Machine Plan Trace windows_base'
# And every suite of the program for real machines, where it is built.
steps+=$(sed -n 's/^\([^|]*\)|.*morvix_probe.*/ \1/p' "$build_dir/windows/tests/proof/steps.txt" | tr -d '\n')
[[ -z ${MORVIX_FULL_MATRIX:-} ]] || steps=
# The test programs in the bundle know it too, and would run for hours.
unset MORVIX_FULL_MATRIX

make_bundle() {
    # shellcheck disable=SC2034 # signing.sh reads it
    release_log=$work/release.log
    mkdir -- "$work/kit"
    find "$dist" -mindepth 1 -maxdepth 1 ! -name '*.msi' -exec cp -a -t "$work/kit" -- {} +
    make_proof "$build_dir/windows" "$work/kit" "$package" "$actions" "$work/bundle.zip"
}

# A fresh copy of the bundle on the machine, as `bundle`, and its report.
unpack_bundle() {
    bundle=$drive/Proof report=$drive/Proof/report results=$drive/Proof/report/results
    rm -rf -- "$bundle"
    unpack "$work/bundle.zip" "$bundle"
}

# use_steps: another list of steps, from standard input; the sums know it.
use_steps() {
    local sum
    cat >"$bundle/steps.txt"
    sum=$(sha256sum <"$bundle/steps.txt")
    sed -i "s/^[0-9a-f]\{64\}  steps\.txt$/${sum%% *}  steps.txt/" "$bundle/sums.txt"
}

# proof ARGUMENT...: a run of proof.cmd; `status` and `output` are what it ends with and says.
proof() {
    status=0
    run_limited 1500 wine cmd /c 'C:\Proof\proof.cmd' "$@" >"$work/output" 2>&1 || status=$?
    output=$(tr -d '\r' <"$work/output")
}

ends() { [[ $status == "$1" ]] || { say "  exit code $status instead of $1" "$output"; return 1; }; }

# refuses CODE TEXT: it ended with the code, said this, and began nothing.
refuses() {
    ends "$1" || return 1
    [[ $output == *"$2"* && ! -e $report/state.txt ]] || { say "  it says: $output"; return 1; }
}

holds_two_versions() {
    [[ $(msiinfo export "$bundle/packages/morvix-old.msi" Property | tr -d '\r' | sed -n 's/^ProductVersion\t//p') == "$(product_version)" &&
        $(msiinfo export "$bundle/packages/morvix-new.msi" Property | tr -d '\r' | sed -n 's/^ProductVersion\t//p') == "$(next_version)" ]]
}

# Every program that a step names is in the bundle.
steps_are_complete() {
    local line program found=0
    while IFS='|' read -r _ _ line; do
        line=${line#exit-code } line=${line#cmd /c }
        program=${line%% *}
        found=$((found + 1))
        [[ -f $bundle/${program//\\//} ]] || { say "  no $program"; return 1; }
    done < <(grep -v '^#' "$bundle/steps.txt" | tr -d '\r')
    ((found > 5))
}

# Programs that refuse every real machine have nothing to do in the bundle.
only_programs_for_real_machines() {
    local program use
    while IFS=$'\t' read -r program use _; do
        if [[ $use == NeedsWine && -e $bundle/tests/${program##*/} ]]; then
            say "  ${program##*/} runs in Wine only"
            return 1
        fi
    done <"$build_dir/windows/tests/machine_uses.tsv"
}

# The shipped files have a test of their own.
start_on_the_oldest_system() {
    local -a files
    mapfile -d '' files < <(find "$bundle" -path "$bundle/dist" -prune -o \( -name '*.exe' -o -name '*.dll' \) -print0)
    ((${#files[@]} > 10)) || return 1
    diff <(imported "${files[@]}" | LC_ALL=C comm -23 - <(listed "$repo/tests/e2e/imports.txt" "$repo/tests/real/imports.txt")) \
        <(listed "$repo/tests/proof/imports.txt")
}

as_standard_user() {
    status=0
    run_limited 120 wine "$build_dir/windows/tests/installer_caller.exe" 'C:\user.log' as-user \
        'C:\windows\system32\cmd.exe /c C:\Proof\proof.cmd /disposable >C:\user.txt' >/dev/null 2>&1 || status=$?
    output=$(tr -d '\r' <"$drive/user.txt")
}

# outcome STEP WORD: what the table says of a step.
outcome() { grep -qP "^$1\t$2\t" "$report/steps.tsv" || { cat -- "$report/steps.tsv"; return 1; }; }

# fails STEP TEXT: the step's results are JUnit's and have one failure, which says this.
fails() {
    [[ $(xmllint --xpath 'string(//testcase/failure/@message)' "$results/$1.xml") == *"$2"* ]] ||
        { cat -- "$results/$1.xml"; return 1; }
}

passes() { [[ $(xmllint --xpath 'count(//testcase) > 0 and count(//failure) = 0' "$results/$1.xml") == true ]]; }

# The report as it was packed, in a folder of its own.
unpack_report() {
    rm -rf -- "$work/report"
    unpack "$bundle"/report-*.zip "$work/report"
}

report_is_complete() {
    local file
    for file in facts.txt facts-after.txt machine-before.txt machine-after.txt steps.tsv results/machine.reg \
        results/plan.json results/trace.txt results/windows_base.xml results/windows_base.log; do
        [[ -s $work/report/$file ]] || { say "  no $file"; return 1; }
    done
}

# Every step ended, no test failed, and what was left out says why.
steps_pass_or_say_why() {
    ! awk -F '\t' 'NR > 1 && $2 != "ended"' "$work/report/steps.tsv" | grep . &&
        ! grep '<failure ' "$work"/report/results/*.xml &&
        ! grep '<skipped ' "$work"/report/results/*.xml | grep -v 'not here: '
}

has_system_logs() {
    grep -qx 'of the system' "$work/report/logs/setupapi.dev.log" && grep -qx 'of the engine' "$work/report/logs/MSI12345.LOG"
}

report_is_what_was_written() { diff -r -- "$report" "$work/report"; }

names_the_system() {
    grep -qx 'emulator: Wine [0-9.]*' "$work/report/facts.txt" && grep -qx 'processor: x64' "$work/report/facts.txt" &&
        grep -qx 'ANSI code page: 1252' "$work/report/facts.txt" && grep -q '^Secure Boot: ' "$work/report/facts.txt" &&
        grep -q '^memory integrity (HVCI) configured: ' "$work/report/facts.txt" &&
        grep -q '^application control policies: ' "$work/report/facts.txt" &&
        grep -qx "system's display language: 0409 English" "$work/report/facts.txt"
}

pictures_are_pictures() { identify -- "$work/report/before.bmp" "$work/report/after.bmp" | grep -c '1280x1024' | grep -qx 2; }

has_trace() { grep -q '^Morvix: Entering -WinMain' "$work/report/results/trace.txt"; }

changes_are_told() { grep -qxF '+ SOFTWARE\Norda\Planted' "$report/changes.txt"; }

everything_else_is_gone() {
    local process
    for process in $(pgrep -f 'tests.hangs\.exe'); do
        # Another run of this test may have its own.
        ! grep -qzxF "WINEPREFIX=$WINEPREFIX" "/proc/$process/environ" || { say "  process $process goes on"; return 1; }
    done
}

# hanging_program: a program that never ends by itself.
hanging_program() {
    cp -- "$bundle/tests/command_line_recorder.exe" "$bundle/tests/hangs.exe"
    : >"$bundle/tests/hangs.exe.hold"
}

try_refusals() {
    unpack_bundle
    promise "the bundle holds the shippable folder" same_files "$dist" "$bundle/dist"
    promise "the bundle holds two versions of the package" holds_two_versions
    promise "every program of a step is in the bundle" steps_are_complete
    promise "no program of the bundle refuses every real machine" only_programs_for_real_machines
    promise "the programs of the bundle import what the oldest system has" start_on_the_oldest_system
    proof
    promise "without /disposable nothing starts, and it says why" refuses 2 'thrown away, or put back to a snapshot'
    proof /disposible
    promise "an unknown option is refused" refuses 2 '"/disposible" is unknown'
    proof /continue
    promise "without a run there is nothing to go on with" refuses 2 'there is no run that could go on'
    as_standard_user
    promise "without the rights of an administrator nothing starts, and it says so" refuses 4 'needs the rights of an administrator'
    printf 'x' >>"$bundle/dist/Morvix.ini"
    rm -- "$bundle/dist/NetInst.dll"
    proof /disposable
    promise "a changed file is refused by name" refuses 3 'dist/Morvix.ini was changed'
    promise "a missing file is refused by name" refuses 3 'dist/NetInst.dll is missing'
    unpack_bundle
    proof /disposable /steps 'Machine Nothing'
    promise "a step that does not exist is refused" refuses 2 'there is no step Nothing'
}

try_whole_run() {
    unpack_bundle
    printf 'of the system' >"$drive/windows/inf/setupapi.dev.log"
    printf 'of the engine' >"$drive/windows/temp/MSI12345.LOG"
    proof /disposable /steps "$steps"
    promise "a run ends with 0" ends 0
    promise "the report is an archive that other programs read" unpack_report
    promise "the report holds all that was written" report_is_what_was_written
    promise "the report holds results, logs, machine and plan" report_is_complete
    promise "the report names system, code page, language, Secure Boot and policies" names_the_system
    promise "every test of the run passes, or is not here for a reason" steps_pass_or_say_why
    promise "a test program's own results are in the report" passes windows_base
    promise "a command that succeeds has results too" passes Plan
    promise "the report has the program's trace" has_trace
    promise "the report has the logs of device installation and of Windows Installer" has_system_logs
    promise "the report has pictures of the screen" pictures_are_pictures
    cp -- "$bundle"/report-*.zip "$work/"
    proof /disposable
    promise "the report of an earlier run is not overwritten" ends 2
    cp -- "$report/steps.tsv" "$work/steps.tsv"
    proof /continue
    promise "a run that has ended repeats nothing" cmp -- "$work/steps.tsv" "$report/steps.tsv"
}

# page REPORT...: what scripts/proof-report prints, as `output`.
page() {
    status=0
    output=$(run_limited 60 "$repo/scripts/proof-report" "$@" 2>&1) || status=$?
}

page_says() { [[ $output == *"$1"* ]] || { say "$output"; return 1; }; }

# A report as another system might send it back: one case fails there, one step crashes and one program refuses.
other_report() {
    local other=$work/other
    rm -rf -- "$other" "$other.zip"
    cp -a -- "$work/report" "$other"
    sed -i 's/^emulator: .*/emulator: none/; s/^version: .*/version: 10.0.19045, product type 1, service pack 0/' "$other/facts.txt"
    # Names of the system hold what ends a line elsewhere, and letters of its code page.
    printf 'machine: A\x0bB\x1cC\x85D\n' >>"$other/facts.txt"
    LC_ALL=C sed -i $'0,/<testcase /s//<testcase name="Planted" result="completed" classname="Planted"><failure message="of this r\xe9seau"\\/><\\/testcase><testcase /' \
        "$other/results/windows_base.xml"
    sed -i 's/^Plan\tended/Plan\tcrashed/; s/^Trace\tended/Trace\trefused/' "$other/steps.tsv"
    cp -- "$work/faults/Crash.xml" "$other/results/Plan.xml"
    cp -- "$work/faults/Refuse.xml" "$other/results/Trace.xml"
    (cd -- "$other" && zip -q -r "$other.zip" .)
}

# The same report with one suite in the place of a step's result.
one_suite_report() {
    printf '%s' '<testsuites><testsuite name="Suite"><testcase name="Works" result="completed"/><testcase name="Cannot"' \
        ' result="skipped"><skipped message="Test.cpp:1&#x0A;not here: no card"/></testcase></testsuite></testsuites>' \
        >"$work/other/results/Machine.xml"
    rm -- "$work/other.zip"
    (cd -- "$work/other" && zip -q -r "$work/other.zip" .)
}

checked() { [[ $status == 0 ]] || { say "$output"; return 1; }; }

# notices TEXT: the page was found wrong, which says this.
notices() { [[ $status == 1 ]] && page_says "$1"; }

lists_what_was_left_out() {
    diff <(sed -n 's/^left out: //p' <<<"$output" | LC_ALL=C sort) \
        <(all_steps | grep -vxFf <(tr ' ' '\n' <<<"${steps:-$(all_steps)}") | LC_ALL=C sort)
}

all_steps() { sed -n 's/^\([^#|]*\)|.*/\1/p' "$bundle/steps.txt"; }

# The report of this run with two other outcomes.
changed_report() {
    local changed=$work/changed
    rm -rf -- "$changed" "$changed.zip"
    cp -a -- "$work/report" "$changed"
    sed -i 's/^Plan\tended/Plan\tcrashed/' "$changed/steps.tsv"
    rm -f -- "$changed/results/Plan.xml"
    sed -i -E 's#(<testcase name="IsTheOneOfTheRegistry"[^>]*") */>#\1></testcase>#; s#<testcase name="IsTheOneOfTheRegistry"[^>]*>#&<failure message="planted"/>#' \
        "$changed/results/SystemVersion.xml"
    (cd -- "$changed" && zip -q -r "$changed.zip" .)
}

every_step_has_tests() {
    local list
    for list in "$work"/lists/*.xml; do
        grep -q '<testcase ' "$list" || { say "  ${list##*/} lists no test"; return 1; }
    done
}

every_suite_has_a_step() {
    local suite
    [[ -e $bundle/tests/morvix_probe.exe ]] || return 0
    while read -r suite; do
        grep -q "gtest_filter=$suite\.\*" "$bundle/steps.txt" || { say "  no step for $suite"; return 1; }
    done < <(run_limited 120 wine 'C:\Proof\tests\morvix_probe.exe' --gtest_list_tests 2>/dev/null </dev/null |
        tr -d '\r' | sed -n 's/^\([A-Z][A-Za-z]*\)\.$/\1/p')
}

row_says() { grep -qxF -- "$1" <<<"$output" || { say "$output"; return 1; }; }

# The tests of each step, as its program lists them.
list_tests() {
    local name command
    local -a words
    mkdir -- "$work/lists"
    while IFS='|' read -r name _ command; do
        if [[ $command == 'exit-code '* ]]; then
            : >"$work/lists/$name"
            continue
        fi
        read -r -a words <<<"$command"
        run_limited 120 wine "C:\\Proof\\${words[0]}" "${words[@]:1}" --gtest_list_tests \
            "--gtest_output=xml:$(windows_path "$work/lists/$name.xml")" >"$work/list.log" 2>&1 </dev/null ||
            fail "$name lists no tests, exit code $?: $(tail -n 20 -- "$work/list.log")"
    done < <(grep -v '^#' "$bundle/steps.txt" | tr -d '\r')
}

try_page() {
    page "$work"/report-*.zip
    promise "proof-report reads the report" same "$status" 0
    promise "the page names the system" page_says '- Wine (6.1.7601, product type 1, service pack 1, x64): '
    promise "the page says what was proved" page_says $'| `Plan` | all of it | proved |'
    other_report
    page "$work"/report-*.zip "$work/other.zip"
    promise "proof-report ends with 1 when a row failed" same "$status" 1
    promise "a report of a real system has its column" page_says '| step | test | Wine | 10, 2016 to 2022 |'
    promise "the same outcome as in Wine is not marked" row_says '| `Machine` | all of it | proved | proved |'
    promise "a crash that Wine does not have is marked" page_says '| `Plan` | all of it | proved | **crashed: ended with exit code 0xC0000'
    promise "a refusal is marked" page_says '| `Trace` | all of it | proved | **refused to run on this machine: see Refuse.log** |'
    promise "a failed test is counted and named, in letters of the system's code page" page_says '.Planted: failed: of this réseau'
    promise "the page names a real system" page_says '- 10, 2016 to 2022 (10.0.19045, product type 1, service pack 0, x64): rows '
    promise "the page counts refused and different rows" page_says ', refused 1, different from Wine 3'
    page "$work/bundle.zip"
    promise "an archive that is no report is refused" page_says 'is no report'
    one_suite_report
    page "$work/other.zip"
    promise "a step with one suite has a row for each of its tests" row_says '| `Machine` | `Works` | | proved |'
    promise "what a machine cannot do is not here, with the reason" row_says '| `Machine` | `Cannot` | | not here: no card |'
    unpack_bundle
    list_tests
    promise "every step has tests" every_step_has_tests
    promise "every suite of the program for real machines has a step" every_suite_has_a_step
    page --check "$work/lists" "$work"/report-*.zip
    promise "docs/PROOF.md has the rows of the bundle's tests, and the outcomes of this run" checked
    promise "the steps that this run left out are listed, and no others" lists_what_was_left_out
    changed_report
    page --check "$work/lists" "$work/changed.zip"
    promise "a row with another outcome than in docs/PROOF.md is noticed" notices 'Plan, all of it: docs/PROOF.md says [proved], and the run [crashed]'
    promise "a test with another outcome than in docs/PROOF.md is noticed" notices \
        'SystemVersion, IsTheOneOfTheRegistry: docs/PROOF.md says [proved], and the run [failed: planted]'
    page --check "$work/lists" "$work/other.zip"
    promise "the outcomes of another system than Wine are not compared" notices 'the page is checked with one from Wine'
    : >"$work/lists/Another"
    page --check "$work/lists"
    promise "a step that docs/PROOF.md lacks is noticed" notices '+Another: all of it'
}

try_faults() {
    unpack_bundle
    hanging_program
    use_steps <<'END'
Crash|60|tests\trap_probe.exe overflow
Hang|3|cmd /c tests\hangs.exe
Missing|60|tests\missing.exe
Refuse|60|cmd /c exit 4
Silent|60|cmd /c exit 0
Fail|60|exit-code cmd /c exit 3
Late|60|exit-code reg add HKLM\SOFTWARE\Norda\Planted /f
Uncut|60|exit-code cmd /c uncut.cmd
END
    printf '@>report\\results\\uncut.txt echo [%%MORVIX_CUT_NETWORK%%]\r\n' >"$bundle/uncut.cmd"
    MORVIX_CUT_NETWORK=1 proof /disposable
    promise "a run with faulty steps ends with 0" ends 0
    promise "a crash is reported with its exit code" fails Crash 'crashed: ended with exit code 0xC0000'
    promise "a hanging step is ended at its limit" fails Hang 'hung: ended after 3 seconds'
    promise "all that a hanging step has started is ended" everything_else_is_gone
    promise "a hanging step is in a picture" grep -q 1280x1024 <(identify -- "$results/Hang.at-limit.bmp")
    promise "a program that cannot be started is reported" fails Missing 'could not be started: error '
    promise "a program that refuses the machine is reported as that" outcome Refuse refused
    promise "a program that leaves no results is reported, whatever its exit code" fails Silent 'crashed: ended with exit code 0x00000000'
    promise "a command that fails is reported with its exit code" fails Fail 'ended with exit code 0x00000003'
    promise "the steps after faulty ones run" passes Late
    promise "without /cut-network the network is not cut, whatever the environment says" same "$(tr -d '\r' <"$results/uncut.txt")" '[]'
    promise "the report tells what the run has changed in the registry" changes_are_told
    mkdir -- "$work/faults"
    cp -- "$results"/*.xml "$work/faults/"
}

try_interruption() {
    unpack_bundle
    hanging_program
    use_steps <<'END'
First|60|exit-code cmd /c echo ran>>report\results\first.txt
Middle|900|cmd /c tests\hangs.exe
Last|60|exit-code cmd /c echo ran>>report\results\last.txt
END
    proof /disposable &
    running=$!
    wait_for_file "$bundle/tests/hangs.exe.journal.txt" || fail "the step that is to be cut off does not begin"
    stop_prefix "${WINEPREFIX##*/}"
    wait "$running" || true
    promise "a machine that ends in a step leaves results that say so" fails Middle 'interrupted'
    keep_server
    proof /continue
    promise "after the end of the machine the run goes on" ends 0
    promise "the step in which the machine ended is not tried again" outcome Middle interrupted
    promise "a finished step is not repeated" same "$(grep -c ran "$results/first.txt")" 1
    promise "the steps after it run once" same "$(grep -c ran "$results/last.txt")" 1
}

restarted_step_has_both_parts() { same "$(tr -d '\r' <"$results/stages.txt" | paste -sd ,)" 'stage 1,stage 2'; }

# Of the steps, those that were asked for, and no other.
only_chosen_steps_ran() { same "$(cut -f 1 "$report/steps.tsv" | uniq | paste -sd ,)" 'step,Stages,Last'; }

nothing_is_left_to_start() {
    ! run_limited 60 wine reg query 'HKLM\Software\Microsoft\Windows\CurrentVersion\RunOnce' /v MorvixProof >/dev/null 2>&1
}

try_restart() {
    unpack_bundle
    printf '@>>report\\results\\stages.txt echo stage %%MORVIX_PROOF_STAGE%%\r\n@>>report\\results\\cut.txt echo cut %%MORVIX_CUT_NETWORK%%\r\n@if "%%MORVIX_PROOF_STAGE%%"=="1" exit 3010\r\n' >"$bundle/stages.cmd"
    use_steps <<'END'
Stages|60|exit-code cmd /c stages.cmd
Other|60|exit-code cmd /c echo ran>>report\results\other.txt
Last|60|exit-code cmd /c echo ran>>report\results\last.txt
END
    name=$(computer_name)
    proof /disposable /steps 'Stages Last' /cut-network
    wait_for_file "$bundle/report-$name.zip" || true
    run_limited 60 wineserver --wait || true
    promise "a step that wants a restart goes on after it, by itself" restarted_step_has_both_parts
    promise "after a restart the rest of the run follows" passes Last
    promise "after a restart the run has the steps that were chosen before" only_chosen_steps_ran
    promise "after a restart the network may be cut as before" same "$(tr -d '\r' <"$results/cut.txt" | paste -sd ,)" 'cut 1,cut 1'
    promise "after a restart the report is made" unpack_report
    promise "at the end nothing is left that the next logon would start" nothing_is_left_to_start
}

computer_name() { run_limited 60 wine cmd /c 'echo %COMPUTERNAME%' 2>/dev/null | tr -d '\r'; }

start_machine proof
make_bundle
try_refusals
try_whole_run
try_faults
try_page
try_interruption
try_restart
end_promises
