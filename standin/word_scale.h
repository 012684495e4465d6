// Conversion of 16-bit samples: files use 0 to 65535, hosts 0 to 32768.
#pragma once

#include <algorithm>
#include <cstdint>

#include "standin/picture.h"

namespace radiashafts::standin {

// Both round: file to host and back differs by at most 1, host to file and back is exact.
constexpr std::uint16_t hostWord(std::uint32_t fileWord) {
  return static_cast<std::uint16_t>((fileWord * 32768U + 32767U) / 65535U);
}
constexpr std::uint16_t fileWord(std::uint32_t hostWord) {
  return static_cast<std::uint16_t>((std::min(hostWord, 32768U) * 65535U + 16384U) / 32768U);
}

// Rewrites all samples of a 16-bit picture; leaves other pictures alone.
inline void rescaleWords(Picture& picture, std::uint16_t (*scale)(std::uint32_t)) {
  if (picture.depth != 16) return;
  auto* sample = reinterpret_cast<std::uint16_t*>(picture.bytes.data());
  for (std::size_t i = 0; i < picture.sampleCount(); ++i) sample[i] = scale(sample[i]);
}

}  // namespace radiashafts::standin
