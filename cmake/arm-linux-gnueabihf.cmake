# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Debian's g++-12-arm-linux-gnueabihf
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
find_program(ARMHF_CC NAMES arm-linux-gnueabihf-gcc arm-linux-gnueabihf-gcc-12 REQUIRED)
find_program(ARMHF_CXX NAMES arm-linux-gnueabihf-g++ arm-linux-gnueabihf-g++-12 REQUIRED)
set(CMAKE_C_COMPILER ${ARMHF_CC})
set(CMAKE_CXX_COMPILER ${ARMHF_CXX})
find_program(ARMHF_STRIP arm-linux-gnueabihf-strip)
if(ARMHF_STRIP)
  set(CMAKE_STRIP ${ARMHF_STRIP})
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
