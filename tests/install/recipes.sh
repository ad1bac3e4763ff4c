#!/bin/sh
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The recipes for Buildroot and Yocto, as far as they can be tried without them: what they say of the
# release is true, and Buildroot's options build and install what the package here does.
# shellcheck source=tests/install/lib.sh
. "$(dirname "$0")/lib.sh"

buildroot=$top/packaging/buildroot
recipe=$(echo "$top"/packaging/yocto/meta-vorlix/recipes-*/vorlix/vorlix_*.bb)

# ---- the release

is 'version of the recipe' "$(basename "$recipe")" "vorlix_$version.bb"
is 'version for Buildroot' "$(sed -n 's/^VORLIX_VERSION = //p' "$buildroot/vorlix/vorlix.mk")" "$version"
is 'version of the changelog' "$(sed -n '1s/^vorlix (\(.*\)) .*/\1/p' "$top/debian/changelog")" "$version"
is 'license of the recipe' "$(sed -n 's/^LIC_FILES_CHKSUM.*md5=\([0-9a-f]*\)"$/\1/p' "$recipe")" \
    "$(md5sum "$top/LICENSE" | cut -d ' ' -f 1)"

# ---- the recipe's view of this tree

is 'sources of the recipe' \
    "$(realpath "$(dirname "$recipe")/$(sed -n "s/^EXTERNALSRC = .*'THISDIR'), '\(.*\)'))}\"/\1/p" "$recipe")")" "$top"
is 'hosts of the recipe' "$("$here/recipe.py" --hosts "$recipe" x86_64-poky-linux aarch64-poky-linux aarch64_be-poky-linux \
    arm-poky-linux-gnueabi arm-poky-linux-musleabi armeb-poky-linux-gnueabi i686-poky-linux mips-poky-linux \
    mipsel-poky-linux mips64-poky-linux mips64el-poky-linux-gnun32 powerpc-poky-linux powerpc64le-poky-linux \
    riscv32-poky-linux riscv64-poky-linux-musl s390x-poky-linux x86_64-poky-mingw32)" \
    'x86_64-poky-linux aarch64-poky-linux arm-poky-linux-gnueabi arm-poky-linux-musleabi i686-poky-linux mipsel-poky-linux mips64el-poky-linux-gnun32 powerpc64le-poky-linux riscv32-poky-linux riscv64-poky-linux-musl'
sed -n 's/.*-D\([A-Z_]*\)=.*/\1/p' "$recipe" "$buildroot/vorlix/vorlix.mk" | sort -u >"$work/options"
while read -r option; do
    holds "option $option of the recipes" "$build/CMakeCache.txt" "$option:"
done <"$work/options"
# shellcheck disable=SC2016  # the recipe's variables
sed -n '/^FILES:lanrise/,/^"/p' "$recipe" | sed -n 's/^ *\(\${.*\) \\$/\1/p' |
    sed 's%${sbindir}%/usr/sbin%; s%${libexecdir}%/usr/libexec%; s%${sysconfdir}%/etc%; s%${systemd_system_unitdir}%/usr/lib/systemd/system%; s%${datadir}%/usr/share%' \
        >"$work/recipe.files"
is 'files of the recipe' "$(wc -l <"$work/recipe.files")" 6
while read -r file; do
    [ -e "$tree$file" ] || is 'a file of the recipe' "$file" 'installed'
done <"$work/recipe.files"

succeeds 'the recipe as a text' "$here/recipe.py" "$recipe" "$top/packaging/yocto/meta-vorlix/conf/layer.conf"

# ---- Buildroot: the kernel's kconfig reads its menu, with symbols in the place of Buildroot's own

