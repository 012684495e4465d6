// The light that rays carry: the selected picture under the mask, moved by half a pixel.
#pragma once

#include <cstdint>
#include <optional>

#include "filters/move_sub_pixel.h"
#include "filters/multiply.h"
#include "filters/range_selection.h"
#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Three passes at once, so that a row is still in the cache when it is moved. Bands of rows run in
// parallel: the row beside a band, which the move of its last row reads, is selected once more.
template <class Image, class Working, class Mask>
class RaySourceFilter final : public RowFilter {
 public:
  explicit RaySourceFilter(HalvorsundHost& services)
      : RowFilter(services), select_(services), multiply_(services) {}

  Image source;
  Image colorSource;  // decides the selection
  Mask mask;          // its data may be null
  Working target;
  SelectionParameters selection;
  std::optional<MoveSubPixelImageFilter<Working>> move;  // none: nothing is moved
  float* rowsOfSlots = nullptr;  // memory for two rows of the target for each thread

  std::int32_t run(std::int32_t stagePosition, std::int32_t stageCount) override {
    stage = stagePosition;
    stages = stageCount;
    select_.firstImage = source;
    select_.target = target;
    select_.selectionSource = colorSource;
    select_.selection = selection;
    multiply_.image = target;
    multiply_.mask = mask;
    return runIterations(bandCount(target.height));
  }

  // Rows go in the direction of the move. Each is selected before the one that reads it is moved.
  std::int32_t processRow(std::int32_t index, std::int32_t bands,
                          std::int32_t threadIndex) override {
    const RowBand band(index, bands, target.height);
    const bool upward = move && move->movesUpward();
    const std::int32_t step = upward ? -1 : 1;
    float* const besideBand =
        rowsOfSlots + 2 * static_cast<std::ptrdiff_t>(threadIndex) * target.width * channels;
    const auto rowAt = [&](std::int32_t y) {
      return band.contains(y) ? target.at(0, y) : besideBand;
    };

    std::int32_t y = upward ? band.end - 1 : band.first;
    selectRow(y, rowAt(y));
    for (std::int32_t moved = band.first; moved < band.end; ++moved, y += step) {
      const std::int32_t next = y + step;
      const bool isRead = move ? target.contains(0, next) : band.contains(next);
      if (isRead) selectRow(next, rowAt(next));
      if (move) {
        const RowTaps taps = rowTapsAt(y, move->offsetY, target.height);
        move->moveRow({rowAt(taps.upper), rowAt(taps.lower), taps.fraction, target.width},
                      target.at(0, y));
      }
      const std::int32_t status = reportRow(moved, target.height, threadIndex);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

 private:
  static constexpr int channels = Working::Pixel::channels;

  void selectRow(std::int32_t y, float* row) const {
    select_.writeRow(y, row);
    if (mask.data != nullptr) multiply_.multiplyRow(y, row);
  }

  HslRangeSelectionFilter<Image, Working, Image> select_;
  MultImageFilter<Working, Mask> multiply_;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
