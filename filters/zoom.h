// Resamples an 8-bit grey picture by box averaging over a summed-area table. The cost of an output
// pixel does not depend on the zoom.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/pixel.h"
#include "image/pixel_array.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// What lies outside the source. Any other number stands for zero.
enum Extension : std::int32_t {
  extensionRepeatEdge = 1,
  extensionMirror = 2,  // with the edge pixel doubled
  extensionPeriodic = 3,
  extensionZero = 4,
};

template <class Source, class Target>
class ZoomFilter final : public RowFilter {
 public:
  using RowFilter::RowFilter;

  Source source;
  Target target;
  double scaleX = 1.0;  // source pixels per output pixel
  double scaleY = 1.0;
  std::int32_t extensionX = extensionZero;
  std::int32_t extensionY = extensionZero;

  std::int32_t run(std::int32_t stagePosition, std::int32_t stageCount) override {
    stage = stagePosition;
    stages = stageCount;
    const HostBuffer table(*host, source.width, source.height, sizeof(float));
    if (!table) return host->OutOfMemoryCode();
    areaTable_ = tightView<AreaTable>(source.width, source.height, table.data());
    areaTable_.frameX = source.frameX;
    areaTable_.frameY = source.frameY;

    const std::int32_t status = buildAreaTable(2 * stage, 2 * stages);
    if (status != host->NoErrorCode()) return status;
    std::int32_t strips = 1;
    host->ThreadCount(&strips, target.height);
    return runIterations(strips);
  }

