#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "logs/lanes.h"
#include "logs/log_reader.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace gatescope {

// How the fast paths of the queries and of the pruner look at log bytes: 16 or 64 at a time.
// What is found is exact; the callers decide what it means. Every function may read READER_MARGIN
// bytes after what it is asked about.

#define ALWAYS_INLINE [[gnu::always_inline]] inline

/// The first eight of the TIME_DIGITS digits at `at`, as a number that is the greater the later
/// the time is.
ALWAYS_INLINE std::uint64_t first_digits(const char* at) {
    std::uint64_t number;
    std::memcpy(&number, at, sizeof number);
    return std::endian::native == std::endian::little ? __builtin_bswap64(number) : number;
}

/// The same of a time; of one that has fewer or more digits, the least or the greatest there is.
std::uint64_t first_digits(std::int64_t time);

/// Bytes in which word ends are looked for at a time, and the bytes that are looked at at once.
constexpr std::size_t SLICE = 4096;
constexpr std::size_t BLOCK = 64;
/// Records being as long as they are, hardly ever do more of them end in a block.
constexpr int STORED_AT_ONCE = 3;
/// One for each byte of a slice, and a few that are written but never read.
using WordEnds = std::array<const char*, SLICE + STORED_AT_ONCE>;

constexpr std::size_t TIME_DIGITS = 10;
/// "1794787199:D:" comes before the user.
constexpr std::size_t HEAD_SIZE = 13;

/// What sixteen bytes may be: each no less than `lowest`, and above it by no more than `span`.
struct Ranges {
    alignas(16) std::array<std::uint8_t, 16> lowest = {};
    alignas(16) std::array<std::uint8_t, 16> span = {};
};

/// The ranges of a pattern, in which '0' stands for any digit, '*' for any byte, and all else for
/// itself. Anything may come before a pattern that is shorter than sixteen bytes.
constexpr Ranges ranges_of(std::string_view pattern) {
    Ranges ranges;
    ranges.span.fill(0xFF);
    std::size_t i = ranges.span.size() - pattern.size();
    for (const char c : pattern) {
        if (c != '*') {
            ranges.lowest[i] = static_cast<std::uint8_t>(c);
            ranges.span[i] = c == '0' ? 9 : 0;
        }
        ++i;
    }
    return ranges;
}
/// The head of a record, and three bytes more.
inline constexpr Ranges CANONICAL_HEAD = ranges_of("0000000000:*:***");

/// What is asked of many bytes at once, here one byte after the other. The other kinds of
/// lanes answer the same.
struct ByteLanes {
    /// One bit for each of the BLOCK bytes that is no greater than a blank.
    ALWAYS_INLINE static std::uint64_t blank_bits(const char* at) {
        std::uint64_t all = 0;
        for (unsigned i = 0; i < BLOCK; ++i) {
            const std::uint64_t is_blank = static_cast<std::uint8_t>(at[i]) <= ' ';
            all |= is_blank << i;
        }
        return all;
    }

    /// Whether each of 16 bytes is in its range.
    ALWAYS_INLINE static bool are_in(const Ranges& ranges, const char* at) {
        bool all = true;
        for (unsigned i = 0; i < 16; ++i) {
            all &= static_cast<std::uint8_t>(at[i] - ranges.lowest[i]) <= ranges.span[i];
        }
        return all;
    }

    /// The number that ten digits make; of no use, but no harm either, if they are none. Looks at
    /// 16 bytes.
    ALWAYS_INLINE static std::int64_t time(const char* at) {
        std::int64_t time = 0;
        for (std::size_t i = 0; i < TIME_DIGITS; ++i) time = time * 10 + (at[i] - '0');
        return time;
    }

    /// One bit for each of 16 bytes that no user of a canonical record holds.
    ALWAYS_INLINE static unsigned user_end_bits(const char* at) {
        unsigned all = 0;
        for (unsigned i = 0; i < 16; ++i) {
            const unsigned is_end = at[i] == '[' || at[i] == ':' || at[i] == '<';
            all |= is_end << i;
        }
        return all;
    }

    /// Whether 16 bytes agree with `wanted` where `mask` says so, apart from `other_case`.
    ALWAYS_INLINE static bool same_text(const char* at, const char* wanted, const char* mask,
                                        const char* other_case) {
        for (unsigned i = 0; i < 16; ++i) {
            if (((at[i] | other_case[i]) & mask[i]) != wanted[i]) return false;
        }
        return true;
    }

