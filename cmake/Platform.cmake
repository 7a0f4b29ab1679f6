# Detects optional features of the platform, beyond POSIX. src/base/platform.cpp has the fallbacks;
# CONTRIBUTING.md says what is lost without each feature.

option(GATESCOPE_PLAIN_POSIX "Use POSIX features only" OFF)
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
# Linux's /proc and /sys: children of a process, cgroups.
gatescope_feature(PROC linux/limits.h NAME_MAX)

# Hardening: a position-independent executable, and a relocation table that is read-only at run time.
set(GATESCOPE_HARDENED_LINKING "")
if(NOT GATESCOPE_PLAIN_POSIX)
  check_linker_flag(CXX LINKER:-z,relro,-z,now GATESCOPE_FOUND_RELRO)
  if(GATESCOPE_FOUND_RELRO)
    set(GATESCOPE_HARDENED_LINKING -pie LINKER:-z,relro,-z,now)
  endif()
endif()
check_linker_flag(CXX -static-libstdc++ GATESCOPE_HAS_STATIC_RUNTIME)
