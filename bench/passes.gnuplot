# The plot of scripts/bench: milliseconds of a device pass over the number of INF files, from passes.tsv, whose columns
# bench_pass names. gnuplot -e "figures='...'; plot='...'"
set terminal svg size 830,500 font 'sans-serif,13' background '#ffffff'
set output plot
set title 'One device pass: milliseconds over INF files of 60 KB'
set logscale xy
set xrange [8:500]
set xtics (10, 100, 400) format '%g files'
set format y '%g'
set grid
set key outside right
set datafile separator tab
set datafile missing NaN

ways = 'plain reuse'
way_titles = "'plain way' 'answers reused'"
way_colours = '#b5402a #2a6ab5'
adapters = '1 8 32'

# The rows of one line of the plot; several rounds become their mean.
files(way, count) = strcol(1) eq 'unmatched' && strcol(5) eq word(ways, way) && strcol(3) eq word(adapters, count) ? $2 : NaN
do for [way = 1:2] {
    do for [count = 1:3] {
        set style line 3 * (way - 1) + count linewidth 2 dashtype count linecolor rgb word(way_colours, way)
    }
}
plot for [way = 1:2] for [count = 1:3] figures using (files(way, count)):6 smooth unique linestyle 3 * (way - 1) + count \
    title sprintf('%s, adapters: %s', word(way_titles, way), word(adapters, count))
