# SPDX-License-Identifier: MIT
"""Runs of programs, and what they cost."""

import os
import statistics
import subprocess
import time
from collections import Counter
from dataclasses import dataclass

# Where all programs are faster than that, the median is taken over twice the runs.
SHORT_SECONDS = 0.3
# Other processes that take more than that of one core disturb a run, and the round is repeated.
MAX_OTHER_CORES = 0.5
MAX_REPEATED_ROUNDS = 3
TICKS_PER_SECOND = os.sysconf("SC_CLK_TCK")
BYTES_PER_BLOCK = 512  # of those that the system counts, whatever the disk's are
DROP_CACHES = "/proc/sys/vm/drop_caches"


class Failure(Exception):
    """A program ended badly or gave a wrong answer."""


@dataclass(frozen=True)
class Sample:
    wall: float  # seconds
    cpu: float  # seconds, user and system
    peak_bytes: int
    other_cores: float  # how many cores the rest of the machine has kept busy meanwhile
    disk_bytes: int = 0  # that had to come from a disk

    @property
    def is_disturbed(self):
        # The system counts in ticks, too coarse for a short run.
        return self.wall > 0.2 and self.other_cores > MAX_OTHER_CORES


@dataclass(frozen=True)
class Series:
    """The runs of one program on one workload."""

    samples: tuple

    @property
    def wall(self):
        return statistics.median(sample.wall for sample in self.samples)

    @property
    def cpu(self):
        return statistics.median(sample.cpu for sample in self.samples)

    @property
    def peak_bytes(self):
        return statistics.median(sample.peak_bytes for sample in self.samples)

    @property
    def is_disturbed(self):
        """Whether even the median comes from a run that others have slowed down."""
        return 2 * sum(sample.is_disturbed for sample in self.samples) > len(self.samples)

    @property
    def disk_bytes(self):
        return statistics.median(sample.disk_bytes for sample in self.samples)

    def against(self, other, quantity):
        """The median of the ratios of the rounds, so that what slows a whole round down cancels out."""
        return statistics.median(
            getattr(mine, quantity) / max(1e-6, getattr(theirs, quantity))
            for mine, theirs in zip(self.samples, other.samples)
        )

    def __str__(self):
        return "%.3f s (CPU %.3f s)" % (self.wall, self.cpu)


def busy_seconds():
    """Of all cores since the machine started; 0 where the system does not tell."""
    try:
        with open("/proc/stat", encoding="ascii") as file:
            fields = [int(field) for field in file.readline().split()[1:]]
    except OSError:
        return 0.0
    # All but idle and waiting for the disk; guests are counted as users already.
    return (sum(fields[:3]) + sum(fields[5:8])) / TICKS_PER_SECOND


def run(command, environment, output=None):
    """One run with its output thrown away, or written to the named file."""
    with open(output or os.devnull, "wb") as out:
        busy = busy_seconds()
        start = time.perf_counter()
        with subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.PIPE, env=environment
        ) as process:
            errors = process.stderr.read()
            _, status, usage = os.wait4(process.pid, 0)
            wall = time.perf_counter() - start
            process.returncode = os.waitstatus_to_exitcode(status)
        busy = busy_seconds() - busy
    if process.returncode != 0:
        text = errors.decode("utf-8", "replace").strip()
        raise Failure("%s ended with %d: %s" % (command[0], process.returncode, text))
    cpu = usage.ru_utime + usage.ru_stime
    return Sample(
        wall,
        cpu,
        usage.ru_maxrss * 1024,
        max(0.0, (busy - cpu) / wall),
        usage.ru_inblock * BYTES_PER_BLOCK,
    )


def alternate(commands, environment, runs, before=None):
    """A series for each command, by its name. Each round runs all of them once, each after a call of
    what is to be done before.

    A round with a disturbed run is thrown away and repeated; after some of them the machine will not
    come to rest, and the others are taken as they are.
    """
    rounds = []
    lost = 0
    wanted = runs
    while len(rounds) < wanted:
        samples = {}
        for name, command in commands.items():
            if before:
                before()
            samples[name] = run(command, environment)
        is_disturbed = any(sample.is_disturbed for sample in samples.values())
        if is_disturbed and runs > 1 and lost < MAX_REPEATED_ROUNDS:
            lost += 1
            continue
        rounds.append(samples)
        if runs > 1 and all(sample.wall < SHORT_SECONDS for sample in samples.values()):
            wanted = 2 * runs
    return {name: Series(tuple(samples[name] for samples in rounds)) for name in commands}


def values(command, environment, output):
    """Runs a helper that prints a name and a number a line; returns them, and the run's sample."""
    sample = run(command, environment, output)
    with open(output, encoding="ascii") as file:
        return {name: float(value) for name, value in (line.split() for line in file)}, sample


def drop_caches():
    """What was read from disks is forgotten, by the whole machine. Needs the right to do so."""
    os.sync()
    with open(DROP_CACHES, "w", encoding="ascii") as file:
        file.write("3\n")


def count_calls(tracer, command, environment, report):
    """How often each system call is made, by its name, in all threads; strace writes a report.

    A leak checker cannot look at a process that is traced.
    """
    run(
        [tracer, "-f", "-c", "-o", report, *command],
        {**environment, "ASAN_OPTIONS": "detect_leaks=0"},
    )
    with open(report, encoding="ascii") as file:
        return parse_calls(file)


def parse_calls(lines):
    """The table of strace -c: the fourth column counts, the last one names; without the total."""
    columns = [line.split() for line in lines]
    calls = {each[-1]: int(each[3]) for each in columns if len(each) > 4 and each[3].isdigit()}
    calls.pop("total", None)
    return Counter(calls)
