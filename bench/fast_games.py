#!/usr/bin/env python3
# bench/fast_games.py - games of the engine against itself on a short clock: does it ever lose on time?
"""Usage: fast_games.py [--games N] [--at-once N] [--load N] [--moves N] [--seconds N] ENGINE

Plays games of 40 moves in 1 second, several at once, each between two processes of the engine with
the opening book of the folder that it is started in. The clocks are kept from outside: a move has
taken as long as it was until its line was read. Prints each forfeit, and at the end how the games
ended, with the least time that was left on a clock, and the median of the nodes a second that the
engine has shown for its moves.
"""

import argparse
import collections
import multiprocessing
import os
import re
import select
import statistics
import subprocess
import time

MAX_PLIES = 500  # of a game that nobody has won by then


class Player:
    """One side: an engine on a pipe, and its clock."""

    def __init__(self, path, moves, seconds):
        self.moves, self.seconds = moves, seconds
        self.left, self.moves_to_go = seconds, moves
        self.process = subprocess.Popen([path], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        bufsize=0)
        self.buffer = b""
        self.speeds = []  # nodes a second, by move
        minutes, rest = divmod(seconds, 60)
        self.send(f"xboard\nnew\nlevel {moves} {minutes}:{rest:02} 0")

    def send(self, text):
        self.process.stdin.write((text + "\n").encode())

    def line(self):
        while b"\n" not in self.buffer:
            if not select.select([self.process.stdout], [], [], 30)[0]:
                raise RuntimeError("no answer in 30 s")
            read = os.read(self.process.stdout.fileno(), 65536)
            if not read:
                raise RuntimeError("the engine has ended")
            self.buffer += read
        line, self.buffer = self.buffer.split(b"\n", 1)
        return line.decode(errors="replace").rstrip()

    def think(self, order):
        """Gives the order that starts the search. Returns the move, or None and how the game ended."""
        start = time.perf_counter()
        self.send(f"time {int(self.left * 100)}\n{order}")
        while True:
            line = self.line()
            if line.startswith("move "):
                break
            if line.startswith("# total nodes"):
                self.speeds.append(int(re.search(r"nps = (\d+)", line).group(1)))
            if line.startswith(("1-0", "0-1", "1/2")):
                return None, line
            if line.lower().startswith(("error", "illegal")):
                return None, "refused: " + line
        used = time.perf_counter() - start
        self.left -= used
        if self.left < 0:
            return None, f"forfeit by {-self.left * 1000:.1f} ms of {used * 1000:.1f} ms"
        self.moves_to_go -= 1
        if self.moves_to_go == 0:
            self.moves_to_go = self.moves
            self.left += self.seconds
        return line.split()[1], None

    def quit(self):
        self.send("quit")
        self.process.wait(10)
        self.process.stdin.close()
        self.process.stdout.close()


def play(job):
    """Plays a game. Returns how it ended, its plies, the least time left after a move, and the nodes a
    second of its searches."""
    path, moves, seconds = job
    players = [Player(path, moves, seconds) for _ in range(2)]
    players[1].send("force")
    for player in players:
        player.send("ping 1")
        while player.line() != "pong 1":
            pass
    least, order = seconds, "go"
    ending = "not finished"
    try:
        for ply in range(MAX_PLIES):
            mover = players[ply % 2]
            move, ending = mover.think(order)
            if ending:
                break
            least = min(least, mover.left)
            # Black has heard nothing of the game yet.
            order = f"usermove {move}\ngo" if ply == 0 else f"usermove {move}"
        else:
            ending = "not finished"
    except RuntimeError as error:
        ending = "failed: " + str(error)
    finally:
        for player in players:
            player.quit()
    return ending, ply, least, players[0].speeds + players[1].speeds


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("engine")
    parser.add_argument("--games", type=int, default=1000)
    parser.add_argument("--at-once", type=int, default=os.cpu_count() or 1)
    parser.add_argument("--load", type=int, default=0, help="processes that only take time away")
    parser.add_argument("--moves", type=int, default=40)
    parser.add_argument("--seconds", type=int, default=1)
    args = parser.parse_args()
    load = [subprocess.Popen(["sh", "-c", "while :; do :; done"]) for _ in range(args.load)]
    endings, plies, least, speeds = collections.Counter(), 0, float(args.seconds), []
    job = (os.path.abspath(args.engine), args.moves, args.seconds)
    try:
        with multiprocessing.Pool(args.at_once) as pool:
            for ending, length, left, shown in pool.imap_unordered(play, [job] * args.games):
                if not ending.startswith(("1", "0", "not")):
                    print(f"{ending}, ply {length}", flush=True)
                endings["forfeit" if ending.startswith("forfeit") else ending] += 1
                plies += length
                least = min(least, left)
                speeds += shown
    finally:
        for process in load:
            process.kill()
            process.wait()
    print(f"{args.games} games, {plies} moves, least time left {least * 1000:.0f} ms")
    if speeds:
        print(f"{statistics.median(speeds) / 1e6:.2f} M nodes/s, median of {len(speeds)} searches")
    for ending, count in endings.most_common():
        print(f"{count:6}  {ending}")


if __name__ == "__main__":
    main()
