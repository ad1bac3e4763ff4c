# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# The tests stand in the place of C calls by name (--wrap). On a 32-bit target with 64-bit file offsets and
# times the C library's headers give some of these calls another name. The tests keep to the plain one: the
# linker leads the other to it, and the way on to libc has the other behind it.
set(wide_names
  "open open64"
  "fopen fopen64"
  "pread pread64"
  "fcntl __fcntl_time64"
  "stat __stat64_time64"
  "fstat __fstat64_time64"
  "lstat __lstat64_time64"
  "readdir readdir64"
  "ioctl __ioctl_time64"
  "sendmsg __sendmsg64"
  "recvmsg __recvmsg64"
  "setsockopt __setsockopt64"
  "time __time64"
  "gettimeofday __gettimeofday64"
  "clock_gettime __clock_gettime64")
if(NOT CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(wide_names)
endif()

set(renamed)
foreach(pair ${wide_names})
  separate_arguments(pair)
  list(GET pair 0 plain)
  list(GET pair 1 wide)
  set(wide_name_of_${plain} ${wide})
  string(APPEND renamed "#pragma redefine_extname __real_${plain} __real_${wide}\n")
endforeach()

# vorlix_wrap(<target> <PRIVATE or INTERFACE> <call>...): the target's program meets __wrap_<call>
function(vorlix_wrap target scope)
  foreach(call ${ARGN})
    set(wide ${wide_name_of_${call}})
    if(wide)
      target_link_options(${target} ${scope}
        -Wl,--wrap=${wide} -Wl,--defsym=__wrap_${wide}=__wrap_${call})
    else()
      target_link_options(${target} ${scope} -Wl,--wrap=${call})
    endif()
  endforeach()
endfunction()

# vorlix_wide_names(<target>): what is built with it knows the names
function(vorlix_wide_names target)
  if(renamed)
    set(header ${PROJECT_BINARY_DIR}/tests/WideNames.h)
    file(WRITE ${header}.new "${renamed}")
    configure_file(${header}.new ${header} COPYONLY)
    target_compile_options(${target} INTERFACE "SHELL:-include ${header}")
  endif()
endfunction()
