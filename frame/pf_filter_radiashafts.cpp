#include "frame/pf_filter_radiashafts.h"

#include "hostapi/constants.h"
#include "render/select_render_template.h"

namespace radiashafts {
namespace {

// The quotation marks of the title are in the host's code page, Windows-1252.
FilterIdentity radiashaftsIdentity() {
  return {.name = "Skein \xBBRadiashafts\xAB",
          .vendor = "Halvorsund",
          .versionMajor = 1,
          .versionMinor = 2,
          .versionRevision = 2,
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
  return selectRenderTemplate(*this, effect, previewLevel, record);
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
  for (pfParameter* kept : std::initializer_list<pfParameter*>{
           &effect.RandomizeButton, &effect.Randomize, &effect.BlendMode, &effect.SelectionShow,
           &effect.UseImageColor}) {
    kept->randomizable = false;
  }
  parameters.RandomizeAll(effect.Randomize.value(), undoHistory);
  preview->RequestRender();
}

}  // namespace radiashafts
