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
import benchmark
import measure
import report
import rows_trees
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
        row = report.Row("w", "m", 1.0, value=1.5, cpu=0.9, is_disturbed=True)
        self.assertEqual(row.verdict, "reached by CPU")
        row = report.Row("w", "m", 1.0, value=0.5, cpu=1.1, is_disturbed=True)
        self.assertEqual(row.verdict, "missed by CPU")
        row = report.Row("w", "m", 1.0, value=1.5, is_disturbed=True)
        self.assertEqual(row.verdict, "missed, disturbed")

    def test_cpu_alone(self):
        # A goal for the CPU time alone is not touched by what others do.
        row = report.Row("w", "m", 1.1, cpu=1.05, is_disturbed=True)
        self.assertEqual(row.verdict, "reached")
        self.assertEqual(report.Row("w", "m", 1.1, cpu=1.2).verdict, "missed")

    def test_printed(self):
        # What has no goal has no verdict either.
        table = report.table([report.Row("w", "m", value=1.5)])
        self.assertIn("| w        | m       | -    | 1.50 | -   | -       |", table)

    def test_parallel_finders(self):
        # They have a column each, and the verdict is that of the others.
        rows = [report.Row("w", "m", 1.0, value=0.9, others={"x": 3}), report.Row("v", "m")]
        head, _, first, second = report.table(rows).splitlines()
        self.assertRegex(head, r"CPU +\| x +\| verdict")
        self.assertRegex(first, r"\| 3.00 \| reached")
        self.assertRegex(second, r"\| - +\| -")

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

    def test_ratio(self):
        # A round in which all are slow counts as any other: the ratios are taken round by round.
        ours = measure.Series((sample(1.0), sample(10.0), sample(3.0)))
        theirs = measure.Series((sample(2.0), sample(20.0), sample(30.0)))
        self.assertEqual(ours.against(theirs, "wall"), 0.5)

    def test_preparation(self):
        # What is to be done before is done before each run, not once a round.
        steps = []
        commands = {name: ["true"] for name in "ab"}
        with mock.patch.object(measure, "run", lambda *_: steps.append("run") or sample(1.0)):
            measure.alternate(commands, {}, 2, lambda: steps.append("before"))
        self.assertEqual(steps, ["before", "run"] * 4)

    def test_dropped_caches(self):
        # The system is told to forget everything that it has read.
        with tempfile.NamedTemporaryFile() as file:
            with mock.patch.object(measure, "DROP_CACHES", file.name):
                measure.drop_caches()
            self.assertEqual(file.read(), b"3\n")

    def test_calls(self):
        # Calls are counted with those that failed, the sum of all is none of them.
        table = """% time     seconds  usecs/call     calls    errors syscall
------ ----------- ----------- --------- --------- ----------------
 60.00    0.000010           1        12         3 openat
 40.00    0.000010           1         8           read
------ ----------- ----------- --------- --------- ----------------
100.00    0.000020           1        20         3 total
"""
        calls = measure.parse_calls(table.splitlines())
        self.assertEqual(calls, {"openat": 12, "read": 8})

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

    def test_joined_groups(self):
        # Two contents of one size share a joined group, of three files.
        many = workloads.ManyFiles("", 1)
        many.size_of = lambda content: 100 if content < 20 else content
        self.assertEqual(many.joined_twins(40), 3 + 2 + 2)

    def test_one_size(self):
        # All are different, of one size, and begin alike, as far as they are to.
        with tempfile.TemporaryDirectory() as folder:
            self.assertEqual(workloads.make_one_size(folder, 300, 64), 0)
            contents = read_all(folder)
            self.assertEqual(len(set(contents)), 300)
            self.assertEqual({len(each) for each in contents}, {64 + 8 + workloads.FILLER_BYTES})
            self.assertEqual(len({each[:64] for each in contents}), 1)
            self.assertEqual(len({each[64:72] for each in contents}), 300)

    def test_photos(self):
        # As many as promised have a copy, and some that differ have one size.
        with tempfile.TemporaryDirectory() as folder:
            several = workloads.make_photos(folder, 400 * 1024, 8192)
            contents = read_all(folder)
            self.assertGreater(several, 10)
            self.assertEqual(sum(contents.count(each) > 1 for each in contents), several)
            self.assertLess(len({len(each) for each in contents}), len(set(contents)))
            self.assertTrue(all(2048 <= len(each) <= 8192 for each in contents))
            self.assertGreaterEqual(sum(map(len, contents)), 400 * 1024)

    def test_classes(self):
        # The makers say how many contents there are.
        makers = (
            (workloads.make_late_difference, 300, 4096, 4095, 256),
            (workloads.make_late_difference, 300, 4096, 2048, 300),
            (workloads.make_interleaved, 21, 4096, 2),
            (workloads.make_giant_among_small, 10, 100000, 2),
            (workloads.make_equal, 5, 1),
            (workloads.make_empty_class, 5, 1),
        )
        for make, count, *sizes, answer in makers:
            with tempfile.TemporaryDirectory() as folder:
                make(folder, count, *sizes)
                self.assertEqual(len(set(read_all(folder))), answer, make)

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


