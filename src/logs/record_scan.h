#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

#include "logs/log_reader.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// How the fast paths of the queries and of the pruner look at log bytes: 16 or 64 at a time.
// What is found is exact; the callers decide what it means. Every function may read READER_MARGIN
// bytes after what it is asked about.

#define ALWAYS_INLINE [[gnu::always_inline]] inline

template <class Number>
ALWAYS_INLINE Number little_endian(const char* at) {
    Number number;
    std::memcpy(&number, at, sizeof number);
    if constexpr (std::endian::native == std::endian::big) {
        if constexpr (sizeof number == 8) return __builtin_bswap64(number);
        if constexpr (sizeof number == 4) return __builtin_bswap32(number);
    }
    return number;
}

/// Bytes in which word ends are looked for at a time, and the bytes that are looked at at once.
constexpr std::size_t SLICE = 4096;
constexpr std::size_t BLOCK = 64;
/// One for each byte of a slice, and a few that are written but never read.
using WordEnds = std::array<std::uint32_t, SLICE + 4>;

constexpr std::size_t TIME_DIGITS = 10;
/// "1794787199:D:" comes before the user.
constexpr std::size_t HEAD_SIZE = 13;

/// What is asked of many bytes at once, here one byte after the other. The other kind of lanes
/// answers the same.
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

    /// Whether ten digits, a colon, anything and a colon stand here; sets `*time` to the digits'
    /// number, or to anything if not.
    ALWAYS_INLINE static bool has_canonical_head(const char* at, std::int64_t* time) {
        *time = 0;
        for (std::size_t i = 0; i < TIME_DIGITS; ++i) {
            if (at[i] < '0' || at[i] > '9') return false;
            *time = *time * 10 + (at[i] - '0');
        }
        return at[HEAD_SIZE - 3] == ':' && at[HEAD_SIZE - 1] == ':';
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
};

#if defined(__SSE2__)

/// The same with the vector instructions that every x86-64 has.
struct VectorLanes {
    ALWAYS_INLINE static __m128i sixteen(const char* at) {
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

    ALWAYS_INLINE static bool has_canonical_head(const char* at, std::int64_t* time) {
        const __m128i lowest =
            _mm_setr_epi8('0', '0', '0', '0', '0', '0', '0', '0', '0', '0', ':', 0, ':', 0, 0, 0);
        const __m128i span = _mm_setr_epi8(9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 0, -1, 0, -1, -1, -1);
        const __m128i above = _mm_sub_epi8(sixteen(at), lowest);
        // Eight digits: each by itself, by twos, by fours.
        const __m128i ones = _mm_unpacklo_epi8(above, _mm_setzero_si128());
        const __m128i twos = _mm_madd_epi16(ones, _mm_set1_epi32(0x0001000A));
        const __m128i fours =
            _mm_madd_epi16(_mm_packs_epi32(twos, twos), _mm_set1_epi32(0x00010064));
        const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(fours));
        const std::uint64_t eight = (both & 0xFFFFFFFF) * 10000 + (both >> 32);
        // And two, the first in the lower byte: ten times it, and the other, meet in the second.
        const auto last = static_cast<unsigned>(_mm_extract_epi16(above, 4));
        *time = static_cast<std::int64_t>(eight * 100 + (last * 0x0A01 >> 8 & 0xFF));
        return bits(_mm_cmpeq_epi8(_mm_min_epu8(above, span), above)) == 0xFFFF;
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

#else

using VectorLanes = ByteLanes;

#endif

/// The place of the lowest bit; of no use, but no harm either, without one.
ALWAYS_INLINE std::uint32_t lowest_bit(std::uint64_t number) {
    constexpr std::uint64_t TOP = std::uint64_t{1} << 63;
    return static_cast<std::uint32_t>(std::countr_zero(number | TOP));
}

/// Summed up in ever wider groups: a processor that may be of any make has no instruction for it.
ALWAYS_INLINE std::ptrdiff_t number_of_bits(std::uint64_t number) {
#ifdef __POPCNT__
    return std::popcount(number);
#endif
    number -= number >> 1 & 0x5555555555555555;
    number = (number & 0x3333333333333333) + (number >> 2 & 0x3333333333333333);
    number = (number + (number >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<std::ptrdiff_t>(number * 0x0101010101010101 >> 56);
}

/// Finds where words end in `slice`, which is no larger than SLICE and after which BLOCK bytes may
/// be read: the first byte of each run of bytes up to a blank. A run that begins with the slice may
/// have begun before it, and a control character that is no white space ends no word. Sets `*ends`
/// to their places in the slice and returns how many there are.
template <class LANES>
ALWAYS_INLINE std::size_t find_word_ends(const char* slice, std::size_t size, WordEnds* ends) {
    std::uint32_t* next = ends->data();
    std::uint64_t carry = 0;
    for (std::size_t place = 0; place < size; place += BLOCK) {
        std::uint64_t blank = LANES::blank_bits(slice + place);
        if (size - place < BLOCK) blank &= (std::uint64_t{1} << (size - place)) - 1;
        std::uint64_t found = blank & ~(blank << 1 | carry);
        carry = blank >> 63;
        std::uint32_t* const next_block = next + number_of_bits(found);
        // Records being as long as they are, four are nearly always enough: storing them without
        // a look at how many there are is quicker than a loop whose end nobody can foresee.
#pragma GCC unroll 4
        for (int i = 0; i < 4; ++i) {
            next[i] = static_cast<std::uint32_t>(place) + lowest_bit(found);
            found &= found - 1;
        }
        for (next += 4; found != 0; found &= found - 1) {
            *next++ = static_cast<std::uint32_t>(place) +
                      static_cast<std::uint32_t>(std::countr_zero(found));
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
