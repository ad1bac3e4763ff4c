# Run by cpack over what it has gathered: Debian wants its manual pages and changelogs compressed.
file(GLOB_RECURSE pages
  ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man?/*.?
  ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog)
foreach(page ${pages})
  execute_process(COMMAND gzip -9n ${page} RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "gzip of ${page} failed")
  endif()
endforeach()
