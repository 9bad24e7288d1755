#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# One package is made of the release as it stands.
. "$(dirname "$0")/lib.sh"

need_release_build
cmake --build "$TWINSIFT_RELEASE" || fail "the release cannot be built"
# Without the last two the package would be made with no word on what it depends on.
need dpkg dpkg-deb dpkg-shlibdeps file
rm -rf "$TWINSIFT_PACKAGE"
# The strictest umask that a maker may have; PackageContents looks at the modes.
umask 077
cpack --config "$TWINSIFT_RELEASE/CPackConfig.cmake" -B "$TWINSIFT_PACKAGE" || fail "cpack"
same "the name of the package" \
    "twinsift_$(product version)-1_$(dpkg --print-architecture).deb" \
    "$(cd "$TWINSIFT_PACKAGE" && echo *.deb)"
