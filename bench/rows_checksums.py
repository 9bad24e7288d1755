# SPDX-License-Identifier: MIT
"""Long files in the checksum modes."""

import os
import statistics

import measure
import workloads
from benchmark import OURS, size_text

# The rate that one thread came to when it was measured last, as a multiple of the byte-step loop's;
# the goal is 0.6 of the time that it took.
CRC_BY_ONE_THREAD = 3.58
CRC_GOAL = round(CRC_BY_ONE_THREAD / 0.6, 2)


def checksums(bench):
    count, size = bench.sizes.hash_files, bench.sizes.hash_bytes
    folder, answer = bench.workload("large", workloads.make_large, count, size)
    files = [os.path.join(folder, name) for name in sorted(os.listdir(folder))]
    workload = "%d files of %s" % (count, size_text(size))
    for checksum, tool in (("md5", "md5sum"), ("sha1", "sha1sum")):
        scan = bench.tools.scan("--advanced", checksum, folder)
        bench.expect(scan, answer)
        title = "%s, %s" % (workload, checksum)
        comparison = bench.compare(scan, bench.tools.other(tool, *files))
        # Less than the other's time takes a second core; the sum of both is no less.
        detail = "%s; CPU %s of it" % (comparison, cpu_text(comparison))
        bench.add_ratio(title, "time against " + tool, 0.55, comparison, cpu=None, detail=detail)
        bench.add_scaling(title, scan)
    crc(bench, "%s, crc" % workload, folder, count * size)
    bench.drop(folder)


def cpu_text(comparison):
    return "%.2f" % comparison.cpu if comparison.references else "-"


def crc(bench, workload, folder, size):
    scan = bench.tools.scan("--advanced", "crc", folder)
    bench.expect(scan, 0)
    loop = bench.tools.helper("Crc32", "4" if bench.is_toy else "128")
    rates, samples = [], []
    for _ in range(bench.runs):
        result, _ = measure.values(loop, bench.environment, bench.output)
        rates.append(result["memory-bytes-per-second"])
        samples.append(measure.run(scan, bench.environment))
    ours = measure.Series(tuple(samples))
    rate = statistics.median(rates)
    bench.add(
        workload,
        "bytes a second against the byte-step loop on memory",
        CRC_GOAL,
        at_least=True,
        value=size / ours.wall / rate,
        is_disturbed=ours.is_disturbed,
        detail="%s %s, %.0f MB/s; loop %.0f MB/s; by CPU %.2f"
        % (OURS, ours, size / ours.wall / 1e6, rate / 1e6, size / ours.cpu / rate),
    )
    bench.add_scaling(workload, scan)
