# SPDX-License-Identifier: MIT
"""The programs that are compared, as command lines, and the machine that they run on."""

import os
import platform
import shutil

FINDERS = ("fdupes", "jdupes", "rdfind")
# Finders that use several threads: columns of their own, no goal is set against them.
PARALLEL_FINDERS = ("rmlint",)
OTHERS = ("cmp", "md5sum", "sha1sum")
HELPERS = ("strace", "taskset")
ALL = FINDERS + PARALLEL_FINDERS + OTHERS + HELPERS


class Tools:
    """Ours from a build folder, the others from the path."""

    def __init__(self, build):
        self.build = os.path.abspath(build)
        self.paths = {name: shutil.which(name) for name in ALL}

    def missing(self):
        return [name for name, path in self.paths.items() if path is None]

    def scan(self, *arguments):
        return [os.path.join(self.build, "twinsift-scan"), *arguments]

    def helper(self, name, *arguments):
        return [os.path.join(self.build, "bench", "bench_" + name), *arguments]

    def finder(self, name, folder):
        """Each is told to take empty files and to be quiet; rdfind writes its list to a file."""
        options = {
            "fdupes": ["-q", "-r"],
            "jdupes": ["-q", "-z", "-r"],
            "rdfind": ["-ignoreempty", "false", "-outputname", os.devnull],
            "rmlint": ["-T", "duplicates", "-s", "0", "-o", "fdupes:stdout"],
        }
        return [self.paths[name], *options[name], folder]

    def finders(self, folder, names=FINDERS):
        return {name: self.finder(name, folder) for name in names if self.paths[name]}

    def parallel_finders(self, folder):
        return self.finders(folder, PARALLEL_FINDERS)

    def on_cores(self, count, command):
        """The command held to so many cores; None where that cannot be done."""
        if self.paths["taskset"] is None:
            return None
        cores = sorted(os.sched_getaffinity(0))
        if len(cores) < count:
            return None
        return [self.paths["taskset"], "-c", ",".join(map(str, cores[:count])), *command]

    def other(self, name, *arguments):
        """A command by its name, or nothing where the tool is missing."""
        return {name: [self.paths[name], *arguments]} if self.paths[name] else {}


def surroundings(home):
    """No screen, and a home that is empty each time."""
    os.makedirs(home, mode=0o700)
    names = ("PATH", "LD_LIBRARY_PATH", "LSAN_OPTIONS", "UBSAN_OPTIONS")
    keep = {name: os.environ[name] for name in names if name in os.environ}
    own = {"HOME": home, "XDG_RUNTIME_DIR": home, "LC_ALL": "C.UTF-8"}
    return {**keep, **own, "QT_QPA_PLATFORM": "offscreen"}


def machine(folder):
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 1024**3
    system = "%s %s" % (platform.system(), platform.release().split("-")[0])
    return "%d cores, %s, %.0f GiB of memory, %s, %s" % (
        os.cpu_count(), processor(), memory, system, file_system(folder)
    )


def processor():
    try:
        with open("/proc/cpuinfo", encoding="ascii", errors="replace") as file:
            for line in file:
                if line.startswith("model name"):
                    return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.machine()


def file_system(folder):
    """The type of the file system that holds the folder, as far as the system tells."""
    best = ("", "unknown")
    try:
        with open("/proc/mounts", encoding="utf-8", errors="replace") as file:
            for line in file:
                _, place, kind = line.split()[:3]
                inside = os.path.join(os.path.realpath(folder), "")
                if inside.startswith(os.path.join(place, "")) and len(place) >= len(best[0]):
                    best = (place, kind)
    except OSError:
        pass
    return best[1]
