#include "render/render_record.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "render/configurations.h"
#include "render/evaluate_parameters.h"
#include "render/render_template.h"
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

// The table for the widest instruction set of the processor. RADIASHAFTS_INSTRUCTION_SET=sse2 in
// the environment selects SSE2, so that the two can be compared.
const auto& renderTable() {
  static const bool fast = [] {
    const char* wanted = std::getenv("RADIASHAFTS_INSTRUCTION_SET");
    return hasAvx2() && (wanted == nullptr || std::strcmp(wanted, "sse2") != 0);
  }();
  return fast ? avx2RenderTable : sse2RenderTable;
}

int sampleDepth(std::int32_t depth) {
  switch (depth) {
    case 32:
      return 32;
    case 16:
      return 16;
    case 8:
    case 0:
      return 8;  // hosts with 8 bits only leave the field at 0
    default:
      return 0;
  }
}

// Whether the host's buffer for rect is as large as the picture: hosts clip requests.
bool covers(const hostapi::Rect& rect, std::int32_t width, std::int32_t height) {
  return rect.right - rect.left >= width && rect.bottom - rect.top >= height;
}

}  // namespace

PictureLayout pictureLayoutOf(const hostapi::FilterRecord* record) {
  const int planes = record->planes;
  const int layerPlanes = record->inLayerPlanes;
  const bool transparent = record->inTransparencyMask != 0;

  int colors = layerPlanes;
  if (colors == 0 && !transparent) colors = record->inNonLayerPlanes;
  if (colors == 0) colors = planes;
  colors = std::clamp(colors, 0, hostapi::largestColorCount(record->imageMode));
  if (colors > planes) colors = 0;  // the record contradicts itself
  const bool hasAlpha =
      transparent && layerPlanes + 1 <= planes && colors + 1 <= planes;  // there is room for it
  return {colors, hasAlpha, sampleDepth(record->depth)};
}

std::int16_t renderRecord(HalvorsundHost& host, const EffectParameters& parameters,
                          std::int32_t previewLevel, const hostapi::FilterRecord* record) {
  trace("SelectRenderTemplate()");
  const LogIndent indent;
  const PictureLayout layout = pictureLayoutOf(record);
  HostBuffers buffers{
      .width = record->outRect.right - record->outRect.left,
      .height = record->outRect.bottom - record->outRect.top,
      .planes = record->planes,
      .input = record->inData,
      .inputRowBytes = record->inRowBytes,
      .output = record->outData,
      .outputRowBytes = record->outRowBytes,
      .mask = record->maskData,
      .maskRowBytes = record->maskRowBytes,
  };
  if (layout.colorPlanes == 0 || layout.depth == 0) return 0;
  if (buffers.width <= 0 || buffers.height <= 0) return 0;
  if (buffers.width > hostapi::maximumSide || buffers.height > hostapi::maximumSide) return 0;
  if (buffers.input == nullptr || buffers.output == nullptr) return 0;
  if (!covers(record->inRect, buffers.width, buffers.height)) return 0;
  // Without a mask the host may leave an old pointer and rectangle in the record.
  if (!covers(record->maskRect, buffers.width, buffers.height)) buffers.mask = nullptr;

  // Image pixels for each view pixel; integer divisions.
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
