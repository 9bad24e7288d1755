#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The manual pages are set without a complaint and have the sections that readers look for.
. "$(dirname "$0")/lib.sh"

need groff
for page in twinsift.1 twinsift-scan.1; do
    source=$TWINSIFT_BUILD/packaging/$page
    complaints=$(groff -man -ww -Tutf8 -z "$source" 2>&1) || fail "$complaints"
    same "what groff says of $page" "" "$complaints"
    groff -man -Tascii -P-cbou "$source" >"$scratch/$page"
    for section in NAME SYNOPSIS DESCRIPTION OPTIONS 'SEE ALSO'; do
        grep -q "^$section" "$scratch/$page" || fail "$page has no section $section"
    done
    ! grep -n '@[A-Z_]*@' "$source" || fail "$page is not filled in"
done
grep -q '^EXIT STATUS' "$scratch/twinsift-scan.1" || fail "twinsift-scan.1 has no section EXIT STATUS"
