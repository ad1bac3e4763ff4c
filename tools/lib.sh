# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Shared by the scripts of this folder and the top-level commands: sourced, never run.
# shellcheck shell=sh

# Formats and findings differ between releases of clang's tools: this one's count.
# shellcheck disable=SC2034  # read by those who source this
deciding_clang=14

# install_missing COMMAND=PACKAGE... FILE=PACKAGE...
# Installs the packages whose command (or absolute path) is not there. Says so and ends when it can't.
install_missing()
{
    missing=
    for pair in "$@"; do
        thing=${pair%%=*}
        package=${pair#*=}
        case $thing in
        /*) [ -e "$thing" ] && continue ;;
        *) command -v "$thing" >/dev/null 2>&1 && continue ;;
        esac
        case " $missing " in *" $package "*) ;; *) missing="$missing $package" ;; esac
    done
    [ -z "$missing" ] && return 0

    if [ "$(id -u)" != 0 ]; then
        echo "missing packages:$missing (run as root, or install them first)" >&2
        exit 1
    fi
    echo "installing:$missing"
    apt_log=$(mktemp)
    # shellcheck disable=SC2086  # a list of words
    if ! { apt-get update && DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing; } >"$apt_log" 2>&1; then
        tail -n 20 "$apt_log" >&2
        rm -f "$apt_log"
        exit 1
    fi
    rm -f "$apt_log"
}

# configure PRESET [ARGUMENT...]: configures build/PRESET as CMakePresets.json says.
configure()
{
    preset=$1
    shift
    found=$(cmake --version | sed -n 's/^cmake version //p')
    if [ "$(printf '%s\n3.21\n' "$found" | sort -V | head -n 1)" != 3.21 ]; then
        echo "cmake 3.21 or newer reads the presets; this one is $found (without presets 3.16 builds the product)" >&2
        return 1
    fi
    cmake --preset "$preset" "$@"
}

# tree_files [PATTERN...]: the files of this tree, of those that fit one of the patterns; also in a release's
# tarball, which has no git
tree_files()
{
    if [ -e .git ]; then
        git ls-files "$@"
        return
    fi
    find . -path ./build -prune -o -path ./install -prune -o -type f -print | sed 's%^\./%%' | sort |
        while read -r tree_file; do
            [ $# -gt 0 ] || echo "$tree_file"
            for tree_pattern; do
                # shellcheck disable=SC2254  # patterns
                case $tree_file in $tree_pattern) echo "$tree_file" && break ;; esac
            done
        done
}
