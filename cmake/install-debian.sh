#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# install-debian.sh NEEDED WISHED: what packages.sh runs as root. The lists of packages are fetched
# first: what the system offers may not be known before.
set -eu -o pipefail
cd "$(dirname "$0")/.."
fail() { exit 1; }
. cmake/packages.sh

export DEBIAN_FRONTEND=noninteractive
# A plain su leaves out the folders that dpkg looks for its tools in.
PATH="$PATH:/usr/sbin:/sbin"
# A source that does not answer need not be the one that is needed.
apt-get update || echo "apt-get update failed: going on with the lists that are here"
choose_debian "$1" "$2"
[ -n "$missing" ] || exit 0
# The system's own updates may hold the lock for a while.
# shellcheck disable=SC2086 # a list of names
apt-get install -o DPkg::Lock::Timeout=300 -y --no-install-recommends $missing
