// Vectors of doubles: one lane holds one of several neighbouring pixels, or one channel of a pixel.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

#ifdef __AVX2__
#include <immintrin.h>
#endif

#include "image/instruction_set.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// As wide as the registers of the instruction set. Every operation gives in each lane exactly the
// result of the scalar operation. Where scalar code would branch, both results are computed and one
// is selected per lane, because branches on image data mispredict.
inline constexpr int laneCount = instructionSet == InstructionSet::avx2 ? 4 : 2;

using Lanes [[gnu::vector_size(laneCount * sizeof(double))]] = double;
using SingleLanes [[gnu::vector_size(laneCount * sizeof(float))]] = float;
using WholeLanes [[gnu::vector_size(laneCount * sizeof(std::int32_t))]] = std::int32_t;
using LaneMask [[gnu::vector_size(laneCount * sizeof(std::int64_t))]] = std::int64_t;  // 0 or -1

// Lane i of the result is function(i).
template <class Function>
Lanes eachLane(const Function& function) {
  Lanes result;
  for (int lane = 0; lane < laneCount; ++lane) result[lane] = function(lane);
  return result;
}

// Broadcasts the value to every lane.
inline Lanes allLanes(double value) {
  return eachLane([=](int) { return value; });
}

inline Lanes choose(LaneMask mask, Lanes whereSet, Lanes elsewhere) {
  return mask ? whereSet : elsewhere;
}

// As std::min and std::max: when an argument is a NaN, the result is a.
inline Lanes min(Lanes a, Lanes b) {
  return b < a ? b : a;
}

inline Lanes max(Lanes a, Lanes b) {
  return a < b ? b : a;
}

inline Lanes abs(Lanes value) {
  constexpr std::int64_t allButSign = 0x7fff'ffff'ffff'ffff;
  return reinterpret_cast<Lanes>(reinterpret_cast<LaneMask>(value) & allButSign);
}

inline bool all(LaneMask mask) {
#ifdef __AVX2__
  return _mm256_movemask_pd(reinterpret_cast<__m256d>(mask)) == 15;
#else
  return (mask[0] & mask[1]) != 0;
#endif
}

inline Lanes sqrt(Lanes value) {
  return eachLane([=](int lane) { return std::sqrt(value[lane]); });
}

// Conversions of whole vectors. Lane-wise scalar conversions would lose the rounding to single
// precision when the compiler vectorizes them, and it splits four lanes into two pairs. Conversion
// to whole numbers truncates toward zero.
#ifdef __AVX2__
inline SingleLanes toSingle(Lanes value) {
  return _mm256_cvtpd_ps(value);
}

inline WholeLanes toWhole(Lanes value) {
  return reinterpret_cast<WholeLanes>(_mm256_cvttpd_epi32(value));
}

inline Lanes toDouble(SingleLanes value) {
  return _mm256_cvtps_pd(value);
}

inline Lanes toDouble(WholeLanes value) {
  return _mm256_cvtepi32_pd(reinterpret_cast<__m128i>(value));
}
#else
inline SingleLanes toSingle(Lanes value) {
  return __builtin_convertvector(value, SingleLanes);
}

inline WholeLanes toWhole(Lanes value) {
  return __builtin_convertvector(value, WholeLanes);
}

inline Lanes toDouble(SingleLanes value) {
  return __builtin_convertvector(value, Lanes);
}

inline Lanes toDouble(WholeLanes value) {
  return __builtin_convertvector(value, Lanes);
}
#endif

// Every lane moves up by one, and the first becomes the given value.
inline SingleLanes shifted(SingleLanes lanes, float first) {
#ifdef __AVX2__
  const __m128i up = _mm_slli_si128(reinterpret_cast<__m128i>(lanes), sizeof(float));
  return _mm_move_ss(reinterpret_cast<__m128>(up), _mm_set_ss(first));
#else
  return SingleLanes{first, lanes[0]};
#endif
}

// Lanes that hold samples of a picture; integer samples of any width fit 32 bits.
template <class Sample>
using LanesOf = std::conditional_t<std::is_floating_point_v<Sample>, SingleLanes, WholeLanes>;

template <class Sample>
LanesOf<Sample> toLanesOf(Lanes value) {
  if constexpr (std::is_floating_point_v<Sample>) {
    return toSingle(value);
  } else {
    return toWhole(value);
  }
}

// Single floats in the first lanes; those behind are 0. Halves of a vector move as one double: a
// copy of some bytes into a vector goes through the stack, where the processor waits for it.
template <int count>
SingleLanes loadSingles(const float* from) {
  static_assert(count >= 0 && count <= laneCount);
  SingleLanes lanes{};
  if constexpr (count == laneCount) {
    std::memcpy(&lanes, from, sizeof lanes);
  } else {
    if constexpr (count >= 2) {
      double pair = 0.0;
      std::memcpy(&pair, from, sizeof pair);
      using Pairs [[gnu::vector_size(sizeof(SingleLanes))]] = double;
      Pairs pairs{};
      pairs[0] = pair;
      lanes = reinterpret_cast<SingleLanes>(pairs);
    }
    if constexpr (count % 2 != 0) lanes[count - 1] = from[count - 1];
  }
  return lanes;
}

template <int count>
void storeSingles(float* to, SingleLanes lanes) {
  static_assert(count >= 0 && count <= laneCount);
  if constexpr (count == laneCount) {
    std::memcpy(to, &lanes, sizeof lanes);
  } else {
    if constexpr (count >= 2) {
      using Pairs [[gnu::vector_size(sizeof(SingleLanes))]] = double;
      const double pair = reinterpret_cast<Pairs>(lanes)[0];
      std::memcpy(to, &pair, sizeof pair);
    }
    if constexpr (count % 2 != 0) to[count - 1] = lanes[count - 1];
  }
}

// Rounded to single precision and back.
inline Lanes narrowed(Lanes value) {
  return toDouble(toSingle(value));
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
