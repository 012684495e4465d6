// ICC profiles.
#pragma once

#include <string>

#include "standin/codecs/codec.h"

namespace radiashafts::standin {

enum class ProfileFit { fits, otherChannels, damaged };
ProfileFit fitOf(const std::string& profile, int colorPlanes);

// Converts CMYK to the profile, or to sRGB where it is empty, by the picture's own profile. Without
// one, or with a damaged one, ink is taken as what it takes from white, and a note tells that.
void convertCmyk(DecodedPicture& decoded, const std::string& profile);

// Converts the picture from its profile, or sRGB, to this one. Throws std::runtime_error if the
// picture is not of the colours that the profile describes.
void convertColors(DecodedPicture& decoded, const std::string& profile);

}  // namespace radiashafts::standin
