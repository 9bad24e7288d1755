# SPDX-License-Identifier: MIT
"""Trees as people have them, byte by byte, beside the other finders: warm and cold."""

import os

import measure
import workloads
from benchmark import AGAINST_FINDERS, say, size_text
from tools import FINDERS

REAL_TREES = ("/usr/share", "/usr/include", "/usr/lib")
COLD_TREES = ("/usr/share", "/usr/lib")
# A cold round takes as long as the disk does.
COLD_RUNS = 3


def take(bench, source):
    folder, count = bench.workload(
        os.path.basename(source),
        workloads.take_real_tree,
        source,
        bench.sizes.real_files,
    )
    say("  %d files, %d of them grouped" % (count, bench.expect_same(folder)))
    return folder, count


def real_trees(bench):
    for source in REAL_TREES:
        folder, count = take(bench, source)
        workload = "%s, %d files" % (source, count)
        comparison = bench.compare_finders(folder)
        bench.add_ratio(workload, AGAINST_FINDERS, 0.65, comparison, cpu=None)
        bench.add_ratio(
            workload,
            "user and system time against the least of %s" % ", ".join(FINDERS),
            1.1,
            comparison,
            value=None,
            others=comparison.others("cpu"),
        )
        bench.add_scaling(workload, bench.tools.scan(folder))
        bench.add_calls(workload, folder, count)
        bench.drop(folder)


def cold_trees(bench):
    for source in COLD_TREES:
        folder, count = take(bench, source)
        against_finders_cold(bench, "%s, %d files, cold" % (source, count), folder, 0.45)
        bench.drop(folder)


def photos(bench):
    sizes = bench.sizes
    total, largest = sizes.photo_bytes, sizes.max_photo_bytes
    folder, answer = bench.workload("photos", workloads.make_photos, total, largest)
    bench.expect(bench.tools.scan(folder), answer)
    bench.expect_same(folder)
    workload = "photos of %s to %s, %s in all, cold" % tuple(
        size_text(size) for size in (largest // 4, largest, total)
    )
    against_finders_cold(bench, workload, folder, 0.7)
    bench.drop(folder)


def against_finders_cold(bench, workload, folder, goal):
    """The caches are dropped before each run; the program itself is read anew as well."""
    if bench.is_toy:
        say("  at toy size the caches stay as they are")
        bench.add_ratio(workload, AGAINST_FINDERS, goal, bench.compare_finders(folder), cpu=None)
        return
    reason = bench.reason_against_cold(folder)
    if reason:
        bench.skip(workload, AGAINST_FINDERS, goal, reason)
        return
    runs = min(COLD_RUNS, bench.runs)
    comparison = bench.compare_finders(folder, runs, measure.drop_caches)
    detail = "%s; %.0f MB from the disk" % (comparison, comparison.ours.disk_bytes / 1e6)
    if comparison.ours.disk_bytes == 0:
        bench.skip(workload, AGAINST_FINDERS, goal, "nothing came from a disk: " + detail)
        return
    bench.add_ratio(workload, AGAINST_FINDERS, goal, comparison, cpu=None, detail=detail)


def equal_pair(bench):
    size = bench.sizes.pair_bytes
    folder, answer = bench.workload("pair", workloads.make_pair, size)
    scan = bench.tools.scan(folder)
    bench.expect(scan, answer)
    files = [os.path.join(folder, name) for name in ("a", "b")]
    comparison = bench.compare(scan, bench.tools.other("cmp", *files))
    workload = "two equal files of %s" % size_text(size)
    bench.add_ratio(workload, "time against cmp", 0.36, comparison)
    bench.drop(folder)


def copies(bench):
    count, size = bench.sizes.copies, bench.sizes.copy_bytes
    folder, answer = bench.workload("copies", workloads.make_copies, count, size)
    bench.expect(bench.tools.scan(folder), answer)
    bench.expect_same(folder)
    bench.against_finders("%d copies of %s" % (count, size_text(size)), folder)
    bench.drop(folder)
