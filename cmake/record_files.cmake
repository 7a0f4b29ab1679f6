# Part of the installation: adds the installed files to <record>/files.txt.

include(${CMAKE_CURRENT_LIST_DIR}/record.cmake)
if(recording)
  foreach(file IN LISTS CMAKE_INSTALL_MANIFEST_FILES)
    file(APPEND ${record}/files.txt "$ENV{DESTDIR}${file}\n")
  endforeach()
endif()
