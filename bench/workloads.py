# SPDX-License-Identifier: MIT
"""The trees of files that the tools are measured on.

All but the trees that the machine has anyway are the same bytes everywhere. A maker returns what a
right answer on its tree is, so that no tool is timed that does something else.
"""

import os
import random
import shutil
import stat
from collections import Counter
from dataclasses import dataclass

MIB = 1024 * 1024


@dataclass(frozen=True)
class Sizes:
    """How large the workloads are: the real ones, and toys that only show that all of it runs."""

    real_files: int  # at most so many of each real tree; 0 for all
    pair_bytes: int
    copies: int
    copy_bytes: int
    bucket_files: int
    one_size_files: tuple
    class_files: int  # of a class of content, and of the empty files
    large_class_files: int  # of those that are read far or to their end
    large_class_bytes: int  # of each
    giant_bytes: int
    photo_bytes: int  # of all of them
    max_photo_bytes: int
    hash_files: int
    hash_bytes: int
    many_depth: int  # folders are the leaves of a tree of this depth with ten branches each
    window_depth: int  # of another such tree
    window_branches: int  # that the window scans of it


FULL = Sizes(
    real_files=0,
    pair_bytes=2048 * MIB,
    copies=300,
    copy_bytes=MIB,
    bucket_files=5000,
    one_size_files=(20000, 100000),
    class_files=100000,
    large_class_files=256,
    large_class_bytes=MIB,
    giant_bytes=2048 * MIB,
    photo_bytes=3072 * MIB,
    max_photo_bytes=8 * MIB,
    hash_files=1000,
    hash_bytes=4 * MIB,
    many_depth=4,
    window_depth=3,
    window_branches=6,
)
TOY = Sizes(
    real_files=150,
    pair_bytes=2 * MIB,
    copies=10,
    copy_bytes=4096,
    bucket_files=40,
    one_size_files=(70, 200),
    class_files=200,
    large_class_files=70,
    large_class_bytes=MIB // 4,
    giant_bytes=2 * MIB,
    photo_bytes=400 * 1024,
    max_photo_bytes=80 * 1024,
    hash_files=8,
    hash_bytes=65536,
    many_depth=1,
    window_depth=1,
    window_branches=6,
)

FILLER_BYTES = 4000
FILES_PER_FOLDER = 100
# One file in so many is the twin of the one before it.
TWIN_EVERY = 10


def write(path, *pieces):
    with open(path, "wb", buffering=0) as file:
        for piece in pieces:
            file.write(piece)


def link_or_copy(source, target):
    """A second name costs no disk, where the file system and the rights allow it."""
    try:
        os.link(source, target)
    except OSError:
        shutil.copyfile(source, target)


def take_real_tree(target, source, limit):
    """Takes the regular files that no name hides, each inode once; no links. Returns their number."""
    seen = set()
    count = 0
    root = os.fsencode(source)
    for folder, subfolders, names in os.walk(root):
        subfolders[:] = sorted(name for name in subfolders if not name.startswith(b"."))
        inside = os.path.join(os.fsencode(target), os.path.relpath(folder, root))
        os.makedirs(inside, exist_ok=True)
        for name in sorted(names):
            path = os.path.join(folder, name)
            status = os.lstat(path)
            inode = (status.st_dev, status.st_ino)
            if name.startswith(b".") or not stat.S_ISREG(status.st_mode) or inode in seen:
                continue
            seen.add(inode)
            link_or_copy(path, os.path.join(inside, name))
            count += 1
            if count == limit:
                return count
    return count


