#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Who may install: root, whoever sudo believes, whoever can be asked for a password. Everybody else
# gets the line to type.
. "$(dirname "$0")/lib.sh"
command -v script >/dev/null || {
    echo "SKIPPED: script is not installed, which makes a terminal"
    exit 77
}

needed="g++ cmake ninja-build qtbase5-dev libxxhash-dev"
line="    apt-get install -y --no-install-recommends $needed"
# shellcheck disable=SC2086 # a list of names
bare() { debian "$@" && offered $needed; }
questions() { grep -c '^asked$' "$FAKE/calls" || true; }

# at_a_terminal PASSWORD COMMAND: runs it where sudo can ask.
at_a_terminal() {
    status=0
    printf '%s\n' "$1" | (
        cd "$FAKE/tree" && PATH=$FAKE/bin SHELL=$(command -v bash) DISPLAY=:0 \
            exec "$script" --quiet --return --command "$2" "$FAKE/typescript"
    ) >"$FAKE/said.raw" || status=$?
    tr -d '\r' <"$FAKE/said.raw" >"$FAKE/said"
}
script=$(command -v script)

row "root needs no sudo"
bare sudo
echo 0 >"$FAKE/uid"
DISPLAY=:0 on_it ./run
ended 0
never_called sudo
called "twinsift "

row "sudo asks for nothing"
bare sudo
echo free >"$FAKE/sudo"
DISPLAY=:0 on_it ./run
ended 0
called "sudo -n bash cmake/install-debian.sh g++ cmake ninja-build qtbase5-dev|qt6-base-dev libxxhash-dev "
called "apt-get update (0, noninteractive)"
never_said "password"
called "twinsift "

row "sudo asks, and nobody is there"
bare sudo
echo asks >"$FAKE/sudo"
DISPLAY=:0 on_it ./run
ended_badly
said_line "$line"
said "there is no terminal to ask for it. As root"
never_called 'apt-get|cmake|sudo bash'

row "the same of ./check"
on_it ./check
ended_badly
said "    apt-get install -y --no-install-recommends g++ cmake ninja-build"
never_called 'apt-get|cmake|sudo bash'

row "no sudo at all"
bare
DISPLAY=:0 on_it ./run
ended_badly
said "somebody may not install packages, and sudo is not installed. As root"
said_line "$line"
never_called 'apt-get|cmake'

row "no sudo, but a terminal"
bare
at_a_terminal "" ./run
ended_badly
said "sudo is not installed"
said_line "$line"

row "sudo asks at a terminal, once"
bare sudo
echo asks >"$FAKE/sudo"
at_a_terminal secret ./run
ended 0
[ "$(questions)" = 1 ] || fail "sudo asked $(questions) times"
said "sudo asks for your password"
called "apt-get update (0, noninteractive)"
called "twinsift "

row "nothing is missing: nobody is asked"
: >"$FAKE/calls"
at_a_terminal secret ./run
ended 0
never_called sudo
called "twinsift "

row "sudo asks and does not believe the answer"
bare sudo
echo asks >"$FAKE/sudo"
at_a_terminal wrong ./run
ended_badly
said_line "$line"
never_called 'apt-get|cmake'

row "sudo asks, and this user has no rights"
bare sudo
echo refused >"$FAKE/sudo"
at_a_terminal secret ./run
ended_badly
said "not in the sudoers file"
said_line "$line"
never_called 'apt-get|cmake'

row "a part of the build folder that root has left"
bare
# shellcheck disable=SC2086
installed $needed
mkdir -p "$FAKE/tree/build/release"
chmod 555 "$FAKE/tree/build/release"
user=
if [ "$(id -u)" -eq 0 ]; then
    # Nothing is closed to root, so somebody else has to try.
    user=$(command -v setpriv) || {
        echo "SKIPPED: setpriv is not installed, which makes root another user"
        exit 77
    }
    user="$user --reuid=65534 --regid=65534 --clear-groups"
    chmod 755 "$scratch"
    chown -R 65534 "$FAKE"
fi
status=0
# shellcheck disable=SC2086
(cd "$FAKE/tree" && PATH=$FAKE/bin DISPLAY=:0 exec $user "$FAKE/tree/run") >"$FAKE/said" 2>&1 </dev/null ||
    status=$?
chmod 755 "$FAKE/tree/build/release"
ended_badly
said "$FAKE/tree/build/release cannot be written"
never_called cmake
