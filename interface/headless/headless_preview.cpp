// The interface of a module without windows: Show fails and logs an error.

#include "diagnostics/debug_log.h"
#include "interface/model/live_preview.h"
#include "interface/model/preview.h"
#include "interface/model/remembered_settings.h"

namespace radiashafts {
namespace {

class HeadlessPreview final : public pfPreview {
 public:
  bool Show(EditedFilter*, hostapi::FilterRecord*, WidgetList*) override {
    ReadDebugSwitches();
    logLine(severityError, errorMarker,
            "this module has no dialogs; it runs with recorded parameters that ask for none");
    return false;
  }
  void RequestRender() override { bRenderPending = true; }
  bool AlternativeColorSelection(hostapi::FilterRecord*, double*, double*, double*) override {
    return false;
  }
};

}  // namespace

std::unique_ptr<pfPreview> MakePreview() {
  return std::make_unique<HeadlessPreview>();
}

void ShowAbout(const std::string& text) {
  trace("ShowAbout()");
  trace(text);
}

}  // namespace radiashafts
