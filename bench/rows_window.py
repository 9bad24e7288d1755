# SPDX-License-Identifier: MIT
"""The window, offscreen."""

import statistics
import time

import measure
from rows_many import make_many


def window(bench):
    """A signal a file crosses to the thread of the window."""
    many = make_many(bench, bench.sizes.window_depth)
    folders = many.branches(1, bench.sizes.window_branches)
    files = many.files(1) * len(folders)
    scan = bench.tools.scan("--advanced", "md5", *folders)
    helper = bench.tools.helper("Window", "md5", *folders)
    bench.expect(scan, many.twins(files))
    results, cpus, scans = [], [], []
    for _ in range(bench.runs):
        result, sample = measure.values(helper, bench.environment, bench.output)
        results.append(result)
        cpus.append(sample.cpu)
        scans.append(measure.run(scan, bench.environment))
    alone = measure.Series(tuple(scans))
    wall = statistics.median(result["seconds"] for result in results)
    workload = "%d files, md5, in the window" % files
    bench.add(
        workload,
        'start to "completed" against twinsift-scan',
        1.15,
        value=statistics.median(
            result["seconds"] / sample.wall for result, sample in zip(results, scans)
        ),
        is_disturbed=alone.is_disturbed,
        detail="%.3f s against %s; CPU of the whole process of the window %.3f s"
        % (wall, alone, statistics.median(cpus)),
    )
    passes = [result["longest-pass-milliseconds"] for result in results]
    bench.add(
        workload,
        "longest pass of the GUI event loop",
        50,
        value=statistics.median(passes),
        unit=" ms",
        detail="median of the runs; the longest of all %.1f ms" % max(passes),
    )
    bench.drop(many.target)


def first_paint(bench):
    times = []
    command = bench.tools.helper("Window", "--first-paint")
    for _ in range(2 * bench.runs):
        start = time.clock_gettime(time.CLOCK_MONOTONIC)
        result, _ = measure.values(command, bench.environment, bench.output)
        times.append((result["painted-at"] - start) * 1000)
    bench.add(
        "the window, offscreen",
        "start of the process to the first paint",
        300,
        value=statistics.median(times),
        unit=" ms",
        detail="from %.0f to %.0f ms in %d starts" % (min(times), max(times), len(times)),
    )
