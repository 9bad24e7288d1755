#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# analyse.sh BUILD_FOLDER: what the target static-analysis runs, from the root of the repository.
# Prints what is found and fails then. Needs bash 3.2, which macOS has.
set -eu -o pipefail

build=$1
rooms="app bench engine tests tools ui"
jobs=$(nproc 2>/dev/null || sysctl -n hw.ncpu)
found=no

# usable TOOL VERSION: whether the tool is here, and in counts, whether what it finds is a failure. The
# sources are kept clean for one version of each tool: another one has other checks.
usable() {
    local version
    if ! command -v "$1" >/dev/null; then
        printf 'SKIP %s: it is not installed\n' "$1"
        return 1
    fi
    version=$("$1" --version | sed -n 's/^[^0-9]*\([0-9][0-9.]*\).*/\1/p' | head -n 1)
    case $version in
    "$2" | "$2".*)
        counts=yes
        printf '%s %s\n' "$1" "$version"
        ;;
    *)
        counts=no
        printf 'SKIP %s: the sources are kept clean for %s, what %s finds does not count\n' \
            "$1" "$2" "$version"
        ;;
    esac
}

# sources NAME...: those in the rooms whose name is like one of the patterns, each ended by a zero.
sources() {
    local name tests=()
    for name; do
        tests+=(-o -name "$name")
    done
    # shellcheck disable=SC2086 # a list of names
    find $rooms -type f \( "${tests[@]:1}" \) -print0
}

# The rooms of the program that the build compiles here; an "autogen" is below the build folder.
compiled_sources() {
    sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$build/compile_commands.json" |
        grep -E "^$PWD/(app|engine|tools|ui)/.*[.]cpp\$" | sort -u | tr '\n' '\0'
}

# Each source's findings in one piece, without the count of those in the headers of others.
tidy() {
    local report
    report=$(clang-tidy -p "$1" --quiet "$2" 2>&1) && return
    printf '%s\n' "$report" | grep -vE '^[0-9]+ warnings?( and [0-9]+ errors?)? (generated|treated)'
    return 1
}
export -f tidy

# Another version lays out so many lines in its own way that it is not worth a look.
if usable clang-format 14 && [ "$counts" = yes ]; then
    sources '*.cpp' '*.h' '*.mm' | xargs -0 clang-format --dry-run --Werror || found=yes
fi
if usable cppcheck 2.10; then
    # With a definition given, only "force" makes it look at the branches of the others.
    sources '*.cpp' | xargs -0 cppcheck --quiet -j "$jobs" --std=c++17 --language=c++ --library=qt \
        --enable=warning,performance,portability --error-exitcode=1 --inline-suppr -I . --force \
        -DQT_WARNING_PUSH= -DQT_WARNING_POP= -DQT_WARNING_DISABLE_DEPRECATED= \
        --suppressions-list=cmake/cppcheck-suppressions.txt || [ "$counts" = no ] || found=yes
fi
if usable clang-tidy 14; then
    # shellcheck disable=SC2016 # expanded by the inner shell
    compiled_sources | xargs -0 -n 1 -P "$jobs" bash -c 'tidy "$0" "$1"' "$build" || [ "$counts" = no ] || found=yes
fi
[ "$found" = no ]
