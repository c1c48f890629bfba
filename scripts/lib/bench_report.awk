# The table of scripts/bench from its figures: passes.tsv, runs.tsv, matched.tsv, fleet.tsv, check.tsv, sizes.tsv.

function add(key, value) { list[key] = list[key] " " value }

# The median of what was added under a key; -1 without any.
function median(key,    values, count, i, j, swap) {
    count = split(list[key], values, " ")
    if (count == 0) return -1
    for (i = 2; i <= count; ++i)
        for (j = i; j > 1 && values[j] + 0 < values[j - 1] + 0; --j) {
            swap = values[j]; values[j] = values[j - 1]; values[j - 1] = swap
        }
    return count % 2 ? values[(count + 1) / 2] + 0 : (values[count / 2] + values[count / 2 + 1]) / 2
}

function rounds(key,    values) { return split(list[key], values, " ") }

function target(text, reached, wanted) { printf "  %-66s %-22s %s\n", text, wanted, reached ? "reached" : "MISSED" }

BEGIN { FS = "\t" }

FILENAME ~ /passes\.tsv$/ && ($1 == "unmatched" || $1 == "matched") {
    key = $1 " " $2 " " $3 " " $4 " " $5
    add("ms " key, $6)
    reads[key] = $7; files[key] = $8; registry[key] = $9
}
FILENAME ~ /passes\.tsv$/ && $1 == "memory" { memory[$2] = $3 }
FILENAME ~ /passes\.tsv$/ && $1 == "question" { question = $2 }
FILENAME ~ /passes\.tsv$/ && $1 == "store" { store[$2 " " $3] = $4 }
FILENAME ~ /runs\.tsv$/ { add("wall " $1, $2); add("cpu " $1, $3); add("peak " $1, $4) }
FILENAME ~ /matched\.tsv$/ { add("whole", $1); add("inside", $2); add("rest", $1 - $2); add("share", 100 * $2 / $1); calls = $3 }
FILENAME ~ /fleet\.tsv$/ { add("fleet wall " $1, $2); add("fleet cpu " $1, $3); add("fleet peak " $1, $4) }
FILENAME ~ /check\.tsv$/ { add("check wall " $1, $2); add("check cpu " $1, $3); add("check peak " $1, $4) }
FILENAME ~ /sizes\.tsv$/ { name = $2; sub(/.*\//, "", name); size[name] = $1; total += $1 }

function pass_row(kind, f, a, p,    plain, reuse, key) {
    key = kind " " f " " a " " p " "
    plain = median("ms " key "plain"); reuse = median("ms " key "reuse")
    printf "  %5d %8d %6d %11.1f %9.1f %7.1f %9.0f %9d %6d %9d %6d %9d %8d\n", f, a, p, plain, reuse, plain / reuse,
        1000 * reuse / (f * a * p), reads[key "plain"], reads[key "reuse"], files[key "plain"], files[key "reuse"],
        registry[key "plain"], registry[key "reuse"]
}

function fleet_row(program, text) {
    printf "  %-44s %17.1f %20.1f %10.1f\n", text, median("fleet wall " program), median("fleet cpu " program),
        median("fleet peak " program) / 1024
}

function heading(title) {
    print title
    print "  files adapters passes    plain ms  reuse ms   ratio us a visit    profile reads      file opens       registry opens"
    print "                                                         of reuse   plain  reuse     plain  reuse     plain    reuse"
}

END {
    split("10 100 400", file_counts, " ")
    split("1 8 32", adapter_counts, " ")
    heading("Device passes, adapters that no INF lists (medians; a visit is one file in one pass of one adapter)")
    for (i = 1; i <= 3; ++i)
        for (j = 1; j <= 3; ++j) pass_row("unmatched", file_counts[i], adapter_counts[j], 4)
    print ""
    heading("Device passes, 8 adapters that the last file lists for that pass")
    for (p = 1; p <= 4; ++p) pass_row("matched", 100, 8, p)
    print ""
    printf "One try of the trace's key, which every line of the trace makes even while it is off: %.1f us\n\n", question
    print "What the platform's INF store takes for itself in a run, in ms (not in the figures above)"
    for (i = 1; i <= 3; ++i)
        printf "  %3d files: %8.1f for new ones, %8.1f for those that it has already\n", file_counts[i],
            store[file_counts[i] " new"], store[file_counts[i] " there"]
    print ""
    print "Highest working set of the program that runs the passes, in kB"
    for (i = 1; i <= 3; ++i) printf "  %3d files: %7d\n", file_counts[i], memory[file_counts[i]]
    print ""
    wall = median("wall 1") / median("wall 0"); cpu = median("cpu 1") / median("cpu 0")
    peak = (median("peak 1") - median("peak 0")) / 1024
    print "Silent run without an adapter against an empty program (medians of " rounds("wall 0") ")"
    printf "  start to exit   %7.1f ms, empty %7.1f ms, ratio %.2f\n", median("wall 1"), median("wall 0"), wall
    printf "  processor time  %7.1f ms, empty %7.1f ms, ratio %.2f\n", median("cpu 1"), median("cpu 0"), cpu
    printf "  peak memory     %7.1f MB, empty %7.1f MB, %.1f MB more\n", median("peak 1") / 1024, median("peak 0") / 1024, peak
    print ""
    share = median("share"); rest = median("rest")
    print "Silent run with one adapter (medians of " rounds("whole") ")"
    printf "  start to exit   %7.1f ms, of it %.1f ms in %d install calls of the platform: %.0f %%\n", median("whole"),
        median("inside"), calls, share
    printf "  the rest takes  %7.1f ms, an empty program of it %.1f ms: install calls of %.0f ms would be 80 %%\n", rest,
        median("wall 0"), 4 * rest
    printf "  an empty program and these install calls alone would have a share of %.0f %%\n",
        100 * median("inside") / (median("inside") + median("wall 0"))
    print ""
    print "A fleet planned by morvix-kit, against reading its exports (medians of " rounds("fleet wall 0") ")"
    print "                                               start to exit, ms   processor time, ms   peak, MB"
    fleet_row(0, "10,000 exports read (cat)")
    fleet_row(1, "10,000 exports read and decoded (iconv)")
    fleet_row(5, "10,000 machines, 400 INF files")
    fleet_row(4, " 2,000 machines, 400 INF files")
    fleet_row(3, "     1 machine,  400 INF files")
    fleet_row(2, "     1 machine,  the sample kit")
    each = median("fleet cpu 5") / 10000; decoded = median("fleet cpu 5") / median("fleet cpu 1")
    # The kit is read once, whatever the number of machines.
    more = (median("fleet cpu 5") - median("fleet cpu 3")) / (median("fleet cpu 4") - median("fleet cpu 3"))
    fleet_peak = median("fleet peak 5") / 1024
    printf "  processor time of a machine %.2f ms: %.1f times that of reading its export, %.2f times that of decoding it\n", each,
        median("fleet cpu 5") / median("fleet cpu 0"), decoded
    print ""
    check_cpu = median("check cpu 1") / 1000; check_peak = median("check peak 1") / 1024
    print "A kit of 400 INF files checked for 17 systems, against reading its files (medians of " rounds("check wall 0") ")"
    printf "  processor time %.2f s, reading %.3f s; start to exit %.2f s; peak %.1f MB\n", check_cpu,
        median("check cpu 0") / 1000, median("check wall 1") / 1000, check_peak
    print ""
    print "Sizes of the shipped code files, in bytes"
    for (name in size) printf "  %-14s %8d\n", name, size[name]
    printf "  %-14s %8d\n", "together", total
    print ""

    small = "unmatched 100 8 4 "; large = "unmatched 400 32 4 "
    ratio_small = median("ms " small "plain") / median("ms " small "reuse")
    ratio_large = median("ms " large "plain") / median("ms " large "reuse")
    growth = median("ms " large "reuse") / median("ms unmatched 100 32 4 reuse")
    same_reads = reads[small "reuse"] == reads["unmatched 100 1 4 reuse"] && reads[small "reuse"] == reads["unmatched 100 32 4 reuse"]
    print "Targets"
    target("100 files, 8 adapters: times faster than the plain way", ratio_small >= 5, sprintf("%.1f (at least 5)", ratio_small))
    target("profile reads of 100 files are those of one adapter for 8 and 32", same_reads, reads[small "reuse"])
    target("400 files, 32 adapters: times faster than the plain way", ratio_large >= 15, sprintf("%.1f (at least 15)", ratio_large))
    target("cost of four times the files, 32 adapters", growth <= 4.4, sprintf("%.1f (linear is 4)", growth))
    target("share of the install calls in a run with one adapter", share >= 80, sprintf("%.0f %% (at least 80)", share))
    target("silent run without adapters against an empty program", wall <= 1.5, sprintf("%.2f (at most 1.5)", wall))
    target("its peak memory above the empty program's", peak <= 8, sprintf("%.1f MB (at most 8)", peak))
    target("Morvix.exe", size["Morvix.exe"] <= 1048576, sprintf("%d kB (at most 1024)", size["Morvix.exe"] / 1024))
    target("a fleet: processor time of a machine", each <= 1.2, sprintf("%.2f ms (at most 1.2)", each))
    target("its processor time against decoding its export", decoded <= 5, sprintf("%.1f (at most 5)", decoded))
    target("cost of five times the machines, the kit not counted", more <= 5.5, sprintf("%.1f (linear is 5)", more))
    target("its peak memory", fleet_peak <= 150, sprintf("%.0f MB (at most 150)", fleet_peak))
    target("one machine and the sample kit, from start to exit", median("fleet wall 2") <= 50, sprintf("%.0f ms (at most 50)", median("fleet wall 2")))
    target("a check of 400 INF files for 17 systems: processor time", check_cpu <= 1, sprintf("%.2f s (at most 1)", check_cpu))
    target("its peak memory", check_peak < 100, sprintf("%.1f MB (below 100)", check_peak))
    target("all shipped code files", total <= 2097152, sprintf("%d kB (at most 2048)", total / 1024))
}
