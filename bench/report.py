# SPDX-License-Identifier: MIT
"""The table of goals, and the plot."""

import shutil
import subprocess
from dataclasses import dataclass, field

NOT_MEASURED = "not measured"


@dataclass(frozen=True)
class Row:
    """One line of the table."""

    workload: str
    measure: str
    goal: float = None  # None for what is only printed
    at_least: bool = False  # else at most
    value: float = None  # by the clock on the wall; None when something was missing
    cpu: float = None  # the same from user and system time, where that says anything
    is_disturbed: bool = False  # others have slowed the clock on the wall: the CPU time decides
    unit: str = ""
    others: dict = field(default_factory=dict)  # as value, against tools that decide nothing
    detail: str = ""  # what stands behind the ratio, shown below the table

    @property
    def verdict(self):
        if self.decisive is None:
            return NOT_MEASURED
        if self.goal is None:
            return "-"
        reached = self.decisive >= self.goal if self.at_least else self.decisive <= self.goal
        return ("reached" if reached else "missed") + self.reservation

    @property
    def decisive(self):
        """The number that is held against the goal."""
        by_cpu = self.cpu is not None and (self.is_disturbed or self.value is None)
        return self.cpu if by_cpu else self.value

    @property
    def reservation(self):
        if not self.is_disturbed or self.value is None:
            return ""
        return ", disturbed" if self.cpu is None else " by CPU"

    def cells(self, others):
        goal = "-"
        if self.goal is not None:
            goal = "%s %g%s" % ("at least" if self.at_least else "at most", self.goal, self.unit)
        numbers = (self.value, self.cpu, *(self.others.get(name) for name in others))
        return (self.workload, self.measure, goal, *map(self.number, numbers), self.verdict)

    def number(self, value):
        if value is None:
            return "-"
        return ("%.0f%s" if value >= 100 else "%.2f%s") % (value, self.unit)


def table(rows):
    """The rows as text, in a form that also reads as Markdown."""
    others = sorted({name for row in rows for name in row.others})
    head = ("workload", "measure", "goal", "wall", "CPU", *others, "verdict")
    lines = [head] + [row.cells(others) for row in rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(head))]
    lines.insert(1, tuple("-" * width for width in widths))
    return "\n".join(
        "| " + " | ".join(cell.ljust(width) for cell, width in zip(line, widths)) + " |"
        for line in lines
    )


def details(rows):
    return "\n".join(
        "* %s, %s: %s" % (row.workload, row.measure, row.detail) for row in rows if row.detail
    )


def curves_text(curves):
    """CPU seconds by number of files for each tool, as a table."""
    counts = sorted({count for points in curves.values() for count in points})
    width = max(len(name) for name in curves)
    lines = ["%-*s %s" % (width, "files", " ".join("%10d" % count for count in counts))]
    for name, points in curves.items():
        cells = ["%10.3f" % points[count] if count in points else " " * 9 + "-" for count in counts]
        lines.append("%-*s %s" % (width, name, " ".join(cells)))
    return "\n".join(lines)


def plot(curves, path):
    """Writes a PNG of the curves; returns why not when that cannot be done."""
    if shutil.which("gnuplot") is None:
        return "gnuplot is not installed"
    blocks = []
    for points in curves.values():
        pairs = "\n".join("%d %f" % point for point in sorted(points.items()))
        blocks.append("$d%d << EOD\n%s\nEOD\n" % (len(blocks), pairs))
    lines = ", ".join(
        '$d%d using 1:2 with linespoints linewidth 2 title "%s"' % (index, name)
        for index, name in enumerate(curves)
    )
    script = "".join(blocks) + (
        "set terminal png size 1000,700\n"
        'set output "%s"\n'
        "set logscale xy\nset grid\nset key left top\n"
        'set xlabel "number of files"\nset ylabel "seconds of CPU, user and system"\n'
        'set title "Time against number of files, warm cache"\n'
        "plot %s\n" % (path, lines)
    )
    result = subprocess.run(["gnuplot"], input=script, text=True, capture_output=True, check=False)
    return result.stderr.strip() if result.returncode != 0 else None
