#include "logs/lanes.h"

// The C library has asked the processor when the program started. To ask again takes long where a
// hypervisor answers. A header of x86 may lie in the way of a compiler for another machine.
#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#define GATESCOPE_ASKS_THE_PROCESSOR
#if defined(__clang__)
#define _Bool bool  // which the header is written with, and this compiler knows in C alone
#endif
#include <sys/platform/x86.h>
#endif

namespace gatescope {

Lanes best_lanes() {
#ifdef GATESCOPE_ASKS_THE_PROCESSOR
    const bool wide = CPU_FEATURE_ACTIVE(AVX2) && CPU_FEATURE_ACTIVE(BMI1) &&
                      CPU_FEATURE_ACTIVE(BMI2) && CPU_FEATURE_ACTIVE(POPCNT);
    if (wide) return Lanes::WIDE;
#endif
    return Lanes::VECTORS;
}

}  // namespace gatescope
