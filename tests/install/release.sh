#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The source tarball of a release: the same bytes each time, all that the commit holds, and a tree that builds
# and packs without git.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

git -C "$top" rev-parse -q --verify HEAD >/dev/null 2>&1 || skip 'this tree is no git checkout'
there=$work/release
rm -rf "$there"
mkdir -p "$there"
# Of the commit, whatever else lies in this tree.
git clone -q "$top" "$there/clone"
release=$(sed -n 's/^project(vorlix VERSION \([0-9.]*\) .*/\1/p' "$there/clone/CMakeLists.txt")
succeeds 'the tarball' "$there/clone/tools/release" "$there/one.tar.gz"
sleep 1
succeeds 'the tarball again' "$there/clone/tools/release" "$there/two.tar.gz"
succeeds 'the same bytes' cmp "$there/one.tar.gz" "$there/two.tar.gz"
is 'what Buildroot wants of the tarball' "$(grep '^sha256' "$there/vorlix.hash")" \
    "sha256  $(sha256sum <"$there/two.tar.gz" | cut -d ' ' -f 1)  vorlix-$release.tar.gz
sha256  $(sha256sum <"$there/clone/LICENSE" | cut -d ' ' -f 1)  LICENSE"

tar -C "$there" -xzf "$there/one.tar.gz"
(cd "$there/vorlix-$release" && find . ! -type d | sed 's%^\./%%' | sort) >"$there/unpacked"
git -C "$there/clone" ls-files | sort >"$there/committed"
succeeds 'the files of the commit' diff "$there/committed" "$there/unpacked"
succeeds 'configuration' cmake --preset release -S "$there/vorlix-$release"
succeeds 'build' cmake --build "$there/vorlix-$release/build/release" --target lanrise vorlix_shared
# What it would refuse, it names.
sed -i "s/^## \[$release\].*/## [Unreleased]/" "$there/clone/CHANGELOG.md"
fails 'a release of a changed tree' "$there/clone/tools/release" --check
holds 'what is not committed' "$output" 'changes that are not committed'
holds 'what the changelog lacks' "$output" 'CHANGELOG.md has no dated entry'
exit "$failed"
