# Manual pages and completion, filled from the program's own tables by a program that links them.

add_executable(fill_templates ${PROJECT_SOURCE_DIR}/tools/fill_templates.cpp)
target_link_libraries(fill_templates PRIVATE gatescope_core gatescope_flags)

set(GATESCOPE_DOCUMENTS "")

# gatescope_document(<template> <output>): makes <output>, a path in the build tree.
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

gatescope_document(docs/manual/gatescope.1.in manual/gatescope.1)
gatescope_document(docs/manual/gatescope-files.5.in manual/gatescope-files.5)
gatescope_document(completion/gatescope.bash.in completion/gatescope)
add_custom_target(documents ALL DEPENDS ${GATESCOPE_DOCUMENTS})
