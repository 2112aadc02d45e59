#!/usr/bin/env python3
# bench/compare_all.py - all that Vatro is compared in, as a data file that comparison.gp draws.
"""Usage: compare_all.py VATRO > bench/comparison.dat

Measures Vatro beside the engines that are installed, of those named below, in one run: nodes a second
(as compare_nps.py does), perft with the table, the time from the start to the first answer, and how
many more nodes a second two threads search than one. A line holds what is measured, the engine, and
the figure. Takes ten minutes and wants the machine for itself.
"""
import argparse
import datetime
import os
import platform
import re
import shutil
import statistics
import subprocess
import sys
import time

import compare_nps

# By name: the command, and whether it can use two threads.
PEERS = {
    "HoiChess": ("xboard:hoichess", True),
    "GNU Chess": ("gnuchess --uci", False),
    "Glaurung": ("glaurung", True),
    "Toga II": ("toga2", False),
    "Stockfish": ("stockfish", True),
}
PERFT = (
    ("rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1", 6),
    ("r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1", 5),
    ("8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1", 7),
)
PERFT_LEAVES = 119_060_324 + 193_690_690 + 178_633_661
STARTS = 21
THREADS_POSITION = compare_nps.POSITIONS[3]


def installed():
    found = {}
    for name, (command, has_threads) in PEERS.items():
        program = command.removeprefix("xboard:").split()[0]
        if shutil.which(program):
            found[name] = (command, has_threads)
        else:
            print(f"left out: {name} is not installed", file=sys.stderr)
    return found


def show(what, engine, value):
    print(f'{what} "{engine}" {value:.3f}', flush=True)


def nodes_per_second(vatro, peers):
    commands = [vatro] + [command for command, _ in peers.values()]
    for name, speeds in zip(["Vatro", *peers], compare_nps.compare(commands, 3.0)):
        show("search", name, statistics.median(speeds))


def perft(vatro, peers):
    """Millions of leaves a second of processor time, by engine."""
    lines = "".join(f"setboard {fen}\nperft {depth}\n" for fen, depth in PERFT)
    commands = {"Vatro": (vatro, f"xboard\n{lines}quit\n")}
    if "Stockfish" in peers:
        lines = "".join(f"position fen {fen}\ngo perft {depth}\n" for fen, depth in PERFT)
        commands["Stockfish"] = (peers["Stockfish"][0], f"{lines}quit\n")
    for name, (command, text) in commands.items():
        before = os.times()
        subprocess.run([command], input=text, text=True, stdout=subprocess.DEVNULL, check=True)
        after = os.times()
        used = (after.children_user + after.children_system -
                before.children_user - before.children_system)
        show("perft", name, PERFT_LEAVES / used / 1e6)


def time_to_start(command, is_vatro):
    """Milliseconds from the start to the end of the features or of the UCI options."""
    start = time.perf_counter()
    xboard = is_vatro or command.startswith("xboard:")
    engine = compare_nps.Engine(command.removeprefix("xboard:"))
    engine.send("xboard\nprotover 2" if xboard else "uci")
    for line in engine.lines():
        if re.search(r"\bdone=1" if xboard else "^uciok", line):
            break
    used = (time.perf_counter() - start) * 1000
    engine.close()
    return used


def launch(vatro, peers):
    commands = {"Vatro": vatro} | {name: command for name, (command, _) in peers.items()}
    for name, command in commands.items():
        times = [time_to_start(command, name == "Vatro") for _ in range(STARTS)]
        show("launch", name, statistics.median(times))


def wall_speed(command, is_vatro, threads):
    """Nodes a second of a search by the clock on the wall."""
    engine = compare_nps.start(command, is_vatro, threads)
    engine.now = time.perf_counter
    engine.search(THREADS_POSITION, 2)  # finds the tables' memory
    speed = engine.search(THREADS_POSITION, 8)
    engine.close()
    return speed


def two_threads(vatro, peers):
    commands = {"Vatro": (vatro, True)} | peers
    for name, (command, has_threads) in commands.items():
        if has_threads:
            speeds = [wall_speed(command, name == "Vatro", threads) for threads in (1, 2)]
            show("threads", name, speeds[1] / speeds[0])


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("vatro")
    vatro = os.path.abspath(parser.parse_args().vatro)
    peers = installed()
    model = re.search(r"model name\s*: (.*)", open("/proc/cpuinfo", encoding="ascii").read())
    print(f"# {datetime.date.today()}, {model.group(1) if model else platform.machine()}, "
          f"{os.cpu_count()} processors")
    for measure in (launch, perft, nodes_per_second, two_threads):
        measure(vatro, peers)


if __name__ == "__main__":
    main()
