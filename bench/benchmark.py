# SPDX-License-Identifier: MIT
"""What the measurements of all workloads share: trees, answers, rounds and rows."""

import os
import shutil
import time
from dataclasses import dataclass, field

import measure
import workloads
from measure import Failure
from report import Row
from tools import FINDERS, Tools, file_system, surroundings

OURS = "twinsift-scan"
AGAINST_FINDERS = "time against the fastest of %s" % ", ".join(FINDERS)
# What keeps its files in memory is never cold.
MEMORY_FILE_SYSTEMS = ("tmpfs", "ramfs")
# The finders that decide nothing may take many times as long, and get fewer rounds.
PARALLEL_RUNS = 2


def say(line=""):
    print(line, flush=True)


@dataclass(frozen=True)
class Comparison:
    """Our runs and those of other tools, taken in turn. The parallel ones decide nothing, and have
    runs of ours beside them."""

    ours: measure.Series
    references: dict
    beside_parallel: measure.Series = None
    parallel: dict = field(default_factory=dict)

    @property
    def fastest(self):
        return min(self.references.values(), key=lambda series: series.wall)

    @property
    def wall(self):
        return self.ours.against(self.fastest, "wall")

    @property
    def cpu(self):
        """Against the one that needs least, which may be another one than the fastest."""
        return self.ours.against(
            min(self.references.values(), key=lambda series: series.cpu), "cpu"
        )

    @property
    def is_disturbed(self):
        return self.ours.is_disturbed or self.fastest.is_disturbed

    def others(self, quantity):
        return {
            name: self.beside_parallel.against(each, quantity)
            for name, each in self.parallel.items()
        }

    def __str__(self):
        series = {OURS: self.ours, **self.references, **self.parallel}
        return ", ".join("%s %s" % each for each in series.items())


