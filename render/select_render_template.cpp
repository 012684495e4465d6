#include "render/select_render_template.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "render/configurations.h"
#include "render/record_values.h"
#include "render/render_template.h"
#include "render/render_values.h"
#include "threads/processors.h"
#include "threads/thread_pool.h"

namespace radiashafts {
namespace {

using RenderFunction = std::int32_t (*)(HalvorsundHost&, const HostBuffers&, const RenderValues&);

template <InstructionSet set, int... Index>
constexpr std::array<RenderFunction, sizeof...(Index)> makeRenderTable(
    std::integer_sequence<int, Index...>) {
  return {&RenderTemplate<Index + 1, set>...};
}

constexpr auto configurationIndexes = std::make_integer_sequence<int, configurationCount>();
constexpr auto sse2RenderTable = makeRenderTable<InstructionSet::sse2>(configurationIndexes);
constexpr auto avx2RenderTable = makeRenderTable<InstructionSet::avx2>(configurationIndexes);

// The fastest that the processor has. An environment that says "sse2" holds it at that, so that the
// two can be compared.
const auto& renderTable() {
  static const bool fast = [] {
    const char* wanted = std::getenv("RADIASHAFTS_INSTRUCTION_SET");
    return hasAvx2() && (wanted == nullptr || std::strcmp(wanted, "sse2") != 0);
  }();
  return fast ? avx2RenderTable : sse2RenderTable;
}

int sampleDepth(std::int64_t depth) {
  switch (depth) {
    case 32:
      return 32;
    case 16:
      return 16;
    case 8:
    case 0:
      return 8;  // hosts that know 8 bits only leave the field at 0
    default:
      return 0;
  }
}

// Whether what the host has filled for the rectangle is as large as the picture. Hosts clip
// requests.
bool covers(const hostapi::Rect& rect, std::int32_t width, std::int32_t height) {
  return rect.right - rect.left >= width && rect.bottom - rect.top >= height;
}

}  // namespace

PictureLayout pictureLayoutOf(const hostapi::FilterRecord* record) {
  const std::int64_t planes = GetRecordValue(record, RenderValue::planes);
  const std::int64_t layerPlanes = GetRecordValue(record, RenderValue::inLayerPlanes);
  const bool transparent = GetRecordValue(record, RenderValue::inTransparencyMask) != 0;

  std::int64_t colors = layerPlanes;
  if (colors == 0 && !transparent) colors = GetRecordValue(record, RenderValue::inNonLayerPlanes);
  if (colors == 0) colors = planes;
  const int limit = hostapi::largestColorCount(GetRecordValue(record, RenderValue::imageMode));
  colors = std::clamp<std::int64_t>(colors, 0, limit);
  if (colors > planes) colors = 0;  // the record contradicts itself
  const bool hasAlpha =
      transparent && layerPlanes + 1 <= planes && colors + 1 <= planes;  // there is room for it
  return {static_cast<int>(colors), hasAlpha,
          sampleDepth(GetRecordValue(record, RenderValue::depth))};
}

std::int16_t selectRenderTemplate(HalvorsundHost& host, const EffectParameters& parameters,
                                  std::int32_t previewLevel, const hostapi::FilterRecord* record) {
  trace("SelectRenderTemplate()");
  const LogIndent indent;
  const auto value = [record](RenderValue v) {
    return static_cast<std::int32_t>(GetRecordValue(record, v));
  };
  const PictureLayout layout = pictureLayoutOf(record);
  HostBuffers buffers{
      .width = value(RenderValue::outRight) - value(RenderValue::outLeft),
      .height = value(RenderValue::outBottom) - value(RenderValue::outTop),
      .planes = value(RenderValue::planes),
      .input = record->inData,
      .inputRowBytes = value(RenderValue::inRowBytes),
      .output = record->outData,
      .outputRowBytes = value(RenderValue::outRowBytes),
      .mask = record->maskData,
      .maskRowBytes = value(RenderValue::maskRowBytes),
  };
  if (layout.colorPlanes == 0 || layout.depth == 0) return 0;
  if (buffers.width <= 0 || buffers.height <= 0) return 0;
  if (buffers.width > hostapi::maximumSide || buffers.height > hostapi::maximumSide) return 0;
  if (buffers.input == nullptr || buffers.output == nullptr) return 0;
  if (!covers(record->inRect, buffers.width, buffers.height)) return 0;
  // Without a mask its rectangle is not ours, and hosts leave pointers behind.
  if (!covers(record->maskRect, buffers.width, buffers.height)) buffers.mask = nullptr;

  // Whole image pixels for a view pixel: the divisions are of integers.
  const std::int32_t scaleX = record->imageSize.h / buffers.width;
  const std::int32_t scaleY = record->imageSize.v / buffers.height;
  const ViewGeometry view{
      .width = buffers.width,
      .height = buffers.height,
      .scaleX = static_cast<double>(scaleX + previewLevel),
      .scaleY = static_cast<double>(scaleY + previewLevel),
  };
  const int number = configurationNumber(layout.depth, layout.hasAlpha, layout.colorPlanes);
  const RenderFunction render = renderTable()[static_cast<std::size_t>(number - 1)];
  const ThreadPool::KeepRunning keepRunning(ThreadPool::Instance());
  return static_cast<std::int16_t>(render(host, buffers, renderValuesOf(parameters, view)));
}

}  // namespace radiashafts
