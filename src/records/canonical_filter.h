#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace gatescope {

/// The fields that the fast path compares in a canonical record.
struct CanonicalFilter {
    /// Maximum length of a user and the '[' after it.
    static constexpr std::size_t USER_LIMIT = 32;

    /// Outcome by the plain rule, by kind and detail letter.
    std::array<std::uint8_t, 32> outcomes = {};
    /// "user[" in lower case; 0xFF for each byte to compare; and for each letter the bit in which
    /// upper and lower case differ.
    alignas(16) std::array<char, USER_LIMIT> user = {};
    alignas(16) std::array<char, USER_LIMIT> user_mask = {};
    alignas(16) std::array<char, USER_LIMIT> user_case = {};
    /// The bytes of "[54]" and "<23>" as numbers, and the bits of them to compare.
    std::uint32_t command = 0;
    std::uint32_t command_mask = 0;
    std::uint32_t value = 0;
    std::uint32_t value_mask = 0;
    /// Whether any of user, command and value is compared, and whether more than 16 bytes of the
    /// user are.
    bool has_fields = false;
    bool has_long_user = false;
};

}  // namespace gatescope
