# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Debian's g++-12-aarch64-linux-gnu
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
find_program(AARCH64_CC NAMES aarch64-linux-gnu-gcc aarch64-linux-gnu-gcc-12 REQUIRED)
find_program(AARCH64_CXX NAMES aarch64-linux-gnu-g++ aarch64-linux-gnu-g++-12 REQUIRED)
set(CMAKE_C_COMPILER ${AARCH64_CC})
set(CMAKE_CXX_COMPILER ${AARCH64_CXX})
find_program(AARCH64_STRIP aarch64-linux-gnu-strip)
if(AARCH64_STRIP)
  set(CMAKE_STRIP ${AARCH64_STRIP})
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
