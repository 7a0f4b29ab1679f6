# Manual pages and completions, filled from the program's tables by fill_templates.

add_executable(fill_templates ${PROJECT_SOURCE_DIR}/tools/fill_templates.cpp)
target_link_libraries(fill_templates PRIVATE gatescope_core gatescope_flags)

# The programs that are installed. Each has a page in section 1 of the manual,
# docs/manual/<program>.1.in, and a template completion/<program>.<shell>.in for each shell.
set(GATESCOPE_PROGRAMS gatescope gatescope-history)
set(GATESCOPE_SHELLS bash zsh fish)

# gatescope_completion_path(<program> <shell> <variable>): the path of the program's completion for the
# shell, relative to the directory of shared data.
function(gatescope_completion_path program shell variable)
  set(bash bash-completion/completions/${program})
  set(zsh zsh/site-functions/_${program})
  set(fish fish/vendor_completions.d/${program}.fish)
  set(${variable} ${${shell}} PARENT_SCOPE)
endfunction()

set(GATESCOPE_DOCUMENTS "")

# gatescope_document(<template> <output>): fills the template; <output> is a path in the build tree.
function(gatescope_document template output)
  set(source ${PROJECT_SOURCE_DIR}/${template})
  set(result ${PROJECT_BINARY_DIR}/${output})
  get_filename_component(folder ${result} DIRECTORY)
  file(MAKE_DIRECTORY ${folder})
  add_custom_command(
    OUTPUT ${result}
    COMMAND fill_templates ${source} ${result}
    DEPENDS fill_templates ${source}
    VERBATIM)
  set(GATESCOPE_DOCUMENTS ${GATESCOPE_DOCUMENTS} ${result} PARENT_SCOPE)
endfunction()

foreach(program IN LISTS GATESCOPE_PROGRAMS)
  gatescope_document(docs/manual/${program}.1.in manual/${program}.1)
  foreach(shell IN LISTS GATESCOPE_SHELLS)
    gatescope_completion_path(${program} ${shell} path)
    gatescope_document(completion/${program}.${shell}.in completion/${path})
  endforeach()
endforeach()
gatescope_document(docs/manual/gatescope-files.5.in manual/gatescope-files.5)
add_custom_target(documents ALL DEPENDS ${GATESCOPE_DOCUMENTS})
