#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# bash reads the completion and offers the options, the checksums and the folders.
. "$(dirname "$0")/lib.sh"

completion=$TWINSIFT_SOURCE/packaging/completions/twinsift-scan.bash
bash -n "$completion"
mkdir -p "$scratch/here/first folder" "$scratch/here/second"
touch "$scratch/here/file"
cd "$scratch/here"

# offered WORD...: what is offered for the last word of this command line, sorted.
offered() {
    bash --norc --noprofile -u -c '
        . "$0"
        function=$(complete -p twinsift-scan | sed "s/.*-F \([^ ]*\) .*/\1/")
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
        "$function" "$1" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
        [ ${#COMPREPLY[@]} -eq 0 ] || printf "%s\n" "${COMPREPLY[@]}"' "$completion" "$@" | sort
}

offered twinsift-scan - | grep -- '^--' >"$scratch/options"
offered twinsift-scan - | grep -v -- '^--' >"$scratch/letters"
sh "$TWINSIFT_SOURCE/tests/packaging/documented-options" >"$scratch/page"
same_lines "other options are offered than the manual page has" "$scratch/page" "$scratch/options"
sh "$TWINSIFT_SOURCE/tests/packaging/documented-options" -s >"$scratch/page"
same_lines "other letters are offered than the manual page has" "$scratch/page" "$scratch/letters"
same "after --same" "--same-date --same-extension --same-name" "$(offered twinsift-scan --same | xargs)"
same "the checksums" "crc md5 sha1" "$(offered twinsift-scan --advanced '' | xargs)"
same "a begun checksum" "md5" "$(offered twinsift-scan --advanced m)"
same "a checksum after an equals sign" "sha1" "$(offered twinsift-scan --advanced = s)"
same "all checksums after an equals sign" "crc md5 sha1" "$(offered twinsift-scan --advanced = | xargs)"
same "after an option with a number" "" "$(offered twinsift-scan --min-kb '')"
same "after an option with a size" "" "$(offered twinsift-scan --max-size '')"
same "the orders" "count path size" "$(offered twinsift-scan --sort '' | xargs)"
same "the separators" "blank none" "$(offered twinsift-scan --separator '' | xargs)"
same "lists of folders" "$(printf 'file\nfirst folder\nsecond')" "$(offered twinsift-scan --files-from '')"
same "folders" "$(printf 'first folder\nsecond')" "$(offered twinsift-scan '')"
same "folders after an option" "second" "$(offered twinsift-scan --events s)"
