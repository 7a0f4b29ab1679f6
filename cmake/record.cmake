# Sets "record", the directory where an installation writes down what it does. Somebody who tries
# an installation beside a real one names another by the environment.

set(record "${default_record}")
if(DEFINED ENV{GATESCOPE_INSTALL_RECORD})
  set(record "$ENV{GATESCOPE_INSTALL_RECORD}")
endif()

# A package is put together in a directory of its own, which nobody uninstalls.
set(recording ON)
if("$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}" MATCHES "_CPack_Packages")
  set(recording OFF)
endif()
