# Installation, and the target "uninstall".

include(GNUInstallDirs)

set(GATESCOPE_EXAMPLES_DIR ${CMAKE_INSTALL_DOCDIR}/examples)
# Directories with files of other programs too.
set(GATESCOPE_SHARED_DIRS ${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_MANDIR}/man1
  ${CMAKE_INSTALL_MANDIR}/man5)

# Independent of the umask.
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

foreach(shell IN LISTS GATESCOPE_SHELLS)
  gatescope_completion_path(gatescope ${shell} path)
  cmake_path(GET path PARENT_PATH folder)
  list(APPEND GATESCOPE_SHARED_DIRS ${CMAKE_INSTALL_DATADIR}/${folder})
endforeach()

# Directories are created first, since CMake would apply the umask to them. The record of files and
# created directories is needed to uninstall: CMake's manifest lists no directories, and each
# installation replaces it, also those of cpack and of the tests.
set(GATESCOPE_RECORD_DIR ${PROJECT_BINARY_DIR}/installed)
install(CODE "
  set(default_record \"${GATESCOPE_RECORD_DIR}\")
  set(folders \"${GATESCOPE_SHARED_DIRS}\" \"${CMAKE_INSTALL_DOCDIR}/docs/pictures\"
    \"${GATESCOPE_EXAMPLES_DIR}/systemd\")")
install(SCRIPT ${PROJECT_SOURCE_DIR}/cmake/make_directories.cmake)

install(TARGETS ${GATESCOPE_PROGRAMS} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(program IN LISTS GATESCOPE_PROGRAMS)
  install(FILES ${PROJECT_BINARY_DIR}/manual/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  foreach(shell IN LISTS GATESCOPE_SHELLS)
    gatescope_completion_path(${program} ${shell} path)
    cmake_path(GET path PARENT_PATH folder)
    install(FILES ${PROJECT_BINARY_DIR}/completion/${path}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/${folder})
  endforeach()
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/manual/gatescope-files.5
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
              ${PROJECT_SOURCE_DIR}/CONTRIBUTING.md ${PROJECT_SOURCE_DIR}/SECURITY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
# In the same tree as in the sources, so that links between documents work.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
        FILES_MATCHING PATTERN *.md PATTERN *.png
        PATTERN manual EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${GATESCOPE_EXAMPLES_DIR}
        PATTERN *.service EXCLUDE
        PATTERN gatescope-metrics EXCLUDE)
install(PROGRAMS ${PROJECT_SOURCE_DIR}/examples/gatescope-metrics
        DESTINATION ${GATESCOPE_EXAMPLES_DIR})
# systemd needs the program's absolute path.
install(CODE "
  set(service \"${PROJECT_SOURCE_DIR}/examples/systemd/gatescope-report@.service\")
  set(work_directory \"${PROJECT_BINARY_DIR}/examples\")
  set(program_path \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/gatescope\")
  set(destination \"\${CMAKE_INSTALL_PREFIX}/${GATESCOPE_EXAMPLES_DIR}/systemd\")")
install(SCRIPT ${PROJECT_SOURCE_DIR}/cmake/install_service.cmake)

install(SCRIPT ${PROJECT_SOURCE_DIR}/cmake/record_files.cmake)

add_custom_target(uninstall
  COMMAND ${CMAKE_COMMAND} -Ddefault_record=${GATESCOPE_RECORD_DIR}
          -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake
  VERBATIM)
