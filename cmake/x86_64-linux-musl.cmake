# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# musl for x86-64, with what Debian has of it (musl-tools, g++): musl's headers and libc, the kernel's
# headers, and of C++ the headers of g++ alone. There is no C++ library for musl here and none is needed:
# the program and the libraries are linked by the C compiler. A toolchain that was made for musl, such as
# Buildroot's, needs none of this.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
find_program(MUSL_GCC musl-gcc REQUIRED)
find_program(MUSL_CXX NAMES x86_64-linux-gnu-g++ g++ REQUIRED)
set(CMAKE_C_COMPILER ${MUSL_GCC})
set(CMAKE_CXX_COMPILER ${MUSL_CXX})
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)  # a C++ program cannot be linked

# The kernel's headers lie among those of the other libc.
set(kernel_headers ${CMAKE_BINARY_DIR}/kernel-headers)
file(MAKE_DIRECTORY ${kernel_headers})
file(CREATE_LINK /usr/include/linux ${kernel_headers}/linux SYMBOLIC)
file(CREATE_LINK /usr/include/asm-generic ${kernel_headers}/asm-generic SYMBOLIC)
file(CREATE_LINK /usr/include/x86_64-linux-gnu/asm ${kernel_headers}/asm SYMBOLIC)

# g++ tells where its own headers are; musl's stand behind those of C++ and before those of the compiler.
execute_process(COMMAND ${MUSL_CXX} -xc++ -E -v /dev/null OUTPUT_QUIET ERROR_VARIABLE searched)
string(REGEX MATCHALL "\n [^\n]*/c\\+\\+/[^\n]*" cxx_headers "${searched}")
execute_process(COMMAND ${MUSL_CXX} -print-file-name=include
  OUTPUT_VARIABLE compiler_headers OUTPUT_STRIP_TRAILING_WHITESPACE)
# They were set up for another libc: its version decides nothing here, and its name of a type is musl's too.
set(CMAKE_CXX_FLAGS_INIT "-nostdinc \"-D__GLIBC_PREREQ(major,minor)=0\" -D__locale_t=locale_t")
foreach(folder ${cxx_headers} /usr/include/x86_64-linux-musl ${compiler_headers} ${kernel_headers})
  string(STRIP "${folder}" folder)
  string(APPEND CMAKE_CXX_FLAGS_INIT " -isystem ${folder}")
endforeach()
set(CMAKE_C_FLAGS_INIT "-isystem ${kernel_headers}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
