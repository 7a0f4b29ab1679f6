# Part of the installation: writes down which of the directories "folders" (relative to the prefix,
# or absolute) it is about to make, with all above them, into <record>/directories.txt.

include(${CMAKE_CURRENT_LIST_DIR}/record.cmake)
if(recording)
  file(MAKE_DIRECTORY ${record})
  foreach(folder IN LISTS folders)
    if(NOT IS_ABSOLUTE "${folder}")
      set(folder "${CMAKE_INSTALL_PREFIX}/${folder}")
    endif()
    set(folder "$ENV{DESTDIR}${folder}")
    while(NOT EXISTS "${folder}")
      file(APPEND ${record}/directories.txt "${folder}\n")
      get_filename_component(folder "${folder}" DIRECTORY)
    endwhile()
  endforeach()
endif()
