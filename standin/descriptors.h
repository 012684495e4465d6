// The stand-in's scripting interface.
#pragma once

#include "hostapi/descriptors.h"
#include "hostapi/suites.h"
#include "standin/script.h"

namespace radiashafts::standin {

hostapi::ReadDescriptorProcs* readDescriptorProcs();
hostapi::WriteDescriptorProcs* writeDescriptorProcs();

// Block and master pointer are allocated with malloc, so that a plug-in can free a handle without
// the handle procs.
hostapi::HandleProcs* handleProcs();
hostapi::Handle newHandle(std::int32_t size);
void disposeHandle(hostapi::Handle handle);

// Converts a script to a handle, which the caller owns, and back. A null handle is an empty script.
hostapi::Handle makeDescriptor(const Script& script);
Script scriptOf(hostapi::Handle descriptor);

}  // namespace radiashafts::standin
