#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every file that tells the version or the build tells those of app/Product.h.
. "$(dirname "$0")/lib.sh"

version=$(product version)
build=$(product build)
[ -n "$version" ] && [ -n "$build" ] || fail "app/Product.h tells no version or no build"
day="20${build:0:2}-${build:2:2}-${build:4:2}"
prepared=$TWINSIFT_BUILD/packaging

# told FILE EXPRESSION: what the first line that matches says in the expression's group.
told() {
    sed -n "s/$2/\1/p" "$1" | head -n 1
}

same "the newest version of CHANGELOG.md" "$version, build $build" \
    "$(told "$TWINSIFT_SOURCE/CHANGELOG.md" '^## \(.*\)')"

metadata=$prepared/example.twinsift.TwinSift.metainfo.xml
same "the version of the metadata" "$version" "$(told "$metadata" '.*<release version="\([^"]*\)".*')"
same "the day of the metadata" "$day" "$(told "$metadata" '.*<release .*date="\([^"]*\)".*')"
grep -qF "Build $build." "$metadata" || fail "the metadata does not tell the build"

plist() { sed -n "/<key>$1</{n;s/.*<string>\(.*\)<.*/\1/p;}" "$prepared/Info.plist"; }
same "the version of the bundle" "$version" "$(plist CFBundleShortVersionString)"
same "the build of the bundle" "$build" "$(plist CFBundleVersion)"

for page in twinsift.1 twinsift-scan.1; do
    same "the version of $page" "$version" "$(told "$prepared/$page" '^\.TH .*"TwinSift \([^"]*\)".*')"
    same "the day of $page" "$day" "$(told "$prepared/$page" '^\.TH [^"]*"\([^"]*\)".*')"
done

same "the version of the Debian changelog" "$version-1" \
    "$(told "$prepared/changelog.Debian" '^twinsift (\([^)]*\)).*')"
grep -qF "build $build." "$prepared/changelog.Debian" || fail "the Debian changelog has no build"
if date -d @0 >/dev/null 2>&1; then
    same "the day of the Debian changelog" "$(date -u -d "$day 12:00" '+%a, %d %b %Y %H:%M:%S +0000')" \
        "$(told "$prepared/changelog.Debian" '^ -- .*>  \(.*\)')"
else
    echo "The day of the Debian changelog is not looked at: date cannot count here."
fi

# Nothing else is to be changed by hand for a new version.
cd "$TWINSIFT_SOURCE"
! grep -rnIF -e "$version" -e "$build" packaging cmake CMakeLists.txt docs/PACKAGING.md docs/*.in ||
    fail "a file that is filled in, or should be, repeats the version"
