#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Each icon is a picture of the size that its folder tells, rendered from the drawing as it stands.
. "$(dirname "$0")/lib.sh"

need od sha256sum
cd "$TWINSIFT_SOURCE/packaging"
# number FILE OFFSET: four bytes, the highest first.
number() { echo $((0x$(od -An -v -tx1 -j "$2" -N 4 "$1" | tr -d ' '))); }

sizes=
for folder in linux/icons/*; do
    picture=$folder/twinsift.png
    same "the signature of $picture" 89504e470d0a1a0a "$(od -An -v -tx1 -N 8 "$picture" | tr -d ' ')"
    same "the size of $picture" "${folder##*/}" "$(number "$picture" 16)x$(number "$picture" 20)"
    sizes="$sizes ${folder##*/}"
done
same "the sizes" "16 22 24 32 48 64 128 256 512" \
    "$(printf '%s\n' $sizes | sed 's/x.*//' | sort -n | tr '\n' ' ' | sed 's/ $//')"
same "the sum of the drawing (packaging/render-icons.sh was not run)" "$(cat icons.sha256)" \
    "$(sha256sum ../resources/svg/search-drive.svg | cut -d ' ' -f 1)"
