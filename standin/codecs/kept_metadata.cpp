#include "standin/codecs/kept_metadata.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include <libheif/heif.h>

#include "standin/codecs/color_profile.h"

namespace radiashafts::standin {
namespace {

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Tags that every TIFF file has.
bool saysNothingOfPicture(std::uint16_t id) {
  return id == tagXResolution || id == tagYResolution || id == tagResolutionUnit ||
         id == tagOrientation || id == tagSoftware;
}

// Whether chunks of a PNG file say anything but sRGB, which is what other formats are taken for.
bool areOtherThanSrgb(const FileMetadata& metadata) {
  bool isSrgb = false;
  bool otherGamma = false;
  for (const auto& [name, data] : metadata.carriedChunks) {
    if (name == "cICP") return data.substr(0, 2) != "\x01\x0D";
    if (name == "sRGB") isSrgb = true;
    if (name == "gAMA") otherGamma = data.substr(0, 3) != std::string_view("\0\0\xB1", 3);
  }
  return otherGamma && !isSrgb;
}

bool isOtherThanSrgb(const FileMetadata& metadata) {
  using Nclx = std::shared_ptr<heif_color_profile_nclx>;
  const auto* nclx = std::any_cast<Nclx>(&metadata.nclx);
  if (nclx == nullptr) return false;
  const auto primaries = (*nclx)->color_primaries;
  const auto transfer = (*nclx)->transfer_characteristics;
  return (primaries != heif_color_primaries_ITU_R_BT_709_5 &&
          primaries != heif_color_primaries_unspecified) ||
         transfer == heif_transfer_characteristic_ITU_R_BT_2100_0_PQ ||
         transfer == heif_transfer_characteristic_ITU_R_BT_2100_0_HLG;
}

void dropUnfitProfile(std::string& profile, int colorPlanes, std::vector<std::string>& notes) {
  if (profile.empty()) return;
  switch (fitOf(profile, colorPlanes)) {
    case ProfileFit::fits:
      return;
    case ProfileFit::otherChannels:
      notes.emplace_back("the colour profile is for other channels, and left out");
      break;
    case ProfileFit::damaged:
      notes.emplace_back("the colour profile is damaged, and left out");
      break;
  }
  profile.clear();
}

}  // namespace

void dropUnkept(FileMetadata& metadata, const std::string& format, int colorPlanes,
                std::vector<std::string>& notes) {
  const bool isJpeg = format == "jpeg";
  const bool isPng = format == "png";
  const bool hasResources = isJpeg || format == "tiff";
  const bool hasBlocks = isOneOf(format, {"jpeg", "png", "webp", "heif", "tiff"});
  const auto drop = [&](bool kept, auto& what, const char* name) {
    if (kept || what.empty()) return;
    what = {};
    notes.push_back(format + " does not keep the " + name);
  };
  dropUnfitProfile(metadata.profile, colorPlanes, notes);
  const bool hasProfile = !metadata.profile.empty();
  const bool hasAttributes = format == "openexr";
  metadata.exif.eraseIf([&](std::uint16_t id) { return !hasBlocks && saysNothingOfPicture(id); });
  const bool tellsDensity = metadata.exif.find(tagXResolution) != nullptr && hasBlocks;
  drop(hasBlocks || hasAttributes, metadata.exif, "EXIF data");
  drop(hasBlocks, metadata.xmp, "XMP data");
  drop(isJpeg, metadata.xmpExtensions, "extended XMP data");
  drop(hasResources, metadata.resources.iptc, "IPTC data");
  drop(hasResources, metadata.resources.others, "image resources");
  if (isJpeg) {
    const auto firstText = std::stable_partition(
        metadata.texts.begin(), metadata.texts.end(),
        [](const PictureText& text) { return text.keyword == commentKeyword; });
    std::vector<PictureText> texts(firstText, metadata.texts.end());
    metadata.texts.erase(firstText, metadata.texts.end());
    drop(false, texts, "texts");
  }
  drop(isJpeg || isPng, metadata.texts, "texts");
  if (!isPng && !hasProfile && areOtherThanSrgb(metadata)) {
    notes.push_back(format + " does not keep the colour description");
  }
  if (format != "heif" && !hasProfile && isOtherThanSrgb(metadata)) {
    notes.push_back(format + " does not keep the colour space");
  }
  const bool hasDensity = metadata.density && metadata.density->unit != Density::none;
  if (isOneOf(format, {"webp", "heif"}) && hasDensity && !tellsDensity) {
    notes.push_back(format + " does not keep the resolution");
  }
}

}  // namespace radiashafts::standin
