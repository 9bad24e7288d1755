#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The package is installed on this machine, opens its window from its desktop entry, and is purged
# without a leftover.
. "$(dirname "$0")/lib.sh"

[ "$(id -u)" -eq 0 ] || skip "only root can install a package"
need dpkg dpkg-query dpkg-deb Xvfb xvfb-run xauth xdotool
if dpkg-query -W -f='${Status}\n' twinsift 2>/dev/null | grep -qv not-installed; then
    skip "a package of this name is installed on this machine already"
fi
package=$(the_package)

# with_dpkg ARGUMENT...: waits while another program holds the package database.
with_dpkg() {
    local deadline=$((SECONDS + 300))
    until dpkg "$@" >"$scratch/dpkg.log" 2>&1 </dev/null; do
        grep -q 'lock' "$scratch/dpkg.log" && [ $SECONDS -lt $deadline ] || {
            cat "$scratch/dpkg.log"
            return 1
        }
        sleep 1
    done
}

purge() {
    with_dpkg --purge twinsift
}

# Everything on the machine that bears the name, and the package's folders that are there.
traces() {
    find /etc /opt /usr /var/cache /var/lib -xdev -path "$TWINSIFT_SOURCE" -prune -o \
        -iname '*twinsift*' -print 2>/dev/null | sort
    dpkg-deb --contents "$package" | sed -n 's/^d.* \.\(\/.*\)\/$/\1/p' | while IFS= read -r folder; do
        [ ! -d "$folder" ] || echo "$folder"
    done
}

traces >"$scratch/before"
trap 'purge || true; rm -rf "$scratch"' EXIT
with_dpkg --install "$package" || fail "the package cannot be installed"
same "the program that the entry starts" /usr/bin/twinsift "$(command -v twinsift)"
status=0
"$TWINSIFT_SOURCE/tests/support/with-screen" bash "$TWINSIFT_SOURCE/tests/packaging/start-entry" \
    /usr/share/applications/twinsift.desktop "$scratch" || status=$?
same "the status of the started entry" 0 "$status"

purge || fail "the package cannot be purged"
trap 'rm -rf "$scratch"' EXIT
traces >"$scratch/after"
same_lines "the purge leaves something behind" "$scratch/before" "$scratch/after"
