#!/bin/sh
# Draws the time of a boot over the number of cards, from a table that `boot` has written.
#
# usage: bench/plot.sh TABLE PICTURE.svg    needs gnuplot-nox
set -eu

table=$1
picture=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cut -f2 "$table" | awk '!seen[$0]++' >"$work/names"
plots=
while IFS= read -r name; do
    file=$work/$(echo "$name" | tr ' ' _)
    awk -F'\t' -v name="$name" '$2 == name && $1 ~ /card/ && $1 !~ /bridge/ { sub(/ .*/, "", $1); print $1, $3 }' \
        "$table" >"$file"
    [ "$(wc -l <"$file")" -gt 1 ] || continue # one point makes no line
    plots="$plots${plots:+, }'$file' with linespoints linewidth $([ "$name" = lanrise ] && echo 3 || echo 1) title '$name'"
done <"$work/names"

gnuplot <<END
set terminal svg size 720,420 background 'white' font 'sans-serif,12'
set output '$picture'
set logscale xy 2
set xtics (1, 2, 4, 8, 16, 31)
set xlabel 'cards'
set ylabel 'milliseconds until all are up'
set key outside right
set grid
plot $plots
END
