# cmake/pack_again.cmake - packs an archive again with sorted names and no user's number, which cpack takes
# as it finds them: two builds of one commit give the same bytes.
if(CPACK_GENERATOR STREQUAL "TGZ" AND DEFINED ENV{SOURCE_DATE_EPOCH})
  cmake_path(GET CPACK_TEMPORARY_DIRECTORY PARENT_PATH parent)
  execute_process(
    COMMAND tar --sort=name --owner=0 --group=0 --numeric-owner --mtime=@$ENV{SOURCE_DATE_EPOCH}
            -C ${parent} -c ${CPACK_PACKAGE_FILE_NAME}
    COMMAND gzip -9n
    OUTPUT_FILE ${CPACK_PACKAGE_FILES}
    COMMAND_ERROR_IS_FATAL ANY)
elseif(CPACK_GENERATOR STREQUAL "ZIP" AND DEFINED ENV{SOURCE_DATE_EPOCH})
  cmake_path(GET CPACK_TEMPORARY_DIRECTORY PARENT_PATH parent)
  file(REMOVE ${CPACK_PACKAGE_FILES})
  execute_process(
    COMMAND find ${CPACK_PACKAGE_FILE_NAME} -type f
    COMMAND sort
    COMMAND zip -q -9 -X -@ ${CPACK_PACKAGE_FILES}
    WORKING_DIRECTORY ${parent}
    COMMAND_ERROR_IS_FATAL ANY)
endif()
