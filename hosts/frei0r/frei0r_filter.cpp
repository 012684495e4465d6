// The functions that frei0r hosts call: no exception passes them.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <new>
#include <numeric>

#include "hosts/frei0r/controls.h"
#include "platform/export.h"

namespace radiashafts::hosts::frei0r {
namespace {

// One filter of a host, for frames of one size.
class Filter {
 public:
  Filter(unsigned width, unsigned height) : width_(width), height_(height) {
    if (session_ == nullptr) throw std::bad_alloc();
  }

  void set(const Control& control, const void* value) {
    SettingValues values = valuesOf(session_.get(), control);
    takeValue(control, value, values);
    radiashafts_set(session_.get(), control.parameter->name, values.data());
  }

  void get(const Control& control, void* value) const {
    giveValue(control, valuesOf(session_.get(), control), value);
  }

  // A frame that cannot be rendered passes through as it is.
  void update(const std::uint32_t* in, std::uint32_t* out) {
    const std::size_t count = std::size_t{width_} * height_;
    if (in != out) std::copy_n(in, count, out);
    const std::uint32_t common = std::accumulate(out, out + count, ~0U, std::bit_and<>());
    auto* const bytes = reinterpret_cast<std::uint8_t*>(out);

    radiashafts_picture frame{};
    frame.width = static_cast<int>(width_);
    frame.height = static_cast<int>(height_);
    frame.depth = 8;
    frame.colors = 3;
    frame.has_alpha = common >> 24 == 255 ? 0 : 1;
    for (int i = 0; i < 4; ++i) frame.planes[i] = bytes + i;
    frame.pixel_stride = 4;
    frame.row_stride = std::ptrdiff_t{4} * frame.width;
    tell(radiashafts_render(session_.get(), &frame, nullptr, &frame, nullptr, nullptr));
  }

 private:
  // Says why frames pass through, once and not for every frame.
  void tell(radiashafts_result result) {
    if (result != RADIASHAFTS_OK && result != told_) {
      std::fprintf(stderr, "radiashafts: frames stay as they are: %s\n",
                   radiashafts_error(session_.get()));
    }
    told_ = result;
  }

  unsigned width_, height_;
  std::unique_ptr<radiashafts_session, CloseSession> session_{radiashafts_open()};
  radiashafts_result told_ = RADIASHAFTS_OK;
};

// The control with this number, or null.
const Control* controlAt(int index) {
  const bool isThere = index >= 0 && static_cast<std::size_t>(index) < controls().size();
  return isThere ? &controls()[static_cast<std::size_t>(index)] : nullptr;
}

}  // namespace
}  // namespace radiashafts::hosts::frei0r

using namespace radiashafts::hosts::frei0r;

extern "C" {

// 1 when the filter can be used. The host may call the other functions only then.
RADIASHAFTS_EXPORT int f0r_init() {
  return controls().empty() ? 0 : 1;
}

RADIASHAFTS_EXPORT void f0r_deinit() {}

RADIASHAFTS_EXPORT void f0r_get_plugin_info(PluginInfo* info) {
  *info = {"Radiashafts",
           "Halvorsund",
           filterPlugin,
           rgba8888,
           interfaceVersion,
           RADIASHAFTS_MAJOR_VERSION,
           RADIASHAFTS_MINOR_VERSION,
           static_cast<int>(controls().size()),
           "Soft rays of light streaming out of a point of the picture"};
}

RADIASHAFTS_EXPORT void f0r_get_param_info(ParameterInfo* info, int index) {
  const Control* control = controlAt(index);
  if (control != nullptr)
    *info = {control->name.c_str(), control->type, control->explanation.c_str()};
}

RADIASHAFTS_EXPORT void* f0r_construct(unsigned width, unsigned height) {
  try {
    return new Filter(width, height);
  } catch (...) {
    return nullptr;
  }
}

RADIASHAFTS_EXPORT void f0r_destruct(void* instance) {
  delete static_cast<Filter*>(instance);
}

RADIASHAFTS_EXPORT void f0r_set_param_value(void* instance, void* value, int index) {
  const Control* control = controlAt(index);
  if (control != nullptr) static_cast<Filter*>(instance)->set(*control, value);
}

RADIASHAFTS_EXPORT void f0r_get_param_value(void* instance, void* value, int index) {
  const Control* control = controlAt(index);
  if (control != nullptr) static_cast<Filter*>(instance)->get(*control, value);
}

RADIASHAFTS_EXPORT void f0r_update(void* instance, double, const std::uint32_t* in,
                                   std::uint32_t* out) {
  static_cast<Filter*>(instance)->update(in, out);
}
}