    /// The place of the lowest bit; of no use, but no harm either, without one.
    ALWAYS_INLINE static std::uint64_t lowest_bit(std::uint64_t number) {
        constexpr std::uint64_t TOP = std::uint64_t{1} << 63;
        return static_cast<std::uint64_t>(std::countr_zero(number | TOP));
    }

    /// Summed up in ever wider groups: a processor that may be of any make has no instruction for
    /// it.
    ALWAYS_INLINE static std::ptrdiff_t number_of_bits(std::uint64_t number) {
        number -= number >> 1 & 0x5555555555555555;
        number = (number & 0x3333333333333333) + (number >> 2 & 0x3333333333333333);
        number = (number + (number >> 4)) & 0x0F0F0F0F0F0F0F0F;
        return static_cast<std::ptrdiff_t>(number * 0x0101010101010101 >> 56);
    }
};

#if defined(__x86_64__)

/// The same with the vector instructions that every x86-64 has.
struct VectorLanes : ByteLanes {
    template <class Byte>
    ALWAYS_INLINE static __m128i sixteen(const Byte* at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    }

    ALWAYS_INLINE static unsigned bits(__m128i lanes) {
        return static_cast<unsigned>(_mm_movemask_epi8(lanes));
    }

    ALWAYS_INLINE static std::uint64_t blank_bits(const char* at) {
        const __m128i blank = _mm_set1_epi8(' ');
        std::uint64_t all = 0;
#pragma GCC unroll 4
        for (unsigned i = 0; i < BLOCK; i += 16) {
            const __m128i text = sixteen(at + i);
            const std::uint64_t some = bits(_mm_cmpeq_epi8(_mm_min_epu8(text, blank), text));
            all |= some << i;
        }
        return all;
    }

    ALWAYS_INLINE static bool are_in(const Ranges& ranges, const char* at) {
        const __m128i above = _mm_sub_epi8(sixteen(at), sixteen(ranges.lowest.data()));
        const __m128i lower = _mm_min_epu8(above, sixteen(ranges.span.data()));
        return bits(_mm_cmpeq_epi8(lower, above)) == 0xFFFF;
    }

    ALWAYS_INLINE static std::int64_t time(const char* at) {
        // The head's own lowest bytes: what is left of the digits is known already where the head
        // was looked at.
        const __m128i ones = _mm_sub_epi8(sixteen(at), sixteen(CANONICAL_HEAD.lowest.data()));
        // By twos, of which the first is the lower byte: ten times that and the other meet in the
        // upper one. Then by fours, and the first eight together.
        const __m128i twos = _mm_srli_epi16(_mm_mullo_epi16(ones, _mm_set1_epi16(0x0A01)), 8);
        const __m128i fours = _mm_madd_epi16(twos, _mm_setr_epi16(100, 1, 100, 1, 1, 0, 0, 0));
        const __m128i eight_and_two = _mm_madd_epi16(_mm_packs_epi32(fours, fours),
                                                     _mm_setr_epi16(10000, 1, 1, 0, 0, 0, 0, 0));
        const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eight_and_two));
        return static_cast<std::int64_t>((both & 0xFFFFFFFF) * 100 + (both >> 32));
    }

    ALWAYS_INLINE static unsigned user_end_bits(const char* at) {
        const __m128i text = sixteen(at);
        return bits(_mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(text, _mm_set1_epi8('[')),
                                              _mm_cmpeq_epi8(text, _mm_set1_epi8(':'))),
                                 _mm_cmpeq_epi8(text, _mm_set1_epi8('<'))));
    }

    ALWAYS_INLINE static bool same_text(const char* at, const char* wanted, const char* mask,
                                        const char* other_case) {
        const __m128i text =
            _mm_and_si128(_mm_or_si128(sixteen(at), sixteen(other_case)), sixteen(mask));
        return bits(_mm_cmpeq_epi8(text, sixteen(wanted))) == 0xFFFF;
    }
};

