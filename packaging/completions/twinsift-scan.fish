# SPDX-License-Identifier: MIT
# fish completion for twinsift-scan.

complete -c twinsift-scan -f -a '(__fish_complete_directories)' -d 'Folder to search'
complete -c twinsift-scan -l advanced -x -a 'md5 sha1 crc' -d 'Read every file whole and compare checksums'
complete -c twinsift-scan -l same-name -d 'Duplicates must have the same name'
complete -c twinsift-scan -l same-extension -d 'Duplicates must have the same extension'
complete -c twinsift-scan -l same-date -d 'Duplicates must be created in the same second'
complete -c twinsift-scan -l include -x -d 'Look only at files that fit a mask'
complete -c twinsift-scan -l exclude -x -d 'Leave out files by their extension'
complete -c twinsift-scan -l min-kb -x -d 'Leave out smaller files'
complete -c twinsift-scan -l max-kb -x -d 'Leave out larger files'
complete -c twinsift-scan -l print0 -d 'End paths and groups in NUL'
complete -c twinsift-scan -l events -d 'Print what the search reports on standard error'
complete -c twinsift-scan -l stop-after -x -d 'Stop the search after a number of reports'
complete -c twinsift-scan -l help -d 'Print the options and end'
complete -c twinsift-scan -l version -d 'Print the version and end'
