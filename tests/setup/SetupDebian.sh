#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What ./run and ./check install on Debian and its relatives, and which toolkit they build with.
. "$(dirname "$0")/lib.sh"

needed="g++ cmake ninja-build qtbase5-dev libxxhash-dev"
screen="xvfb xauth fonts-dejavu-core"

row "nothing is missing: nothing is asked, installed or looked up"
debian sudo
# shellcheck disable=SC2086 # lists of names
installed $needed
DISPLAY=:0 on_it ./run
ended 0
never_called 'apt-|sudo|brew'
called "cmake --preset release (no prefix)"
called "twinsift "

row "a second start does not configure again"
: >"$FAKE/calls"
DISPLAY=:0 on_it ./run /a/folder
ended 0
never_called 'cmake --preset'
called "twinsift /a/folder"

row "a bare machine, whose lists have never been fetched"
debian sudo
echo 0 >"$FAKE/uid"
printf '%s\n' $needed $screen qt6-base-dev >"$FAKE/offered-later"
DISPLAY=:0 on_it ./run
ended 0
said "installing $needed"
called "apt-get update (0, noninteractive)"
called "apt-get install -o DPkg::Lock::Timeout=300 -y --no-install-recommends $needed (0, noninteractive)"
never_called sudo
called "twinsift "

row "no screen: the tour, with an X server of its own, of a folder beside the caller"
debian xvfb-run
echo 0 >"$FAKE/uid"
offered $needed $screen
on_it ./run files
ended 0
called "apt-get install -o DPkg::Lock::Timeout=300 -y --no-install-recommends $needed $screen (0, noninteractive)"
called "twinsift-tour build/tour $FAKE/tree/files"

row "a system without Qt 5 gets Qt 6, known only after the update"
debian
echo 0 >"$FAKE/uid"
printf '%s\n' g++ cmake ninja-build qt6-base-dev libxxhash-dev >"$FAKE/offered-later"
DISPLAY=:0 on_it ./run
ended 0
called "apt-get install -o DPkg::Lock::Timeout=300 -y --no-install-recommends g++ cmake ninja-build qt6-base-dev libxxhash-dev (0, noninteractive)"
called "cmake --preset release-qt6 (no prefix)"
grep -q 'twinsift' "$FAKE/tree/build/release-qt6/twinsift" || fail "release-qt6 is not built"

row "a package that others only provide is none that is offered"
debian
echo 0 >"$FAKE/uid"
offered g++ cmake ninja-build qtbase5-dev:virtual qt6-base-dev libxxhash-dev
DISPLAY=:0 on_it ./run
ended 0
called "cmake --preset release-qt6 (no prefix)"

row "Qt 5 is taken where the system offers it, also beside an installed Qt 6"
debian
echo 0 >"$FAKE/uid"
installed g++ cmake ninja-build qt6-base-dev libxxhash-dev
offered qtbase5-dev
DISPLAY=:0 on_it ./run
ended 0
said_line "-- installing qtbase5-dev"
called "cmake --preset release (no prefix)"

row "both are installed: Qt 5"
debian
# shellcheck disable=SC2086
installed $needed qt6-base-dev
DISPLAY=:0 on_it ./run
ended 0
called "cmake --preset release (no prefix)"
never_called 'cmake --preset release-qt6'

row "who asks for Qt 6 gets it"
debian
# shellcheck disable=SC2086
installed $needed qt6-base-dev
DISPLAY=:0 TWINSIFT_QT=6 on_it ./run
ended 0
called "cmake --preset release-qt6 (no prefix)"
never_called 'cmake --preset release '

row "there is no Qt 7"
DISPLAY=:0 TWINSIFT_QT=7 on_it ./run
ended_badly
said "TWINSIFT_QT is '7'"

row "a package that was removed is missing"
debian
echo 0 >"$FAKE/uid"
installed g++:removed cmake ninja-build qtbase5-dev libxxhash-dev
offered g++
DISPLAY=:0 on_it ./run
ended 0
said_line "-- installing g++"

row "the lists cannot be fetched, and those that are here do"
debian
echo 0 >"$FAKE/uid"
touch "$FAKE/no-network"
# shellcheck disable=SC2086
offered $needed
DISPLAY=:0 on_it ./run
ended 0
called "twinsift "

row "what cannot be installed is named, with the line to type"
debian
echo 0 >"$FAKE/uid"
offered g++ cmake ninja-build qtbase5-dev
DISPLAY=:0 on_it ./run
ended_badly
said "E: Unable to locate package libxxhash-dev"
said_line "    apt-get install -y --no-install-recommends $needed"
never_called 'cmake|twinsift'

row "neither apt nor Homebrew, and the tools are here: said, and tried"
machine Linux cmake ninja
DISPLAY=:0 on_it ./run
ended 0
said "neither apt nor Homebrew here: not looked whether"
called "cmake --preset release (no prefix)"

row "neither apt nor Homebrew, and the tools are missing"
machine Linux
DISPLAY=:0 on_it ./run
ended_badly
said "cmake is missing"
said "g++ cmake ninja-build qtbase5-dev|qt6-base-dev libxxhash-dev"

row "./check with both toolkits: the second without what is looked at once"
debian
# shellcheck disable=SC2086
installed $needed $screen qt6-base-dev
on_it ./check
for call in "cmake --build --preset release" "cmake --build --preset dev" \
    "cmake --build --preset dev --target static-analysis" "cmake --build --preset dev-qt6"; do
    called "$call (no prefix)"
done
never_called 'cmake .*release-qt6'
called "ctest --preset dev"
called "ctest --preset dev-qt6 --label-exclude ^once\$"

row "./check with Qt 5 alone, where the rest of its packages is not offered: each is named"
never_called 'apt-get'
said_line "package clang-tidy: this system offers none"
debian
# shellcheck disable=SC2086
installed $needed $screen
on_it ./check
said_line "package qt6-base-dev: this system offers none"
called "ctest --preset dev"
never_called 'ctest --preset dev-qt6'

row "./check with Qt 6 alone: everything of it"
TWINSIFT_QT=6 on_it ./check
ended_badly
said_line "    apt-get install -y --no-install-recommends qt6-base-dev"
installed qt6-base-dev
TWINSIFT_QT=6 on_it ./check
called "cmake --build --preset release-qt6 (no prefix)"
called "cmake --build --preset dev-qt6 --target static-analysis (no prefix)"
called "ctest --preset dev-qt6"

row "./check installs what it can of what it wishes"
debian
echo 0 >"$FAKE/uid"
# shellcheck disable=SC2086
installed $needed $screen qt6-base-dev
offered valgrind libqt6svg6
on_it ./check
said_line "-- installing valgrind libqt6svg6"
called "apt-get install -o DPkg::Lock::Timeout=300 -y --no-install-recommends valgrind libqt6svg6 (0, noninteractive)"
said_line "package qt6-image-formats-plugins: this system offers none"
