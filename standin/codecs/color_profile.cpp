#include "standin/codecs/color_profile.h"

#include <cstring>
#include <memory>
#include <stdexcept>

#include <lcms2.h>

namespace radiashafts::standin {
namespace {

struct CloseProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, CloseProfile>;

struct DeleteTransform {
  void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, DeleteTransform>;

Profile profileOf(const std::string& bytes) {
  return Profile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
}

Profile profileOrSrgb(const std::string& bytes) {
  return bytes.empty() ? Profile(cmsCreate_sRGBProfile()) : profileOf(bytes);
}

// The library's description of a picture's samples.
cmsUInt32Number sampleFormat(const Picture& picture) {
  const int space = picture.colorPlanes == 4   ? PT_CMYK
                    : picture.colorPlanes == 1 ? PT_GRAY
                                               : PT_RGB;
  return static_cast<cmsUInt32Number>(COLORSPACE_SH(space) | CHANNELS_SH(picture.colorPlanes) |
                                      EXTRA_SH(picture.planes - picture.colorPlanes) |
                                      BYTES_SH(picture.depth / 8) |
                                      FLOAT_SH(picture.depth == 32 ? 1 : 0));
}

// Converts pixels to as many or fewer colour planes, in place. Null profiles and failures return
// false.
bool convert(Picture& picture, const Profile& from, const Profile& to, int colorPlanes) {
  if (from == nullptr || to == nullptr) return false;
  Picture converted;
  converted.width = picture.width;
  converted.height = picture.height;
  converted.planes = picture.planes - picture.colorPlanes + colorPlanes;
  converted.colorPlanes = colorPlanes;
  converted.hasAlpha = picture.hasAlpha;
  converted.depth = picture.depth;
  const Transform transform(cmsCreateTransform(
      from.get(), sampleFormat(picture), to.get(), sampleFormat(converted),
      INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_COPY_ALPHA));
  if (transform == nullptr) return false;
  std::vector<std::uint8_t> row(converted.rowBytes());
  for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y) {
    cmsDoTransform(transform.get(), &picture.bytes[y * picture.rowBytes()], row.data(),
                   static_cast<cmsUInt32Number>(picture.width));
    std::memcpy(&picture.bytes[y * row.size()], row.data(), row.size());
  }
  converted.bytes = std::move(picture.bytes);
  converted.allocate();
  picture = std::move(converted);
  return true;
}

template <class Sample>
void subtractInk(Picture& picture, double fullScale) {
  const auto* from = reinterpret_cast<const Sample*>(picture.bytes.data());
  auto* to = reinterpret_cast<Sample*>(picture.bytes.data());
  const std::size_t pixels = picture.bytes.size() / picture.pixelBytes();
  const int rest = picture.planes - 4;
  for (std::size_t i = 0; i < pixels; ++i) {
    const double light = 1.0 - from[3] / fullScale;
    for (int k = 0; k < 3; ++k) {
      to[k] = static_cast<Sample>((fullScale - from[k]) * light + (fullScale > 1.0 ? 0.5 : 0.0));
    }
    std::memmove(to + 3, from + 4, static_cast<std::size_t>(rest) * sizeof(Sample));
    from += picture.planes;
    to += picture.planes - 1;
  }
  picture.colorPlanes = 3;
  --picture.planes;
  picture.allocate();
}

void subtractInk(Picture& picture) {
  switch (picture.depth) {
    case 8:
      return subtractInk<std::uint8_t>(picture, 255.0);
    case 16:
      return subtractInk<std::uint16_t>(picture, 65535.0);
    default:
      return subtractInk<float>(picture, 1.0);
  }
}

}  // namespace

ProfileFit fitOf(const std::string& profile, int colorPlanes) {
  const Profile opened = profileOf(profile);
  if (opened == nullptr) return ProfileFit::damaged;
  const cmsColorSpaceSignature wanted = colorPlanes == 1   ? cmsSigGrayData
                                        : colorPlanes == 3 ? cmsSigRgbData
                                                           : cmsSigCmykData;
  return cmsGetColorSpace(opened.get()) == wanted ? ProfileFit::fits : ProfileFit::otherChannels;
}

void convertCmyk(DecodedPicture& decoded, const std::string& profile) {
  Picture& picture = decoded.picture;
  FileMetadata& metadata = *decoded.metadata;
  const bool hasProfile =
      !metadata.profile.empty() && fitOf(metadata.profile, 4) == ProfileFit::fits;
  // The library's floats are per cent of ink.
  const bool converted = hasProfile && picture.depth != 32 &&
                         convert(picture, profileOf(metadata.profile), profileOrSrgb(profile), 3);
  if (converted) {
    metadata.profile = profile;
    metadata.notes.emplace_back(profile.empty() ? "the input's CMYK is converted to sRGB"
                                                : "the input's CMYK is converted to the profile");
  } else {
    subtractInk(picture);
    metadata.profile.clear();
    metadata.notes.emplace_back(
        "the input's CMYK has no profile that can be read; its colours are a guess");
    if (!profile.empty()) convertColors(decoded, profile);
  }
  decoded.isCmyk = false;
}

void convertColors(DecodedPicture& decoded, const std::string& profile) {
  Picture& picture = decoded.picture;
  std::string& own = decoded.metadata->profile;
  const bool isGray = picture.colorPlanes == 1;
  if (fitOf(profile, picture.colorPlanes) != ProfileFit::fits || (isGray && own.empty())) {
    throw std::runtime_error("its colours are not those that the profile describes");
  }
  const bool hasProfile = !own.empty() && fitOf(own, picture.colorPlanes) == ProfileFit::fits;
  if (!convert(picture, profileOrSrgb(hasProfile ? own : std::string()), profileOf(profile),
               picture.colorPlanes)) {
    throw std::runtime_error("its colours cannot be converted to the profile");
  }
  own = profile;
}

}  // namespace radiashafts::standin
