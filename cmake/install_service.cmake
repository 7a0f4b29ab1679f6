# Installs the example service with the path of the installed program.
# Uses the variables service, work_directory, program_path and destination.

# systemd's syntax: a path with a blank is quoted, and a '%' is doubled.
string(REPLACE "%" "%%" word "${program_path}")
if(word MATCHES "[ \t]")
  set(word "\"${word}\"")
endif()
file(READ "${service}" text)
string(REPLACE "ExecStart=/usr/bin/gatescope " "ExecStart=${word} " text "${text}")
get_filename_component(name "${service}" NAME)
file(WRITE "${work_directory}/${name}" "${text}")
file(INSTALL "${work_directory}/${name}" DESTINATION "${destination}")
