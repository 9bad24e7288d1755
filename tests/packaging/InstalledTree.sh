#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# cmake --install puts the files where the desktop looks for them, and the bundle has its layout.
. "$(dirname "$0")/lib.sh"

[ "$(uname)" = Linux ] || skip "the lists of files are those of Linux"
need_release_build
[ -x "$TWINSIFT_RELEASE/twinsift" ] || skip "the release is not built"
lists=$TWINSIFT_SOURCE/tests/packaging

cmake --install "$TWINSIFT_RELEASE" --prefix "$scratch/tree" >"$scratch/log" </dev/null
(cd "$scratch/tree" && find . -type f | sed 's/^\.\///' | sort) >"$scratch/files"
sort "$lists/installed-files.txt" >"$scratch/expected"
same_lines "other files are installed" "$scratch/expected" "$scratch/files"
for document in "$scratch"/tree/share/man/man1/*.gz; do
    gzip -t "$document" || fail "$document is no gzip file"
done

cmake --install "$TWINSIFT_RELEASE" --component bundle --prefix "$scratch/mac" >"$scratch/log" </dev/null
(cd "$scratch/mac" && find . -type f | sed 's/^\.\///' | sort) >"$scratch/files"
sort "$lists/bundle-files.txt" >"$scratch/expected"
same_lines "the bundle holds other files" "$scratch/expected" "$scratch/files"

# An installed program runs from there, without its build folder.
HOME=$scratch QT_QPA_PLATFORM=offscreen "$scratch/tree/bin/twinsift-scan" --version >"$scratch/version"
grep -qF "$(product version)" "$scratch/version" || fail "$(cat "$scratch/version")"
