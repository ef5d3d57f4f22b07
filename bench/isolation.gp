# The table of bench/isolation.py as a picture: gnuplot -c bench/isolation.gp TABLE.md PICTURE.svg
set terminal svg size 900,480 font "sans,13" background "white"
set output ARG2
set datafile separator "|"
set title "GETs of a healthy card while others fail"
set ylabel "ms"
set logscale y
set yrange [0.1:1000]
set grid y
set xtics rotate by 35 right
set style data histograms
set style fill solid 0.8 border -1
set key outside top center horizontal
rows = "<grep -E '^\\|.*\\| [0-9.]+ \\|' ".ARG1
plot rows using 3:xtic(2) title "p50", "" using 4 title "p99", "" using 5 title "worst", 300 title "300 ms" dt 2 lc "red"
