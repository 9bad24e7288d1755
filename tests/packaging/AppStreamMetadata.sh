#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The metadata for software centres is valid and belongs to the desktop entry.
. "$(dirname "$0")/lib.sh"

need appstreamcli
metadata=$TWINSIFT_BUILD/packaging/example.twinsift.TwinSift.metainfo.xml
appstreamcli validate --no-net "$metadata"
entry=$(sed -n 's/.*<launchable type="desktop-id">\(.*\)<.*/\1/p' "$metadata")
[ -f "$TWINSIFT_SOURCE/packaging/linux/$entry" ] || fail "there is no desktop entry $entry"
summary=$(sed -n 's/^ *<summary>\(.*\)<.*/\1/p' "$metadata")
same "the comment of the entry" "$summary" \
    "$(sed -n 's/^Comment=//p' "$TWINSIFT_SOURCE/packaging/linux/$entry")"
