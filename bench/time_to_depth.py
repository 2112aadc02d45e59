#!/usr/bin/env python3
# bench/time_to_depth.py - how much sooner several threads reach a depth than one.
"""Usage: time_to_depth.py [--threads N] [--runs N] [--seconds S] VATRO

For each position of compare_nps.py the depth is the deepest that one thread finishes in S seconds (4).
Then one thread and N (2) search it to that depth with empty tables, in turn, each several times (3); the
medians by the clock on the wall are shown. Helpers search on other schedules and are not exact, so their
times differ from run to run.
"""
import argparse
import re
import statistics
import time

import compare_nps


def search(vatro, threads, fen, depth):
    """Seconds to the depth, and nodes."""
    engine = compare_nps.Vatro(vatro, threads)
    engine.send("new\nforce\nnobook\nlevel 0 1000 0")
    engine.send(f"setboard {fen}\nsd {depth}\nping 1")
    engine.wait_for("pong")
    time.sleep(1)  # for the tables' memory
    start = time.perf_counter()
    engine.send("go")
    nodes = int(re.search(r"= (\d+)", engine.wait_for("# total nodes")).group(1))
    used = time.perf_counter() - start
    engine.close()
    return used, nodes


def depth_in(vatro, fen, seconds):
    depth = 4
    while search(vatro, 1, fen, depth + 1)[0] < seconds:
        depth += 1
    return depth


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("vatro")
    parser.add_argument("--threads", type=int, default=2)
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--seconds", type=float, default=4)
    args = parser.parse_args()
    ratios = []
    print("depth   1 thread   nodes   threads   nodes   sooner")
    for fen in compare_nps.POSITIONS:
        depth = depth_in(args.vatro, fen, args.seconds)
        runs = [(search(args.vatro, 1, fen, depth), search(args.vatro, args.threads, fen, depth))
                for _ in range(args.runs)]
        (one, one_nodes), (many, many_nodes) = (
            [statistics.median(run[i][j] for run in runs) for j in (0, 1)] for i in (0, 1))
        ratios.append(one / many)
        print(f"{depth:5}  {one:7.2f} s  {one_nodes / 1e6:5.1f} M  {many:6.2f} s  "
              f"{many_nodes / 1e6:5.1f} M  {ratios[-1]:6.2f}", flush=True)
    print(f"median: {statistics.median(ratios):.2f} times as soon with {args.threads} threads")


if __name__ == "__main__":
    main()
