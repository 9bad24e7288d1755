#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A Mac: what ./run and ./check take from Homebrew, and what they say there.
. "$(dirname "$0")/lib.sh"

needed="cmake ninja qt xxhash"
mac() { machine Darwin cmake ctest ninja "$@"; }

row "nothing is missing: looked, and nothing installed; the window, also without an X server"
mac brew
# shellcheck disable=SC2086 # a list of names
installed $needed
on_it ./run
ended 0
called "brew list --formula"
never_called 'brew install'
called "cmake --preset release-qt6 (/prefix)"
called "twinsift "

row "a part is missing: only that is installed"
mac brew
installed cmake qt@5 xxhash
on_it ./run
ended 0
called "brew install --quiet ninja qt"

row "a Mac with Debian's tools is still a Mac"
mac brew dpkg-query apt-get apt-cache sudo
on_it ./run
ended 0
called "brew install --quiet $needed"
never_called 'apt|sudo'

row "a Mac with Debian's tools and no Homebrew is one, too"
machine Darwin dpkg-query apt-get apt-cache
on_it ./run
ended_badly
said "Homebrew (https://brew.sh)"
said_line "    $needed"
never_said "g++"
never_called 'apt'

row "no Homebrew, and the tools are from elsewhere: said, and tried"
mac
on_it ./run
ended 0
said "no Homebrew here: not looked whether all of this is installed: $needed"
called "cmake --preset release (no prefix)"

row "who asks for Qt 5 gets Homebrew's, which lies apart"
mac brew
TWINSIFT_QT=5 on_it ./run
ended 0
called "brew install --quiet cmake ninja qt@5 xxhash"
called "cmake --preset release (/prefix/opt/qt@5)"

row "the tour says that it cannot be, before anything is built"
mac brew Xvfb xvfb-run xauth
on_it ./run --tour
ended_badly
said "The tour needs the X server Xvfb"
never_called 'brew install|cmake'

row "a window on an X server is skipped there, also with a server"
on_it tests/support/with-screen touch "$FAKE/touched"
ended 77
said_line "SKIP: no window on a virtual X server on macOS"
[ ! -e "$FAKE/touched" ] || fail "the program was run"

row "elsewhere where there is no server"
machine Linux xauth
on_it tests/support/with-screen touch "$FAKE/touched"
ended 77
said_line "SKIP: Xvfb is not installed"

row "and not where there is one"
machine Linux Xvfb xvfb-run xauth
on_it tests/support/with-screen touch "$FAKE/touched"
ended 0
[ -e "$FAKE/touched" ] || fail "the program was not run"

row "the tour elsewhere, where there is no server"
machine Linux brew cmake ninja
on_it ./run --tour
ended_badly
said "The tour needs Xvfb"

row "./check takes its tools from there"
mac brew
on_it ./check
called "brew install --quiet cmake ninja ccache qt xxhash llvm cppcheck"
called "cmake --build --preset release-qt6 (/prefix)"
called "ctest --preset dev-qt6"
