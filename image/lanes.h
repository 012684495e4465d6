// Several doubles in step, one a lane: neighbouring pixels, or the channels of one.
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

// As wide as the instructions. Every operation is the scalar one in each lane, to the last bit.
// Code on lanes decides by choosing between two results that it has both worked out: what the
// colours of a photograph ask of branches no processor foresees.
inline constexpr int laneCount = instructionSet == InstructionSet::avx2 ? 4 : 2;

using Lanes [[gnu::vector_size(laneCount * sizeof(double))]] = double;
using SingleLanes [[gnu::vector_size(laneCount * sizeof(float))]] = float;
using WholeLanes [[gnu::vector_size(laneCount * sizeof(std::int32_t))]] = std::int32_t;
using LaneMask [[gnu::vector_size(laneCount * sizeof(std::int64_t))]] = std::int64_t;  // 0 or -1

// What function makes of each lane's index.
template <class Function>
Lanes eachLane(const Function& function) {
  Lanes result;
  for (int lane = 0; lane < laneCount; ++lane) result[lane] = function(lane);
  return result;
}

// The same value in every lane.
inline Lanes allLanes(double value) {
  return eachLane([=](int) { return value; });
}

inline Lanes choose(LaneMask mask, Lanes whereSet, Lanes elsewhere) {
  return mask ? whereSet : elsewhere;
}

// Like their namesakes in the standard library: where a NaN takes part the first argument stays.
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

inline Lanes sqrt(Lanes value) {
  return eachLane([=](int lane) { return std::sqrt(value[lane]); });
}

// Conversions are of whole vectors: the compiler's own vectors of scalar ones lose the rounding,
// and four lanes it takes apart to convert two at a time. Whole numbers are truncated toward zero.
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

// Samples of a picture, wide enough for each integer type.
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

// Rounded to single precision and back.
inline Lanes narrowed(Lanes value) {
  return toDouble(toSingle(value));
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
