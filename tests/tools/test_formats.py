# SPDX-License-Identifier: MIT
"""Tests of what twinsift-scan prints for programs: test_formats.py PROGRAM SCHEMA"""

import csv
import hashlib
import io
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
import urllib.parse
import zlib

PROGRAM, SCHEMA = sys.argv[1:3]
del sys.argv[1:3]

TYPES = {
    "object": lambda value: isinstance(value, dict),
    "array": lambda value: isinstance(value, list),
    "string": lambda value: isinstance(value, str),
    "boolean": lambda value: isinstance(value, bool),
    "integer": lambda value: isinstance(value, int) and not isinstance(value, bool),
    "null": lambda value: value is None,
}
# Words that demand nothing.
NOTES = {"$schema", "$defs", "title", "description"}


class Invalid(Exception):
    """The document breaks the schema."""


class Validator:
    """So much of JSON Schema as the schema uses; any other word of it is an error."""

    def __init__(self, schema):
        self.schema = schema

    def check(self, value, schema=None, place="document"):
        schema = self.schema if schema is None else schema
        if "$ref" in schema:
            target = self.schema
            for name in schema["$ref"].split("/")[1:]:
                target = target[name]
            self.check(value, target, place)
        for word, demand in schema.items():
            if word not in NOTES | {"$ref"}:
                check = getattr(self, "check_" + re.sub("[A-Z]", lambda c: "_" + c[0].lower(), word))
                check(value, demand, schema, place)

    def demand(self, is_met, place, text):
        if not is_met:
            raise Invalid("%s: %s" % (place, text))

    def check_type(self, value, names, _, place):
        names = [names] if isinstance(names, str) else names
        self.demand(any(TYPES[name](value) for name in names), place, "is no %s" % names)

    def check_const(self, value, wanted, _, place):
        self.demand(value == wanted, place, "is not %r" % wanted)

    def check_enum(self, value, wanted, _, place):
        self.demand(value in wanted, place, "is none of %r" % wanted)

    def check_required(self, value, names, _, place):
        for name in names if isinstance(value, dict) else ():
            self.demand(name in value, place, "has no %s" % name)

    def check_properties(self, value, schemas, _, place):
        for name, schema in schemas.items() if isinstance(value, dict) else ():
            if name in value:
                self.check(value[name], schema, place + "." + name)

    def check_additional_properties(self, value, allowed, schema, place):
        assert allowed is False
        if isinstance(value, dict):
            others = set(value) - set(schema["properties"])
            self.demand(not others, place, "has %s" % others)

    def check_items(self, value, schema, _, place):
        for index, item in enumerate(value if isinstance(value, list) else ()):
            self.check(item, schema, "%s[%d]" % (place, index))

    def check_min_items(self, value, count, _, place):
        self.demand(not isinstance(value, list) or len(value) >= count, place, "is too short")

    def check_minimum(self, value, least, _, place):
        self.demand(not TYPES["integer"](value) or value >= least, place, "is too small")

    def check_pattern(self, value, pattern, _, place):
        self.demand(not isinstance(value, str) or re.search(pattern, value), place, "is no " + pattern)

    def check_one_of(self, value, schemas, _, place):
        fitting = 0
        for schema in schemas:
            try:
                self.check(value, schema, place)
                fitting += 1
            except Invalid:
                pass
        self.demand(fitting == 1, place, "fits %d forms" % fitting)


def path_bytes(path):
    """As a reader of the document gets the bytes of a path."""
    if isinstance(path, str):
        return path.encode()
    return urllib.parse.unquote_to_bytes(path["percentEncoded"])


