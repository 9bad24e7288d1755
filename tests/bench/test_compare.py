# SPDX-License-Identifier: MIT
"""Tests of the benchmark's own reckoning: test_compare.py FOLDER-OF-THE-SCRIPTS"""

import os
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

SCRIPTS = sys.argv.pop(1)
sys.path.insert(0, SCRIPTS)
sys.dont_write_bytecode = True

# pylint: disable=wrong-import-position
import measure
import report
import tools
import workloads


def sample(wall, cpu=1.0, other_cores=0.0):
    return measure.Sample(wall, cpu, 1000, other_cores)


class Verdicts(unittest.TestCase):
    def test_at_most(self):
        # A ratio reaches its goal up to the goal itself.
        for value, verdict in ((0.5, "reached"), (1.0, "reached"), (1.01, "missed")):
            self.assertEqual(report.Row("w", "m", 1.0, value=value).verdict, verdict)

    def test_at_least(self):
        # So does a factor that is to be large.
        for value, verdict in ((19.9, "missed"), (20, "reached"), (300, "reached")):
            row = report.Row("w", "m", 20, at_least=True, value=value)
            self.assertEqual(row.verdict, verdict)

    def test_disturbed(self):
        # Where others have slowed the runs down, the CPU time decides, and the verdict says so.
        row = report.Row("w", "m", 1.0, value=1.5, cpu=0.9, by_cpu=True)
        self.assertEqual(row.verdict, "reached by CPU")
        row = report.Row("w", "m", 1.0, value=0.5, cpu=1.1, by_cpu=True)
        self.assertEqual(row.verdict, "missed by CPU")
        row = report.Row("w", "m", 1.0, value=1.5, by_cpu=True)
        self.assertEqual(row.verdict, "missed")

    def test_missing_tool(self):
        # What was not measured is neither reached nor missed.
        row = report.Row("w", "m", 1.0)
        self.assertEqual(row.verdict, "not measured")
        self.assertIn("| -    | -   | not measured |", report.table([row]))


class Runs(unittest.TestCase):
    def test_medians(self):
        # One outlier changes nothing.
        series = measure.Series((sample(1.0), sample(1.1), sample(50.0)))
        self.assertEqual(series.wall, 1.1)

    def test_disturbed(self):
        # A run is disturbed when others take a core, and only a long one can tell.
        self.assertTrue(sample(1.0, other_cores=0.9).is_disturbed)
        self.assertFalse(sample(1.0, other_cores=0.1).is_disturbed)
        self.assertFalse(sample(0.01, other_cores=0.9).is_disturbed)

    @mock.patch.multiple(measure, SHORT_SECONDS=0, MAX_OTHER_CORES=-1, MAX_REPEATED_ROUNDS=2)
    def test_repetition(self):
        # Disturbed rounds are repeated, but not for ever.
        with tempfile.TemporaryDirectory() as folder:
            log = os.path.join(folder, "log")
            command = ["sh", "-c", "sleep 0.3; echo run >> %s" % log]
            series = measure.alternate({"a": command}, dict(os.environ), 2)
            with open(log, encoding="ascii") as file:
                self.assertEqual(len(file.readlines()), 4)
            self.assertEqual(len(series["a"].samples), 2)

    def test_disturbed_series(self):
        # Less than half of the runs cannot move the median.
        quiet, disturbed = sample(1.0), sample(2.0, other_cores=0.9)
        self.assertFalse(measure.Series((quiet, quiet, disturbed)).is_disturbed)
        self.assertTrue(measure.Series((quiet, disturbed, disturbed)).is_disturbed)

    def test_failure(self):
        # A program that fails ends the benchmark with what it has said.
        with self.assertRaisesRegex(measure.Failure, "ended with 3: no such luck"):
            measure.run(["sh", "-c", "echo no such luck >&2; exit 3"], dict(os.environ))

    # However busy the machine is: the two are short.
    @mock.patch.multiple(measure, SHORT_SECONDS=60, MAX_OTHER_CORES=1000)
    def test_alternation(self):
        # Each command runs once a round, and short ones get twice the rounds.
        with tempfile.TemporaryDirectory() as folder:
            log = os.path.join(folder, "log")
            commands = {name: ["sh", "-c", "echo %s >> %s" % (name, log)] for name in "ab"}
            series = measure.alternate(commands, dict(os.environ), 3)
            with open(log, encoding="ascii") as file:
                self.assertEqual(file.read().split(), ["a", "b"] * 6)
            self.assertEqual(len(series["a"].samples), 6)

    def test_cpu(self):
        # Work counts as CPU time, waiting does not.
        waiting = measure.run(["sleep", "0.3"], dict(os.environ))
        self.assertGreaterEqual(waiting.wall, 0.3)
        self.assertLess(waiting.cpu, 0.1)
        busy = [sys.executable, "-c", "for i in range(3000000): pass"]
        self.assertGreater(measure.run(busy, dict(os.environ)).cpu, 0.02)


