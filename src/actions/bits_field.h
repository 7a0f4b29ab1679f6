#pragma once

#include <cstddef>
#include <string>

#include "messages/bit_names.h"

namespace gatescope {

// The functionality bits of a region as text: one '0' or '1' a bit.

inline constexpr std::size_t NUMBER_OF_BITS = GATEWARDEN_BITS_DESC.size();

/// The state that a field stands for: exactly one '0' or '1' a bit. What is neither in the field,
/// or missing, is '0'; what comes after the last bit is cut.
std::string bit_state(std::string field);

/// The list to pick bits from, each with its number, its present state and its name.
std::string bit_entries(const std::string& state);

/// The state with the bits of the picked entries (separated by commas) on and all others off.
std::string state_with_only(const std::string& picks);

}  // namespace gatescope
