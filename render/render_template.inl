// The source of all configurations, included only by the generated source files.

#include "render/configurations.h"
#include "render/radiashafts_effect.h"
#include "render/render_template.h"

namespace radiashafts {

template <class Image>
Image hostView(const HostBuffers& buffers, void* data, std::int32_t rowBytes,
               std::int32_t pixelStride) {
  Image view;
  view.width = buffers.width;
  view.height = buffers.height;
  view.rowStride = rowBytes;
  view.pixelStride = pixelStride;
  view.data = static_cast<std::uint8_t*>(data);
  view.valid = data != nullptr;
  return view;
}

template <int Number, InstructionSet set>
std::int32_t RenderTemplate(HalvorsundHost& host, const HostBuffers& buffers,
                            const RenderValues& values) {
  using Types = Configuration<Number>;
  using Image = typename Types::HostImage;
  const auto pixelStride =
      buffers.planes * static_cast<std::int32_t>(sizeof(typename Types::HostSample));

  RadiashaftsEffect<Image, typename Types::WorkingImage, MaskImage> effect(host);
  effect.source = hostView<Image>(buffers, buffers.input, buffers.inputRowBytes, pixelStride);
  effect.colorSource = effect.source;
  effect.output = hostView<Image>(buffers, buffers.output, buffers.outputRowBytes, pixelStride);
  effect.mask = hostView<MaskImage>(buffers, buffers.mask, buffers.maskRowBytes, 1);
  effect.values = values;
  return effect.run(0, 1);
}

}  // namespace radiashafts
