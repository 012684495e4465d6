// The interface as the frame sees it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hostapi/filter_record.h"
#include "parameters/parameter_ui.h"

namespace radiashafts {

class pfFilter;

class pfPreview {
 public:
  virtual ~pfPreview() = default;

  // Opens the interface and returns when it is closed: true on OK, false on Cancel or when it could
  // not be opened.
  virtual bool Show(pfFilter* filter, hostapi::FilterRecord* record,
                    std::vector<pfParameterUI*>* widgets) = 0;
  // Asks for a new preview.
  virtual void RequestRender() = 0;
};

// The interface of this build of the module.
std::unique_ptr<pfPreview> MakePreview();

// Shows the text to the user, without an owner window.
void ShowAbout(const std::string& text);

}  // namespace radiashafts