class Skips(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        fake_scan(self.folder.name, b"exit 0")
        arguments = mock.Mock(build=self.folder.name, toy=True, runs=1, keep=False)
        self.said = []
        for module in (benchmark, rows_trees):
            patch = mock.patch.object(module, "say", self.said.append)
            patch.start()
            self.addCleanup(patch.stop)
        self.bench = benchmark.Bench(arguments, self.folder.name, self.folder.name)

    def assert_skipped(self, reason):
        self.assertEqual(self.bench.rows[-1].verdict, "not measured")
        self.assertIn(reason, self.bench.rows[-1].detail)
        self.assertIn("SKIP: w: " + self.bench.rows[-1].detail, self.said)

    def test_no_right_to_drop_caches(self):
        # A cold row that cannot be cold says so, and nothing is run for it.
        self.bench.is_toy = False
        self.bench.compare_finders = None
        nowhere = os.path.join(self.folder.name, "none")
        with mock.patch.object(measure, "DROP_CACHES", nowhere), mock.patch.object(
            benchmark, "file_system", lambda _: "ext4"
        ):
            rows_trees.against_finders_cold(self.bench, "w", self.folder.name, 0.45)
        self.assert_skipped("no right to drop")

    def test_files_in_memory(self):
        # Nor is anything cold on a file system that has no disk, or where none was read from.
        self.bench.is_toy = False
        with tempfile.NamedTemporaryFile() as file, mock.patch.object(
            measure, "DROP_CACHES", file.name
        ):
            with mock.patch.object(benchmark, "file_system", lambda _: "tmpfs"):
                rows_trees.against_finders_cold(self.bench, "w", self.folder.name, 0.45)
            self.assert_skipped("tmpfs keeps its files in memory")
            warm = benchmark.Comparison(measure.Series((sample(1.0),)), {})
            self.bench.compare_finders = lambda *_: warm
            with mock.patch.object(benchmark, "file_system", lambda _: "ext4"):
                rows_trees.against_finders_cold(self.bench, "w", self.folder.name, 0.45)
            self.assert_skipped("nothing came from a disk")

    def test_no_strace(self):
        # Neither without strace nor where it may not trace.
        self.bench.tools.paths["strace"] = None
        self.bench.add_calls("w", self.folder.name, 1)
        self.assert_skipped("strace is not installed")
        refusing = os.path.join(self.folder.name, "strace")
        workloads.write(refusing, b"#!/bin/sh\necho not permitted >&2; exit 1\n")
        os.chmod(refusing, 0o755)
        self.bench.tools.paths["strace"] = refusing
        self.bench.add_calls("w", self.folder.name, 1)
        self.assert_skipped("not permitted")

    def test_no_taskset(self):
        # No row for a number of cores without the tool for it.
        self.bench.tools.paths["taskset"] = None
        self.bench.add_scaling("w", ["true"])
        self.assert_skipped("taskset")


class Program(unittest.TestCase):
    def test_wrong_answer(self):
        # A scan that finds nothing where there are duplicates ends the benchmark with 1.
        with tempfile.TemporaryDirectory() as folder:
            fake_scan(folder, b"exit 0")
            result = run_compare(folder, os.environ["PATH"])
            self.assertEqual(result.returncode, 1)
            self.assertIn("grouped 0 files instead of 2", result.stderr)
            self.assertEqual(os.listdir(folder), ["twinsift-scan"])

    def test_exact_groups(self):
        # A scan that prints exact groups must print all that another tool knows; one that prints
        # the joined ones may leave some out.
        with tempfile.TemporaryDirectory() as folder:
            for options, code in ((b"", 0), (b"--joined", 1)):
                script = b'[ "$1" = --help ] && echo "%s" && exit\n' % options
                script += b'for i in 0 1 2 3 4 5 6 7 8 9; do echo "$1/copy000$i"; done'
                fake_scan(folder, script)
                fake_tool(
                    folder,
                    "fdupes",
                    b'for i in 0 1 2 3 4 5 6 7 8 9; do echo "$3/copy000$i"; done; echo "$3/other"',
                )
                result = run_compare(folder, folder, "copies")
                self.assertEqual(result.returncode, code, result.stderr)
            self.assertRegex(result.stderr, "fdupes alone knows .*/other")

    def test_no_tools(self):
        # Missing tools are named, and their rows say so.
        with tempfile.TemporaryDirectory() as folder:
            fake_scan(folder, b"echo one; echo two")
            result = run_compare(folder, folder)
            self.assertEqual(result.returncode, 0, result.stderr)
            for tool in tools.ALL:
                self.assertIn("%s is not installed" % tool, result.stdout)
            self.assertRegex(result.stdout, r"\| time against cmp +\| at most 0.36 +\| - .*not measured")


def fake_scan(folder, script):
    fake_tool(folder, "twinsift-scan", script)


def fake_tool(folder, name, script):
    path = os.path.join(folder, name)
    workloads.write(path, b"#!/bin/sh\n" + script + b"\n")
    os.chmod(path, 0o755)


def read_all(folder):
    contents = []
    for inside, _, names in os.walk(folder):
        for name in names:
            with open(os.path.join(inside, name), "rb") as file:
                contents.append(file.read())
    return sorted(contents)


def run_compare(folder, path, step="pair"):
    command = [sys.executable, "-B", os.path.join(SCRIPTS, "compare.py"), "--toy", "--only", step]
    return subprocess.run(
        [*command, "--build", folder, "--work", folder],
        env={**os.environ, "PATH": path},
        capture_output=True,
        text=True,
        check=False,
    )


if __name__ == "__main__":
    unittest.main()
