# Installs the example service with the path under which the program was installed.
# Uses the variables service, work_directory, program_path and destination.

file(READ "${service}" text)
string(REPLACE "/usr/bin/gatescope" "${program_path}" text "${text}")
get_filename_component(name "${service}" NAME)
file(WRITE "${work_directory}/${name}" "${text}")
file(INSTALL "${work_directory}/${name}" DESTINATION "${destination}")
