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
import statistics
import sys
import tempfile
import time

import measure
import report
import workloads
from measure import Failure
from report import Row
from tools import FINDERS, Tools, file_system, machine, surroundings

OURS = "twinsift-scan"
REAL_TREES = ("/usr/share", "/usr/include", "/usr/lib")


def say(line=""):
    print(line, flush=True)


class Bench:
    """One run over all workloads."""

    def __init__(self, arguments, folder, small_folder):
        self.tools = Tools(arguments.build)
        self.sizes = workloads.TOY if arguments.toy else workloads.FULL
        self.runs = arguments.runs or (1 if arguments.toy else 7)
        self.folder = folder
        self.small_folder = small_folder
        self.keep = arguments.keep
        self.rows = []
        self.curves = {}
        self.environment = surroundings(os.path.join(folder, "home"))
        self.output = os.path.join(folder, "output")

    def workload(self, name, make, *arguments):
        """The folder of a workload and its right answer, newly made."""
        folder = os.path.join(self.folder, name)
        os.makedirs(folder)
        start = time.perf_counter()
        answer = make(folder, *arguments)
        say("made %s in %.0f s" % (name, time.perf_counter() - start))
        return folder, answer

    def drop(self, folder):
        if not self.keep:
            shutil.rmtree(folder)

    def answer(self, command):
        """The files that a tool groups, as a set; also warms the cache."""
        measure.run(command, self.environment, self.output)
        with open(self.output, "rb") as file:
            return {line for line in file.read().split(b"\n") if line}

    def expect(self, command, count):
        """Fails when the scan does not group that many files."""
        found = len(self.answer(command))
        if found != count:
            raise Failure("%s grouped %d files instead of %d" % (" ".join(command), found, count))

    def expect_same(self, folder):
        """Fails when the scan groups a file that another tool does not. It may group fewer: files of
        one size stand in one group, opened by its first pair; a later pair of other content adds one.
        """
        ours = self.answer(self.tools.scan(folder))
        for name, command in self.tools.finders(folder).items():
            theirs = self.answer(command)
            # The list of rdfind is a file that is thrown away.
            if name != "rdfind" and not ours <= theirs:
                raise Failure("%s does not know %s" % (name, sorted(ours - theirs)[0]))
        return len(ours)

    def alternate(self, commands, runs=None):
        return measure.alternate(commands, self.environment, runs or self.runs)

    def add(self, *arguments, **fields):
        row = Row(*arguments, **fields)
        self.rows.append(row)
        say("  %s: %s, %s" % (row.measure, row.number(row.value), row.verdict))
        say("    " + row.detail)

    def add_ratio(self, workload, what, goal, ours, references):
        """A row of our time against that of the fastest of the reference tools."""
        series = self.alternate({OURS: ours, **references})
        detail = ", ".join("%s %s" % each for each in series.items())
        mine = series.pop(OURS)
        if not series:
            self.add(workload, what, goal, detail=detail)
            return
        fastest = min(series, key=lambda name: series[name].wall)
        self.add(
            workload,
            what,
            goal,
            value=mine.wall / series[fastest].wall,
            cpu=mine.cpu / max(1e-6, min(each.cpu for each in series.values())),
            by_cpu=mine.is_disturbed or series[fastest].is_disturbed,
            detail=detail,
        )

    def against_finders(self, workload, folder):
        finders = self.tools.finders(folder)
        what = "time against the fastest of %s" % ", ".join(FINDERS)
        self.add_ratio(workload, what, 1.0, self.tools.scan(folder), finders)

    def real_trees(self):
        for source in REAL_TREES:
            folder, count = self.workload(
                os.path.basename(source),
                workloads.take_real_tree,
                source,
                self.sizes.real_files,
            )
            say("  %d files, %d of them grouped" % (count, self.expect_same(folder)))
            self.against_finders("%s, %d files" % (source, count), folder)
            self.drop(folder)

    def equal_pair(self):
        folder, answer = self.workload("pair", workloads.make_pair, self.sizes.pair_bytes)
        scan = self.tools.scan(folder)
        self.expect(scan, answer)
        files = [os.path.join(folder, name) for name in ("a", "b")]
        workload = "two equal files of %s" % size_text(self.sizes.pair_bytes)
        self.add_ratio(workload, "time against cmp", 1.0, scan, self.tools.other("cmp", *files))
        self.drop(folder)

    def copies(self):
        count, size = self.sizes.copies, self.sizes.copy_bytes
        folder, answer = self.workload("copies", workloads.make_copies, count, size)
        self.expect(self.tools.scan(folder), answer)
        self.expect_same(folder)
        self.against_finders("%d copies of %s" % (count, size_text(size)), folder)
        self.drop(folder)

    def large_buckets(self):
        count = self.sizes.bucket_files
        makers = {
            "%d files of 4 KiB, all different" % count: workloads.make_different,
            "%d empty files" % count: workloads.make_empty,
        }
        for title, make in makers.items():
            folder, answer = self.workload(title.replace(" ", "-"), make, count)
            self.expect(self.tools.scan(folder), answer)
            self.against_literal(title, folder, answer)
            self.drop(folder)

    def against_literal(self, workload, folder, answer):
        """The literal pass takes minutes and runs once."""
        command = self.tools.helper("literal", folder)
        result, sample = measure.values(command, self.environment, self.output)
        if result["grouped"] != answer:
            raise Failure("the literal pass grouped %d files" % result["grouped"])
        ours = self.alternate({OURS: self.tools.scan(folder)})[OURS]
        self.add(
            workload,
            "times faster than the literal pass (run once)",
            20,
            at_least=True,
            value=result["seconds"] / ours.wall,
            cpu=sample.cpu / ours.cpu,
            by_cpu=sample.is_disturbed,
            detail="%s %s; literal %.2f s (CPU %.2f s) for %d pairs"
            % (OURS, ours, result["seconds"], sample.cpu, result["pairs"]),
        )

    def checksums(self):
        count, size = self.sizes.hash_files, self.sizes.hash_bytes
        folder, answer = self.workload("large", workloads.make_large, count, size)
        files = [os.path.join(folder, name) for name in sorted(os.listdir(folder))]
        workload = "%d files of %s" % (count, size_text(size))
        for checksum, tool in (("md5", "md5sum"), ("sha1", "sha1sum")):
            scan = self.tools.scan("--advanced", checksum, folder)
            self.expect(scan, answer)
            title = "%s, %s" % (workload, checksum)
            other = self.tools.other(tool, *files)
            self.add_ratio(title, "time against " + tool, 1.05, scan, other)
        self.crc("%s, crc" % workload, folder, count * size)
        self.drop(folder)

    def crc(self, workload, folder, size):
        scan = self.tools.scan("--advanced", "crc", folder)
        self.expect(scan, 0)
        loop = self.tools.helper("Crc32", "4" if self.sizes is workloads.TOY else "128")
        rates, samples = [], []
        for _ in range(self.runs):
            result, _ = measure.values(loop, self.environment, self.output)
            rates.append(result["memory-bytes-per-second"])
            samples.append(measure.run(scan, self.environment))
        ours = measure.Series(tuple(samples))
        rate = statistics.median(rates)
        self.add(
            workload,
            "bytes a second against the byte-step loop on memory",
            0.9,
            at_least=True,
            value=size / ours.wall / rate,
            cpu=size / ours.cpu / rate,
            by_cpu=ours.is_disturbed,
            detail="%s %s, %.0f MB/s; loop %.0f MB/s"
            % (OURS, ours, size / ours.wall / 1e6, rate / 1e6),
        )

    def many_files(self):
        many = self.make_many(self.sizes.many_depth)
        self.growth(many)
        self.draw_curves(many)
        self.drop(many.target)

    def make_many(self, depth):
        target = os.path.join(self.small_folder, "many")
        many = workloads.ManyFiles(target, depth)
        os.makedirs(target)
        start = time.perf_counter()
        many.make()
        say("made many in %.0f s, on %s" % (time.perf_counter() - start, file_system(target)))
        return many

    def growth(self, many):
        """Ten times the files. Size alone gives buckets that grow with the number of files, and all
        pairs of a bucket are judged; with the name asked for too, a bucket is two files."""
        modes = {
            "byte by byte": ([], many.twins),
            "byte by byte, same name": (["--same-name"], many.twins),
            "md5": (["--advanced", "md5"], many.twins),
            "crc": (["--advanced", "crc"], None),
        }
        counts = (many.files(0), many.files(1))
        for mode, (options, twins) in modes.items():
            commands = {
                count: self.tools.scan(*options, many.branch(level))
                for level, count in enumerate(counts)
            }
            for count, command in commands.items():
                # Of a million CRCs of 32 bits a few coincide.
                if twins is None:
                    self.answer(command)
                else:
                    self.expect(command, twins(count))
            workload = "%d against %d small files, %s" % (*counts, mode)
            # The pairs of large buckets take their time.
            runs = self.runs if options else min(3, self.runs)
            self.add_growth(workload, *self.alternate(commands, runs).values())

    def add_growth(self, workload, all_files, tenth):
        self.add(
            workload,
            "time",
            11,
            value=all_files.wall / tenth.wall,
            cpu=all_files.cpu / tenth.cpu,
            by_cpu=all_files.is_disturbed or tenth.is_disturbed,
            detail="%s against %s" % (all_files, tenth),
        )
        self.add(
            workload,
            "peak resident memory a file",
            700,
            value=all_files.peak_bytes / int(workload.split()[0]),
            unit=" B",
            detail="%.0f MB in all" % (all_files.peak_bytes / 1e6),
        )

    def window(self):
        """A signal a file crosses to the thread of the window."""
        many = self.make_many(self.sizes.window_depth)
        folders = many.branches(1, self.sizes.window_branches)
        files = many.files(1) * len(folders)
        scan = self.tools.scan("--advanced", "md5", *folders)
        window = self.tools.helper("Window", "md5", *folders)
        self.expect(scan, many.twins(files))
        results, cpus, scans = [], [], []
        for _ in range(self.runs):
            result, sample = measure.values(window, self.environment, self.output)
            results.append(result)
            cpus.append(sample.cpu)
            scans.append(measure.run(scan, self.environment))
        alone = measure.Series(tuple(scans))
        wall = statistics.median(result["seconds"] for result in results)
        workload = "%d files, md5, in the window" % files
        self.add(
            workload,
            'start to "completed" against twinsift-scan',
            1.15,
            value=wall / alone.wall,
            detail="%.3f s against %s; CPU of the whole process of the window %.3f s%s"
            % (wall, alone, statistics.median(cpus), disturbance(alone)),
        )
        passes = [result["longest-pass-milliseconds"] for result in results]
        self.add(
            workload,
            "longest pass of the GUI event loop",
            50,
            value=statistics.median(passes),
            unit=" ms",
            detail="median of the runs; the longest of all %.1f ms" % max(passes),
        )
        self.drop(many.target)

    def draw_curves(self, many):
        """CPU time by number of files, which on a warm cache is the time of a machine at rest. The
        whole tree is scanned once, since a tool may take minutes."""
        for level in reversed(range(many.depth)):
            folder = many.branch(level)
            commands = {
                OURS: self.tools.scan(folder),
                OURS + " --same-name": self.tools.scan("--same-name", folder),
                OURS + " --advanced md5": self.tools.scan("--advanced", "md5", folder),
                **self.tools.finders(folder),
            }
            series = self.alternate(commands, 1 if level == 0 else min(3, self.runs))
            for name, each in series.items():
                self.curves.setdefault(name, {})[many.files(level)] = each.cpu
            say("  curves at %d files" % many.files(level))

    def first_paint(self):
        times = []
        command = self.tools.helper("Window", "--first-paint")
        for _ in range(2 * self.runs):
            start = time.clock_gettime(time.CLOCK_MONOTONIC)
            result, _ = measure.values(command, self.environment, self.output)
            times.append((result["painted-at"] - start) * 1000)
        self.add(
            "the window, offscreen",
            "start of the process to the first paint",
            300,
            value=statistics.median(times),
            unit=" ms",
            detail="from %.0f to %.0f ms in %d starts" % (min(times), max(times), len(times)),
        )


