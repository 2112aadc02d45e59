# bench/comparison.gp - draws what compare_all.py has measured.
#
# usage: gnuplot -e "data='bench/comparison.dat'" bench/comparison.gp > docs/comparison.svg
set terminal svg size 1080,560 font "sans-serif,12" background "white"
set multiplot layout 2,2
set style fill solid
set boxwidth 0.6
set xtics nomirror
set ytics nomirror
set border 3
set grid ytics linetype 1 linecolor "#dddddd"
set yrange [0:*]
unset key

# Vatro in one colour, the others in another.
colour(name) = name eq "Vatro" ? 0xb5651d : 0x3b6ea5
chosen(what) = sprintf("< awk '$1 == \"%s\"' %s", what, data)
panel = "chosen(what) using 0:3:(colour(stringcolumn(2))):xtic(2) with boxes linecolor rgb variable, \
         chosen(what) using 0:3:(sprintf(form, $3)) with labels offset 0,0.6"

set title "Searching: million nodes a second"
what = "search"; form = "%.2f"
plot @panel
set title "Perft with a table: million leaves a second"
what = "perft"; form = "%.0f"
plot @panel
set title "From the start to the first answer: milliseconds"
what = "launch"; form = "%.1f"
plot @panel
set title "Nodes a second of two threads, in those of one"
what = "threads"; form = "%.2f"
plot @panel
unset multiplot
