# shellcheck shell=bash
# What was tried and how it went. Lanes run at the same time, so each result is one appended line:
# passed|failed <tab> unit <tab> name. Sourced after common.sh.
# shellcheck disable=SC2154

results_dir=$build_dir/${flavour}test
results=$results_dir/results.tsv

start_results() {
    rm -rf -- "$results_dir"
    mkdir -p -- "$results_dir"
    : >"$results"
}

record() { printf '%s\t%s\t%s\n' "$1" "$2" "$3" >>"$results"; }

# Reads the XML report of a GoogleTest program (or ctest's JUnit report) and records every case of it. A case that was
# skipped or disabled has proved nothing and counts as failed.
record_report() {
    awk -v unit="$1" '
        function attribute(line, name,    from) {
            if (!match(line, " " name "=\"[^\"]*\"")) return ""
            from = RSTART + length(name) + 3
            return substr(line, from, RLENGTH - length(name) - 4)
        }
        function finish() {
            if (name == "") return
            printf "%s\t%s\t%s\n", (verdict == "" ? "passed" : "failed"), unit, name (verdict == "" ? "" : verdict)
            name = ""
        }
        /<testcase / {
            finish()
            name = attribute($0, "name")
            class = attribute($0, "classname")
            if (class != "" && class != name) name = class "." name
            verdict = ""
            if (attribute($0, "status") ~ /notrun|disabled/ || attribute($0, "result") ~ /skipped|suppressed/)
                verdict = " (did not run)"
        }
        /<failure/ && verdict == "" { verdict = " " }
        /<skipped/ { verdict = " (did not run)" }
        END { finish() }
    ' "$2" | sed 's/ $//' >>"$results"
}

# One line for a unit that has ended.
report_unit() {
    awk -F '\t' -v unit="$1" -v seconds="$2" '
        $2 == unit { count[$1]++ }
        END { printf "  %-32s %4d passed, %d failed (%d s)\n", unit, count["passed"], count["failed"], seconds }
    ' "$results"
}

# Prints the names of what failed and, as the last line, the counts. Fails when anything did or when nothing ran.
summarize() {
    local passed failed
    passed=$(grep -c '^passed' "$results" || true)
    failed=$(grep -c '^failed' "$results" || true)
    if ((failed > 0)); then
        say "failed:"
        awk -F '\t' '$1 == "failed" { printf "  %s: %s\n", $2, $3 }' "$results"
    fi
    ((passed + failed > 0)) || say "nothing ran"
    say "$passed passed, $failed failed"
    ((failed == 0 && passed > 0))
}
