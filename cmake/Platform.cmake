# What not every UNIX has, and gatescope uses where it is there. What is done instead stands in
# src/base/platform.cpp, and what is lost in CONTRIBUTING.md.

option(GATESCOPE_PLAIN_POSIX "Use nothing but what every POSIX system has" OFF)
include(CheckCXXSymbolExists)
include(CheckLinkerFlag)

# gatescope_feature(<name> <header> <symbol>): defines GATESCOPE_HAS_<name> as 1 or 0.
function(gatescope_feature name header symbol)
  set(found 0)
  if(NOT GATESCOPE_PLAIN_POSIX)
    check_cxx_symbol_exists(${symbol} ${header} GATESCOPE_FOUND_${name})
    if(GATESCOPE_FOUND_${name})
      set(found 1)
    endif()
  endif()
  add_compile_definitions(GATESCOPE_HAS_${name}=${found})
  set(GATESCOPE_HAS_${name} ${found} PARENT_SCOPE)
endfunction()

gatescope_feature(LEASES fcntl.h F_SETLEASE)
gatescope_feature(RENAME_NOREPLACE stdio.h RENAME_NOREPLACE)
gatescope_feature(STATX sys/stat.h STATX_ATTR_APPEND)
gatescope_feature(ATTRIBUTES sys/xattr.h flistxattr)
gatescope_feature(AFFINITY sched.h sched_getaffinity)
gatescope_feature(MKOSTEMP stdlib.h mkostemp)
gatescope_feature(FLOCK sys/file.h flock)
# The children of a process, and its control groups, by Linux's names in /proc and /sys.
gatescope_feature(PROC linux/limits.h NAME_MAX)

# Linking that makes a fault in the program harder to use.
set(GATESCOPE_HARDENED_LINKING "")
if(NOT GATESCOPE_PLAIN_POSIX)
  check_linker_flag(CXX LINKER:-z,relro,-z,now GATESCOPE_FOUND_RELRO)
  if(GATESCOPE_FOUND_RELRO)
    set(GATESCOPE_HARDENED_LINKING -pie LINKER:-z,relro,-z,now)
  endif()
endif()
check_linker_flag(CXX -static-libstdc++ GATESCOPE_HAS_STATIC_RUNTIME)
