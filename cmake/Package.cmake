# "cpack -G DEB" in the build directory makes a package for Debian and its relatives.

set(GATESCOPE_MAINTAINER "the gatescope team <gatescope@example.com>" CACHE STRING
    "Maintainer of the package, as 'name <address>'")
# Part of the changelog, so it must not change from one packaging to the next.
set(GATESCOPE_PACKAGE_DATE "Sat, 21 Nov 2026 12:00:00 +0000" CACHE STRING
    "Date of this release of the package")

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
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "query, report on and configure the Gatewarden policy of a region
gatescope serves the administrator of one policy region of Gatewarden, the
access-control layer that runs as ClearCase triggers.
.
Its queries count the commands that were allowed and denied, from the region's
logs, and write each result as an HTML page of its own. Its actions view and
change the region's policy file, have it checked before and after a change,
and prune the logs.")

# What Debian wants in a package and nobody else does.
configure_file(${PROJECT_SOURCE_DIR}/packaging/copyright.in
               ${PROJECT_BINARY_DIR}/packaging/copyright @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/packaging/changelog.in
               ${PROJECT_BINARY_DIR}/packaging/changelog @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/packaging/finish_package.cmake.in
               ${PROJECT_BINARY_DIR}/packaging/finish_package.cmake @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_BINARY_DIR}/packaging/finish_package.cmake)

include(CPack)