class Bench:
    """One run over all workloads."""

    def __init__(self, arguments, folder, small_folder):
        self.tools = Tools(arguments.build)
        self.is_toy = arguments.toy
        self.sizes = workloads.TOY if arguments.toy else workloads.FULL
        self.runs = arguments.runs or (1 if arguments.toy else 7)
        self.folder = folder
        self.small_folder = small_folder
        self.keep = arguments.keep
        self.rows = []
        self.curves = {}
        self.environment = surroundings(os.path.join(folder, "home"))
        self.output = os.path.join(folder, "output")
        self.prints_exact_groups = self.knows_option("--joined")

    def knows_option(self, option):
        """Whether our scan does; one that cannot tell fails where it is measured."""
        try:
            measure.run(self.tools.scan("--help"), self.environment, self.output)
        except (Failure, OSError):
            return False
        with open(self.output, "rb") as file:
            return option.encode() in file.read()

    def workload(self, name, make, *arguments):
        """The folder of a workload and its right answer, newly made."""
        return self.make(os.path.join(self.folder, name), make, *arguments)

    def small_workload(self, name, make, *arguments):
        return self.make(os.path.join(self.small_folder, name), make, *arguments)

    def make(self, folder, make, *arguments):
        os.makedirs(folder)
        start = time.perf_counter()
        answer = make(folder, *arguments)
        seconds = time.perf_counter() - start
        say("made %s in %.0f s, on %s" % (os.path.basename(folder), seconds, file_system(folder)))
        return folder, answer

    def drop(self, folder):
        if not self.keep:
            shutil.rmtree(folder)

    def answer(self, command):
        """The files that a tool groups, as a set; also warms the cache."""
        measure.run(command, self.environment, self.output)
        with open(self.output, "rb") as file:
            lines = set(file.read().split(b"\n"))
        # Later versions of jdupes say so where others say nothing.
        return lines - {b"", b"No duplicates found."}

    def expect(self, command, count):
        """Fails when the scan does not group that many files."""
        found = len(self.answer(command))
        if found != count:
            raise Failure("%s grouped %d files instead of %d" % (" ".join(command), found, count))

    def expect_same(self, folder):
        """Fails when the scan groups a file that another tool does not, or leaves one out. A scan
        that prints the joined groups may leave some out: all contents of one size stand in one group,
        which takes the first file of its first content and of each other one all but the first.
        """
        ours = self.answer(self.tools.scan(folder))
        finders = {**self.tools.finders(folder), **self.tools.parallel_finders(folder)}
        for name, command in finders.items():
            theirs = self.answer(command)
            # The list of rdfind is a file that is thrown away.
            if name == "rdfind":
                continue
            if not ours <= theirs:
                raise Failure("%s does not know %s" % (name, sorted(ours - theirs)[0]))
            if self.prints_exact_groups and ours != theirs:
                raise Failure("%s alone knows %s" % (name, sorted(theirs - ours)[0]))
        return len(ours)

    def alternate(self, commands, runs=None, before=None):
        return measure.alternate(commands, self.environment, runs or self.runs, before)

    def add(self, *arguments, **fields):
        row = Row(*arguments, **fields)
        self.rows.append(row)
        say("  %s: %s, %s" % (row.measure, row.number(row.decisive), row.verdict))
        if row.detail:
            say("    " + row.detail)

    def skip(self, workload, what, goal, reason, **fields):
        """A row that says why it could not be measured."""
        self.add(workload, what, goal, detail=reason, **fields)
        say("SKIP: %s: %s" % (workload, reason))

    def compare(self, ours, references, parallel=None, runs=None, before=None):
        """Runs of our scan and of the others in turn."""
        series = self.alternate({OURS: ours, **references}, runs, before)
        alone = series.pop(OURS)
        if not parallel:
            return Comparison(alone, series)
        few = min(PARALLEL_RUNS, runs or self.runs)
        beside = self.alternate({OURS: ours, **parallel}, few, before)
        return Comparison(alone, series, beside.pop(OURS), beside)

    def add_ratio(self, workload, what, goal, comparison, **fields):
        """A row of our time against that of the fastest of the reference tools. Where the goal rests
        on several threads, CPU time cannot stand in for a clock that others have disturbed.
        """
        if not comparison.references:
            self.add(workload, what, goal, detail=str(comparison))
            return
        values = {
            "value": comparison.wall,
            "cpu": comparison.cpu,
            "is_disturbed": comparison.is_disturbed,
            "others": comparison.others("wall"),
            "detail": str(comparison),
        }
        self.add(workload, what, goal, **{**values, **fields})

    def compare_finders(self, folder, runs=None, before=None):
        return self.compare(
            self.tools.scan(folder),
            self.tools.finders(folder),
            self.tools.parallel_finders(folder),
            runs,
            before,
        )

    def against_finders(self, workload, folder, goal=1.0):
        self.add_ratio(workload, AGAINST_FINDERS, goal, self.compare_finders(folder))

    def add_scaling(self, workload, scan):
        """How much faster a scan is when it may use a second core."""
        what = "times faster on 2 cores than held to 1"
        held = {count: self.tools.on_cores(count, scan) for count in (1, 2)}
        if None in held.values():
            self.skip(workload, what, None, "needs taskset and 2 cores")
            return
        series = self.alternate(held, min(3, self.runs))
        self.add(
            workload,
            what,
            value=series[1].against(series[2], "wall"),
            cpu=series[1].against(series[2], "cpu"),
            detail="on 1 core %s; on 2 %s" % (series[1], series[2]),
        )

    def calls(self, command):
        """How often each system call is made, and why that is not known."""
        tracer = self.tools.paths["strace"]
        if tracer is None:
            return None, "strace is not installed"
        try:
            return measure.count_calls(tracer, command, self.environment, self.output), None
        except Failure as failure:
            return None, "strace: %s" % failure

    def calls_beyond_start(self, command, empty_command):
        """As calls(), without those of the same program that has nothing to do."""
        all_calls, reason = self.calls(command)
        at_start, reason = self.calls(empty_command) if reason is None else (None, reason)
        return (None, reason) if reason else (all_calls - at_start, None)

    def empty_folder(self):
        folder = os.path.join(self.folder, "empty")
        os.makedirs(folder, exist_ok=True)
        return folder

    def add_calls(self, workload, folder, files):
        """What a file costs in system calls, the start of the program left out."""
        scans = (self.tools.scan(each) for each in (folder, self.empty_folder()))
        calls, reason = self.calls_beyond_start(*scans)
        if reason:
            self.skip(workload, "system calls a file", None, reason)
            return
        most = ", ".join("%s %.2f" % (name, n / files) for name, n in calls.most_common(8))
        total = sum(calls.values())
        self.add(workload, "system calls a file", value=total / files, detail=most)

    def reason_against_cold(self, folder):
        """Why a folder cannot be read as if for the first time; None where it can."""
        kind = file_system(folder)
        if kind in MEMORY_FILE_SYSTEMS:
            return "%s keeps its files in memory" % kind
        if not os.access(measure.DROP_CACHES, os.W_OK):
            return "no right to drop the system's caches"
        return None


def size_text(size):
    for unit, name in ((1024**3, "GiB"), (1024**2, "MiB"), (1024, "KiB")):
        if size >= unit:
            return "%d %s" % (size // unit, name)
    return "%d bytes" % size
