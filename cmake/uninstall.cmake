# Removes what was installed from this build tree, wherever that was: the files, and the
# directories that were made for them where nothing else has come to stand in them since.
# "default_record" is the directory in which installations from this tree write both down.

include(${CMAKE_CURRENT_LIST_DIR}/record.cmake)

foreach(kind files directories)
  set(${kind} "")
  if(EXISTS ${record}/${kind}.txt)
    file(STRINGS ${record}/${kind}.txt ${kind})
    list(REMOVE_DUPLICATES ${kind})
  endif()
endforeach()

if(NOT files)
  message(STATUS "Nothing was installed from this build tree.")
endif()
foreach(file IN LISTS files)
  if(EXISTS "${file}" OR IS_SYMLINK "${file}")
    message(STATUS "Removing: ${file}")
    file(REMOVE "${file}")
    if(EXISTS "${file}" OR IS_SYMLINK "${file}")
      message(FATAL_ERROR "Could not remove ${file}")
    endif()
  endif()
endforeach()

# The deepest first.
list(SORT directories ORDER DESCENDING)
foreach(directory IN LISTS directories)
  file(GLOB inhabitants "${directory}/*" "${directory}/.*")
  list(FILTER inhabitants EXCLUDE REGEX "/\\.\\.?$")
  if(IS_DIRECTORY "${directory}" AND NOT inhabitants)
    message(STATUS "Removing: ${directory}")
    file(REMOVE_RECURSE "${directory}")
  endif()
endforeach()
file(REMOVE ${record}/files.txt ${record}/directories.txt)
