#pragma once

#include "hosts/gimp/drawable.h"
#include "hosts/gimp/session.h"

namespace radiashafts::gimp {

// Lets the user choose the session's values. False when the user cancels.
bool runDialog(const char* procedure, const Drawable& drawable, const Session& session);

}  // namespace radiashafts::gimp
