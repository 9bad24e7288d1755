# SPDX-License-Identifier: MIT
# What the tests of the packages share; sourced by each. TWINSIFT_SOURCE, TWINSIFT_BUILD (where the
# test was configured), TWINSIFT_RELEASE (the build that is packaged) and TWINSIFT_PACKAGE (the folder
# of the package) come from CMakeLists.txt.
set -eu -o pipefail
export LC_ALL=C.UTF-8

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    printf 'FAILED: %s\n' "$1"
    exit 1
}

skip() {
    printf 'SKIPPED: %s\n' "$1"
    exit 77
}

# need TOOL...
need() {
    local tool
    for tool; do
        command -v "$tool" >/dev/null || skip "$tool is not installed"
    done
}

# same TEXT EXPECTED ACTUAL
same() {
    [ "$2" = "$3" ] || fail "$1 is '$3' instead of '$2'"
}

# same_lines TEXT EXPECTED-FILE ACTUAL-FILE
same_lines() {
    diff -u "$2" "$3" || fail "$1"
}

product() {
    sed -n "s/.*char $1\[\] = \"\(.*\)\".*/\1/p" "$TWINSIFT_SOURCE/app/Product.h"
}

need_release_build() {
    [ -f "$TWINSIFT_RELEASE/CMakeCache.txt" ] || skip "$TWINSIFT_RELEASE is not configured"
}

# the_package: the path of the package that PackageBuild made.
the_package() {
    local found
    found=$(find "$TWINSIFT_PACKAGE" -maxdepth 1 -name '*.deb' 2>/dev/null || true)
    [ -n "$found" ] || skip "PackageBuild made no package"
    printf '%s\n' "$found"
}
