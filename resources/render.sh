#!/bin/sh
# SPDX-License-Identifier: MIT
# Renders svg/*.svg into content/*.png. Needs rsvg-convert and, for the logo, the font DejaVu Sans.
# The pictures are committed; run this after a change of a drawing and commit both.
set -eu
cd "$(dirname "$0")"

# render <name> <height in pixels> [suffix]; the width follows from the drawing.
render() {
    rsvg-convert --keep-aspect-ratio --height "$2" --output "content/$1${3-}.png" "svg/$1.svg"
}

# The logo is shown by its own size, so a screen of ratio 2 has a picture of its own.
render logo 120
render logo 240 @2x

# Each of the others at twice to four times the height at which it is shown.
for name in search-drive folder; do
    render "$name" 512
done
for name in arrow_prev arrow_next stop start; do
    render "$name" 192
done
render warning 256
for name in twitter facebook; do
    render "$name" 160
done
for name in actionCheck actionUncheck actionSave actionTrash; do
    render "$name" 96
done
