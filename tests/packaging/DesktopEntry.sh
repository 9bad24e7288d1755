#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The desktop entry is valid, starts the program and shows the installed icon.
. "$(dirname "$0")/lib.sh"

need desktop-file-validate
entry=$TWINSIFT_SOURCE/packaging/linux/twinsift.desktop
key() { sed -n "s/^$1=//p" "$entry"; }

complaints=$(desktop-file-validate "$entry" 2>&1) || fail "$complaints"
same "what desktop-file-validate says" "" "$complaints"
same Exec twinsift "$(key Exec)"
grep -qx "bin/$(key Exec)" "$TWINSIFT_SOURCE/tests/packaging/installed-files.txt" ||
    fail "no program $(key Exec) is installed"
grep -qx "share/icons/hicolor/scalable/apps/$(key Icon).svg" \
    "$TWINSIFT_SOURCE/tests/packaging/installed-files.txt" || fail "no icon $(key Icon) is installed"
