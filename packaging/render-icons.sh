#!/bin/sh
# SPDX-License-Identifier: MIT
# Renders the program's icon for the systems that install it: the hicolor theme and the macOS bundle.
# Needs rsvg-convert and python3. What it writes is committed; run this after a change of the drawing.
set -eu
cd "$(dirname "$0")"
drawing=../resources/svg/search-drive.svg

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# render <pixels> <file>
render() {
    rsvg-convert --width "$1" --height "$1" --output "$2" "$drawing"
}

for size in 16 22 24 32 48 64 128 256 512; do
    mkdir -p "linux/icons/${size}x${size}"
    render "$size" "linux/icons/${size}x${size}/twinsift.png"
done
for size in 16 32 64 128 256 512 1024; do
    render "$size" "$scratch/$size.png"
done
python3 macos/make-icns.py "$scratch" macos/TwinSift.icns

# Tells the test that the icons are those of the drawing as it stands.
sha256sum "$drawing" | cut -d ' ' -f 1 >icons.sha256