def disturbance(series):
    return "; disturbed by other processes" if series.is_disturbed else ""


def size_text(size):
    for unit, name in ((1024**3, "GiB"), (1024**2, "MiB"), (1024, "KiB")):
        if size >= unit:
            return "%d %s" % (size // unit, name)
    return "%d bytes" % size


STEPS = {
    "real": Bench.real_trees,
    "pair": Bench.equal_pair,
    "copies": Bench.copies,
    "buckets": Bench.large_buckets,
    "checksums": Bench.checksums,
    "many": Bench.many_files,
    "window": Bench.window,
    "paint": Bench.first_paint,
}


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, help="build folder with twinsift-scan and bench/")
    parser.add_argument("--work", help="folder for the workloads; a temporary one otherwise")
    parser.add_argument("--small-work", help="another one for the million small files")
    parser.add_argument("--keep", action="store_true", help="leave the workloads there")
    parser.add_argument("--toy", action="store_true", help="everything once, at toy size")
    parser.add_argument("--runs", type=int, help="rounds of each comparison; 7 otherwise")
    parser.add_argument("--plot", default="compare.png", help="file of the plot")
    parser.add_argument("--only", choices=STEPS, nargs="+", help="only these workloads")
    return parser.parse_args()


def finish(bench, plot):
    say()
    if bench.sizes is workloads.TOY:
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
