#!/usr/bin/env python3
"""Plays one side of a game in a graphical client, by mouse, against the Vatro that the client runs.

play_by_mouse.py TRACE LEFT TOP SQUARE [COLOUR]

TRACE is a file that grows by what the client's Vatro prints; LEFT and TOP are the corner of the board
on the screen and SQUARE is the width of a square, in pixels. The moves of COLOUR (white) are those of
another Vatro, which sees one ply far and so loses soon. It also knows when the game has ended: the
script then prints the moves and the result. It fails when an answer takes longer than two minutes.
"""
import re
import subprocess
import sys
import time

trace, left, top, square = sys.argv[1], *map(float, sys.argv[2:5])
colour = sys.argv[5] if len(sys.argv) > 5 else "white"

player = subprocess.Popen(["vatro"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)


def tell(*lines):
    player.stdin.write("".join(line + "\n" for line in lines))
    player.stdin.flush()


def await_answer(pattern):
    """The first line of the player's output that matches; the game's end raises StopIteration."""
    for line in player.stdout:
        if re.match(r"(1-0|0-1|1/2-1/2) ", line):
            raise StopIteration(line.strip())
        found = re.match(pattern, line)
        if found:
            return found
    sys.exit("the player of the other side ended")


def click(name):
    file, rank = ord(name[0]) - ord("a"), int(name[1]) - 1
    if colour == "white":
        rank = 7 - rank
    else:
        file = 7 - file
    x, y = left + (file + 0.5) * square, top + (rank + 0.5) * square
    subprocess.run(["xdotool", "mousemove", str(int(x)), str(int(y)), "sleep", "0.2", "click", "1"],
                   check=True)
    time.sleep(0.3)


def moves_of_client():
    """All moves that the client's Vatro has made."""
    with open(trace, encoding="utf-8", errors="replace") as file:
        return re.findall(r"^(?:move|bestmove) (\S+)", file.read(), re.M)


moves = []
answers = 0


def await_client():
    global answers
    deadline = time.monotonic() + 120
    while len(moves_of_client()) <= answers:
        if time.monotonic() > deadline:
            sys.exit("no answer after: " + " ".join(moves))
        time.sleep(0.1)
    answers += 1
    move = moves_of_client()[answers - 1]
    moves.append(move)
    # Its own move may end the game, which it says before it answers the ping.
    tell("force", "usermove " + move, f"ping {answers}")
    await_answer(f"pong {answers}")
    time.sleep(3)  # for the client to show the move


tell("xboard", "protover 2", "nobook", "sd 1", "force")
try:
    if colour == "black":
        await_client()
    while True:
        tell("go")
        move = await_answer(r"move (\S+)")[1]
        moves.append(move)
        click(move[:2])
        click(move[2:4])
        tell("force", f"ping {1000 + answers}")
        await_answer(f"pong {1000 + answers}")
        await_client()
except StopIteration as end:
    print(*moves)
    print(end)
