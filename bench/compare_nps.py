#!/usr/bin/env python3
"""Nodes a second of Vatro and of UCI engines, on the same positions in one run.

Usage: compare_nps.py [--seconds S] path/to/vatro uci-engine...
A UCI engine may carry arguments: "gnuchess --uci". Every engine searches each position for S
seconds (3) on one thread; nodes are divided by the processor time that the search took, since
other work on the machine would distort the wall clock. The engines take turns, and each is started
once for all positions, as an interface does: the system's work of finding the memory of the tables
falls on the first. Linux only: reads /proc.
"""
import os
import re
import shlex
import statistics
import subprocess
import sys
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

    def processor_time(self):
        fields = open(f"/proc/{self.process.pid}/stat").read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def close(self):
        self.process.kill()
        self.process.wait()


def start_uci(command):
    engine = Engine(command)
    engine.send("uci\nisready")
    next(line for line in engine.lines() if "readyok" in line)
    return engine


def search_uci(engine, fen, seconds):
    engine.send(f"ucinewgame\nposition fen {fen}\nisready")
    next(line for line in engine.lines() if "readyok" in line)
    start = engine.processor_time()
    engine.send(f"go movetime {int(seconds * 1000)}")
    nodes = 0
    for line in engine.lines():
        found = re.search(r"\bnodes (\d+)", line)
        nodes = max(nodes, int(found.group(1))) if found else nodes
        if line.startswith("bestmove"):
            break
    used = engine.processor_time() - start
    return nodes / max(used, 0.01)


def start_vatro(command):
    engine = Engine(command)
    engine.send("xboard\nnobook\nlevel 0 1000 0")
    return engine


def search_vatro(engine, fen, seconds):
    engine.send(f"setboard {fen}\nping 1")
    next(line for line in engine.lines() if line.startswith("pong"))
    start = engine.processor_time()
    engine.send("go")
    time.sleep(seconds)
    engine.send("force")
    totals = next(line for line in engine.lines() if line.startswith("# total nodes"))
    used = engine.processor_time() - start
    return int(re.search(r"= (\d+)", totals).group(1)) / max(used, 0.01)


def main():
    arguments = sys.argv[1:]
    seconds = 3.0
    if arguments[:1] == ["--seconds"]:
        seconds = float(arguments[1])
        arguments = arguments[2:]
    speeds = {command: [] for command in arguments}
    engines = [(start_uci if i else start_vatro)(command) for i, command in enumerate(arguments)]
    for fen in POSITIONS:
        for i, command in enumerate(arguments):
            search = search_uci if i else search_vatro
            speeds[command].append(search(engines[i], fen, seconds))
    for engine in engines:
        engine.close()
    for command, values in speeds.items():
        each = " ".join(f"{value / 1e6:5.2f}" for value in values)
        print(f"{command:30} median {statistics.median(values) / 1e6:5.2f} M nodes/s  [{each}]")


if __name__ == "__main__":
    main()
