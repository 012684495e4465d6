// The library's parameters as properties of a GEGL operation.
#pragma once

#include <vector>

#include <gegl-plugin.h>

#include "hosts/settings.h"

namespace radiashafts::hosts::gegl {

const std::vector<Setting>& properties();

// Registers the entries of all lists as enumerations. Before the first specificationOf.
void registerEnumerations(GTypeModule* module);

// Owned by the caller.
GParamSpec* specificationOf(const Setting& property);

// Gives the values of all properties to a session. Colors become those of the picture's space.
void setAll(radiashafts_session* session, const std::vector<GValue>& values, const Babl* space);

}  // namespace radiashafts::hosts::gegl
