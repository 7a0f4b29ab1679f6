#pragma once

namespace gatescope {

/// The instructions that the fast paths use. The results are the same with each.
enum class InstructionSet {
    /// AVX2, BMI1, BMI2 and POPCNT. As SCALAR where the processor is not x86-64.
    AVX2,
    /// What every x86-64 has. As SCALAR on other processors.
    SSE2,
    /// One byte after the other.
    SCALAR
};

/// The fastest set that the processor has.
InstructionSet best_instruction_set();

}  // namespace gatescope
