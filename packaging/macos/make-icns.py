#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Packs pictures of one drawing into an .icns: make-icns.py FOLDER ICNS

FOLDER holds 16.png to 1024.png, each as wide and high in pixels as its name says, with 8 bits of
red, green, blue and alpha. The system takes whole PNG files for most sizes. At 16 and 32 pixels it
shows PNG data wrongly in a bundle, so these two are packed as planes of alpha, red, green and blue.
"""
import pathlib
import struct
import sys
import zlib

PLANES = [(b"ic04", 16), (b"ic05", 32)]
# A size stands twice where it also is another size on a screen of ratio 2.
PNG = [(b"ic11", 32), (b"ic12", 64), (b"ic07", 128), (b"ic13", 256), (b"ic08", 256),
       (b"ic14", 512), (b"ic09", 512), (b"ic10", 1024)]


def chunks(png):
    at = 8
    while at < len(png):
        length, kind = struct.unpack_from(">I4s", png, at)
        yield kind, png[at + 8:at + 8 + length]
        at += length + 12


def paeth(left, up, corner):
    estimate = left + up - corner
    return min((left, up, corner), key=lambda value: abs(estimate - value))


def pixels(png):
    """The red, green, blue and alpha bytes of a PNG, row after row."""
    parts = list(chunks(png))
    width, height, depth, colours, _, _, interlaced = struct.unpack(">IIBBBBB", parts[0][1])
    if (depth, colours, interlaced) != (8, 6, 0):
        sys.exit("make-icns: the picture is not plain 8-bit RGBA")
    data = zlib.decompress(b"".join(body for kind, body in parts if kind == b"IDAT"))
    stride = width * 4
    above = bytearray(stride)
    result = bytearray()
    for row in range(height):
        start = row * (stride + 1)
        how, line = data[start], bytearray(data[start + 1:start + 1 + stride])
        for i in range(stride):
            left, corner = (line[i - 4], above[i - 4]) if i >= 4 else (0, 0)
            guess = (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[how]
            line[i] = (line[i] + guess) & 255
        result += line
        above = line
    return bytes(result)


def packed(plane):
    """Run lengths: n < 128 is followed by n + 1 bytes, n >= 128 by one byte that stands n - 125 times."""
    result = bytearray()
    literal = bytearray()

    def flush():
        for start in range(0, len(literal), 128):
            piece = literal[start:start + 128]
            result.append(len(piece) - 1)
            result.extend(piece)
        literal.clear()

    at = 0
    while at < len(plane):
        run = 1
        while run < 130 and at + run < len(plane) and plane[at + run] == plane[at]:
            run += 1
        if run >= 3:
            flush()
            result += bytes((run + 125, plane[at]))
        else:
            literal += plane[at:at + run]
        at += run
    flush()
    return bytes(result)


def planes(png):
    rgba = pixels(png)
    return b"ARGB" + b"".join(packed(rgba[channel::4]) for channel in (3, 0, 1, 2))


def main(folder, target):
    def picture(size):
        return pathlib.Path(folder, f"{size}.png").read_bytes()

    entries = [(kind, planes(picture(size))) for kind, size in PLANES]
    entries += [(kind, picture(size)) for kind, size in PNG]
    body = b"".join(kind + struct.pack(">I", len(data) + 8) + data for kind, data in entries)
    pathlib.Path(target).write_bytes(b"icns" + struct.pack(">I", len(body) + 8) + body)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
