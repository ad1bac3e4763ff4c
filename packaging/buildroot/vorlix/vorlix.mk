################################################################################
#
# vorlix
#
################################################################################

# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT

VORLIX_VERSION = 3.1.0
VORLIX_LICENSE = MIT
VORLIX_LICENSE_FILES = LICENSE
VORLIX_INSTALL_STAGING = YES

# The sources are those that this file lies in, or a release's tarball: tools/release writes vorlix.hash for it.
ifeq ($(call qstrip,$(BR2_PACKAGE_VORLIX_RELEASES)),)
VORLIX_SITE = $(realpath $(BR2_EXTERNAL_VORLIX_PATH)/../..)
VORLIX_SITE_METHOD = local
else
VORLIX_SITE = $(call qstrip,$(BR2_PACKAGE_VORLIX_RELEASES))
endif

VORLIX_CONF_OPTS = \
	-DCMAKE_BUILD_TYPE=MinSizeRel \
	-DCMAKE_INSTALL_SYSCONFDIR=/etc \
	-DBUILD_TESTING=OFF \
	-DVORLIX_CMOS_PROVIDER=$(call qstrip,$(BR2_PACKAGE_VORLIX_CMOS_PROVIDER))

# What Buildroot makes of libraries: one kind, or both. Without the shared one the program is static too, by
# Buildroot's own flags.
ifeq ($(BR2_STATIC_LIBS),y)
VORLIX_CONF_OPTS += -DVORLIX_SHARED=OFF
else ifeq ($(BR2_SHARED_LIBS),y)
VORLIX_CONF_OPTS += -DVORLIX_STATIC=OFF
endif

# The unit comes with the files of the program. The init script of a system without systemd has its
# place in the order of /etc/init.d: behind the mounts, before S40network.
ifeq ($(BR2_INIT_SYSTEMD),y)
VORLIX_CONF_OPTS += -DVORLIX_START=systemd
else
VORLIX_CONF_OPTS += -DVORLIX_START=sysv
endif

define VORLIX_INSTALL_INIT_SYSV
	mv $(TARGET_DIR)/etc/init.d/lanrise $(TARGET_DIR)/etc/init.d/S39lanrise
endef

ifeq ($(BR2_PACKAGE_VORLIX_FILTERS_AND_SHAPING),y)
define VORLIX_LINK_TC
	mkdir -p $(TARGET_DIR)/usr/local/bin
	ln -sf ../../../sbin/tc $(TARGET_DIR)/usr/local/bin/tc
endef
VORLIX_POST_INSTALL_TARGET_HOOKS += VORLIX_LINK_TC
endif

$(eval $(cmake-package))
