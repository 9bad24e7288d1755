# SPDX-License-Identifier: MIT
# The packages of a fresh machine, and which generation of the toolkit it gets: Qt 5 where the system
# offers it, else Qt 6; from Homebrew Qt 6. TWINSIFT_QT=5 or 6 chooses.
# Sourced by setup.sh. Needs bash 3.2, which macOS has.
# shellcheck shell=bash

case ${TWINSIFT_QT-} in
"" | 5 | 6) ;;
*) fail "TWINSIFT_QT is '$TWINSIFT_QT', and can be 5 or 6" ;;
esac

on_macos() { [ "$(uname)" = Darwin ]; }

# packager: apt, brew or none. A Mac that has Debian's tools is still a Mac.
packager() {
    if ! on_macos && command -v dpkg-query >/dev/null && command -v apt-get >/dev/null; then
        echo apt
    elif command -v brew >/dev/null; then
        echo brew
    else
        echo none
    fi
}

# has NAME LIST: whether the name is one of the list's.
has() {
    case " $2 " in
    *" $1 "*) ;;
    *) return 1 ;;
    esac
}

# installed_debian NAME...: those that are installed.
installed_debian() {
    # shellcheck disable=SC2016 # dpkg-query fills them in
    { dpkg-query -W -f='${Package} ${Status}\n' "$@" 2>/dev/null || true; } |
        sed -n 's/ .* installed$//p' | tr '\n' ' '
}

# offered_debian NAME...: those that apt knows a version of, as far as its lists have been fetched.
offered_debian() {
    { LC_ALL=C apt-cache policy "$@" 2>/dev/null || true; } | awk '
        /^[^ ]/ { name = $1; sub(/:$/, "", name) }
        $1 == "Candidate:" && $2 != "(none)" { printf "%s ", name }'
}

# choose_debian NEEDED WISHED: puts into "missing" what is to be installed, into "unoffered" what is
# wished and not to be had. A name can be several with bars between them: the first that is offered.
choose_debian() {
    local names here offered word name pick wished=no
    names=$(printf '%s' "$1 $2" | tr '|' ' ')
    # shellcheck disable=SC2086 # a list of names
    here=$(installed_debian $names)
    missing=
    unoffered=
    offered=
    for word in $1 $2; do
        # No need to ask for more where the first choice is here.
        has "${word%%|*}" "$here" || {
            # shellcheck disable=SC2086
            offered=$(offered_debian $names)
            break
        }
    done
    for word in $1 "" $2; do
        if [ -z "$word" ]; then
            wished=yes
            continue
        fi
        pick=
        for name in $(printf '%s' "$word" | tr '|' ' '); do
            if has "$name" "$here $offered"; then
                pick=$name
                break
            fi
        done
        if [ -z "$pick" ] && [ "$wished" = yes ]; then
            unoffered="$unoffered${unoffered:+ }${word%%|*}"
        elif ! has "${pick:=${word%%|*}}" "$here $missing"; then
            missing="$missing${missing:+ }$pick"
        fi
    done
}

# way_to_root: the words to put before a command that only root may run, or nothing for root itself.
# Says why, and fails, where there is no way.
way_to_root() {
    if [ "$(id -u)" -eq 0 ]; then
        return 0
    elif ! command -v sudo >/dev/null; then
        echo "$(id -un) may not install packages, and sudo is not installed."
        return 1
    elif sudo -n true 2>/dev/null; then
        echo "sudo -n"
    elif (: </dev/tty) 2>/dev/null; then
        echo sudo
    else
        echo "sudo wants the password of $(id -un), and there is no terminal to ask for it."
        return 1
    fi
}

# What whoever has the rights can type instead.
debian_line() {
    printf '    %s\n' "apt-get update" "apt-get install -y --no-install-recommends $missing"
}

