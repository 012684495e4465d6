// The interface as the frame sees it.
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

  // Opens the interface and returns when it is closed: true on OK, false on Cancel or when it could
  // not be opened.
  virtual bool Show(EditedFilter* filter, hostapi::FilterRecord* record, WidgetList* widgets) = 0;
  // Asks for a new preview.
  virtual void RequestRender() = 0;
  // The system's plain colour chooser, for hosts without one. Channels are 0.0 to 1.0, in place;
  // false, on Cancel, keeps them.
  virtual bool AlternativeColorSelection(hostapi::FilterRecord* record, double* red, double* green,
                                         double* blue) = 0;
};

// The interface of this build of the module.
std::unique_ptr<pfPreview> MakePreview();

// Shows the text to the user, without an owner window.
void ShowAbout(const std::string& text);

}  // namespace radiashafts
