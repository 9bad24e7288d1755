#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# analyse.sh BUILD_FOLDER: what the target static-analysis runs, from the root of the repository.
# Prints what is found and fails then. Needs bash 3.2, which macOS has.
set -eu -o pipefail

build=$1
rooms="app bench engine tests tools ui"
jobs=$(nproc 2>/dev/null || sysctl -n hw.ncpu)
found=no

# The versions that the sources are kept clean for: another one has other checks.
layouts="14 19"
cppchecks="2.10 2.17"
tidies="14 19"

version_of() { "$1" --version | sed -n 's/^[^0-9]*\([0-9][0-9.]*\).*/\1/p' | head -n 1; }

# is_one_of VERSION VERSIONS: whether it is one of them, or a release of one.
is_one_of() {
    local each
    for each in $2; do
        case $1 in
        "$each" | "$each".*) return ;;
        esac
    done
    return 1
}

# usable TOOL VERSIONS: puts the program to look with into "program": the tool, or one that bears a
# wanted version in its name; and into "counts" whether what it finds is a failure. Fails where there
# is none.
usable() {
    local version
    counts=yes
    # shellcheck disable=SC2086 # a list of versions
    for program in "$1" $(printf "$1-%s " $2); do
        command -v "$program" >/dev/null || continue
        version=$(version_of "$program")
        if is_one_of "$version" "$2"; then
            printf '%s %s\n' "$1" "$version"
            return
        fi
    done
    counts=no
    program=$1
    if ! command -v "$1" >/dev/null; then
        printf 'SKIP %s: it is not installed\n' "$1"
        return 1
    fi
    printf 'SKIP %s: the sources are kept clean for %s, what %s finds does not count\n' \
        "$1" "$(printf '%s' "$2" | sed 's/ / and /g')" "$(version_of "$1")"
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
    report=$("$1" -p "$2" --quiet "$3" 2>&1) && return
    printf '%s\n' "$report" | grep -vE '^[0-9]+ warnings?( and [0-9]+ errors?)? (generated|treated)'
    return 1
}
export -f tidy

# Each version of those that is here, as they differ in rare places. Another one lays out so many lines
# in its own way that it is not worth a look.
format() { sources '*.cpp' '*.h' '*.mm' | xargs -0 "$1" --dry-run --Werror || found=yes; }
if usable clang-format "$layouts" && [ "$counts" = yes ]; then
    format "$program"
    looked=$(version_of "$program")
    for version in $layouts; do
        if ! is_one_of "$looked" "$version" && command -v "clang-format-$version" >/dev/null; then
            printf 'clang-format %s\n' "$(version_of "clang-format-$version")"
            format "clang-format-$version"
        fi
    done
fi
if usable cppcheck "$cppchecks"; then
    # Later versions leave out branches of long functions unless told otherwise.
    level=
    ! "$program" --help | grep -q -- --check-level= || level=--check-level=exhaustive
    # With a definition given, only "force" makes it look at the branches of the others.
    # shellcheck disable=SC2086 # one option or none
    sources '*.cpp' | xargs -0 "$program" --quiet -j "$jobs" --std=c++17 --language=c++ --library=qt \
        --enable=warning,performance,portability --error-exitcode=1 --inline-suppr -I . --force $level \
        -DQT_WARNING_PUSH= -DQT_WARNING_POP= -DQT_WARNING_DISABLE_DEPRECATED= \
        --suppressions-list=cmake/cppcheck-suppressions.txt || [ "$counts" = no ] || found=yes
fi
if usable clang-tidy "$tidies"; then
    # shellcheck disable=SC2016 # expanded by the inner shell
    compiled_sources | xargs -0 -n 1 -P "$jobs" bash -c 'tidy "$0" "$1" "$2"' "$program" "$build" ||
        [ "$counts" = no ] || found=yes
fi
[ "$found" = no ]
