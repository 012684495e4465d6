// The user interface that the frame calls.
#pragma once

#include <memory>
#include <string>

#include "hostapi/filter_record.h"
#include "interface/model/edited_filter.h"
#include "interface/model/widgets.h"

namespace radiashafts {

class pfPreview {
 public:
  virtual ~pfPreview() = default;

  // Opens the interface and returns when it is closed: true on OK, false on Cancel or when it
  // cannot be opened.
  virtual bool Show(EditedFilter* filter, hostapi::FilterRecord* record, WidgetList* widgets) = 0;
  // Requests a preview render.
  virtual void RequestRender() = 0;
  // The system's colour chooser, for hosts without one. Channels are 0.0 to 1.0; on Cancel they
  // stay unchanged and the result is false.
  virtual bool AlternativeColorSelection(hostapi::FilterRecord* record, double* red, double* green,
                                         double* blue) = 0;
};

// Creates the interface of this build: windows or headless.
std::unique_ptr<pfPreview> MakePreview();

// Shows the text to the user, without an owner window.
void ShowAbout(const std::string& text);

}  // namespace radiashafts
