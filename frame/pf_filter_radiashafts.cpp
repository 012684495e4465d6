#include "frame/pf_filter_radiashafts.h"

#include "hostapi/constants.h"
#include "render/render_record.h"

namespace radiashafts {
namespace {

// The quotation marks of the title are in the host's code page, Windows-1252.
FilterIdentity radiashaftsIdentity() {
  return {.name = "Skein \xBBRadiashafts\xAB",
          .vendor = "Halvorsund",
          .versionMajor = RADIASHAFTS_VERSION_MAJOR,
          .versionMinor = RADIASHAFTS_VERSION_MINOR,
          .versionRevision = RADIASHAFTS_VERSION_PATCH,
          .description = "Gererates a fake Radiashafts Light.\nCopyright (c) 2026 Halvorsund"};
}

}  // namespace

pfFilterRadiashafts::pfFilterRadiashafts() : pfFilter(radiashaftsIdentity()) {
  effect.RandomizeButton.onChange = OnRandomize;
  effect.RandomizeButton.onChangeContext = this;
  widgets = makeWidgets(effect);
  for (pfParameter* parameter : effect.all) parameters.Add(parameter);
  ResetParameters(false);
  parameters.ValidateAll();
}

std::int16_t pfFilterRadiashafts::SelectRenderTemplate(hostapi::FilterRecord* record) {
  return renderRecord(*this, effect, previewLevel, record);
}

void pfFilterRadiashafts::PrepareInterface(hostapi::FilterRecord* record) {
  const bool colorMode = record->imageMode == hostapi::modeRGB ||
                         record->imageMode == hostapi::modeMultichannel ||
                         record->imageMode == hostapi::modeRGB48;
  const bool color = colorMode && (record->inLayerPlanes >= 3 || record->inNonLayerPlanes >= 3);
  for (pfParameter* parameter : {&effect.Hue, &effect.Saturation, &effect.Lightness}) {
    pfParameterUI* widget = parameter->widget;
    if (widget == nullptr || widget->enabled == color) continue;
    widget->enabled = color;
    widget->Update();
  }
}

void pfFilterRadiashafts::ResetParameters(bool recordUndo) {
  effect.Reset(recordUndo ? &undoHistory : nullptr);
}

void pfFilterRadiashafts::OnRandomize(pfParameter*, void* filter) {
  if (filter != nullptr) static_cast<pfFilterRadiashafts*>(filter)->RandomizeParameters();
}

void pfFilterRadiashafts::RandomizeParameters() {
  parameters.RandomizeAll(effect.Randomize.value(), undoHistory);
  preview->RequestRender();
}

}  // namespace radiashafts
