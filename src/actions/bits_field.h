#pragma once

#include <cstddef>
#include <string>

#include "messages/bit_names.h"

namespace gatescope {

// The functionality bits of a region as text: one '0' or '1' per bit.

inline constexpr std::size_t NUMBER_OF_BITS = GATEWARDEN_BITS_DESC.size();

/// The state in a field: exactly one '0' or '1' per bit. Other characters and missing ones become
/// '0'; characters after the last bit are cut.
std::string bit_state(std::string field);

/// The list of all bits, each with its number, current state and name.
std::string bit_entries(const std::string& state);

/// The state with only the bits of the picked entries (separated by commas) set.
std::string state_with_only(const std::string& picks);

}  // namespace gatescope
