#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""mac_bundle.py PLIST PACKAGING VERSION BUILD: see MacBundle.sh."""
import pathlib
import plistlib
import struct
import sys

PNG = {b"ic11": 32, b"ic12": 64, b"ic07": 128, b"ic13": 256, b"ic08": 256, b"ic14": 512,
       b"ic09": 512, b"ic10": 1024}
PLANES = {b"ic04": 16, b"ic05": 32}
USAGES = ["Desktop", "Documents", "Downloads"]


def check(what, expected, actual):
    if expected != actual:
        sys.exit(f"FAILED: {what} is {actual!r} instead of {expected!r}")


def check_plist(path, packaging, version, build):
    keys = plistlib.loads(pathlib.Path(path).read_bytes())
    for key, value in {
            "CFBundleInfoDictionaryVersion": "6.0", "CFBundlePackageType": "APPL",
            "CFBundleIdentifier": "example.twinsift.TwinSift", "CFBundleExecutable": "twinsift",
            "CFBundleName": "twinsift", "CFBundleDisplayName": "TwinSift",
            "CFBundleShortVersionString": version, "CFBundleVersion": build,
            "NSPrincipalClass": "NSApplication", "NSHighResolutionCapable": True}.items():
        check(key, value, keys.get(key))
    folders = [f"NS{folder}FolderUsageDescription" for folder in USAGES]
    for key in folders + ["NSRemovableVolumesUsageDescription", "NSNetworkVolumesUsageDescription"]:
        check(f"{key}, begun with the name", True, keys.get(key, "").startswith("TwinSift "))
    check("the icon's file", True, (packaging / "macos" / keys["CFBundleIconFile"]).is_file())
    check("a place left to fill in", False, "@" in pathlib.Path(path).read_text(encoding="utf-8"))
    check("PkgInfo", b"APPL????", (packaging / "macos" / "PkgInfo").read_bytes())


def entries(icns):
    check("the mark of the icon's file", b"icns", icns[:4])
    check("the length in the icon's file", len(icns), struct.unpack_from(">I", icns, 4)[0])
    at = 8
    while at < len(icns):
        kind, length = struct.unpack_from(">4sI", icns, at)
        yield kind, icns[at + 8:at + length]
        at += length


def unpacked(data):
    """The bytes of run lengths: up to 127 for bytes as they are, more for one that is repeated."""
    result = bytearray()
    at = 0
    while at < len(data):
        count = data[at]
        if count < 128:
            result += data[at + 1:at + 2 + count]
            at += count + 2
        else:
            result += data[at + 1:at + 2] * (count - 125)
            at += 2
    return bytes(result)


def check_icon(packaging):
    found = dict(entries((packaging / "macos" / "TwinSift.icns").read_bytes()))
    check("the icon's pictures", sorted([*PNG, *PLANES]), sorted(found))
    for kind, size in PNG.items():
        check(f"the signature of {kind}", b"\x89PNG\r\n\x1a\n", found[kind][:8])
        check(f"the size of {kind}", (size, size), struct.unpack_from(">II", found[kind], 16))
        installed = packaging / "linux" / "icons" / f"{size}x{size}" / "twinsift.png"
        if size != 1024:
            check(f"{kind} as it is installed on Linux", True, found[kind] == installed.read_bytes())
    for kind, size in PLANES.items():
        check(f"the mark of {kind}", b"ARGB", found[kind][:4])
        planes = unpacked(found[kind][4:])
        check(f"the bytes of {kind}", 4 * size * size, len(planes))
        # Alpha, red, green, blue: a corner is clear, and the drive in the middle of the low half
        # is opaque and bluer than red.
        at = size * (size * 3 // 4) + size // 4
        alpha, red, _, blue = (planes[plane * size * size + at] for plane in range(4))
        check(f"the corner of {kind}", 0, planes[0])
        check(f"the drive of {kind}, opaque and blue", (255, True), (alpha, blue > red))


def main(plist, packaging, version, build):
    check_plist(plist, pathlib.Path(packaging), version, build)
    check_icon(pathlib.Path(packaging))


main(*sys.argv[1:])
