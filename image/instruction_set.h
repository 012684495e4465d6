// The instruction set that this translation unit is compiled for. Code on pixels is compiled once
// for each set, and everything that it defines is in an inline namespace named after the set:
// otherwise the linker would merge the definitions and could keep the AVX2 one for all processors.
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
