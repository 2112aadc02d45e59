#!/usr/bin/env python3
# bench/short_clocks.py - how often a move comes too late on very short clocks, and the first search.
"""Usage: short_clocks.py [--moves N] [--no-load] ENGINE

Prints two tables, measured from outside while every processor is kept busy by other work:
  - late moves on clocks of 10 to 100 ms, with one search thread and with two. A move is late when
    it arrives later after "go" than "time" said;
  - nodes per second of processor time of the first move of a process, right after the start and
    2 s after "new", against its tenth: medians of several processes. Linux tells this time.
"""

import argparse
import os
import re
import statistics
import subprocess
import tempfile
import time

CLOCKS_MS = (10, 20, 30, 50, 100)
POSITIONS = (
    "r1bqkbnr/pppp1ppp/2n5/4p3/4P3/5N2/PPPP1PPP/RNBQKB1R w KQkq - 2 3",
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1",
    "8/2p5/3p4/KP5r/1R3p1k/8/4P1P1/8 w - - 0 1",
    "r4rk1/1pp1qppp/p1np1n2/2b1p1B1/2B1P1b1/P1NP1N2/1PP1QPPP/R4RK1 w - - 0 10",
    "2rq1rk1/pb1n1ppN/4p3/1pb5/3P1Pn1/P1N5/1PQ1B1PP/R1B2RK1 b - - 0 16",
)


class Engine:
    """The engine on a pipe, in a folder without a book or a configuration."""

    def __init__(self, path, threads=1):
        self.folder = tempfile.TemporaryDirectory()
        self.process = subprocess.Popen([os.path.abspath(path)], cwd=self.folder.name, text=True,
                                        bufsize=1, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.send(f"xboard\ncores {threads}\nforce\nnobook")

    def send(self, text):
        self.process.stdin.write(text + "\n")
        self.process.stdin.flush()

    def read_until(self, beginning):
        for line in self.process.stdout:
            if line.startswith(beginning):
                return line
        raise RuntimeError("the engine has ended")

    def thread_times(self):
        """Seconds on a processor of each thread so far."""
        tasks = f"/proc/{self.process.pid}/task"
        times = {}
        for thread in os.listdir(tasks):
            with open(f"{tasks}/{thread}/schedstat", encoding="ascii") as file:
                times[thread] = int(file.read().split()[0]) / 1e9
        return times

    def answer(self):
        """Waits until everything sent so far has been done."""
        self.send("ping 1")
        self.read_until("pong 1")

    def quit(self):
        self.send("quit")
        self.process.wait()
        self.process.stdout.close()
        self.folder.cleanup()


def late_moves(path, threads, clock_ms, moves):
    """Late moves of `moves`, and the longest time for one in milliseconds."""
    engine = Engine(path, threads)
    engine.answer()
    time.sleep(2)  # the tables' memory; the other table is about that
    late, longest = 0, 0.0
    for move in range(moves):
        engine.send(f"setboard {POSITIONS[move % len(POSITIONS)]}\nlevel 0 1 0\n"
                    f"time {clock_ms // 10}")
        engine.answer()
        start = time.perf_counter()
        engine.send("go")
        engine.read_until("move ")
        used_ms = (time.perf_counter() - start) * 1000
        late += used_ms > clock_ms
        longest = max(longest, used_ms)
        engine.send("force")
    engine.quit()
    return late, longest


def speeds(path, pause, moves=10):
    """Nodes per second of the first searches of a process, 0.3 s each.

    All search the same position with empty tables: the tenth differs from the first only in what
    the process has lived through. The thread that works most is the one that searches.
    """
    engine = Engine(path)
    result = []
    for move in range(moves):
        if pause or move > 0:
            engine.send("new\nforce\nnobook")
            engine.answer()
            time.sleep(2)
        engine.send(f"setboard {POSITIONS[1]}\nlevel 1 0:20 0\ntime 33")
        engine.answer()
        before = engine.thread_times()
        engine.send("go")
        line = engine.read_until("# total nodes")
        engine.read_until("move ")
        used = max(spent - before.get(thread, 0)
                   for thread, spent in engine.thread_times().items())
        result.append(int(re.search(r"nodes = (\d+)", line).group(1)) / max(used, 1e-3))
        engine.send("force")
    engine.quit()
    return result


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("engine")
    parser.add_argument("--moves", type=int, default=25, help="for each clock (default 25)")
    parser.add_argument("--processes", type=int, default=5, help="for each first move (default 5)")
    parser.add_argument("--no-load", action="store_true", help="leave the processors free")
    args = parser.parse_args()
    load = []
    if not args.no_load:
        load = [subprocess.Popen(["sh", "-c", "while :; do :; done"])
                for _ in range(os.cpu_count() or 1)]
    try:
        print("threads  clock ms  late moves  longest ms")
        for threads in (1, 2):
            for clock in CLOCKS_MS:
                late, longest = late_moves(args.engine, threads, clock, args.moves)
                print(f"{threads:7}  {clock:8}  {late:4} of {args.moves:3}  {longest:10.1f}",
                      flush=True)
        print("\nfirst move             nodes/s     tenth  first/tenth")
        for name, pause in (("right after start", False), ("2 s after new", True)):
            runs = [speeds(args.engine, pause) for _ in range(args.processes)]
            first, tenth = (statistics.median(nps[move] for nps in runs) for move in (0, -1))
            print(f"{name:18}  {first:10.0f}  {tenth:8.0f}  {first / max(tenth, 1):11.2f}",
                  flush=True)
    finally:
        for process in load:
            process.kill()
            process.wait()


if __name__ == "__main__":
    main()
