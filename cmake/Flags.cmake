# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# Compiler and linker settings, as two interface targets: what every target here is checked with,
# and what the shipped files are built with on top.

add_library(vorlix_sanitized INTERFACE)
set(VORLIX_SANITIZE_LINK)
if(VORLIX_SANITIZE)
  target_compile_options(vorlix_sanitized INTERFACE
    -fsanitize=${VORLIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  set(VORLIX_SANITIZE_LINK -fsanitize=${VORLIX_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND VORLIX_SANITIZE MATCHES "address" AND NOT VORLIX_FUZZ)
    # The run-time library is shared by program and library, as gcc's is. That of the check of function types
    # is for programs that are linked as C++, which these are not.
    target_compile_options(vorlix_sanitized INTERFACE -fno-sanitize=function)
    execute_process(OUTPUT_STRIP_TRAILING_WHITESPACE OUTPUT_VARIABLE runtime
      COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so)
    get_filename_component(runtime ${runtime} DIRECTORY)
    list(APPEND VORLIX_SANITIZE_LINK -shared-libsan -Wl,-rpath,${runtime})
  endif()
  target_link_options(vorlix_sanitized INTERFACE ${VORLIX_SANITIZE_LINK})
endif()

# A compiler that the project has not seen may warn of more: that is no reason for a packager's build to fail.
add_library(vorlix_warnings INTERFACE)
target_compile_options(vorlix_warnings INTERFACE -Wall -Wextra $<$<BOOL:${VORLIX_WERROR}>:-Werror>)

add_library(vorlix_checked INTERFACE)
target_link_libraries(vorlix_checked INTERFACE vorlix_sanitized vorlix_warnings)
target_compile_options(vorlix_checked INTERFACE
  -Wshadow -Wformat=2 -Wconversion -Wundef
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast>
  $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>
  # Log lines name the source by its path from the top folder, wherever the build lies.
  "-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")

# The device has libc and nothing else: no exceptions, no RTTI, no guards for local statics, and
# only what carries VORLIX_API leaves the shared library. In a debug build the tests share one that is
# open to them; the version script closes the other one all the same.
add_library(vorlix_shipped INTERFACE)
target_link_libraries(vorlix_shipped INTERFACE vorlix_checked)
target_compile_options(vorlix_shipped INTERFACE
  -Wmissing-declarations
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics
    -fvisibility-inlines-hidden>
  -fvisibility=$<IF:$<CONFIG:Debug>,default,hidden> -ffunction-sections -fdata-sections)
# Nothing here throws or is thrown through, so the tables serve a debugger alone, and a back trace.
if(NOT VORLIX_UNWIND)
  target_compile_options(vorlix_shipped INTERFACE
    -fno-asynchronous-unwind-tables -fno-unwind-tables)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(vorlix_shipped INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wglobal-constructors -Wexit-time-destructors>)
endif()
# -z now is each target's own choice: a library binds only what its application calls. Code and
# constants share their pages: up to two pages less in the file, and two mappings less at each start.
# Symbols stay in: whoever packs the files strips them, and keeps what a debugger wants.
target_link_options(vorlix_shipped INTERFACE
  -Wl,--gc-sections -Wl,-z,relro -Wl,-z,noseparate-code -Wl,--as-needed)
