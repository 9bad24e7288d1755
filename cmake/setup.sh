# SPDX-License-Identifier: MIT
# What ./run and ./check share: steps with one line each, and the packages of a fresh machine.
# Sourced by them, from the root of the repository. Needs bash 3.2, which macOS has.

set -eu -o pipefail

mkdir -p build/log

# say TEXT: one line to the person who waits.
say() { printf '%s\n' "-- $1"; }

fail() {
    printf '%s\n' "$1" >&2
    exit 1
}

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

# as_root COMMAND...: as root, or with sudo where it asks for no password.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo -n "$@"
    else
        return 1
    fi
}

missing_debian_packages() {
    local name
    for name; do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q ' installed$' || printf '%s ' "$name"
    done
}

install_debian_packages() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get update &&
        as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
}

# need_packages "DEBIAN NAMES" "HOMEBREW NAMES": installs those that are missing.
need_packages() {
    local missing
    if command -v dpkg-query >/dev/null; then
        # shellcheck disable=SC2086 # a list of names
        missing=$(missing_debian_packages $1)
        [ -n "$missing" ] || return 0
        say "installing $missing"
        # shellcheck disable=SC2086
        install_debian_packages $missing >build/log/packages.log 2>&1 </dev/null && return
        tail -n 20 build/log/packages.log >&2
        fail "These packages are missing and could not be installed: $missing"
    elif command -v brew >/dev/null; then
        # shellcheck disable=SC2086
        step packages "packages: $2" brew install --quiet $2
        PATH="$(brew --prefix qt@5)/bin:$PATH"
        CMAKE_PREFIX_PATH="$(brew --prefix qt@5)"
        export PATH CMAKE_PREFIX_PATH
    else
        fail "Neither apt nor Homebrew is here. Install by hand what this stands for: $1"
    fi
}

# build_preset NAME: configures when it was not, and builds.
build_preset() {
    [ -f "build/$1/build.ninja" ] || step "configure-$1" "configure $1" cmake --preset "$1"
    step "build-$1" "build $1" cmake --build --preset "$1"
}
