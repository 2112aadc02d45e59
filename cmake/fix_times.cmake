# cmake/fix_times.cmake - gives all files of a package the time of the commit, before cpack packs them:
# two builds of one commit give the same bytes.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(
    COMMAND find ${CPACK_TEMPORARY_INSTALL_DIRECTORY} -exec
            touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
    COMMAND_ERROR_IS_FATAL ANY)
endif()
