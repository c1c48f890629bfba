# shellcheck shell=bash
# The table of promises, tests/PROMISES.md, against what has run. Sourced after common.sh, results.sh and suites.sh.
# shellcheck disable=SC2154

promises_table=$repo/tests/PROMISES.md

# Each test that the table names, as "unit <tab> name"; "/*" at the end of a name stands for every instance of it. Fails
# with a line for each row that is not in order.
promised_tests() {
    awk '
        function complain(what) { printf "%s:%d: %s\n", FILENAME, FNR, what >"/dev/stderr"; bad = 1 }
        /^## / { room = $0; part = ""; next }
        /^### / { part = room " " $0; next }
        part == "" || /^$/ || /^\| kind \|/ || /^\|---/ { next }
        {
            cells = split($0, cell, / \| /)
            kind = cell[1]; promise = cell[2]; tests = cell[3]
            if (cells != 3 || sub(/^\| /, "", kind) != 1 || sub(/ \|$/, "", tests) != 1) { complain("not a row of three cells"); next }
            if (kind !~ /^(edge|rule|failure|registry|trace)$/) complain("no such kind: " kind)
            if (promise == "") complain("no promise")
            if (seen[part, promise]++) complain("the same promise twice: " promise)
            count = split(tests, test, "<br>")
            if (count == 0) complain("no test")
            for (i = 1; i <= count; ++i) {
                if (test[i] !~ /^`[a-z0-9_]+: [^`]+`$/) { complain("not a test: " test[i]); continue }
                gsub(/`/, "", test[i])
                unit = name = test[i]
                sub(/: .*/, "", unit)
                sub(/^[^:]*: /, "", name)
                print unit "\t" name
            }
            ++rows
        }
        END { if (rows == 0) complain("no promises"); exit bad }
    ' "$promises_table"
}

# Compares the named tests of the units that this run was asked for with its results.
compare_promises() {
    local unit name
    promised_tests >"$results_dir/promised.tsv" || return 1
    while IFS=$'\t' read -r unit name; do
        if wanted "$unit"; then
            printf '%s\t%s\n' "$unit" "$name"
        fi
    done <"$results_dir/promised.tsv" | sort -u >"$results_dir/promises-asked.tsv"
    awk -F '\t' '
        FILENAME == ARGV[1] {
            verdict[$2 "\t" $3] = verdict[$2 "\t" $3] == "failed" ? "failed" : $1
            instances = $3
            if (sub(/\/[^\/]*$/, "/*", instances)) {
                all = $2 "\t" instances
                verdict[all] = verdict[all] == "failed" ? "failed" : $1
            }
            next
        }
        !(($1 "\t" $2) in verdict) { print "no such test ran: " $1 ": " $2; bad = 1; next }
        verdict[$1 "\t" $2] != "passed" { print "failed: " $1 ": " $2; bad = 1 }
        END { exit bad }
    ' "$results" "$results_dir/promises-asked.tsv"
}

# Last of all, because it looks at what the others have recorded. A run of units that hold no promise says nothing here.
run_promises() {
    local log=$results_dir/promises.log started=$SECONDS
    if ! compare_promises >"$log" 2>&1; then
        head -n 40 -- "$log"
        record failed promises "see $log"
    elif [[ -s $results_dir/promises-asked.tsv ]]; then
        record passed promises promises
    else
        return 0
    fi
    report_unit promises "$((SECONDS - started))"
}
