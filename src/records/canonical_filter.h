#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace gatescope {

/// What the fast path compares in a canonical record.
struct CanonicalFilter {
    /// The user and the '[' after it are no longer than this.
    static constexpr std::size_t USER_LIMIT = 32;

    /// Outcome by kind and detail letter, as the plain rule has it.
    std::array<std::uint8_t, 32> outcomes = {};
    /// "user[" in lower case, the bytes of it that count, and the bit that tells the cases of a
    /// letter apart where there is a letter.
    alignas(16) std::array<char, USER_LIMIT> user = {};
    alignas(16) std::array<char, USER_LIMIT> user_mask = {};
    alignas(16) std::array<char, USER_LIMIT> user_case = {};
    /// "[54]" and "<23>" as the numbers that their bytes make, and the bits of them that count.
    std::uint32_t command = 0;
    std::uint32_t command_mask = 0;
    std::uint32_t value = 0;
    std::uint32_t value_mask = 0;
    /// Whether user, command or value have to be compared, and whether more than 16 bytes of the
    /// user have to be.
    bool has_fields = false;
    bool has_long_user = false;
};

}  // namespace gatescope
