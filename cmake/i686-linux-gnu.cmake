# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Debian's g++-i686-linux-gnu: 32-bit x86, whose programs an amd64 kernel runs
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
find_program(I686_CC i686-linux-gnu-gcc REQUIRED)
find_program(I686_CXX i686-linux-gnu-g++ REQUIRED)
set(CMAKE_C_COMPILER ${I686_CC})
set(CMAKE_CXX_COMPILER ${I686_CXX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
