# SPDX-License-Identifier: MIT
# What the tests of ./run and ./check share; sourced by each, with TWINSIFT_SOURCE in the environment.
# "machine" makes a fresh one: a copy of the commands, and a PATH of nothing but the programs of the
# folder "fake", which pretend and write down how they were called, and a few of the system's.
# shellcheck shell=bash
set -eu -o pipefail
export LC_ALL=C.UTF-8
unset DEBIAN_FRONTEND DISPLAY WAYLAND_DISPLAY TWINSIFT_QT

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# Read by the programs that pretend.
export FAKE

# Indented, so that whoever reads the outcome of a test does not take it for one.
fail() {
    printf 'FAILED: %s\n' "$1"
    [ ! -f "$FAKE/said" ] || sed 's/^/    | /' "$FAKE/said"
    [ ! -f "$FAKE/calls" ] || sed 's/^/    > /' "$FAKE/calls"
    exit 1
}

# row TEXT: what the next lines try, shown when they fail.
row() { printf '%s\n' "row: $1"; }

real="awk basename bash cat chmod cp cut date dirname env grep head ls mkdir mktemp mv nproc printf readlink rm
    sed seq sh sleep sort tail tee touch tr true wc xargs"

# machine SYSTEM PROGRAM...: a machine of that system with these of the programs that pretend.
machine() {
    local program path
    FAKE=$scratch/machine
    rm -rf "$FAKE"
    mkdir -p "$FAKE/bin" "$FAKE/tree/tests/support"
    cp -R "$TWINSIFT_SOURCE/run" "$TWINSIFT_SOURCE/check" "$TWINSIFT_SOURCE/cmake" "$FAKE/tree/"
    cp "$TWINSIFT_SOURCE/tests/support/with-screen" "$FAKE/tree/tests/support/"
    for program in $real; do
        path=$(type -P "$program") || path=
        [ -z "$path" ] || ln -s "$path" "$FAKE/bin/$program"
    done
    echo "$1" >"$FAKE/system"
    shift
    for program in uname id "$@"; do
        cp "$TWINSIFT_SOURCE/tests/setup/fake/$program" "$FAKE/bin/"
    done
    : >"$FAKE/calls"
    : >"$FAKE/installed"
    : >"$FAKE/offered"
    echo 1000 >"$FAKE/uid"
}

debian() { machine Linux apt-cache apt-get cmake ctest dpkg-query ninja Xvfb xauth "$@"; }

# These hold one name in a line.
installed() { printf '%s\n' "$@" >>"$FAKE/installed"; }
offered() { printf '%s\n' "$@" >>"$FAKE/offered"; }

# A session of its own has no terminal.
setsid=$(command -v setsid) || {
    echo "SKIPPED: setsid is not installed, without which there may be a terminal"
    exit 77
}

# on_it COMMAND...: runs it there, without a terminal; "status" and the file "said" tell of it.
on_it() {
    status=0
    (cd "$FAKE/tree" && PATH=$FAKE/bin exec "$setsid" --wait "$@") >"$FAKE/said" 2>&1 </dev/null ||
        status=$?
}

said() { grep -qF -- "$1" "$FAKE/said" || fail "it does not say: $1"; }
said_line() { grep -qxF -- "$1" "$FAKE/said" || fail "it does not say the line: $1"; }
never_said() { ! grep -qF -- "$1" "$FAKE/said" || fail "it says: $1"; }
called() { grep -qxF -- "$1" "$FAKE/calls" || fail "not called: $1"; }
never_called() { ! grep -qE -- "^($1)" "$FAKE/calls" || fail "called: $1"; }
ended() { [ "$status" = "$1" ] || fail "the status is $status instead of $1"; }
ended_badly() { [ "$status" != 0 ] || fail "the status is 0"; }