need_debian_packages() {
    local way
    choose_debian "$1" "$2"
    if [ -n "$missing" ]; then
        way=$(way_to_root) || fail "These packages are missing: $missing" \
            "$way As root, or with sudo before it, type:" "$(debian_line)"
        say "installing $missing"
        [ "$way" != sudo ] || say "sudo asks for your password:"
        # One command, so that there is one question.
        # shellcheck disable=SC2086 # a list of words
        $way bash cmake/install-debian.sh "$1" "$2" >build/log/packages.log 2>&1 </dev/null || {
            tail -n 20 build/log/packages.log >&2
            choose_debian "$1" "$2"
            fail "These packages are missing and could not be installed: $missing" \
                "As root, or with sudo before it, type:" "$(debian_line)"
        }
        choose_debian "$1" "$2"
    fi
}

need_homebrew_packages() {
    local here name missing=""
    here=$(brew list --formula 2>/dev/null | tr '\n' ' ')
    for name in $1; do
        has "$name" "$here" || missing="$missing${missing:+ }$name"
    done
    # shellcheck disable=SC2086 # a list of names
    [ -z "$missing" ] || step packages "installing $missing" brew install --quiet $missing
}

# need_packages NEEDED WISHED HOMEBREW: installs those that are missing. The first two are Debian's
# names; wished ones that this release does not have are left in "unoffered".
need_packages() {
    unoffered=
    case $(packager) in
    apt) need_debian_packages "$1" "$2" ;;
    brew) need_homebrew_packages "$3" ;;
    none) look_for_tools "$1" "$3" ;;
    esac
}

# Another system may have everything; the build says what it has not. Only what nothing can be built
# without is looked for.
look_for_tools() {
    local tool
    for tool in cmake ninja; do
        command -v "$tool" >/dev/null && continue
        if on_macos; then
            fail "$tool is missing, and Homebrew (https://brew.sh) is not here, which would install:" "    $2"
        fi
        fail "$tool is missing, and neither apt nor Homebrew is here. Install what Debian calls:" "    $1"
    done
    if on_macos; then
        say "no Homebrew here: not looked whether all of this is installed: $2"
    else
        say "neither apt nor Homebrew here: not looked whether all of what Debian calls this is installed: $1"
    fi
}

# debian_qt: the toolkit to build with, by Debian's name.
debian_qt() {
    case ${TWINSIFT_QT-} in
    5) echo qtbase5-dev ;;
    6) echo qt6-base-dev ;;
    *) echo "qtbase5-dev|qt6-base-dev" ;;
    esac
}

# homebrew_qt: the same by Homebrew's.
homebrew_qt() {
    if [ "${TWINSIFT_QT-}" = 5 ]; then
        echo qt@5
    else
        echo qt
    fi
}

# toolkits: the generations to build with, after need_packages: the first for what users run. Nothing
# where the build has to see for itself.
toolkits() {
    local here
    if [ -n "${TWINSIFT_QT-}" ]; then
        echo "$TWINSIFT_QT"
        return
    fi
    case $(packager) in
    apt)
        here=$(installed_debian qtbase5-dev qt6-base-dev)
        ! has qtbase5-dev "$here" || printf '5 '
        ! has qt6-base-dev "$here" || printf '6 '
        ;;
    brew) printf 6 ;;
    esac
}

# preset NAME [TOOLKIT]: the preset of that name for a generation of the toolkit.
preset() {
    if [ "${2-}" = 6 ]; then
        echo "$1-qt6"
    else
        echo "$1"
    fi
}

# use_homebrew: lets the build find what Homebrew keeps off the common folders.
use_homebrew() {
    [ "$(packager)" = brew ] || return 0
    if [ "${TWINSIFT_QT-}" = 5 ]; then
        CMAKE_PREFIX_PATH=$(brew --prefix qt@5)
        PATH="$CMAKE_PREFIX_PATH/bin:$PATH"
    else
        CMAKE_PREFIX_PATH=$(brew --prefix)
    fi
    export PATH CMAKE_PREFIX_PATH
}
