#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The options that twinsift-scan takes are those of its manual page and of the completions.
. "$(dirname "$0")/lib.sh"

need_release_build
program=$TWINSIFT_RELEASE/twinsift-scan
[ -x "$program" ] || skip "$program is not built"
# The toolkit adds --help-all on its own, which shows its common options as well.
"$program" --help | grep -oE -- '--[a-z0-9-]+' | grep -vx -- --help-all | sort -u >"$scratch/help"
"$program" --help | grep -oE -- '^  -[a-z0-9],' | tr -d ' ,' | sort -u >"$scratch/letters"
sh "$TWINSIFT_SOURCE/tests/packaging/documented-options" -s >"$scratch/page"
same_lines "the manual page has other letters than --help" "$scratch/letters" "$scratch/page"
sh "$TWINSIFT_SOURCE/tests/packaging/documented-options" >"$scratch/page"
same_lines "the manual page has other options than --help" "$scratch/help" "$scratch/page"
