#!/usr/bin/env python3
# bench/compare_nps.py - nodes a second of Vatro beside other engines, on the same positions in one run.
"""Usage: compare_nps.py [--seconds S] VATRO ENGINE...

An engine speaks UCI; one that speaks the protocol of XBoard is marked by "xboard:" before its command:
"xboard:hoichess". Commands may carry arguments: "gnuchess --uci". Every engine searches each position
for S seconds (3) on one thread with the tables that it has by default; nodes are divided by the
processor time that the search took, since other work on the machine would distort the wall clock. What
a peer has searched after its last report of nodes is left out, and so is the time. The engines take
turns, and each is started once for all positions, as an interface does: the system's work of finding
the memory of the tables falls on the first. Linux only: reads /proc.
"""
import argparse
import os
import re
import shlex
import statistics
import subprocess
import threading
import time

POSITIONS = [
    "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1",
    "r2q1rk1/pp1bbppp/2n1pn2/2pp4/3P1B2/2PBPN2/PP1N1PPP/R2Q1RK1 w - - 4 9",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "2rq1rk1/pb1nbppp/1p2pn2/2pp4/2PP4/1PN1PN2/PBQ1BPPP/2RR2K1 w - - 2 12",
    "3r1rk1/p1q2pp1/1p2pn1p/2p5/P1PP4/1QB1PP2/5P1P/R3R1K1 b - - 1 22",
    "2r2rk1/1p3ppp/p2p1n2/3Pp3/1P2P3/P1N2P2/6PP/2R2RK1 w - - 1 21",
    "8/5pk1/1p1r2p1/p1p1P2p/P1P2P1P/1P1R2P1/6K1/8 w - - 0 40",
    "8/8/1p1k1p2/p1p2Pp1/P1P1K1P1/1P6/8/8 w - - 0 50",
]


class Engine:
    def __init__(self, command):
        self.process = subprocess.Popen(shlex.split(command), stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                        text=True, bufsize=1)

    def send(self, text):
        self.process.stdin.write(text + "\n")
        self.process.stdin.flush()

    def lines(self):
        return iter(self.process.stdout.readline, "")

    def wait_for(self, word):
        return next(line for line in self.lines() if word in line)

    def now(self):
        """The clock of the measurements: the processor time that the engine has used, in seconds."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as stat:
            fields = stat.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def close(self):
        self.process.kill()
        self.process.wait()

    def last_report(self, pattern, end):
        """Nodes and processor time of the last line before `end` that matches the pattern."""
        nodes = used = 0
        for line in self.lines():
            found = re.search(pattern, line)
            if found:
                nodes, used = int(found.group(1)), self.now()
            if line.startswith(end):
                return nodes, used


class Vatro(Engine):
    """In its own words, which count all nodes: a thinking line comes only with a better move."""

    def __init__(self, command, threads=1):
        super().__init__(command)
        self.send(f"xboard\ncores {threads}\nnobook\nlevel 0 1000 0")

    def search(self, fen, seconds):
        self.send(f"setboard {fen}\nping 1")
        self.wait_for("pong")
        start = self.now()
        self.send("go")
        time.sleep(seconds)
        self.send("force")
        totals = self.wait_for("# total nodes")
        used = self.now() - start
        return int(re.search(r"= (\d+)", totals).group(1)) / max(used, 0.01)


class UciEngine(Engine):
    def __init__(self, command, threads=1):
        super().__init__(command)
        # Only Stockfish has the second option: its classic evaluation is the one that compares.
        self.send(f"uci\nsetoption name Threads value {threads}\n"
                  "setoption name Use NNUE value false\nisready")
        self.wait_for("readyok")

    def search(self, fen, seconds):
        self.send(f"ucinewgame\nposition fen {fen}\nisready")
        self.wait_for("readyok")
        start = self.now()
        self.send(f"go movetime {int(seconds * 1000)}")
        nodes, used = self.last_report(r"\bnodes (\d+)", "bestmove")
        return nodes / max(used - start, 0.01)


class XboardEngine(Engine):
    """Analyses, since then no engine plays from its book."""

    def __init__(self, command, threads=1):
        super().__init__(command)
        self.send(f"xboard\nprotover 2\ncores {threads}\nnew\nforce\npost")

    def search(self, fen, seconds):
        self.send(f"setboard {fen}\nping 1")
        self.wait_for("pong")
        start = self.now()
        self.send("analyze")
        end = threading.Timer(seconds, self.send, ["exit\nping 2"])
        end.start()
        nodes, used = self.last_report(r"^\s*\d+\S?\s+-?\d+\s+\d+\s+(\d+)\s", "pong")
        end.join()
        return nodes / max(used - start, 0.01)


def start(command, is_vatro, threads=1):
    if is_vatro:
        return Vatro(command, threads)
    if command.startswith("xboard:"):
        return XboardEngine(command.removeprefix("xboard:"), threads)
    return UciEngine(command, threads)


def compare(commands, seconds):
    """Millions of nodes a second of each engine, Vatro first, on each position."""
    engines = [start(command, i == 0) for i, command in enumerate(commands)]
    speeds = [[] for _ in engines]
    for fen in POSITIONS:
        for engine, values in zip(engines, speeds):
            values.append(engine.search(fen, seconds) / 1e6)
    for engine in engines:
        engine.close()
    return speeds


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("engines", nargs="+", metavar="ENGINE")
    parser.add_argument("--seconds", type=float, default=3)
    args = parser.parse_args()
    speeds = compare(args.engines, args.seconds)
    medians = [statistics.median(values) for values in speeds]
    for command, values, median in zip(args.engines, speeds, medians):
        each = " ".join(f"{value:5.2f}" for value in values)
        print(f"{command:30} median {median:5.2f} M nodes/s  [{each}]")
    if len(medians) > 1:
        print(f"{medians[0] / max(medians[1:]):.2f} times the fastest of the others")


if __name__ == "__main__":
    main()