if command -v kconfig-conf >/dev/null; then
    menu=$work/menu
    rm -rf "$menu"
    mkdir -p "$menu"
    grep -o 'BR2_[A-Z0-9_]*' "$buildroot/vorlix/Config.in" | grep -v -e VORLIX -e ENDIAN | sort -u |
        sed 's/.*/config &\n\tbool "&"/' >"$menu/Config.in"
    printf 'config BR2_ENDIAN\n\tstring "BR2_ENDIAN"\n' >>"$menu/Config.in"
    echo "source \"$buildroot/vorlix/Config.in\"" >>"$menu/Config.in"

    # chosen NAME ENDIAN SYMBOL...: what kconfig makes of a wish for the package, given a toolchain
    chosen()
    {
        case_name=$1
        endian=$2
        shift 2
        printf '%s=y\n' BR2_PACKAGE_VORLIX "$@" >"$menu/wanted"
        echo "BR2_ENDIAN=\"$endian\"" >>"$menu/wanted"
        succeeds "the menu: $case_name" sh -c "cd '$menu' && CONFIG_= KCONFIG_ALLCONFIG=wanted kconfig-conf --alldefconfig Config.in"
    }
    toolchain='BR2_INSTALL_LIBSTDCPP BR2_TOOLCHAIN_GCC_AT_LEAST_8 BR2_TOOLCHAIN_HAS_THREADS BR2_TOOLCHAIN_HEADERS_AT_LEAST_4_9'
    for libraries in BR2_SHARED_LIBS BR2_STATIC_LIBS; do
        # shellcheck disable=SC2086  # a list of words
        chosen "with $libraries" LITTLE $toolchain $libraries
        is "what kconfig says of the menu with $libraries" "$(grep -i -e warning -e error "$output" | grep -v $libraries)" ''
        for symbol in BR2_PACKAGE_VORLIX BR2_PACKAGE_BRIDGE_UTILS BR2_PACKAGE_NET_TOOLS; do
            holds "the chosen menu with $libraries" "$menu/.config" "$symbol=y"
        done
    done
    # shellcheck disable=SC2086
    chosen 'big-endian' BIG $toolchain
    is 'the package on a big-endian machine' "$(grep VORLIX= "$menu/.config")" ''
    for symbol in $toolchain; do
        # shellcheck disable=SC2046  # a list of words
        chosen "without $symbol" LITTLE $(echo "$toolchain" | tr ' ' '\n' | grep -v "^$symbol$")
        is "the package without $symbol" "$(grep VORLIX= "$menu/.config")" ''
    done
else
    echo 'left out: kconfig-conf is not installed, the menu was not read'
fi

# ---- Buildroot: make reads its file, with the little of Buildroot that it uses

# buildroot VARIABLE SETTING...: what a variable expands to
buildroot()
{
    variable=$1
    shift
    cat >"$work/buildroot.mk" <<END
BR2_EXTERNAL_VORLIX_PATH = $buildroot
TARGET_DIR = $work/buildroot/target
qstrip = \$(subst ",,\$(1))
cmake-package =
include \$(BR2_EXTERNAL_VORLIX_PATH)/external.mk
all: ; @:\$(info \$(strip \$($variable)))
hooks: ; \$(VORLIX_INSTALL_INIT_SYSV) && \$(subst \$(newline), && ,\$(VORLIX_LINK_TC))
define newline


endef
END
    make -s -f "$work/buildroot.mk" "$@"
}

is 'site for Buildroot' "$(buildroot VORLIX_SITE)" "$top"
is 'site of a release for Buildroot' \
    "$(buildroot VORLIX_SITE 'BR2_PACKAGE_VORLIX_RELEASES="https://releases.example.org/vorlix"')" \
    https://releases.example.org/vorlix
is 'the way to a release' \
    "$(buildroot VORLIX_SITE_METHOD 'BR2_PACKAGE_VORLIX_RELEASES="https://releases.example.org/vorlix"')" ''
for libraries in BR2_STATIC_LIBS:-DVORLIX_SHARED=OFF BR2_SHARED_LIBS:-DVORLIX_STATIC=OFF BR2_SHARED_STATIC_LIBS:; do
    is "options with ${libraries%%:*}" \
        "$(buildroot VORLIX_CONF_OPTS "${libraries%%:*}=y" | tr ' ' '\n' | grep -e SHARED -e STATIC)" "${libraries#*:}"
done
holds 'options with systemd' "$(buildroot VORLIX_CONF_OPTS BR2_INIT_SYSTEMD=y >"$work/options" && echo "$work/options")" \
    -DVORLIX_START=systemd
holds 'options with a provider' \
    "$(buildroot VORLIX_CONF_OPTS 'BR2_PACKAGE_VORLIX_CMOS_PROVIDER="board.o"' >"$work/options" && echo "$work/options")" \
    -DVORLIX_CMOS_PROVIDER=board.o

rm -rf "$work/buildroot"
mkdir -p "$work/buildroot"
options=$(buildroot VORLIX_CONF_OPTS)
# shellcheck disable=SC2086  # a list of words
succeeds 'configuration by Buildroot' cmake -S "$top" -B "$work/buildroot/build" \
    -DCMAKE_INSTALL_PREFIX=/usr $options
succeeds 'build by Buildroot' cmake --build "$work/buildroot/build"
succeeds 'installation by Buildroot' env DESTDIR="$work/buildroot/target" \
    cmake --install "$work/buildroot/build"
succeeds 'steps behind the installation' \
    buildroot VORLIX_SITE BR2_PACKAGE_VORLIX_FILTERS_AND_SHAPING=y hooks
for file in etc/init.d/S39lanrise usr/sbin/lanrise usr/sbin/lanrise-status usr/libexec/lanrise-log usr/local/bin/tc; do
    [ -e "$work/buildroot/target/$file" ] || [ -L "$work/buildroot/target/$file" ] ||
        is "a file for Buildroot's target" "$file" 'installed'
done
is 'a unit without systemd' "$(find "$work/buildroot/target" -name '*.service')" ''
exit "$failed"
