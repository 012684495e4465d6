// The functions and data of the edited filter that the interface uses.
#pragma once

#include <cstdint>

#include "hostapi/filter_record.h"
#include "parameters/parameters.h"
#include "parameters/undo.h"

namespace radiashafts {

class EditedFilter {
 public:
  virtual ~EditedFilter() = default;

  // Renders the image in the record's buffers. Returns 0, -128 when a newer render request
  // cancelled it, -1 when the interface was closed, or -108 when out of memory.
  virtual std::int16_t SelectRenderTemplate(hostapi::FilterRecord* record) = 0;
  // Requests the whole image, reduced by scaleFactor, from the host. Returns the result of the
  // host's advanceState.
  virtual std::int16_t SetupFilterRecord(hostapi::FilterRecord* record,
                                         std::uint32_t scaleFactor) = 0;
  // Enables the widgets that apply to the picture. Called after the image was fetched.
  virtual void PrepareInterface(hostapi::FilterRecord*) {}
  virtual void ResetParameters(bool recordUndo) = 0;
  virtual const char* GetFilterName() const = 0;
  // Lets the user choose a colour; channels are 0.0 to 1.0. False, with the colour unchanged, when
  // cancelled.
  virtual bool RequestColor(hostapi::FilterRecord* record, double* red, double* green,
                            double* blue) = 0;
  // Memory of the host. Allocate returns null or throws std::bad_alloc on failure; size is in
  // bytes.
  virtual void* Allocate(std::uint32_t size) = 0;
  virtual void Free(void* pointer) = 0;

  // The draft level of the preview render, added to the scale factor; 0 for full quality.
  std::int32_t previewLevel = 0;
  UndoHistory undoHistory;
  pfParameters parameters;
};

}  // namespace radiashafts
