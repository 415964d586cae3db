# gnuplot -c plots.gp RESULTS PLOTS: draws the data files that bench-report has written to the
# directory RESULTS as SVG files in the directory PLOTS.
results = ARG1
plots = ARG2

set terminal svg size 720,420 font "sans-serif,12" background "white"
set logscale xy
set format "%.0s%c"    # 1, 10, 100, 1k, ... 10M
set border 3
set tics nomirror
unset mxtics
unset mytics
set grid
set key top left Left reverse
set ylabel "time per call (ns)"
set style data linespoints
set style line 1 linewidth 2 pointtype 7 pointsize 0.5 linecolor rgb "#1f5fa8"
set style line 2 linewidth 2 pointtype 7 pointsize 0.5 linecolor rgb "#b35c00"
call = "page call"
floor = "JavaScriptCore's texts, one write"

set output plots . "/performance-payload.svg"
set title "Time per call by the size of the value"
set xlabel "value (bytes)"
plot results . "/payload-growth.dat" using 1:2 linestyle 1 title call, \
     "" using 1:3 linestyle 2 title floor

set output plots . "/performance-calls.svg"
set title "Time per call by the number of calls in a row"
set xlabel "calls in a row"
plot results . "/count-growth.dat" using 1:2 linestyle 1 title call, \
     "" using 1:3 linestyle 2 title floor
