# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# What a target must be, each told in one line before anything is built. A text that begins with a blank is one that
# CMake does not break into several.
include(CheckCXXSourceCompiles)

if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux")
  message(FATAL_ERROR " vorlix is made for Linux; this build is for ${CMAKE_SYSTEM_NAME}")
endif()

set(compiler "${CMAKE_CXX_COMPILER} (${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION})")
if(NOT "cxx_std_17" IN_LIST CMAKE_CXX_COMPILE_FEATURES)
  message(FATAL_ERROR " vorlix is written in C++17, which ${compiler} does not know")
endif()

# Nothing is linked here: a toolchain may have no run-time library of C++, and none is asked for.
set(linked ${CMAKE_TRY_COMPILE_TARGET_TYPE})
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
check_cxx_source_compiles("
  #if __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__
  #error big-endian
  #endif
  int main() { return 0; }" VORLIX_LITTLE_ENDIAN)
if(NOT VORLIX_LITTLE_ENDIAN)
  message(FATAL_ERROR
    " vorlix is made for little-endian targets; ${compiler} builds for a big-endian one")
endif()
check_cxx_source_compiles("
  #include <array>
  #include <atomic>
  #include <memory>
  #include <optional>
  int main() { return std::optional<int>(0).value_or(0); }" VORLIX_CXX17_HEADERS)
if(NOT VORLIX_CXX17_HEADERS)
  message(FATAL_ERROR " vorlix needs the headers of a C++17 library (not the library), which ${compiler} lacks")
endif()
set(CMAKE_TRY_COMPILE_TARGET_TYPE ${linked})

# Files beyond 2 GB and times beyond 2038 on 32-bit targets too. The public headers have neither, so an
# application may choose for itself.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()
