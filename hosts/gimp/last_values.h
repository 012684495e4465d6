// The values that the filter was last confirmed with.
#pragma once

#include "hosts/gimp/session.h"

namespace radiashafts::gimp {

// The user's file of presets for this plug-in.
std::string ownPresetFile();

// For the rest of this run of GIMP, and in a file for the next one.
void keepLastValues(const Session& session);

// Leaves the session as it is where there are none.
void loadLastValues(const Session& session);

}  // namespace radiashafts::gimp
