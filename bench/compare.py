#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Measures twinsift-scan and the window against the tools that people would use instead.

Makes its workloads in a folder of its own, checks the answer of every tool once, which also warms
the cache, runs the tools in alternation and prints a table of goals and ratios of medians. Ends
with 0 when all could be measured or its tool was missing, whatever the verdicts; with 1 when a
program failed or gave a wrong answer.
"""

import argparse
import os
import shutil
import sys
import tempfile
import time

import report
import rows_buckets
import rows_checksums
import rows_many
import rows_trees
import rows_window
from benchmark import Bench, say
from measure import Failure
from tools import machine

STEPS = {
    "real": rows_trees.real_trees,
    "cold": rows_trees.cold_trees,
    "photos": rows_trees.photos,
    "pair": rows_trees.equal_pair,
    "copies": rows_trees.copies,
    "one-size": rows_buckets.one_size,
    "buckets": rows_buckets.large_buckets,
    "classes": rows_buckets.content_classes,
    "checksums": rows_checksums.checksums,
    "many": rows_many.many_files,
    "window": rows_window.window,
    "paint": rows_window.first_paint,
}


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, help="build folder with twinsift-scan and bench/")
    parser.add_argument("--work", help="folder for the workloads; a temporary one otherwise")
    parser.add_argument("--small-work", help="another one for the many small files")
    parser.add_argument("--keep", action="store_true", help="leave the workloads there")
    parser.add_argument("--toy", action="store_true", help="everything once, at toy size")
    parser.add_argument("--runs", type=int, help="rounds of each comparison; 7 otherwise")
    parser.add_argument("--plot", default="compare.png", help="file of the plot")
    parser.add_argument("--only", choices=STEPS, nargs="+", help="only these workloads")
    return parser.parse_args()


def finish(bench, plot):
    say()
    if bench.is_toy:
        say("toy sizes: the verdicts say nothing")
    say(report.table(bench.rows))
    say()
    say(report.details(bench.rows))
    if bench.curves:
        say()
        say(report.curves_text(bench.curves))
        problem = report.plot(bench.curves, os.path.abspath(plot))
        say("not plotted: " + problem if problem else "plotted: " + os.path.basename(plot))


def measure_all(arguments, folder, small_folder):
    bench = Bench(arguments, folder, small_folder)
    say("%s, %d rounds" % (machine(folder), bench.runs))
    for name in bench.tools.missing():
        say("%s is not installed: its figures are %s" % (name, report.NOT_MEASURED))
    for name in arguments.only or STEPS:
        say("%s, load %.1f" % (name, os.getloadavg()[0]))
        STEPS[name](bench)
    finish(bench, arguments.plot)


def own_folder(parent):
    if parent:
        os.makedirs(parent, exist_ok=True)
    return os.path.realpath(tempfile.mkdtemp(prefix="twinsift-bench-", dir=parent))


def main():
    arguments = parse_arguments()
    folder = own_folder(arguments.work)
    small_folder = own_folder(arguments.small_work) if arguments.small_work else folder
    start = time.perf_counter()
    try:
        measure_all(arguments, folder, small_folder)
    except Failure as failure:
        print("failed: %s" % failure, file=sys.stderr)
        return 1
    finally:
        for each in {folder, small_folder}:
            if arguments.keep:
                say("kept: " + each)
            else:
                shutil.rmtree(each, ignore_errors=True)
    say("took %.0f s" % (time.perf_counter() - start))
    return 0


if __name__ == "__main__":
    sys.exit(main())
