# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT

SUMMARY = "Network layer of an embedded recorder or camera"
DESCRIPTION = "lanrise brings the network up at boot from its saved settings; libvorlix is what the \
device's application calls."
SECTION = "net"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=d42ed79673f7180342fb0ce78a34d80e"

# The sources are those that this layer lies in, or the tarball of a release: its address, and the sum that
# tools/release prints for it.
VORLIX_RELEASE ?= ""
VORLIX_RELEASE_SHA256 ?= ""
SRC_URI = "${VORLIX_RELEASE}"
SRC_URI[sha256sum] = "${VORLIX_RELEASE_SHA256}"
inherit externalsrc
EXTERNALSRC = "${@'' if d.getVar('VORLIX_RELEASE') else os.path.normpath(os.path.join(d.getVar('THISDIR'), '../../../../..'))}"

# Little-endian ones, of 32 or 64 bits, with any libc.
COMPATIBLE_HOST = "(?!(aarch64_be|armeb|m68k|microblaze|mips|mips64|mipsisa32r6|mipsisa64r6|powerpc|powerpc64|s390x|sparc|sparc64)-).*-linux.*"

inherit cmake pkgconfig systemd update-rc.d

# A file that defines CMOSRead, CMOSWrite and CMOSGetCaps, for a board with CMOS backup memory.
VORLIX_CMOS_PROVIDER ?= ""

EXTRA_OECMAKE = " \
    -DCMAKE_BUILD_TYPE=MinSizeRel \
    -DBUILD_TESTING=OFF \
    -DVORLIX_START=${@bb.utils.contains('DISTRO_FEATURES', 'systemd', 'systemd', 'sysv', d)} \
    -DVORLIX_UNIT_DIR=${systemd_system_unitdir} \
    -DVORLIX_CMOS_PROVIDER=${VORLIX_CMOS_PROVIDER} \
"

# The program and the library apart: an application may come without the other.
PACKAGES =+ "lanrise"
FILES:lanrise = " \
    ${sbindir}/lanrise \
    ${sbindir}/lanrise-status \
    ${libexecdir}/lanrise-log \
    ${sysconfdir}/init.d/lanrise \
    ${systemd_system_unitdir}/lanrise.service \
    ${datadir}/bash-completion \
"

RDEPENDS:lanrise = "bridge-utils net-tools"
RRECOMMENDS:${PN} = "bridge-utils iproute2-tc iptables net-tools"

SYSTEMD_PACKAGES = "lanrise"
SYSTEMD_SERVICE:lanrise = "lanrise.service"
INITSCRIPT_PACKAGES = "lanrise"
INITSCRIPT_NAME:lanrise = "lanrise"
INITSCRIPT_PARAMS:lanrise = "start 39 S ."
