#include "logs/lanes.h"

// The C library has asked the processor when the program started. To ask again takes long where a
// hypervisor answers.
#if __has_include(<sys/platform/x86.h>)
#if defined(__clang__)
#define _Bool bool  // which the header is written with, and this compiler knows in C alone
#endif
#include <sys/platform/x86.h>
#endif

Lanes best_lanes() {
#if __has_include(<sys/platform/x86.h>)
    const bool wide = CPU_FEATURE_ACTIVE(AVX2) && CPU_FEATURE_ACTIVE(BMI1) &&
                      CPU_FEATURE_ACTIVE(BMI2) && CPU_FEATURE_ACTIVE(POPCNT);
    if (wide) return Lanes::WIDE;
#endif
    return Lanes::VECTORS;
}
