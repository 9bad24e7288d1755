# SPDX-License-Identifier: MIT
# What ./run and ./check share: steps with one line each, the packages, the builds.
# Sourced by them, from the root of the repository. Needs bash 3.2, which macOS has.
# shellcheck shell=bash

set -eu -o pipefail

# say TEXT: one line to the person who waits.
say() { printf '%s\n' "-- $1"; }

fail() {
    printf '%s\n' "$@" >&2
    exit 1
}

# After a run as root, or under sudo, the next one of a user would end in the middle of a build.
prepare_build_folder() {
    local folder
    mkdir -p build/log 2>/dev/null || true
    for folder in build build/*/; do
        [ -w "$folder" ] ||
            fail "$PWD/${folder%/} cannot be written: a run as root may have left it." \
                "Remove it, or give it to $(id -un)."
    done
}
prepare_build_folder

# step NAME TEXT COMMAND...: runs the command with its output in a log, and shows the log's end when
# the command fails.
step() {
    local log=build/log/$1.log text=$2
    shift 2
    say "$text"
    "$@" >"$log" 2>&1 </dev/null && return
    printf '%s\n' "-- failed; the end of $log:" >&2
    tail -n 60 "$log" >&2
    exit 1
}

# build_preset NAME: configures when it was not, and builds.
build_preset() {
    [ -f "build/$1/build.ninja" ] || step "configure-$1" "configure $1" cmake --preset "$1"
    step "build-$1" "build $1" cmake --build --preset "$1"
}

. cmake/packages.sh
