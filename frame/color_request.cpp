// The colour chooser: the host's where there is one, else the interface's own.

#include <algorithm>

#include "diagnostics/debug_log.h"
#include "frame/pf_filter.h"
#include "hostapi/color_services.h"
#include "hostapi/constants.h"
#include "image/color.h"
#include "image/unit_scale.h"
#include "interface/model/chosen_color.h"
#include "interface/model/preview_geometry.h"
#include "platform/host_call.h"

namespace radiashafts {
namespace {

// A channel, 0.0 to 1.0, as a colour component of the host, 0 to 255.
std::int16_t component(double channel) {
  return static_cast<std::int16_t>(std::clamp(wholePixels(channel * 255.0), 0, 255));
}

}  // namespace

bool pfFilter::RequestColor(hostapi::FilterRecord* record, double* red, double* green,
                            double* blue) {
  trace("pfFilter::RequestColor( pFilterRecord(0x", static_cast<void*>(record), "), fRed(", *red,
        "), fGreen(", *green, "), fBlue(", *blue, ") )");
  const LogIndent indent;
  hostapi::ColorServicesInfo info{};
  info.infoSize = sizeof info;
  info.selector = hostapi::colorServicesChooseColor;
  info.sourceSpace =
      choosesGrey(record->imageMode) ? hostapi::colorSpaceGray : hostapi::colorSpaceRGB;
  info.resultSpace = hostapi::colorSpaceRGB;
  auto& components = info.colorComponents;
  components[0] = component(*red);
  components[1] = component(*green);
  components[2] = component(*blue);

  bool chosen = false;
  if (record->colorServices == nullptr) {
    chosen = preview->AlternativeColorSelection(record, red, green, blue);
    logLine(severityWarning, warningMarker, "ColorServices not available");
  } else {
    const hostapi::OSErr code = platform::callHost(record->colorServices, &info);
    trace("ColorServices result = ", code);
    trace("source space = ", info.sourceSpace);
    trace("result space = ", info.resultSpace);
    chosen = code == 0;
    if (chosen) {
      *red = components[0] * byteToUnit;
      *green = components[1] * byteToUnit;
      *blue = components[2] * byteToUnit;
    }
  }
  // The interface's own chooser does not write the components, so on a greyscale picture the result
  // is then the grey of the initial colour. This is intended: the greys that users get depend on
  // it.
  if (chosen && record->imageMode == hostapi::modeGrayScale) {
    *red = *green = *blue =
        (components[0] * luminanceWeights[0] + components[2] * luminanceWeights[2] +
         components[1] * luminanceWeights[1]) *
        byteToUnit;
  }
  trace("pfFilter::RequestColor( return(", chosen, ") fRed(", *red, "), fGreen(", *green,
        "), fBlue(", *blue, ") )");
  return chosen;
}

}  // namespace radiashafts
