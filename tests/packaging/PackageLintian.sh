#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Debian's own checker finds no error and nothing to warn of in the package.
. "$(dirname "$0")/lib.sh"

need lintian
package=$(the_package)
lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$package"
