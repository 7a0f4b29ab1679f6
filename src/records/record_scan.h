#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "records/instruction_set.h"
#include "records/words.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace gatescope {

// Vectorised searches in log bytes, 16 or 64 at a time, for the fast paths of queries and pruning.
// Every function may read up to READER_MARGIN bytes after its input.

#define ALWAYS_INLINE [[gnu::always_inline]] inline

/// The first eight of the TIME_DIGITS digits at `at`, as a number that grows with the time.
ALWAYS_INLINE std::uint64_t first_digits(const char* at) {
    std::uint64_t number;
    std::memcpy(&number, at, sizeof number);
    return std::endian::native == std::endian::little ? __builtin_bswap64(number) : number;
}

/// The same for a time in seconds; the smallest or largest value if it has fewer or more digits.
std::uint64_t first_digits(std::int64_t time);

/// Bytes that one call of find_word_ends searches, and bytes that one step of it loads.
constexpr std::size_t SLICE = 4096;
constexpr std::size_t BLOCK = 64;
/// Word ends stored per block without a branch. More of them are rare at the usual record length.
constexpr int STORES_PER_BLOCK = 3;
/// An element for each byte of a slice, and STORES_PER_BLOCK that are written but never read.
using WordEnds = std::array<const char*, SLICE + STORES_PER_BLOCK>;

constexpr std::size_t TIME_DIGITS = 10;
/// "1794787199:D:" comes before the user.
constexpr std::size_t HEAD_SIZE = 13;

/// A range for each of sixteen bytes: `lowest` up to and including `lowest + span`.
struct Ranges {
    alignas(16) std::array<std::uint8_t, 16> lowest = {};
    alignas(16) std::array<std::uint8_t, 16> span = {};
};

/// The ranges of a pattern, in which '0' matches any digit, '*' any byte, and any other byte
/// itself. A pattern shorter than sixteen bytes matches the last ones.
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
/// The head of a record and any three bytes.
inline constexpr Ranges CANONICAL_HEAD = ranges_of("0000000000:*:***");

/// The operations of InstructionSet::SCALAR. Those of the other sets return the same.
struct Scalar {
    /// A bit for each of BLOCK bytes: whether it is a blank or a control character.
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

    /// The number that ten digits make; unspecified, but safe, for other bytes. Reads 16 bytes.
    ALWAYS_INLINE static std::int64_t time(const char* at) {
        std::int64_t time = 0;
        for (std::size_t i = 0; i < TIME_DIGITS; ++i) time = time * 10 + (at[i] - '0');
        return time;
    }

    /// A bit for each of 16 bytes: whether it is '[', ':' or '<', which end a canonical user.
    ALWAYS_INLINE static unsigned user_end_bits(const char* at) {
        unsigned all = 0;
        for (unsigned i = 0; i < 16; ++i) {
            const unsigned is_end = at[i] == '[' || at[i] == ':' || at[i] == '<';
            all |= is_end << i;
        }
        return all;
    }

    /// Whether 16 bytes equal `wanted` in the bits of `mask`, with the bits of `other_case` set in
    /// each byte first.
    ALWAYS_INLINE static bool same_text(const char* at, const char* wanted, const char* mask,
                                        const char* other_case) {
        for (unsigned i = 0; i < 16; ++i) {
            if (((at[i] | other_case[i]) & mask[i]) != wanted[i]) return false;
        }
        return true;
    }

    /// The position of the lowest set bit; unspecified, but safe, for 0.
    ALWAYS_INLINE static std::uint64_t lowest_bit(std::uint64_t number) {
        constexpr std::uint64_t TOP = std::uint64_t{1} << 63;
        return static_cast<std::uint64_t>(std::countr_zero(number | TOP));
    }

    /// The number of set bits. Not every x86-64 has POPCNT.
    ALWAYS_INLINE static std::ptrdiff_t number_of_bits(std::uint64_t number) {
        number -= number >> 1 & 0x5555555555555555;
        number = (number & 0x3333333333333333) + (number >> 2 & 0x3333333333333333);
        number = (number + (number >> 4)) & 0x0F0F0F0F0F0F0F0F;
        return static_cast<std::ptrdiff_t>(number * 0x0101010101010101 >> 56);
    }
};

#if defined(__x86_64__)

/// The operations with SSE2.
struct Sse2 : Scalar {
    template <class Byte>
    ALWAYS_INLINE static __m128i sixteen(const Byte* at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    }

