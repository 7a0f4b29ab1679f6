#pragma once

#include <array>

namespace gatescope {

/// The largest number of a functionality bit.
inline constexpr int HIGHEST_BIT = 23;

/// Names of the functionality bits; the index is the bit's number and its place in the region's
/// bits field.
inline constexpr std::array<const char*, HIGHEST_BIT + 1> GATEWARDEN_BITS_DESC = {
    "BIT__AUTO_BRANCH_REMOVAL",
    "BIT__CHOWN_VOB_OWNER",
    "BIT__EVIL_TWIN",
    "BIT__ONE_CO_PER_BRANCH",
    "BIT__CHECK_BRANCH_LABEL_NAMES",
    "BIT__VOB_OWNER_CI_MAIN",
    "BIT__RECURSIVE_CI_CO_UNCO",
    "BIT__CHECK_MAGIC_PATH",
    "BIT__NO_SPACES_IN_ELEMENT_NAMES",
    "BIT__NO_MULTIPLE_MERGES",
    "BIT__SMART_CHECKIN",
    "BIT__CASE_CHECKING",
    "BIT__ATOMIC_CHANGE",
    "BIT__REQUIRE_EXTENSION",
    "BIT__NOTIFY_PARENT_CHANGE_ON_CO",
    "BIT__NOTIFY_PARENT_CHANGE_ON_CI",
    "BIT__PREVENT_DATA_LOSS",
    "BIT__AUTO_EXEC_BIT",
    "BIT__PREVENT_CORE_ELEMENTS",
    "BIT__AUTO_DIRECTORY_PROTECT",
    "BIT__AUTO_CONTRIB_REMOVAL",
    "BIT__WARN_LOST_AND_FOUND",
    "BIT__OWN_LIKE_PARENT_DIR",
    "BIT__FORCE_CHECKOUTS_UNRESERVED"};

}  // namespace gatescope
