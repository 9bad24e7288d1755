#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# fish reads the completion and offers the options, the checksums and the folders.
. "$(dirname "$0")/lib.sh"

need fish
completion=$TWINSIFT_SOURCE/packaging/completions/twinsift-scan.fish
fish -n "$completion"
export HOME=$scratch/home XDG_CONFIG_HOME=$scratch/home/config XDG_DATA_HOME=$scratch/home/data
mkdir -p "$scratch/home" "$scratch/here/folder"
touch "$scratch/here/file"
cd "$scratch/here"

# offered LINE: what is offered at the end of this command line, without the explanations, sorted.
offered() {
    fish --no-config -c 'source $argv[1]; complete -C $argv[2]' "$completion" "$1" </dev/null |
        cut -f 1 | sort
}

offered 'twinsift-scan --' >"$scratch/options"
sh "$TWINSIFT_SOURCE/tests/packaging/documented-options" >"$scratch/page"
same_lines "other options are offered than the manual page has" "$scratch/page" "$scratch/options"
offered 'twinsift-scan -' | grep -v -- '^--' | sort >"$scratch/options"
sh "$TWINSIFT_SOURCE/tests/packaging/documented-options" -s >"$scratch/page"
same_lines "other letters are offered than the manual page has" "$scratch/page" "$scratch/options"
same "the orders" "count path size" "$(offered 'twinsift-scan --sort ' | xargs)"
same "the separators" "blank none" "$(offered 'twinsift-scan --separator ' | xargs)"
same "lists of folders" "file folder/" "$(offered 'twinsift-scan --files-from ' | xargs)"
same "the checksums" "crc md5 sha1" "$(offered 'twinsift-scan --advanced ' | xargs)"
same "folders" "folder/" "$(offered 'twinsift-scan ')"
same "after an option with a number" "" "$(offered 'twinsift-scan --min-kb ')"