class Formats(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = os.fsencode(os.path.realpath(folder.name))
        with open(SCHEMA, encoding="utf-8") as file:
            self.schema = json.load(file)

    def file(self, name, content):
        path = os.path.join(self.root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def scan(self, *options, status=0):
        done = subprocess.run([PROGRAM, *options, self.root], capture_output=True, check=False)
        self.assertEqual(done.returncode, status, done.stderr)
        return done.stdout

    def document(self, *options, status=0):
        document = json.loads(self.scan("--json", *options, status=status))
        Validator(self.schema).check(document)
        return document

    def groups(self, document):
        return [[path_bytes(path) for path in group["paths"]] for group in document["groups"]]

    def strange_twins(self):
        """Pairs of files with names that break careless writers."""
        names = (b"plain", b'quo"te', b"new\nline", b"tab\t", b"back\\slash", b"com,ma", b"\x01\x7f",
                 "\u00e4\u20ac\U0001f600".encode(), "\ufeffmark".encode(), b" space ", b"\r")
        return [
            [self.file(b"left/" + name, b"%d" % i), self.file(b"right/" + name, b"%d" % i)]
            for i, name in enumerate(names)
        ]

    def test_json_groups(self):
        # Every path comes back byte for byte, with the size of its group.
        twins = self.strange_twins()
        document = self.document()
        self.assertCountEqual(self.groups(document), twins)
        self.assertEqual({group["size"] for group in document["groups"]}, {1, 2})
        self.assertEqual(document["counters"]["groups"], len(twins))
        self.assertEqual(document["counters"]["redundantFiles"], len(twins))
        self.assertEqual(document["counters"]["files"], 2 * len(twins))
        self.assertEqual(document["counters"]["freeableBytes"], sum(len(b"%d" % i) for i in range(11)))
        self.assertIs(document["stopped"], False)
        self.assertNotIn("checksum", document["groups"][0])

    def test_json_is_in_lines(self):
        # Each group is a line, so that a reader need not hold the whole document.
        self.strange_twins()
        lines = self.scan("--json").split(b"\n")
        groups = [line for line in lines if line.startswith(b'{"paths":')]
        self.assertEqual(len(groups), 11)
        for line in groups:
            json.loads(line.rstrip(b","))

    def test_json_checksums(self):
        # The checksum is that of the content.
        content = b"some content"
        self.file(b"a", content)
        self.file(b"b", content)
        wanted = {
            "md5": hashlib.md5(content).hexdigest(),
            "sha1": hashlib.sha1(content).hexdigest(),
            "crc": "%08x" % zlib.crc32(content),
        }
        for mode, checksum in wanted.items():
            document = self.document("--advanced", mode)
            self.assertEqual(document["options"]["compare"], mode)
            self.assertEqual([group["checksum"] for group in document["groups"]], [checksum])

    def test_json_options(self):
        # The document tells how it came about.
        options = self.document(
            "--same-name", "--same-extension", "--same-date", "--include=*;*.x", "--exclude=*.y",
            "--min-kb=0", "--max-kb=7", "--min-size=1", "--max-size=5K", "--hidden", "--no-links",
            "--one-file-system", "--sort=size", "--stop-after=9000",
        )["options"]
        self.assertEqual(
            options,
            {
                "folders": [os.fsdecode(self.root)], "compare": "bytes", "sameName": True,
                "sameExtension": True, "sameDate": True, "include": ["*", "*.x"], "exclude": ["*.y"],
                "minKilobytes": 0, "maxKilobytes": 7, "minBytes": 1, "maxBytes": 5120,
                "hidden": True, "followLinks": False, "oneFileSystem": True, "sort": "size",
                "stopAfter": 9000,
            },
        )

    def test_json_stopped(self):
        # A scan that was ended says so.
        self.file(b"a", b"")
        self.assertIs(self.document("--stop-after=1")["stopped"], True)

    def test_json_of_nothing(self):
        # Without a group the document is whole as well.
        document = self.document()
        self.assertEqual((document["groups"], document["skipped"]), ([], []))
        self.assertEqual(set(document["counters"].values()), {0})

    def test_json_skipped(self):
        # What is not text comes in bytes, with the reason.
        try:
            path = self.file(b"bad 100%\xff\xfe\n", b"x")
        except OSError:
            self.skipTest("this file system has no such names")
        document = self.document(status=1)
        self.assertEqual([path_bytes(each["path"]) for each in document["skipped"]], [path])
        self.assertEqual(document["skipped"][0]["reason"], "its name is no valid UTF-8")
        self.assertEqual(document["counters"]["skipped"], 1)

    def test_schema_refuses(self):
        # The schema is no empty promise: what breaks it is found.
        self.strange_twins()
        for damage in (
            lambda document: document.pop("version"),
            lambda document: document.update(more=1),
            lambda document: document.update(stopped="no"),
            lambda document: document["groups"][0]["paths"].pop(),
            lambda document: document["groups"][0]["paths"].append("relative"),
            lambda document: document["groups"][0]["paths"].append({"percentEncoded": "/%f"}),
            lambda document: document["groups"][0].update(size=-1),
            lambda document: document["groups"][0].update(checksum="ABCDEF01"),
            lambda document: document["options"].update(compare="md4"),
            lambda document: document["counters"].update(files=1.5),
        ):
            document = self.document()
            damage(document)
            with self.assertRaises(Invalid):
                Validator(self.schema).check(document)

    def test_csv(self):
        # A row a file: the number of its group, its size and its path, as any reader of CSV reads it.
        twins = self.strange_twins()
        output = self.scan("--csv")
        rows = list(csv.reader(io.StringIO(os.fsdecode(output), newline=""), strict=True))
        self.assertEqual(rows[0], ["group", "size", "path"])
        found = {}
        for number, size, path in rows[1:]:
            self.assertEqual(int(size), os.path.getsize(path))
            found.setdefault(int(number), []).append(os.fsencode(path))
        self.assertEqual(list(found), list(range(1, len(twins) + 1)))
        self.assertCountEqual(found.values(), twins)
        self.assertTrue(output.startswith(b"group,size,path\r\n1,"))
        self.assertTrue(output.endswith(b"\r\n"))

    def test_csv_of_nothing(self):
        # Without a group the names of the columns stand alone.
        self.assertEqual(self.scan("--csv"), b"group,size,path\r\n")


unittest.main()
