#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What ./check says at its end: the outcome of the whole suite, each test by its last run, and
# everything that was skipped in any run. The tests are run by the real ctest.
. "$(dirname "$0")/lib.sh"

suite_machine() {
    debian
    rm "$FAKE/bin/ctest"
    ln -s "$TWINSIFT_CTEST" "$FAKE/bin/ctest"
    cat >"$FAKE/tree/CMakePresets.json" <<'END'
{
    "version": 3,
    "configurePresets": [
        { "name": "dev", "generator": "Ninja", "binaryDir": "${sourceDir}/build/${presetName}" },
        { "name": "dev-qt6", "inherits": "dev" }
    ],
    "testPresets": [
        {
            "name": "dev",
            "configurePreset": "dev",
            "output": { "outputOnFailure": true },
            "execution": { "noTestsAction": "error" }
        },
        { "name": "dev-qt6", "configurePreset": "dev-qt6", "inherits": "dev" }
    ]
}
END
    installed g++ cmake ninja-build qtbase5-dev libxxhash-dev xvfb xauth fonts-dejavu-core "$@"
}

# tests PRESET: makes the tests of a preset of the lines of its input, "NAME COMMAND...". Ending with 77
# is a skip.
tests() {
    local name command
    mkdir -p "$FAKE/tree/build/$1/Testing/Temporary"
    touch "$FAKE/tree/build/$1/build.ninja"
    while read -r name command; do
        printf 'add_test(%s sh -c [==[%s]==])\n' "$name" "$command"
        printf 'set_tests_properties(%s PROPERTIES SKIP_RETURN_CODE 77)\n' "$name"
    done >"$FAKE/tree/build/$1/CTestTestfile.cmake"
}
last() { tail -n "$1" "$FAKE/said" | head -n 1; }
same() { [ "$1" = "$2" ] || fail "'$2' instead of '$1'"; }

row "all pass"
suite_machine
tests dev <<'END'
One true
Two echo SKIPPED is a word in what it says; echo '1/1 Test #1: Else ***Failed'
END
on_it ./check
ended 0
same "100% tests passed, 0 tests failed out of 2 (dev, 0 skipped)" "$(last 1)"
never_said "once more, alone"
never_said "Two: "

row "one fails at first and passes alone; another skips in part, in the first run only"
suite_machine
tests dev <<END
One true
Flaky [ -e $FAKE/mark ] || { touch $FAKE/mark; false; }
Part echo 'SKIP   : tst_Part::volumes() only the super-user can mount a volume'
Whole echo 'SKIPPED: zsh is not installed'; exit 77
Python echo 'skipped: python3 is not installed'; exit 77
Silent exit 77
Screen echo 'SKIP: Xvfb is not installed'; exit 77
Unit echo 'OK (skipped=2)'
END
on_it ./check
ended 0
same "100% tests passed, 0 tests failed out of 8 (dev, 4 skipped)" "$(last 1)"
said_line "-- failed at first and passed alone, a defect as well: Flaky"
said_line "dev: Part: tst_Part::volumes() only the super-user can mount a volume"
said_line "dev: Whole: zsh is not installed"
said_line "dev: Python: python3 is not installed"
said_line "dev: Silent: it gives no reason"
said_line "dev: Screen: Xvfb is not installed"
said_line "dev: Unit: of its parts, OK (skipped=2)"
never_said "-- failed:"

row "one fails twice, one dies, one is missing"
suite_machine
tests dev <<'END'
One true
Broken echo '    | 1/1 Test #1: Else ....   Passed    0.01 sec'; false
Dies kill -SEGV $$
Three true
END
echo 'add_test(Missing /no/such/program)' >>"$FAKE/tree/build/dev/CTestTestfile.cmake"
on_it ./check
ended 1
same "40% tests passed, 3 tests failed out of 5 (dev, 0 skipped)" "$(last 1)"
said_line "-- failed: Broken Dies Missing"
never_said "passed alone"

row "almost all is not all"
suite_machine
{ seq -f 'Test%g true' 1 300 && echo "Broken false"; } | tests dev
on_it ./check
ended 1
same "99% tests passed, 1 tests failed out of 301 (dev, 0 skipped)" "$(last 1)"

row "who fails and skips itself alone has failed"
suite_machine
tests dev <<END
One true
Shy [ ! -e $FAKE/mark ] && touch $FAKE/mark && exit 1; echo 'SKIPPED: not again'; exit 77
END
on_it ./check
said_line "dev: Shy: not again"
said_line "-- failed: Shy"
ended 1
same "50% tests passed, 1 tests failed out of 2 (dev, 0 skipped)" "$(last 1)"

row "no test at all is no success"
suite_machine
tests dev </dev/null
on_it ./check
ended 1
same "0% tests passed, 0 tests failed out of 0 (dev, 0 skipped)" "$(last 1)"

row "two toolkits: each suite has its own outcome, and the second leaves out what is labelled so"
suite_machine qt6-base-dev
tests dev <<'END'
One true
Package echo 'SKIPPED: lintian is not installed'; exit 77
END
tests dev-qt6 <<'END'
One echo 'SKIP   : tst_One::row() not with this one'
Broken false
Package true
END
echo 'set_tests_properties(Package PROPERTIES LABELS once)' \
    >>"$FAKE/tree/build/dev-qt6/CTestTestfile.cmake"
on_it ./check
ended 1
same "100% tests passed, 0 tests failed out of 2 (dev, 1 skipped)" "$(last 3)"
same "-- failed: Broken" "$(last 2)"
same "50% tests passed, 1 tests failed out of 2 (dev-qt6, 0 skipped)" "$(last 1)"
said_line "dev: Package: lintian is not installed"
said_line "dev-qt6: One: tst_One::row() not with this one"

row "what failed once is mended, and no older log is looked at"
tests dev-qt6 <<'END'
One true
Broken true
END
on_it ./check
ended 0
same "100% tests passed, 0 tests failed out of 2 (dev-qt6, 0 skipped)" "$(last 1)"
never_said "-- failed"

row "what the analysis finds, and what it could not look at"
suite_machine
echo "One true" | tests dev
printf '%s\n' "SKIP clang-tidy: it is not installed" >"$FAKE/analysis"
on_it ./check
ended 1
said_line "analysis: clang-tidy: it is not installed"
said "the analysis found something"
same "100% tests passed, 0 tests failed out of 1 (dev, 0 skipped)" "$(last 1)"
