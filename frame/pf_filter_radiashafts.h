// The concrete filter: the effect with its parameters.
#pragma once

#include <array>

#include "frame/pf_filter.h"
#include "parameters/effect_parameters.h"

namespace radiashafts {

class pfFilterRadiashafts final : public pfFilter {
 public:
  pfFilterRadiashafts();

  std::int16_t SelectRenderTemplate(hostapi::FilterRecord* record) override;
  // Hue, saturation and lightness have controls on colour pictures only. 32-bit RGB is not among
  // those; the render honours the values all the same.
  void PrepareInterface(hostapi::FilterRecord* record) override;
  void ResetParameters(bool recordUndo) override;
  const char* GetFilterName() const override { return effectName; }

 private:
  static void OnRandomize(pfParameter* parameter, void* filter);
  void RandomizeParameters();

  EffectParameters effect;
};

}  // namespace radiashafts
