#pragma once

namespace gatescope {

/// The instructions that the fast paths use. The results are the same with each.
enum class InstructionSet {
    /// AVX2, BMI1, BMI2 and POPCNT. As SCALAR on processors other than x86-64.
    AVX2,
    /// Part of every x86-64. As SCALAR on other processors.
    SSE2,
    /// No vector instructions.
    SCALAR
};

/// The fastest set that the processor supports.
InstructionSet best_instruction_set();

}  // namespace gatescope
