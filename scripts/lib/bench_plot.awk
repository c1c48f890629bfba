# A plot of passes.tsv as SVG: milliseconds of a device pass over the number of INF files, both axes logarithmic, one line
# for each way and number of adapters.

function x_of(files) { return left + (log(files) - log(least_files)) / (log(most_files) - log(least_files)) * width }
function y_of(ms) { return top + height - (log(ms) - log(least_ms)) / (log(most_ms) - log(least_ms)) * height }

# The best time of several is enough for a picture.
function note(key, ms) { if (!(key in time) || ms < time[key]) time[key] = ms }

BEGIN { FS = "\t" }

$1 == "unmatched" {
    note($5 " " $3 " " $2, $6 + 0)
    if (!(($5 " " $3) in series)) { series[$5 " " $3] = ++series_count; name[series_count] = $5 " " $3 }
    if (!($2 in is_file)) { is_file[$2] = 1; file[++file_count] = $2 }
}

END {
    left = 80; top = 50; width = 520; height = 380
    least_files = file[1]; most_files = file[file_count]
    least_ms = 10000000; most_ms = 0
    for (key in time) {
        if (time[key] < least_ms) least_ms = time[key]
        if (time[key] > most_ms) most_ms = time[key]
    }
    least_ms = 10 ^ int(log(least_ms) / log(10)); most_ms = 10 ^ (int(log(most_ms) / log(10)) + 1)
    colour["plain"] = "#b5402a"; colour["reuse"] = "#2a6ab5"
    dash[1] = ""; dash[8] = "7 4"; dash[32] = "2 3"

    print "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"830\" height=\"500\" font-family=\"sans-serif\" font-size=\"13\">"
    print "<rect width=\"830\" height=\"500\" fill=\"white\"/>"
    print "<text x=\"80\" y=\"28\" font-size=\"16\">One device pass: milliseconds over INF files of 60 KB</text>"
    for (ms = least_ms; ms <= most_ms * 1.01; ms *= 10) {
        printf "<line x1=\"%d\" x2=\"%d\" y1=\"%.1f\" y2=\"%.1f\" stroke=\"#dddddd\"/>\n", left, left + width, y_of(ms), y_of(ms)
        printf "<text x=\"%d\" y=\"%.1f\" text-anchor=\"end\">%d</text>\n", left - 8, y_of(ms) + 4, ms
    }
    for (i = 1; i <= file_count; ++i) {
        printf "<line x1=\"%.1f\" x2=\"%.1f\" y1=\"%d\" y2=\"%d\" stroke=\"#dddddd\"/>\n", x_of(file[i]), x_of(file[i]), top, top + height
        printf "<text x=\"%.1f\" y=\"%d\" text-anchor=\"middle\">%d files</text>\n", x_of(file[i]), top + height + 20, file[i]
    }
    for (s = 1; s <= series_count; ++s) {
        split(name[s], part, " ")
        points = ""
        for (i = 1; i <= file_count; ++i)
            if ((name[s] " " file[i]) in time) points = points sprintf("%.1f,%.1f ", x_of(file[i]), y_of(time[name[s] " " file[i]]))
        printf "<polyline points=\"%s\" fill=\"none\" stroke=\"%s\" stroke-width=\"2\" stroke-dasharray=\"%s\"/>\n", points, colour[part[1]], dash[part[2]]
        printf "<text x=\"%d\" y=\"%.1f\" fill=\"%s\">%s, %d adapter%s</text>\n", left + width + 10, \
            y_of(time[name[s] " " file[file_count]]) + 4, colour[part[1]], part[1] == "plain" ? "plain way" : "answers reused", part[2], \
            part[2] == 1 ? "" : "s"
    }
    print "</svg>"
}
