// Shared state of the interface and a running preview render.
#pragma once

#include <atomic>
#include <cstdint>

namespace radiashafts {

inline std::atomic<std::uint32_t> nRenderStartTick{
    0};                                           // milliseconds; 0 while no interface is open
inline std::atomic<bool> bRenderPending{false};   // a new render is requested
inline std::atomic<bool> bLivePreview{true};      // a request may cancel the running render
inline std::atomic<bool> bInterfaceEnded{false};  // cancels the running render

}  // namespace radiashafts
