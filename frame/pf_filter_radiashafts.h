// The Radiashafts filter: pfFilter with this effect's parameters and render.
#pragma once

#include <array>

#include "frame/pf_filter.h"
#include "parameters/effect_parameters.h"

namespace radiashafts {

class pfFilterRadiashafts final : public pfFilter {
 public:
  pfFilterRadiashafts();

  std::int16_t SelectRenderTemplate(hostapi::FilterRecord* record) override;
  // Enables the controls of hue, saturation and lightness on colour pictures only. 32-bit RGB does
  // not count as colour here, though the render applies the three values there too.
  void PrepareInterface(hostapi::FilterRecord* record) override;
  void ResetParameters(bool recordUndo) override;
  const char* GetFilterName() const override { return effectName; }

 private:
  static void OnRandomize(pfParameter* parameter, void* filter);
  void RandomizeParameters();

  EffectParameters effect;
};

}  // namespace radiashafts
