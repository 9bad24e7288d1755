# SPDX-License-Identifier: MIT
"""Many files of one size: whole scans, and the sorting into classes of content alone."""

import measure
import workloads
from benchmark import OURS, size_text
from measure import Failure

# What a class of content may cost, as its header says.
MAX_OPENS = 6
MAX_READS_OF_A_BYTE = 2


def one_size(bench):
    for count in bench.sizes.one_size_files:
        for beginning in (64, 8192):
            name = "one-size-%d-%d" % (count, beginning)
            folder, answer = bench.small_workload(
                name, workloads.make_one_size, count, beginning
            )
            bench.expect(bench.tools.scan(folder), answer)
            bench.expect_same(folder)
            workload = "%d different files of one size, the first %s common" % (
                count,
                size_text(beginning),
            )
            bench.against_finders(workload, folder)
            bench.drop(folder)


def large_buckets(bench):
    count = bench.sizes.bucket_files
    makers = {
        "%d files of 4 KiB, all different" % count: workloads.make_different,
        "%d empty files" % count: workloads.make_empty,
    }
    for title, make in makers.items():
        folder, answer = bench.workload(title.replace(" ", "-"), make, count)
        bench.expect(bench.tools.scan(folder), answer)
        against_literal(bench, title, folder, answer)
        bench.drop(folder)


def against_literal(bench, workload, folder, answer):
    """The literal pass takes minutes and runs once."""
    command = bench.tools.helper("literal", folder)
    result, sample = measure.values(command, bench.environment, bench.output)
    if result["grouped"] != answer:
        raise Failure("the literal pass grouped %d files" % result["grouped"])
    ours = bench.alternate({OURS: bench.tools.scan(folder)})[OURS]
    bench.add(
        workload,
        "times faster than the literal pass (run once)",
        20,
        at_least=True,
        value=result["seconds"] / ours.wall,
        cpu=sample.cpu / ours.cpu,
        is_disturbed=sample.is_disturbed,
        detail="%s %s; literal %.2f s (CPU %.2f s) for %d pairs"
        % (OURS, ours, result["seconds"], sample.cpu, result["pairs"]),
    )


def content_classes(bench):
    many, few = bench.sizes.class_files, bench.sizes.large_class_files
    tenth = many // 10
    size, giant = bench.sizes.large_class_bytes, bench.sizes.giant_bytes
    long_files = "%d files of %s" % (few, size_text(size))
    late = workloads.make_late_difference
    makers = {
        long_files + ", the first half common": (late, few, size, size // 2),
        long_files + ", other last byte": (late, few, size, size - 1),
        "%d empty files" % many: (workloads.make_empty_class, many),
        "%d equal files of 4 KiB" % many: (workloads.make_equal, many),
        "%d files of 16 KiB, two classes in turn" % tenth: (
            workloads.make_interleaved,
            tenth,
            16 * 1024,
        ),
        "%s among %d equal files of 4 KiB" % (size_text(giant), tenth): (
            workloads.make_giant_among_small,
            tenth,
            giant,
        ),
    }
    for index, (title, maker) in enumerate(makers.items()):
        folder, answer = bench.small_workload("classes-%d" % index, *maker)
        sort_classes(bench, "classes: " + title, folder, answer)
        bench.drop(folder)


def sort_classes(bench, workload, folder, answer):
    command = bench.tools.helper("ContentClasses", folder)
    results = []
    for _ in range(min(3, bench.runs)):
        result, _ = measure.values(command, bench.environment, bench.output)
        if result["classes"] != answer:
            raise Failure("%s: %d classes instead of %d" % (workload, result["classes"], answer))
        results.append(result)
    best = min(results, key=lambda result: result["seconds"])
    files = best["files"]
    bench.add(
        workload,
        "time a file, at best",
        value=best["seconds"] / files * 1e6,
        cpu=best["cpu-seconds"] / files * 1e6,
        unit=" us",
        detail="%.3f s in all, peak of the process %.0f MB"
        % (best["seconds"], best.get("peak-bytes", float("nan")) / 1e6),
    )
    add_opens(bench, workload, command, files)
    add_reads(bench, workload, best)


def add_opens(bench, workload, command, files):
    what = "opens a file"
    on_nothing = bench.tools.helper("ContentClasses", bench.empty_folder())
    calls, reason = bench.calls_beyond_start(command, on_nothing)
    if reason:
        bench.skip(workload, what, MAX_OPENS, reason)
        return
    # The folders are opened too, once each.
    opens = calls["open"] + calls["openat"]
    bench.add(
        workload,
        what,
        MAX_OPENS,
        value=opens / files,
        detail=", ".join("%s %.2f" % (name, n / files) for name, n in calls.most_common(5)),
    )


def add_reads(bench, workload, result):
    """An empty file is asked for one byte, which is not there."""
    what = "times that a byte is read"
    if "bytes-read" not in result:
        bench.skip(workload, what, MAX_READS_OF_A_BYTE, "the system does not count bytes read")
        return
    files, there = result["files"], result["bytes"]
    detail = "%.0f bytes of %.0f a file, in %.2f calls" % (
        result["bytes-read"] / files,
        there / files,
        result["read-calls"] / files,
    )
    if there == 0:
        bench.add(workload, "bytes read", 0, value=result["bytes-read"], detail=detail)
        return
    times = result["bytes-read"] / there
    bench.add(workload, what, MAX_READS_OF_A_BYTE, value=times, detail=detail)