  // Handles one strip of rows. Progress counts with the source's height, so a taller target
  // overshoots its stage.
  std::int32_t processRow(std::int32_t index, std::int32_t iterations,
                          std::int32_t threadIndex) override {
    const std::int32_t rows = target.height / iterations;
    const std::int32_t end = index == iterations - 1 ? target.height : (index + 1) * rows;
    for (std::int32_t y = index * rows; y < end; ++y) {
      for (std::int32_t x = 0; x < target.width; ++x) {
        const double value = sampleBox(footprintEdge(x, target.width, source.width, scaleX),
                                       footprintEdge(x + 1, target.width, source.width, scaleX),
                                       footprintEdge(y, target.height, source.height, scaleY),
                                       footprintEdge(y + 1, target.height, source.height, scaleY));
        *target.at(x, y) = toClampedSample<typename Target::Pixel>(value);
      }
      const std::int32_t status = host->Progress((2 * stage + 1) * source.height + y,
                                                 stages * source.height * 2, threadIndex);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

 private:
  using AreaTable = PixelArray<PixelRGB<LayoutGrayPixel<-1>, float, 0, 0, 255>, 0, 0>;

  std::int32_t buildAreaTable(std::int32_t position, std::int32_t denominator) {
    for (std::int32_t y = 0; y < source.height; ++y) {
      double rowSum = 0.0;
      for (std::int32_t x = 0; x < source.width; ++x) {
        rowSum += *source.at(x, y);
        *areaTable_.at(x, y) =
            static_cast<float>(rowSum + (y > 0 ? *areaTable_.at(x, y - 1) : 0.0));
      }
      const std::int32_t status =
          host->Progress(y + source.height * position, source.height * denominator, 0);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

  // Left or upper edge of an output pixel's footprint, in source coordinates.
  static double footprintEdge(std::int32_t position, std::int32_t targetExtent,
                              std::int32_t sourceExtent, double scale) {
    const float center = static_cast<float>(targetExtent - sourceExtent) * 0.5F;
    return ((position - sourceExtent * 0.5) - 0.5 - center) * scale +
           static_cast<double>(static_cast<float>(sourceExtent) * 0.5F);
  }

  struct Box {
    double sum = 0.0;
    double area = 0.0;  // of the full rectangle, inside the source or not
  };

  // The mean under a footprint, with fractional coverage at its edges. A corner that lies outside
  // the source adds nothing under any extension, and still counts for the weight.
  double sampleBox(double x0, double x1, double y0, double y1) const {
    const std::int32_t ix0 = toInt32(std::floor(x0));
    const std::int32_t ix1 = toInt32(std::floor(x1));
    const std::int32_t iy0 = toInt32(std::floor(y0));
    const std::int32_t iy1 = toInt32(std::floor(y1));
    const double left = 1.0 - (x0 - ix0);
    const double right = x1 - ix1;
    const double top = 1.0 - (y0 - iy0);
    const double bottom = y1 - iy1;

    const Box center = boxSum(ix0, ix1, iy0, iy1);
    const Box leftStrip = boxSum(ix0 - 1, ix0, iy0, iy1);
    const Box rightStrip = boxSum(ix1, ix1 + 1, iy0, iy1);
    const Box topStrip = boxSum(ix0, ix1, iy0 - 1, iy0);
    const Box bottomStrip = boxSum(ix0, ix1, iy1, iy1 + 1);

    double value = center.sum + leftStrip.sum * left + rightStrip.sum * right + topStrip.sum * top +
                   bottomStrip.sum * bottom;
    value += cornerAt(ix0, iy0) * (top * left);
    value += cornerAt(ix1 + 1, iy0) * (top * right);
    value += cornerAt(ix0, iy1 + 1) * (bottom * left);
    value += cornerAt(ix1 + 1, iy1 + 1) * (bottom * right);
    const double weight = center.area + leftStrip.area * left + rightStrip.area * right +
                          topStrip.area * top + bottomStrip.area * bottom + top * left +
                          top * right + bottom * left + bottom * right;
    if (weight != 0.0) value *= 1.0 / weight;
    return std::min(value, 255.0);
  }

  double cornerAt(std::int32_t x, std::int32_t y) const {
    return source.contains(x, y) ? *source.at(x, y) : 0.0;
  }

  // A sum over the columns (or rows) before a position of the extended source, as a combination of
  // such sums over the source itself: each term is a factor and a count of leading columns.
  struct Prefix {
    struct Term {
      double factor;
      std::int32_t count;
    };
    std::array<Term, 3> terms{};
    int used = 0;

    void add(double factor, std::int32_t count) {
      if (factor != 0.0 && count > 0) terms[static_cast<std::size_t>(used++)] = {factor, count};
    }
  };

  // The sum over columns 0 to count - 1; over a negative count it is minus the sum over the columns
  // from count to -1.
  static Prefix prefixOf(std::int32_t count, std::int32_t extent, std::int32_t extension) {
    Prefix prefix;
    const auto wholeTurns = [count](std::int32_t period) {
      return static_cast<std::int32_t>(std::floor(static_cast<double>(count) / period));
    };
    switch (extension) {
      case extensionRepeatEdge:
        if (count < 0) {
          prefix.add(count, 1);
        } else {
          prefix.add(1.0, std::min(count, extent));
          prefix.add(std::max(0, count - extent), extent);
          prefix.add(-std::max(0, count - extent), extent - 1);
        }
        break;
      case extensionMirror: {
        const std::int32_t turns = wholeTurns(2 * extent);
        const std::int32_t rest = count - turns * 2 * extent;
        prefix.add(2.0 * turns + (rest > extent ? 2.0 : 0.0), extent);
        prefix.add(rest > extent ? -1.0 : 1.0, rest > extent ? 2 * extent - rest : rest);
        break;
      }
      case extensionPeriodic: {
        const std::int32_t turns = wholeTurns(extent);
        prefix.add(turns, extent);
        prefix.add(1.0, count - turns * extent);
        break;
      }
      default:
        prefix.add(1.0, std::clamp(count, 0, extent));
    }
    return prefix;
  }

  // Over columns x0 + 1 to x1 and rows y0 + 1 to y1.
  Box boxSum(std::int32_t x0, std::int32_t x1, std::int32_t y0, std::int32_t y1) const {
    const auto sumBefore = [this](const Prefix& columns, const Prefix& rows) {
      double sum = 0.0;
      for (int i = 0; i < columns.used; ++i) {
        for (int j = 0; j < rows.used; ++j) {
          sum += columns.terms[i].factor * rows.terms[j].factor *
                 *areaTable_.at(columns.terms[i].count - 1, rows.terms[j].count - 1);
        }
      }
      return sum;
    };
    const Prefix left = prefixOf(x0 + 1, source.width, extensionX);
    const Prefix right = prefixOf(x1 + 1, source.width, extensionX);
    const Prefix top = prefixOf(y0 + 1, source.height, extensionY);
    const Prefix bottom = prefixOf(y1 + 1, source.height, extensionY);
    return {sumBefore(right, bottom) + sumBefore(left, top) - sumBefore(right, top) -
                sumBefore(left, bottom),
            static_cast<double>(y1 - y0) * (x1 - x0)};
  }

  AreaTable areaTable_;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
