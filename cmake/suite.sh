# SPDX-License-Identifier: MIT
# How ./check runs the tests of a preset, and what it says of them at its end.
# Sourced by it, after setup.sh. Needs bash 3.2, which macOS has.
# shellcheck shell=bash disable=SC2034 # it reads the variables

suites=
all_passed=yes

# test_suite PRESET [ARGUMENT OF CTEST...]: runs the tests. Two run beside each other, some in a real
# window: what fails is run once more, alone, and passes then or fails, both of which are told.
test_suite() {
    local preset=$1 log=build/log/test-$1 details=build/$1/Testing/Temporary/LastTest.log passed=yes
    shift
    suites="$suites $preset"
    rm -f "$log.log" "$log-details.log" "$log-again.log" "$log-again-details.log"
    say "test $preset"
    ctest --preset "$preset" "$@" 2>&1 | tee "$log.log" || passed=no
    cp "$details" "$log-details.log" || true
    if [ "$passed" = no ]; then
        say "once more, alone, what failed"
        passed=yes
        ctest --preset "$preset" --rerun-failed -j 1 2>&1 | tee "$log-again.log" || passed=no
        cp "$details" "$log-again-details.log" || true
    fi
    [ "$passed" = yes ] && [ -z "$(became failed "$preset")" ] || all_passed=no
}

# outcomes LOG: "NAME passed|skipped|failed" of each test that the output of ctest tells of.
outcomes() {
    [ ! -f "$1" ] || awk '
        /^ *[0-9]+\/[0-9]+ Test +#[0-9]+: / {
            name = $0
            sub(/^[^:]*: /, "", name)
            sub(/[ .].*/, "", name)
            if (/\*\*\*(Skipped|Not Run \(Disabled\))/) print name, "skipped"
            else if (/   Passed +[0-9.]+ sec/) print name, "passed"
            else print name, "failed"
        }' "$1"
}

# skips LOG...: "NAME: why" for what tests have skipped, whole or in part, by the detailed logs. Each
# kind of test has its own way to say so.
skips() {
    cat "$@" 2>/dev/null | awk '
        /^[0-9]+\/[0-9]+ Testing: / { name = $3 }
        /^(SKIP|SKIPPED|skipped) *: / {
            why = $0
            sub(/^[^:]*: /, "", why)
            print name ": " why
        }
        /^OK \(.*skipped=/ { print name ": of its parts, " $0 }' | sort -u
}

# fates PRESET: "NAME fate" of each test of the suite. What failed at first and did not pass alone has
# failed, and what did pass alone has a fate of its own.
fates() {
    { outcomes "build/log/test-$1.log" && echo && outcomes "build/log/test-$1-again.log"; } | awk '
        NF == 0 { again = 1; next }
        !again { names[++count] = $1; fate[$1] = $2; next }
        fate[$1] == "failed" && $2 == "passed" { fate[$1] = "alone" }
        fate[$1] == "passed" && $2 == "failed" { fate[$1] = "failed" }
        END { for (i = 1; i <= count; ++i) print names[i], fate[names[i]] }'
}

# became FATE PRESET: the tests that had it, each with a space before it.
became() { fates "$2" | awk -v fate="$1" '$2 == fate { printf " %s", $1 }'; }

# suite_skips PRESET: what the suite has not looked at, also in a first run that was repeated in part.
suite_skips() {
    local log=build/log/test-$1 told name
    told=$(skips "$log-details.log" "$log-again-details.log")
    [ -z "$told" ] || printf '%s\n' "$told"
    for name in $(became skipped "$1"); do
        case $'\n'$told in
        *$'\n'"$name: "*) ;;
        *) printf '%s\n' "$name: it gives no reason" ;;
        esac
    done
}

# suite_summary PRESET: what became of all tests, whose last line is as ctest's.
suite_summary() {
    local alone failed
    alone=$(became alone "$1")
    failed=$(became failed "$1")
    [ -z "$alone" ] || say "failed at first and passed alone, a defect as well:$alone"
    [ -z "$failed" ] || say "failed:$failed"
    fates "$1" | awk -v preset="$1" '
        { ++count[$2] }
        END {
            percent = NR ? int((NR - count["failed"]) * 100 / NR) : 0
            printf "%d%% tests passed, %d tests failed out of %d (%s, %d skipped)\n",
                percent, count["failed"], NR, preset, count["skipped"]
        }'
}
