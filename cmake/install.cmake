# cmake/install.cmake - what "cmake --install" puts where, and the packages that cpack makes of it.
#
# The folders are those of GNUInstallDirs: CMAKE_INSTALL_BINDIR=games installs where games belong on
# Debian. On Windows everything lies in one folder.
if(WIN32)
  foreach(kind BIN LIBEXEC DATA DOC MAN)
    set(CMAKE_INSTALL_${kind}DIR .)
  endforeach()
  set(book_folder .)
else()
  include(GNUInstallDirs)
  set(book_folder ${CMAKE_INSTALL_DATADIR}/games/vatro)
endif()

# Where the program looks, seen from its own folder, so that an installed tree can be moved.
set(program_folder ${CMAKE_INSTALL_BINDIR})
if(VATRO_LAUNCHER)
  set(program_folder ${CMAKE_INSTALL_LIBEXECDIR}/vatro)
endif()
set(VATRO_INSTALLED_BOOK "")
if(VATRO_INSTALL)
  file(RELATIVE_PATH VATRO_INSTALLED_BOOK /${program_folder} /${book_folder}/book.bin)
endif()

# Called once the targets are there.
function(vatro_install)
  if(NOT VATRO_INSTALL)
    install(CODE "message(FATAL_ERROR \"Configure with -DVATRO_INSTALL=ON to build what can be installed\")")
    return()
  endif()

  find_program(POLYGLOT polyglot PATHS /usr/games REQUIRED)
  add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/book.bin
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/make_book.sh
            ${PROJECT_SOURCE_DIR}/data/openings.pgn ${PROJECT_BINARY_DIR}/book.bin
    DEPENDS ${PROJECT_SOURCE_DIR}/data/openings.pgn ${PROJECT_SOURCE_DIR}/scripts/make_book.sh
    COMMENT "Compiling the opening book" VERBATIM)
  add_custom_target(book ALL DEPENDS ${PROJECT_BINARY_DIR}/book.bin)

  install(TARGETS vatro vatro-tbgen DESTINATION ${program_folder} COMPONENT program)
  if(VATRO_LAUNCHER)
    # The name without the processor belongs to the launcher.
    foreach(program vatro vatro-tbgen)
      set_target_properties(${program} PROPERTIES OUTPUT_NAME ${program}-${VATRO_ARCH})
      set_target_properties(${program}-launcher PROPERTIES OUTPUT_NAME ${program})
    endforeach()
    install(TARGETS vatro-launcher vatro-tbgen-launcher
            DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT files)
  endif()

  install(FILES ${PROJECT_BINARY_DIR}/book.bin DESTINATION ${book_folder} COMPONENT files)
  install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT files)
  install(FILES docs/xboard.png docs/table-sizes.svg docs/tablebase-format.md
          DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT files)
  if(WIN32)
    vatro_install_as_text(vatro)
    vatro_install_as_text(vatro-tbgen)
    # The licences of the libraries that the programs contain.
    foreach(package libz-mingw-w64-dev mingw-w64-x86-64-dev gcc-mingw-w64-x86-64-posix-runtime)
      install(FILES /usr/share/doc/${package}/copyright RENAME ${package}.txt
              DESTINATION ${CMAKE_INSTALL_DOCDIR}/licences COMPONENT files OPTIONAL)
    endforeach()
    return()
  endif()
  install(FILES packaging/vatro.eng
          DESTINATION ${CMAKE_INSTALL_DATADIR}/games/plugins/xboard COMPONENT files)
  install(FILES packaging/vatro.png
          DESTINATION ${CMAKE_INSTALL_DATADIR}/games/plugins/logos COMPONENT files)
  install(FILES packaging/vatro.png
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/64x64/apps COMPONENT files)
  install(FILES packaging/vatro.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT files)
  vatro_install_compressed(${PROJECT_SOURCE_DIR}/man/vatro.6 ${CMAKE_INSTALL_MANDIR}/man6 vatro.6.gz)
  vatro_install_compressed(${PROJECT_SOURCE_DIR}/man/vatro-tbgen.6 ${CMAKE_INSTALL_MANDIR}/man6 vatro-tbgen.6.gz)
  if(VATRO_DEBIAN)
    install(FILES packaging/debian/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT files)
    configure_file(packaging/debian/changelog.in changelog @ONLY)
    vatro_install_compressed(
      ${PROJECT_BINARY_DIR}/changelog ${CMAKE_INSTALL_DOCDIR} changelog.gz)
  endif()
endfunction()

# vatro_install_as_text(PAGE): the manual page as a plain file, where there is no program to read it with.
function(vatro_install_as_text page)
  add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/${page}.txt
    COMMAND sh -c "mandoc -T utf8 '${PROJECT_SOURCE_DIR}/man/${page}.6' | sed 's/.\\x08//g' > ${page}.txt"
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR}
    DEPENDS ${PROJECT_SOURCE_DIR}/man/${page}.6 VERBATIM)
  add_custom_target(text-${page} ALL DEPENDS ${PROJECT_BINARY_DIR}/${page}.txt)
  install(FILES ${PROJECT_BINARY_DIR}/${page}.txt DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT files)
endfunction()

# vatro_install_compressed(FILE FOLDER NAME): without the time of compression, which would make two
# builds differ.
function(vatro_install_compressed file folder name)
  add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/${name}
    COMMAND gzip -9nc ${file} > ${PROJECT_BINARY_DIR}/${name}
    DEPENDS ${file})
  add_custom_target(compressed-${name} ALL DEPENDS ${PROJECT_BINARY_DIR}/${name})
  install(FILES ${PROJECT_BINARY_DIR}/${name} DESTINATION ${folder} COMPONENT files)
endfunction()

set(CPACK_PACKAGE_VENDOR "The Vatro authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "chess engine for XBoard and the terminal")
set(CPACK_PACKAGE_DESCRIPTION
"Vatro plays and analyses chess. Graphical interfaces such as XBoard start it
and talk to it in the Chess Engine Communication Protocol; at a terminal it
understands the same commands. It comes with an opening book and with
vatro-tbgen, which makes endgame tablebases.")
set(CPACK_PACKAGE_CONTACT "${VATRO_MAINTAINER}")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR TGZ)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
endif()
set(CPACK_PACKAGE_FILE_NAME "vatro-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
# The same programs for a faster processor come from a build folder of their own.
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};vatro;ALL;/")
if(VATRO_FAST_BUILD)
  list(APPEND CPACK_INSTALL_CMAKE_PROJECTS "${VATRO_FAST_BUILD};vatro;program;/")
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "xboard")
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/fix_times.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/pack_again.cmake)
if(VATRO_DEBIAN)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
endif()
include(CPack)
