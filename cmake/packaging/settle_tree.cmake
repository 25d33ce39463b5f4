# Runs over the installed tree before it is packed: compilers' marks are dropped, texts are compressed as Debian wants them, and
# every file gets the release's date, so that two builds of one commit give the same packages.
file(GLOB_RECURSE texts
     ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog.Debian
     ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/*.[1-9])
foreach(text IN LISTS texts)
  if(NOT IS_SYMLINK ${text})
    execute_process(COMMAND gzip -9n ${text} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()

file(GLOB_RECURSE binaries ${CPACK_TEMPORARY_DIRECTORY}/*/usr/bin/* ${CPACK_TEMPORARY_DIRECTORY}/*/usr/lib/*.so)
foreach(binary IN LISTS binaries)
  execute_process(COMMAND ${CPACK_PLX_STRIP} --remove-section=.comment --remove-section=.note ${binary}
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()

if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch -h -d @$ENV{SOURCE_DATE_EPOCH} "{}" +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
