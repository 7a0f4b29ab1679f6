#include "records/instruction_set.h"

// The C library executes CPUID once, at program start; a second time is slow under a hypervisor.
// __x86_64__ is tested too because a cross compiler may find the header of the build machine.
#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#define GATESCOPE_ASKS_THE_PROCESSOR
#if defined(__clang__)
#define _Bool bool  // the header uses C's name, which clang++ does not define
#endif
#include <sys/platform/x86.h>
#endif

namespace gatescope {

InstructionSet best_instruction_set() {
#ifdef GATESCOPE_ASKS_THE_PROCESSOR
    const bool has_avx2 = CPU_FEATURE_ACTIVE(AVX2) && CPU_FEATURE_ACTIVE(BMI1) &&
                          CPU_FEATURE_ACTIVE(BMI2) && CPU_FEATURE_ACTIVE(POPCNT);
    if (has_avx2) return InstructionSet::AVX2;
#endif
    return InstructionSet::SSE2;
}

}  // namespace gatescope