/// The same with what newer processors have. Compilers inline it only into functions that may use
/// that as well: with_lanes sees to it.
#define FOR_WIDE_LANES [[gnu::target("avx2,bmi,bmi2,popcnt")]]
struct WideLanes : VectorLanes {
    FOR_WIDE_LANES static std::uint32_t half_of_blank_bits(const char* at) {
        const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
        const __m256i lower = _mm256_min_epu8(text, _mm256_set1_epi8(' '));
        return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(lower, text)));
    }

    FOR_WIDE_LANES static std::uint64_t blank_bits(const char* at) {
        return half_of_blank_bits(at) | std::uint64_t{half_of_blank_bits(at + BLOCK / 2)} << 32;
    }

    FOR_WIDE_LANES static unsigned user_end_bits(const char* at) {
        // Each of the three stands at the place that its lower four bits tell.
        const __m128i ends =
            _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, ':', '[', '<', -1, -1, -1);
        const __m128i text = sixteen(at);
        return bits(_mm_cmpeq_epi8(_mm_shuffle_epi8(ends, text), text));
    }

    FOR_WIDE_LANES static std::uint64_t lowest_bit(std::uint64_t number) {
        return _tzcnt_u64(number);
    }

    FOR_WIDE_LANES static std::ptrdiff_t number_of_bits(std::uint64_t number) {
        return _mm_popcnt_u64(number);
    }
};

#else

#define FOR_WIDE_LANES
using VectorLanes = ByteLanes;
using WideLanes = ByteLanes;

#endif

/// See with_lanes.
template <class Task>
FOR_WIDE_LANES void with_wide_lanes(const Task& task) {
    task(WideLanes());
}

/// Calls `task` with an object of the class for `lanes`. For the wide ones the task has to be
/// always_inline, and all that it calls with that class.
template <class Task>
void with_lanes(Lanes lanes, const Task& task) {
    switch (lanes) {
        case Lanes::WIDE:
            return with_wide_lanes(task);
        case Lanes::VECTORS:
            return task(VectorLanes());
        case Lanes::BYTES:
            return task(ByteLanes());
    }
}

/// Finds where words end in `slice`, which is no larger than SLICE and after which BLOCK bytes may
/// be read: the first byte of each run of bytes up to a blank. A run that begins with the slice may
/// have begun before it, and a control character that is no white space ends no word. Sets `*ends`
/// to their places and returns how many there are.
template <class LANES>
ALWAYS_INLINE std::size_t find_word_ends(const char* slice, std::size_t size, WordEnds* ends) {
    const char** next = ends->data();
    std::uint64_t carry = 0;
    for (std::size_t place = 0; place < size; place += BLOCK) {
        const char* const block = slice + place;
        std::uint64_t blank = LANES::blank_bits(block);
        if (size - place < BLOCK) blank &= (std::uint64_t{1} << (size - place)) - 1;
        std::uint64_t found = blank & ~(blank << 1 | carry);
        carry = blank >> 63;
        const char** const next_block = next + LANES::number_of_bits(found);
        // Storing some without a look at how many there are is quicker than a loop whose end
        // nobody can foresee.
#pragma GCC unroll 3
        for (int i = 0; i < STORED_AT_ONCE; ++i) {
            next[i] = block + LANES::lowest_bit(found);
            found &= found - 1;
            // Nor are the stores to be gathered in a vector, which takes longer.
            std::atomic_signal_fence(std::memory_order_acq_rel);
        }
        for (next += STORED_AT_ONCE; found != 0; found &= found - 1) {
            *next++ = block + LANES::lowest_bit(found);
        }
        next = next_block;
    }
    return static_cast<std::size_t>(next - ends->data());
}

/// The first byte in [at, end) that is no white space, or the end.
ALWAYS_INLINE const char* after_white(const char* at, const char* end) {
    while (at < end && is_white(*at)) ++at;
    return at;
}

/// 1 for white space, and 0 for all else.
constexpr std::array<std::uint8_t, 256> white_steps() {
    std::array<std::uint8_t, 256> steps = {};
    for (std::size_t c = 0; c < steps.size(); ++c) steps[c] = is_white(static_cast<char>(c));
    return steps;
}
inline constexpr std::array<std::uint8_t, 256> WHITE_STEP = white_steps();

/// Where the next word begins if `stop` ends one and is followed by no more than one other byte of
/// white space, as in "\r\n". Both ways take the same time: logs may have lines of both kinds.
ALWAYS_INLINE const char* after_line_end(const char* stop) {
    return stop + 1 + WHITE_STEP[static_cast<std::uint8_t>(stop[1])];
}

}  // namespace gatescope
