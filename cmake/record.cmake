# Sets "record", the directory of an installation's record, and "recording". A test that installs beside
# a real installation names another directory in the environment.

set(record "${default_record}")
if(DEFINED ENV{GATESCOPE_INSTALL_RECORD})
  set(record "$ENV{GATESCOPE_INSTALL_RECORD}")
endif()

# cpack's installations are not uninstalled.
set(recording ON)
if("$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}" MATCHES "_CPack_Packages")
  set(recording OFF)
endif()
