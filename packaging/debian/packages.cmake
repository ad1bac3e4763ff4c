# Debian packages by `cpack` in the build folder of the preset "package".
#
# lanrise, libvorlix3 and libvorlix-dev. What the program and the library run through the shell is
# told by the packages' relations; what they are linked with is found out.
set(debian ${CMAKE_CURRENT_LIST_DIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vorlix)
set(CPACK_PACKAGE_VENDOR "Vorlix")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has a line of its own
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_SET_DESTDIR ON)  # the prefix is the build's, and /etc lies outside it
set(CPACK_COMPONENTS_ALL program library development)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)

# DEBFULLNAME and DEBEMAIL are what Debian's own tools look at.
set(maintainer "Vorlix network layer authors <vorlix@localhost>")
if(DEFINED ENV{DEBEMAIL})
  set(maintainer "$ENV{DEBFULLNAME} <$ENV{DEBEMAIL}>")
endif()
set(VORLIX_MAINTAINER ${maintainer} CACHE STRING "Maintainer of the Debian packages")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${VORLIX_MAINTAINER})

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
endif()

# package(<component> <name> <section> <one line> <text>)
macro(package component name section line text)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${line}\n${text}")
  install(FILES ${debian}/copyright ${debian}/changelog
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

set(library libvorlix${PROJECT_VERSION_MAJOR})
package(program lanrise net "brings a device's network up from its saved settings"
"The boot program of an embedded Linux recorder or camera. It repairs the saved
settings, brings cards, bonds, bridges and routes up from them, and ends. By
hand it changes one card's address or the default card.
.
It does nothing on a machine without the folder /mnt/mtd/Config.")
package(library ${library} libs "network layer of a recorder or camera - library"
"What the application of an embedded Linux recorder or camera calls to read and
change its network: cards, addresses, routes, bonds, bridges, shaping, port
filters, switch and power over Ethernet. What it changes is saved and comes
back at the next boot with lanrise.")
package(development libvorlix-dev libdevel "network layer of a recorder or camera - development files"
"Headers of both generations of the interface, the static library, files for
pkg-config and CMake, and examples.")

# Bonds and bridges are built at boot with ifconfig and brctl; a board of its own kind brings its
# ifenslave, which Debian has no more (an example stands in the package's documentation).
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "bridge-utils, net-tools")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS "iproute2")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "${library}")
# An application may never ask for what needs a tool.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_RECOMMENDS "bridge-utils, iproute2, iptables, net-tools")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SUGGESTS "lanrise, openssh-server")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library} (= ${PROJECT_VERSION}), libc6-dev")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "pkg-config, cmake")

# dpkg-shlibdeps knows the libraries of the machine that it runs on. For another machine libc, the only
# one, is named here, with the version that gave the newest of the used symbols.
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libc6 (>= 2.34)")
  string(APPEND CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS ", libc6 (>= 2.34)")
else()
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()

set(CPACK_DEBIAN_PROGRAM_PACKAGE_CONTROL_EXTRA
  ${debian}/conffiles ${debian}/postinst ${debian}/postrm)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${debian}/triggers)
install(FILES ${debian}/README.Debian
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/lanrise COMPONENT program EXCLUDE_FROM_ALL)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/tests/board/tools/ifenslave
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/lanrise/examples COMPONENT program EXCLUDE_FROM_ALL)

set(CPACK_PRE_BUILD_SCRIPTS ${debian}/compress.cmake)
include(CPack)
