#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# zsh reads the completion, finds it for the program, and it has the options of the manual page.
. "$(dirname "$0")/lib.sh"

need zsh
completion=$TWINSIFT_SOURCE/packaging/completions/_twinsift-scan
zsh -n "$completion"
same "the function for twinsift-scan" _twinsift-scan "$(zsh -f -c '
    fpath=($1 $fpath)
    autoload -Uz compinit && compinit -u -D
    print -r -- $_comps[twinsift-scan]' zsh "$(dirname "$completion")")"
# What zsh hands to _arguments, seen by a function that stands in for it.
zsh -f -c '_arguments() { print -rl -- "$@" }; . $1' zsh "$completion" |
    grep -oE -- '--[a-z0-9-]+\[' | tr -d '[' | sort -u >"$scratch/options"
zsh -f -c '_arguments() { print -rl -- "$@" }; . $1' zsh "$completion" |
    grep -oE -- '(^|\))-[a-z0-9]\[' | tr -d ')[' | sort -u >"$scratch/letters"
sh "$TWINSIFT_SOURCE/tests/packaging/documented-options" -s >"$scratch/page"
same_lines "other letters are offered than the manual page has" "$scratch/page" "$scratch/letters"
sh "$TWINSIFT_SOURCE/tests/packaging/documented-options" >"$scratch/page"
same_lines "other options are offered than the manual page has" "$scratch/page" "$scratch/options"
