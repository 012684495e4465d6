// What the interface needs of the filter whose parameters it edits.
#pragma once

#include <cstdint>

#include "hostapi/filter_record.h"
#include "parameters/parameters.h"
#include "parameters/undo.h"

namespace radiashafts {

class EditedFilter {
 public:
  virtual ~EditedFilter() = default;

  // Renders what the record holds. 0, or a status: -128 for a render that a newer one overtook, -1
  // for one that the closing interface ended, -108 for memory.
  virtual std::int16_t SelectRenderTemplate(hostapi::FilterRecord* record) = 0;
  // Has the host fill the record's buffers with the whole image, reduced by the factor. Returns
  // what the host's advanceState returned.
  virtual std::int16_t SetupFilterRecord(hostapi::FilterRecord* record,
                                         std::uint32_t scaleFactor) = 0;
  // Brings the widgets in line with the picture, once the interface has fetched it.
  virtual void PrepareInterface(hostapi::FilterRecord*) {}
  virtual void ResetParameters(bool recordUndo) = 0;
  virtual const char* GetFilterName() const = 0;
  // Lets the user choose a colour, channels 0.0 to 1.0, in place; false keeps it.
  virtual bool RequestColor(hostapi::FilterRecord* record, double* red, double* green,
                            double* blue) = 0;
  // Memory of the host. Allocate gives null, or throws, when there is none.
  virtual void* Allocate(std::uint32_t size) = 0;
  virtual void Free(void* pointer) = 0;

  // Coarseness added to the scale of a preview's view; 0 in a final render.
  std::int32_t previewLevel = 0;
  UndoHistory undoHistory;
  pfParameters parameters;
};

}  // namespace radiashafts
