// The stand-in's scripting interface.
#pragma once

#include "hostapi/descriptors.h"
#include "hostapi/suites.h"
#include "standin/script.h"

namespace radiashafts::standin {

hostapi::ReadDescriptorProcs* readDescriptorProcs();
hostapi::WriteDescriptorProcs* writeDescriptorProcs();

// Handles come from malloc, block and master pointer, so that a plug-in without the handle procs
// can release them.
hostapi::HandleProcs* handleProcs();
hostapi::Handle newHandle(std::int32_t size);
void disposeHandle(hostapi::Handle handle);

// A script in a handle that the caller owns, and back. A null handle is an empty script.
hostapi::Handle makeDescriptor(const Script& script);
Script scriptOf(hostapi::Handle descriptor);

}  // namespace radiashafts::standin
