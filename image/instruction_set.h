// What the pixel work is compiled for. Its sources are compiled once for each set of instructions;
// all that they define stands in a namespace of the set's own, or the linker would take one set's
// code for another's.
#pragma once

#ifdef __AVX2__
#define RADIASHAFTS_INSTRUCTION_SET avx2
#else
#define RADIASHAFTS_INSTRUCTION_SET sse2
#endif

namespace radiashafts {

enum class InstructionSet {
  sse2,  // every processor of the platforms
  avx2,
};

inline namespace RADIASHAFTS_INSTRUCTION_SET {

inline constexpr InstructionSet instructionSet = InstructionSet::RADIASHAFTS_INSTRUCTION_SET;

}  // namespace RADIASHAFTS_INSTRUCTION_SET

}  // namespace radiashafts
