// What the interface tells a running preview render. In a final render nRenderStartTick is 0.
#pragma once

#include <atomic>
#include <cstdint>

namespace radiashafts {

inline std::atomic<std::uint32_t> nRenderStartTick{0};  // milliseconds; 0 outside the interface
inline std::atomic<bool> bRenderPending{false};         // a render is wanted
inline std::atomic<bool> bLivePreview{true};            // a pending render may cut one short
inline std::atomic<bool> bInterfaceEnded{false};        // while a render ran, which ends as well

}  // namespace radiashafts