class Workloads(unittest.TestCase):
    def test_many_files(self):
        # The tree has the files and the twins that it promises, the same ones each time.
        with tempfile.TemporaryDirectory() as folder:
            contents = []
            for name in ("first", "second"):
                many = workloads.ManyFiles(os.path.join(folder, name), 1)
                os.makedirs(many.target)
                many.make()
                contents.append(read_all(many.target))
            self.assertEqual(contents[0], contents[1])
            self.assertEqual(len(contents[0]), many.files(0))
            several = [each for each in contents[0] if contents[0].count(each) > 1]
            self.assertEqual(len(several), many.twins(many.files(0)))

    def test_grouped_by_size(self):
        # Two pairs of one size share a group, of three files.
        many = workloads.ManyFiles("", 1)
        many.size_of = lambda content: 100 if content < 20 else content
        self.assertEqual(many.twins_by_size(40), 3 + 2 + 2)

    def test_real_tree(self):
        # Hidden files and folders, links and second names of a file stay behind.
        with tempfile.TemporaryDirectory() as folder:
            source = os.path.join(folder, "source")
            os.makedirs(os.path.join(source, "sub"))
            os.makedirs(os.path.join(source, ".hidden"))
            for name in ("a", ".b", "sub/c", ".hidden/d"):
                workloads.write(os.path.join(source, name), name.encode())
            os.symlink("a", os.path.join(source, "link"))
            os.link(os.path.join(source, "a"), os.path.join(source, "second"))
            target = os.path.join(folder, "target")
            self.assertEqual(workloads.take_real_tree(target, source, 0), 2)
            self.assertEqual(read_all(target), [b"a", b"sub/c"])


class Program(unittest.TestCase):
    def test_wrong_answer(self):
        # A scan that finds nothing where there are duplicates ends the benchmark with 1.
        with tempfile.TemporaryDirectory() as folder:
            fake_scan(folder, b"exit 0")
            result = run_compare(folder, os.environ["PATH"])
            self.assertEqual(result.returncode, 1)
            self.assertIn("grouped 0 files instead of 2", result.stderr)
            self.assertEqual(os.listdir(folder), ["twinsift-scan"])

    def test_no_tools(self):
        # Missing tools are named, and their rows say so.
        with tempfile.TemporaryDirectory() as folder:
            fake_scan(folder, b"echo one; echo two")
            result = run_compare(folder, folder)
            self.assertEqual(result.returncode, 0, result.stderr)
            for tool in tools.FINDERS + tools.OTHERS:
                self.assertIn("%s is not installed" % tool, result.stdout)
            self.assertRegex(result.stdout, r"\| time against cmp +\| at most 1 +\| - .*not measured")


def fake_scan(folder, script):
    path = os.path.join(folder, "twinsift-scan")
    workloads.write(path, b"#!/bin/sh\n" + script + b"\n")
    os.chmod(path, 0o755)


def read_all(folder):
    contents = []
    for inside, _, names in os.walk(folder):
        for name in names:
            with open(os.path.join(inside, name), "rb") as file:
                contents.append(file.read())
    return sorted(contents)


def run_compare(folder, path):
    command = [sys.executable, "-B", os.path.join(SCRIPTS, "compare.py"), "--toy", "--only", "pair"]
    return subprocess.run(
        [*command, "--build", folder, "--work", folder],
        env={**os.environ, "PATH": path},
        capture_output=True,
        text=True,
        check=False,
    )


if __name__ == "__main__":
    unittest.main()
