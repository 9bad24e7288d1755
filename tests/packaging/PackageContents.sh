#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The package says the right things of itself and holds the right files, stripped, of safe modes.
. "$(dirname "$0")/lib.sh"

need dpkg-deb readelf md5sum
package=$(the_package)
field() { dpkg-deb --field "$package" "$1"; }

same Package twinsift "$(field Package)"
same Version "$(product version)-1" "$(field Version)"
same Section utils "$(field Section)"
case $(field Maintainer) in
    *' <'*@*'>') ;;
    *) fail "Maintainer is '$(field Maintainer)'" ;;
esac

umask 022
dpkg-deb --raw-extract "$package" "$scratch/tree"
cd "$scratch/tree"
# The names of libraries got endings: "a" when the binary layout changed, "t64" when the type of times
# did.
qt=$(readelf -W -d usr/bin/twinsift | sed -n 's/.*(NEEDED).*\[libQt\([0-9]\)Core\.so.*/\1/p')
for library in libc6 'libstdc[+][+]6' "libqt${qt}core$qt" "libqt${qt}gui$qt" "libqt${qt}widgets$qt" \
    "libqt${qt}network$qt"; do
    printf ', %s,' "$(field Depends)" | grep -qE ", $library(a|t64)?[ ,]" ||
        fail "$library is missing from Depends: $(field Depends)"
done
md5sum --quiet -c DEBIAN/md5sums
find usr -type f | sort >"$scratch/files"
sort "$TWINSIFT_SOURCE/tests/packaging/package-files.txt" >"$scratch/expected"
same_lines "the package holds other files" "$scratch/expected" "$scratch/files"
sed 's/^[0-9a-f]*  //' DEBIAN/md5sums | sort >"$scratch/summed"
same_lines "md5sums lists other files" "$scratch/expected" "$scratch/summed"

same "a folder or a program of another mode than 755" "" \
    "$(find usr \( -type d -o -path 'usr/bin/*' \) ! -perm 755)"
same "another file of another mode than 644" "" \
    "$(find usr -type f ! -path 'usr/bin/*' ! -perm 644)"
for program in usr/bin/*; do
    readelf -W -d "$program" >"$scratch/dynamic"
    ! grep -E 'RPATH|RUNPATH' "$scratch/dynamic" || fail "$program looks for libraries by itself"
    readelf -W -S "$program" >"$scratch/sections"
    ! grep -F .symtab "$scratch/sections" || fail "$program is not stripped"
done

# The licence as a whole stands in the copyright file, indented and with dots for empty lines.
sed 's/^ \.$//; s/^ //' usr/share/doc/twinsift/copyright >"$scratch/copyright"
sed -n '/^Permission/,$p' "$TWINSIFT_SOURCE/LICENSE" >"$scratch/licence"
sed -n '/^Permission/,$p' "$scratch/copyright" >"$scratch/told"
same_lines "the licence is another one" "$scratch/licence" "$scratch/told"
grep -qF "$(sed -n 's/^Copyright (c) //p' "$TWINSIFT_SOURCE/LICENSE")" "$scratch/copyright" ||
    fail "the copyright file does not name the holder"

same "the first line of the Debian changelog" "twinsift ($(field Version)) stable; urgency=medium" \
    "$(zcat usr/share/doc/twinsift/changelog.Debian.gz | head -n 1)"
zcat usr/share/doc/twinsift/changelog.gz >"$scratch/changes"
same_lines "the changes are others" "$TWINSIFT_SOURCE/CHANGELOG.md" "$scratch/changes"
