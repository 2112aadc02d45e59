#!/usr/bin/env python3
"""Draws the longest mates of endings, or the sizes of their tables, as an SVG picture.

Usage: vatro-tbgen --stats --pieces 5 --out tb | scripts/chart_endings.py [--sizes] > PICTURE.svg
Only endings of the most pieces that occur are drawn, the largest figure first. A mate is the longest
of either side, in moves; a size is in megabytes. For sizes, the lines that vatro-tbgen prints when it
makes the tables will do.
"""
import re
import sys

BAR_HEIGHT = 11
ROW = 14
COLUMN_WIDTH = 300
NAME_WIDTH = 60
VALUE_WIDTH = 30
MARGIN = 16
TITLE = 34
COLUMNS = 3


def read_sizes(lines):
    """Megabytes by ending."""
    found = (re.match(r"(K\w*K\w*) .*?(\d+) bytes", line) for line in lines)
    return {match.group(1): int(match.group(2)) / 1e6 for match in found if match}


def read_longest(lines):
    """Moves to mate by ending."""
    longest = {}
    name = None
    for line in lines:
        start = re.match(r"(K\w*K\w*) +\d+ bytes", line)
        if start:
            name = start.group(1)
            longest[name] = 0
        mate = re.search(r"(?:mates|is mated) in at most (\d+):", line)
        if mate:
            longest[name] = max(longest[name], int(mate.group(1)))
    return longest


def draw(figures, title):
    pieces = max(len(name) for name in figures)
    bars = sorted(
        ((figure, name) for name, figure in figures.items() if len(name) == pieces and figure),
        key=lambda bar: (-bar[0], bar[1]))
    rows = -(-len(bars) // COLUMNS)
    width = 2 * MARGIN + COLUMNS * COLUMN_WIDTH
    height = TITLE + rows * ROW + MARGIN
    scale = (COLUMN_WIDTH - NAME_WIDTH - VALUE_WIDTH - MARGIN) / bars[0][0]
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
           f'font-family="sans-serif" font-size="11">',
           f'<rect width="{width}" height="{height}" fill="white"/>',
           f'<text x="{MARGIN}" y="20" font-size="14">{title.format(pieces)}</text>']
    for i, (figure, name) in enumerate(bars):
        x = MARGIN + i // rows * COLUMN_WIDTH
        y = TITLE + i % rows * ROW
        colour = "#b5651d" if "P" in name else "#3b6ea5"
        out.append(f'<text x="{x}" y="{y + BAR_HEIGHT - 2}">{name}</text>')
        out.append(f'<rect x="{x + NAME_WIDTH}" y="{y}" width="{figure * scale:.1f}" '
                   f'height="{BAR_HEIGHT}" fill="{colour}"/>')
        out.append(f'<text x="{x + NAME_WIDTH + figure * scale + 4:.1f}" '
                   f'y="{y + BAR_HEIGHT - 2}">{figure:.0f}</text>')
    out.append("</svg>")
    return "\n".join(out)


def main():
    if sys.argv[1:] == ["--sizes"]:
        figures = read_sizes(sys.stdin)
        title = "Sizes of the tables of {} pieces, in megabytes"
    else:
        figures = read_longest(sys.stdin)
        title = "Longest mates of the endings of {} pieces, in moves"
    if not figures:
        sys.exit("no statistics on standard input")
    print(draw(figures, title))


main()
