#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The bundle's Info.plist is well formed and complete, and its icon holds our pictures in each size.
. "$(dirname "$0")/lib.sh"

need python3
python3 "$TWINSIFT_SOURCE/tests/packaging/mac_bundle.py" "$TWINSIFT_BUILD/packaging/Info.plist" \
    "$TWINSIFT_SOURCE/packaging" "$(product version)" "$(product build)"
