#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What the analysis looks with: the versions that the sources are kept clean for count, under their
# plain names or with the version in them; any other says that it does not count.
. "$(dirname "$0")/lib.sh"

# tool NAME VERSION [finds]: a tool of that version, which looks at what it is given.
tool() {
    {
        echo '#!/bin/sh'
        echo "case \$* in"
        echo "--version) echo \"$1 version $2\" ;;"
        case $1-$2 in
        cppcheck-2.1[1-9]*) echo "--help) echo '    --check-level=<level>' ;;" ;;
        *) echo "--help) ;;" ;;
        esac
        echo "*) echo \"$1 \$*\" >>\"\$FAKE/calls\"; echo '$1 $2 found it'; exit ${3:+1} ;;"
        echo "esac"
    } >"$FAKE/bin/$1"
    chmod +x "$FAKE/bin/$1"
}

# A tree with one source, and a build that compiles it.
sources() {
    machine Linux
    ln -s "$(type -P find)" "$FAKE/bin/find"
    mkdir -p "$FAKE/tree/build/dev"
    for room in app bench engine tests tools ui; do
        mkdir -p "$FAKE/tree/$room"
    done
    touch "$FAKE/tree/app/One.cpp" "$FAKE/tree/tests/Two.h"
    printf '[\n{\n  "file": "%s"\n}\n]\n' "$FAKE/tree/app/One.cpp" >"$FAKE/tree/build/dev/compile_commands.json"
}
analyse() { on_it cmake/analyse.sh build/dev; }
looked() { grep -qE -- "^$1" "$FAKE/calls" || fail "not looked: $1"; }

row "no tool at all"
sources
analyse
ended 0
for tool in clang-format clang-tidy cppcheck; do
    said_line "SKIP $tool: it is not installed"
done

row "the oldest that count"
sources
tool clang-format 14.0.6
tool clang-tidy 14.0.6
tool cppcheck 2.10
analyse
ended 0
never_said SKIP
looked "clang-format .*app/One.cpp"
looked "clang-format .*tests/Two.h"
looked "cppcheck .*app/One.cpp"
looked "clang-tidy -p build/dev --quiet $FAKE/tree/app/One.cpp"
never_called "cppcheck .*check-level"

row "the newest that count, with all branches looked at"
sources
tool clang-format 19.1.7
tool clang-tidy 19.1.7
tool cppcheck 2.17.1
analyse
ended 0
never_said SKIP
looked "cppcheck .*--check-level=exhaustive"

row "a version that only begins like one"
sources
tool clang-format 140.0
tool cppcheck 2.100
analyse
ended 0
said_line "SKIP clang-format: the sources are kept clean for 14 and 19, what 140.0 finds does not count"
said_line "SKIP cppcheck: the sources are kept clean for 2.10 and 2.17, what 2.100 finds does not count"
never_called clang-format

for finder in clang-format clang-tidy cppcheck; do
    row "what $finder finds is a failure"
    sources
    tool clang-format 19.1.7
    tool clang-tidy 19.1.7
    tool cppcheck 2.17.1
    case $finder in
    cppcheck) tool cppcheck 2.17.1 finds ;;
    *) tool $finder 19.1.7 finds ;;
    esac
    analyse
    ended_badly
    said_line "$finder $([ $finder = cppcheck ] && echo 2.17.1 || echo 19.1.7) found it"
done

row "what another version finds is told and is none"
sources
tool clang-format 18.1.3 finds
tool clang-tidy 18.1.3 finds
tool cppcheck 2.13.0 finds
analyse
ended 0
said_line "clang-tidy 18.1.3 found it"
said_line "cppcheck 2.13.0 found it"
never_called clang-format
said "SKIP clang-tidy: the sources are kept clean for 14 and 19, what 18.1.3 finds"

row "a version that counts stands beside another under its own name"
sources
tool clang-format 18.1.3
tool clang-format-19 19.1.7 finds
tool clang-tidy 18.1.3
tool clang-tidy-14 14.0.6 finds
analyse
ended_badly
looked "clang-format-19 "
looked "clang-tidy-14 "
never_called "clang-format |clang-tidy "
never_said "SKIP clang"

row "two versions that count both look at the layout"
sources
tool clang-format 14.0.6
tool clang-format-19 19.1.7 finds
tool clang-format-14 14.0.6
analyse
ended_badly
looked "clang-format "
looked "clang-format-19 "
never_called "clang-format-14"