    ALWAYS_INLINE static unsigned bits(__m128i bytes) {
        return static_cast<unsigned>(_mm_movemask_epi8(bytes));
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
        // The same subtraction as in are_in for CANONICAL_HEAD, so the compiler shares it.
        const __m128i ones = _mm_sub_epi8(sixteen(at), sixteen(CANONICAL_HEAD.lowest.data()));
        // Combine digits to pairs (in the upper byte of 16 bits), to fours, then the first eight.
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

/// The operations with AVX2. Compilers inline them only into functions with the same target, such
/// as with_avx2.
#define FOR_AVX2 [[gnu::target("avx2,bmi,bmi2,popcnt")]]
struct Avx2 : Sse2 {
    FOR_AVX2 static std::uint32_t half_of_blank_bits(const char* at) {
        const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
        const __m256i lower = _mm256_min_epu8(text, _mm256_set1_epi8(' '));
        return static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(lower, text)));
    }

    FOR_AVX2 static std::uint64_t blank_bits(const char* at) {
        return half_of_blank_bits(at) | std::uint64_t{half_of_blank_bits(at + BLOCK / 2)} << 32;
    }

    FOR_AVX2 static unsigned user_end_bits(const char* at) {
        // The shuffle's index is the lower four bits of each byte: '[', ':' and '<' yield
        // themselves.
        const __m128i ends =
            _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, ':', '[', '<', -1, -1, -1);
        const __m128i text = sixteen(at);
        return bits(_mm_cmpeq_epi8(_mm_shuffle_epi8(ends, text), text));
    }

    FOR_AVX2 static std::uint64_t lowest_bit(std::uint64_t number) { return _tzcnt_u64(number); }

    FOR_AVX2 static std::ptrdiff_t number_of_bits(std::uint64_t number) {
        return _mm_popcnt_u64(number);
    }
};

#else

#define FOR_AVX2
using Sse2 = Scalar;
using Avx2 = Scalar;

#endif

/// See with_instruction_set.
template <class Task>
FOR_AVX2 void with_avx2(const Task& task) {
    task(Avx2());
}

/// Calls `task` with an object of the class that has the operations of `set`. For AVX2 the task and
/// everything that it calls with that class must be always_inline.
template <class Task>
void with_instruction_set(InstructionSet set, const Task& task) {
    switch (set) {
        case InstructionSet::AVX2:
            return with_avx2(task);
        case InstructionSet::SSE2:
            return task(Sse2());
        case InstructionSet::SCALAR:
            return task(Scalar());
    }
}

/// Finds candidates for word ends in `slice` (at most SLICE bytes, BLOCK more may be read): the
/// first byte of each run of blanks and control characters. Not every candidate ends a word: a run
/// may have begun before the slice, and not every control character is white space. Stores the
/// positions in `*ends` and returns their number.
template <class SET>
ALWAYS_INLINE std::size_t find_word_ends(const char* slice, std::size_t size, WordEnds* ends) {
    const char** next = ends->data();
    std::uint64_t carry = 0;
    for (std::size_t place = 0; place < size; place += BLOCK) {
        const char* const block = slice + place;
        std::uint64_t blank = SET::blank_bits(block);
        if (size - place < BLOCK) blank &= (std::uint64_t{1} << (size - place)) - 1;
        std::uint64_t found = blank & ~(blank << 1 | carry);
        carry = blank >> 63;
        const char** const next_block = next + SET::number_of_bits(found);
        // A fixed number of stores avoids a branch that is hard to predict.
#pragma GCC unroll 3
        for (int i = 0; i < STORES_PER_BLOCK; ++i) {
            next[i] = block + SET::lowest_bit(found);
            found &= found - 1;
            // Keeps the compiler from combining the stores in a vector, which is slower.
            std::atomic_signal_fence(std::memory_order_acq_rel);
        }
        for (next += STORES_PER_BLOCK; found != 0; found &= found - 1) {
            *next++ = block + SET::lowest_bit(found);
        }
        next = next_block;
    }
    return static_cast<std::size_t>(next - ends->data());
}

/// The first byte in [at, end) that is not white space, or `end`.
ALWAYS_INLINE const char* skip_white(const char* at, const char* end) {
    while (at < end && is_white(*at)) ++at;
    return at;
}

/// 1 for white space, 0 for other bytes.
constexpr std::array<std::uint8_t, 256> white_steps() {
    std::array<std::uint8_t, 256> steps = {};
    for (std::size_t c = 0; c < steps.size(); ++c) steps[c] = is_white(static_cast<char>(c));
    return steps;
}
inline constexpr std::array<std::uint8_t, 256> WHITE_STEP = white_steps();

/// The beginning of the next word if the white space at `stop` is one byte or two, as in "\r\n".
/// Branch-free: a log may mix lines of both kinds.
ALWAYS_INLINE const char* after_line_end(const char* stop) {
    return stop + 1 + WHITE_STEP[static_cast<std::uint8_t>(stop[1])];
}

}  // namespace gatescope