def make_pair(target, size):
    """Two equal files. Every block is another one, so that nothing can be guessed."""
    block = random.Random(2).randbytes(MIB)
    for name in ("a", "b"):
        with open(os.path.join(target, name), "wb", buffering=0) as file:
            for index in range(size // MIB):
                file.write(index.to_bytes(8, "little") + block[8:])
    return 2


def make_copies(target, count, size):
    content = random.Random(3).randbytes(size)
    for index in range(count):
        write(os.path.join(target, "copy%04d" % index), content)
    return count


def make_different(target, count):
    """Files of one size that differ from their first bytes on."""
    generator = random.Random(4)
    for index in range(count):
        write(os.path.join(target, "file%05d" % index), generator.randbytes(4096))
    return 0


def make_one_size(target, count, beginning):
    """Files of one size that differ from each other behind a common beginning. No right answer on
    them groups one."""
    generator = random.Random(7)
    start = generator.randbytes(beginning)
    rest = generator.randbytes(FILLER_BYTES)
    for index in range(count):
        write(os.path.join(target, "file%06d" % index), start, index.to_bytes(8, "little"), rest)
    return 0


def make_empty(target, count):
    for index in range(count):
        write(os.path.join(target, "file%05d" % index))
    return count


def make_large(target, count, size):
    content = random.Random(5).randbytes(size)
    for index in range(count):
        write(os.path.join(target, "file%05d" % index), index.to_bytes(8, "little"), content[8:])
    return 0


def make_photos(target, total, largest):
    """Pictures of a quarter of the largest size up to it, in folders of a hundred, that differ behind
    the header that a camera writes. Every fifth has a copy in a folder for copies, every twentieth the
    size of the one before it. Returns the number of the copied ones and their copies."""
    generator = random.Random(8)
    header = generator.randbytes(600)
    filler = generator.randbytes(largest)
    copies = os.path.join(target, "copies")
    os.makedirs(copies)
    count, copied, done, size = 0, 0, 0, 0
    while done < total:
        folder = os.path.join(target, "%03d" % (count // 100))
        os.makedirs(folder, exist_ok=True)
        if count % 20 != 19:
            size = generator.randrange(largest // 4, largest)
        path = os.path.join(folder, "IMG_%05d.jpg" % count)
        number = count.to_bytes(8, "little")
        write(path, header, number, filler[: size - len(header) - len(number)])
        done += size
        if count % 5 == 4:
            shutil.copyfile(path, os.path.join(copies, os.path.basename(path)))
            copied += 1
            done += size
        count += 1
    return 2 * copied


def make_empty_class(target, count):
    make_empty(target, count)
    return 1


def make_equal(target, count):
    """As the others below, returns the number of contents."""
    make_copies(target, count, 4096)
    return 1


def make_late_difference(target, count, size, common):
    """Files that differ in the bytes behind a common beginning, two at most."""
    content = random.Random(9).randbytes(size)
    for index in range(count):
        mark = index.to_bytes(2, "big")[2 - min(2, size - common) :]
        path = os.path.join(target, "file%06d" % index)
        write(path, content[:common], mark, content[common + len(mark) :])
    return count


def make_interleaved(target, count, size):
    """Two contents in turn, that differ in their last byte."""
    content = random.Random(10).randbytes(size - 1)
    for index in range(count):
        write(os.path.join(target, "file%06d" % index), content, b"ab"[index % 2 : index % 2 + 1])
    return 2


def make_giant_among_small(target, count, size):
    """Small files of one content, and in their middle a file that nothing equals."""
    make_copies(target, count, 4096)
    with open(os.path.join(target, "copy%04d-giant" % (count // 2)), "wb") as file:
        file.truncate(size)
    return 2


class ManyFiles:
    """Small files, a hundred a folder, in a tree of folders with ten branches at each fork.

    A branch is the same workload with a tenth of the files: branch(0) has them all, branch(1) a
    tenth and so on.
    """

    smallest = 32
    size_range = 4064

    def __init__(self, target, depth):
        self.target = target
        self.depth = depth
        self.filler = random.Random(6).randbytes(self.size_range + self.smallest)

    def files(self, level):
        return FILES_PER_FOLDER * 10 ** (self.depth - level)

    def branch(self, level):
        return os.path.join(self.target, *["0"] * level)

    def branches(self, level, count):
        """The first folders of that level within branch(level - 1)."""
        return [os.path.join(self.branch(level - 1), str(index)) for index in range(count)]

    def size_of(self, content):
        return self.smallest + (content * 2654435761 >> 7) % self.size_range

    def make(self):
        for leaf in range(10**self.depth):
            folder = os.path.join(self.target, *("%0*d" % (self.depth, leaf)))
            os.makedirs(folder)
            place = os.open(folder, os.O_RDONLY)
            for index in range(leaf * FILES_PER_FOLDER, (leaf + 1) * FILES_PER_FOLDER):
                self.make_file(place, index)
            os.close(place)

    def make_file(self, place, index):
        is_twin = index % TWIN_EVERY == TWIN_EVERY - 1
        content = index - 1 if is_twin else index
        name = "f%07d.%s" % (content, "bak" if is_twin else "txt")
        data = b"%016d" % content + self.filler[16 : self.size_of(content)]
        file = os.open(name, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o644, dir_fd=place)
        os.write(file, data)
        os.close(file)

    @staticmethod
    def twins(files):
        """Files with an equal one among the first so many."""
        return 2 * (files // TWIN_EVERY)

    def joined_twins(self, files):
        """The files of the joined groups: a size has one group, which takes both files of its first
        content and one more of each other."""
        contents = range(TWIN_EVERY - 2, files, TWIN_EVERY)
        contents_of_size = Counter(self.size_of(content) for content in contents)
        return sum(contents + 1 for contents in contents_of_size.values())
