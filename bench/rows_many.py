# SPDX-License-Identifier: MIT
"""A million small files, and how time and memory grow with them."""

import os
import time

import workloads
from benchmark import OURS, say
from tools import file_system

MAX_MB_OF_THREADS = 100


def make_many(bench, depth):
    target = os.path.join(bench.small_folder, "many")
    many = workloads.ManyFiles(target, depth)
    os.makedirs(target)
    start = time.perf_counter()
    many.make()
    say("made many in %.0f s, on %s" % (time.perf_counter() - start, file_system(target)))
    return many


def many_files(bench):
    many = make_many(bench, bench.sizes.many_depth)
    growth(bench, many)
    draw_curves(bench, many)
    bench.drop(many.target)


def growth(bench, many):
    """Ten times the files. By size alone the buckets grow with the number of files; with the name
    asked for too, a bucket is two files."""
    by_size = many.twins if bench.prints_exact_groups else many.joined_twins
    modes = {
        "byte by byte": ([], by_size),
        "byte by byte, same name": (["--same-name"], many.twins),
        "md5": (["--advanced", "md5"], many.twins),
        "sha1": (["--advanced", "sha1"], many.twins),
        "crc": (["--advanced", "crc"], None),
    }
    counts = (many.files(0), many.files(1))
    for mode, (options, twins) in modes.items():
        scans = [bench.tools.scan(*options, many.branch(level)) for level in range(2)]
        for count, scan in zip(counts, scans):
            # Of a million CRCs of 32 bits a few coincide.
            if twins is None:
                bench.answer(scan)
            else:
                bench.expect(scan, twins(count))
        workload = "%d against %d small files, %s" % (*counts, mode)
        series = bench.alternate(dict(zip(counts, scans)))
        add_growth(bench, workload, counts[0], *series.values())
        add_memory_of_threads(bench, workload, scans[0], series[counts[0]].peak_bytes)


def add_growth(bench, workload, files, all_files, tenth):
    bench.add(
        workload,
        "time",
        10.5,
        value=all_files.against(tenth, "wall"),
        cpu=all_files.against(tenth, "cpu"),
        is_disturbed=all_files.is_disturbed or tenth.is_disturbed,
        detail="%s against %s" % (all_files, tenth),
    )
    bench.add(
        workload,
        "peak resident memory a file",
        700,
        value=all_files.peak_bytes / files,
        unit=" B",
        detail="%.0f MB in all" % (all_files.peak_bytes / 1e6),
    )


def add_memory_of_threads(bench, workload, scan, peak_bytes):
    """What the scan holds on to beyond what it needs where one core is all it may use."""
    what = "peak memory beyond that on one core"
    held = bench.tools.on_cores(1, scan)
    if held is None:
        bench.skip(workload, what, MAX_MB_OF_THREADS, "taskset is not installed", unit=" MB")
        return
    alone = bench.alternate({OURS: held}, 1)[OURS]
    bench.add(
        workload,
        what,
        MAX_MB_OF_THREADS,
        value=(peak_bytes - alone.peak_bytes) / 1e6,
        unit=" MB",
        detail="%.0f MB against %.0f MB" % (peak_bytes / 1e6, alone.peak_bytes / 1e6),
    )


def draw_curves(bench, many):
    """CPU time by number of files, which on a warm cache is the time of a machine at rest. The whole
    tree is scanned once, since a tool may take minutes."""
    for level in reversed(range(many.depth)):
        folder = many.branch(level)
        commands = {
            OURS: bench.tools.scan(folder),
            OURS + " --same-name": bench.tools.scan("--same-name", folder),
            OURS + " --advanced md5": bench.tools.scan("--advanced", "md5", folder),
            **bench.tools.finders(folder),
        }
        series = bench.alternate(commands, 1 if level == 0 else min(3, bench.runs))
        for name, each in series.items():
            bench.curves.setdefault(name, {})[many.files(level)] = each.cpu
        say("  curves at %d files" % many.files(level))
