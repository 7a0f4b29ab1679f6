# In the build directory, "cpack -G DEB" makes a package for Debian and its derivatives, "cpack -G RPM"
# one for Red Hat, SUSE and theirs.

set(GATESCOPE_MAINTAINER "the gatescope team <gatescope@example.com>" CACHE STRING
    "Maintainer of the package, as 'name <address>'")
# Part of the changelog; fixed, so that the same sources make the same package.
set(GATESCOPE_PACKAGE_DATE "Sat, 21 Nov 2026 12:00:00 +0000" CACHE STRING
    "Date of this release of the package")

set(summary "query, report on and configure the Gatewarden policy of a region")
set(description
    "gatescope serves the administrator of one policy region of Gatewarden, the
access-control layer that runs as ClearCase triggers.

Its queries count the commands that were allowed and denied, from the region's
logs, and write each result as an HTML page of its own. Its actions view and
change the region's policy file, have it checked before and after a change,
and prune the logs.")

set(CPACK_PACKAGE_NAME gatescope)
set(CPACK_PACKAGE_VENDOR "${GATESCOPE_SUPPLIER_NAME}")
set(CPACK_PACKAGE_CONTACT "${GATESCOPE_MAINTAINER}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "${GATESCOPE_SUPPLIER_URL}")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS bash-completion)
string(REPLACE "\n\n" "\n.\n" CPACK_DEBIAN_PACKAGE_DESCRIPTION "${summary}\n${description}")

set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_RELEASE 1)
set(CPACK_RPM_PACKAGE_RELEASE_DIST ON)
set(CPACK_RPM_PACKAGE_SUMMARY "${summary}")
set(CPACK_RPM_PACKAGE_DESCRIPTION "${description}")
set(CPACK_RPM_PACKAGE_LICENSE "None chosen yet; all rights reserved")
set(CPACK_RPM_PACKAGE_GROUP "Applications/System")
set(CPACK_RPM_PACKAGE_URL "${GATESCOPE_SUPPLIER_URL}")
set(CPACK_RPM_CHANGELOG_FILE ${PROJECT_BINARY_DIR}/packaging/changelog.rpm)
# The systemd service has the absolute path of the program.
set(CPACK_PACKAGE_RELOCATABLE OFF)
# "Suggests" is here, since cpack does not detect that rpm supports it. With SOURCE_DATE_EPOCH the same
# sources make the same package.
set(CPACK_RPM_SPEC_MORE_DEFINE
    "Suggests: bash-completion
%define packager ${GATESCOPE_MAINTAINER}
%define _buildhost localhost
%define use_source_date_epoch_as_buildtime 1
%define clamp_mtime_to_source_date_epoch 1
%define _build_id_links none")
# The package does not own the directories that it shares with others, nor their parents.
foreach(folder IN LISTS GATESCOPE_SHARED_DIRS)
  set(folder ${CPACK_PACKAGING_INSTALL_PREFIX}/${folder})
  while(NOT folder STREQUAL CPACK_PACKAGING_INSTALL_PREFIX)
    list(APPEND CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION ${folder})
    cmake_path(GET folder PARENT_PATH folder)
  endwhile()
endforeach()

# "Sat, 21 Nov 2026 ..." as "Sat Nov 21 2026".
string(REGEX REPLACE "^(...), ([0-9]+) (...) ([0-9]+) .*" "\\1 \\3 \\2 \\4" GATESCOPE_RPM_DATE
       "${GATESCOPE_PACKAGE_DATE}")

# Files and settings that differ between the kinds of packages.
foreach(file copyright changelog changelog.rpm finish_package.cmake for_generator.cmake)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/${file}.in ${PROJECT_BINARY_DIR}/packaging/${file}
                 @ONLY)
endforeach()
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_BINARY_DIR}/packaging/for_generator.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/packaging/finish_package.cmake)

include(CPack)
