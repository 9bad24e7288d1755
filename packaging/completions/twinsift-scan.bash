# SPDX-License-Identifier: MIT
# bash completion for twinsift-scan. It needs nothing but bash itself.

_twinsift_scan()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} line
    COMPREPLY=()
    # Bash takes the equals sign of --option=value for a word of its own.
    if [[ $word == '=' ]]; then
        word=''
    elif [[ $before == '=' && COMP_CWORD -ge 2 ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi

    case $before in
        --advanced)
            while IFS= read -r line; do COMPREPLY+=("$line"); done \
                < <(compgen -W 'md5 sha1 crc' -- "$word")
            return
            ;;
        --sort)
            while IFS= read -r line; do COMPREPLY+=("$line"); done \
                < <(compgen -W 'path size count' -- "$word")
            return
            ;;
        --separator)
            while IFS= read -r line; do COMPREPLY+=("$line"); done \
                < <(compgen -W 'none blank' -- "$word")
            return
            ;;
        --files-from)
            compopt -o filenames 2>/dev/null
            while IFS= read -r line; do COMPREPLY+=("$line"); done < <(compgen -A file -- "$word")
            return
            ;;
        --include | --exclude | --min-kb | --max-kb | --min-size | --max-size | --stop-after)
            return
            ;;
    esac

    if [[ $word == -* ]]; then
        while IFS= read -r line; do COMPREPLY+=("$line"); done < <(compgen -W '
            --advanced --same-name --same-extension --same-date --include --exclude
            --min-kb --max-kb --min-size --max-size --hidden --no-links --one-file-system
            --files-from --joined -f --omit-first --sort -0 --print0 --separator --json --csv
            --summary -q --quiet --no-messages --events --stop-after -h --help --version' \
            -- "$word")
    else
        compopt -o filenames 2>/dev/null
        while IFS= read -r line; do COMPREPLY+=("$line"); done < <(compgen -A directory -- "$word")
    fi
}

complete -F _twinsift_scan twinsift-scan
