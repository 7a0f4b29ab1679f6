# Removes everything that was installed from this build tree, with any prefix: the files, and the
# directories created for them unless they contain other files now. "default_record" is the directory
# of the record.

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
  file(GLOB entries "${directory}/*" "${directory}/.*")
  list(FILTER entries EXCLUDE REGEX "/\\.\\.?$")
  if(IS_DIRECTORY "${directory}" AND NOT entries)
    message(STATUS "Removing: ${directory}")
    file(REMOVE_RECURSE "${directory}")
  endif()
endforeach()
file(REMOVE ${record}/files.txt ${record}/directories.txt)
