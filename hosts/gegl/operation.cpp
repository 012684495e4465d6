// The GEGL operation halvorsund:radiashafts.
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <vector>

#include <gegl-plugin.h>

#include "hosts/gegl/properties.h"
#include "platform/export.h"

namespace radiashafts::hosts::gegl {
namespace {

// The values of an operation's properties. A host may set them while it renders.
class Values {
 public:
  Values() : values_(properties().size()) {
    for (std::size_t i = 0; i < values_.size(); ++i) {
      GParamSpec* spec = g_param_spec_ref_sink(specificationOf(properties()[i]));
      g_value_init(&values_[i], G_PARAM_SPEC_VALUE_TYPE(spec));
      g_param_value_set_default(spec, &values_[i]);
      g_param_spec_unref(spec);
    }
  }
  ~Values() {
    for (GValue& value : values_) g_value_unset(&value);
  }
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;

  void set(std::size_t index, const GValue* value) {
    const std::lock_guard lock(mutex_);
    g_value_copy(value, &values_[index]);
  }
  void get(std::size_t index, GValue* value) {
    const std::lock_guard lock(mutex_);
    g_value_copy(&values_[index], value);
  }
  void giveTo(radiashafts_session* session, const Babl* space) {
    const std::lock_guard lock(mutex_);
    setAll(session, values_, space);
  }

 private:
  std::mutex mutex_;
  std::vector<GValue> values_;
};

struct Operation {
  GeglOperationFilter parent;
  Values* values;
};

GeglOperationClass* parentClass = nullptr;

Values& valuesOf(void* operation) {
  return *static_cast<Operation*>(operation)->values;
}

// Property ids count from 1.
void setProperty(GObject* object, guint id, const GValue* value, GParamSpec*) {
  valuesOf(object).set(id - 1, value);
}

void getProperty(GObject* object, guint id, GValue* value, GParamSpec*) {
  valuesOf(object).get(id - 1, value);
}

bool isFinite(const GeglRectangle* extent) {
  return extent != nullptr && !gegl_rectangle_is_empty(extent) &&
         !gegl_rectangle_is_infinite_plane(extent);
}

const GeglRectangle* inputExtent(GeglOperation* operation) {
  return gegl_operation_source_get_bounding_box(operation, "input");
}

// All of the picture gives light to all of it.
GeglRectangle wholeOr(GeglOperation* operation, const GeglRectangle* region) {
  const GeglRectangle* extent = inputExtent(operation);
  return isFinite(extent) ? *extent : *region;
}

GeglRectangle requiredForOutput(GeglOperation* operation, const gchar*,
                                const GeglRectangle* region) {
  return wholeOr(operation, region);
}

GeglRectangle invalidatedByChange(GeglOperation* operation, const gchar*,
                                  const GeglRectangle* region) {
  return wholeOr(operation, region);
}

GeglRectangle cachedRegion(GeglOperation* operation, const GeglRectangle* region) {
  return wholeOr(operation, region);
}

// The format in which the picture is rendered: as displayed, with straight alpha, and in the
// input's own samples where these are so, for every conversion rounds.
const Babl* renderedFormat(const Babl* source) {
  if (source == nullptr) return babl_format("R'G'B'A float");
  const BablModelFlag model = babl_get_model_flags(babl_format_get_model(source));
  std::string name = (model & BABL_MODEL_FLAG_GRAY) != 0 ? "Y'" : "R'G'B'";
  if (babl_format_has_alpha(source) != 0) name += 'A';

  const Babl* const space = babl_format_get_space(source);
  for (const char* samples : {" u8", " u16"}) {
    const Babl* format = babl_format_with_space((name + samples).c_str(), space);
    if (format == source) return format;
  }
  return babl_format_with_space((name + " float").c_str(), space);
}

void prepare(GeglOperation* operation) {
  const Babl* format = renderedFormat(gegl_operation_get_source_format(operation, "input"));
  gegl_operation_set_format(operation, "input", format);
  gegl_operation_set_format(operation, "output", format);
}

radiashafts_picture pictureOf(std::vector<std::uint8_t>& samples, const GeglRectangle& extent,
                              const Babl* format) {
  radiashafts_picture picture{};
  const int planes = babl_format_get_n_components(format);
  picture.width = extent.width;
  picture.height = extent.height;
  picture.has_alpha = babl_format_has_alpha(format);
  picture.colors = planes - picture.has_alpha;
  picture.pixel_stride = babl_format_get_bytes_per_pixel(format);
  picture.row_stride = picture.pixel_stride * extent.width;
  const std::ptrdiff_t sampleBytes = picture.pixel_stride / planes;
  picture.depth = static_cast<int>(sampleBytes) * 8;
  for (int i = 0; i < planes; ++i) picture.planes[i] = samples.data() + i * sampleBytes;
  return picture;
}

int reportProgress(void* operation, double done) {
  static char noMessage[] = "";
  gegl_operation_progress(static_cast<GeglOperation*>(operation), done, noMessage);
  return 1;
}

// Hosts begin their display of the progress at exactly 0 and end it at exactly 1.
class Progress {
 public:
  explicit Progress(GeglOperation* operation) : operation_(operation) {
    reportProgress(operation_, 0.0);
  }
  ~Progress() { reportProgress(operation_, 1.0); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  GeglOperation* operation_;
};

// Renders in place; what cannot be rendered stays as it is.
void render(GeglOperation* operation, const radiashafts_picture& picture, const Babl* format) {
  const std::unique_ptr<radiashafts_session, CloseSession> session(radiashafts_open());
  if (session == nullptr) throw std::bad_alloc();
  valuesOf(operation).giveTo(session.get(), babl_format_get_space(format));
  const Progress progress(operation);
  const radiashafts_result result =
      radiashafts_render(session.get(), &picture, nullptr, &picture, reportProgress, operation);
  if (result != RADIASHAFTS_OK) g_warning("radiashafts: %s", radiashafts_error(session.get()));
}

gboolean processPicture(GeglOperation* operation, GeglBuffer* input, GeglBuffer* output,
                        const GeglRectangle* region, gint) {
  try {
    const GeglRectangle extent = *inputExtent(operation);
    const Babl* format = gegl_operation_get_format(operation, "output");
    const auto pixelBytes = static_cast<std::size_t>(babl_format_get_bytes_per_pixel(format));
    const std::size_t rowBytes = pixelBytes * static_cast<std::size_t>(extent.width);
    std::vector<std::uint8_t> samples(rowBytes * static_cast<std::size_t>(extent.height));
    gegl_buffer_get(input, &extent, 1.0, format, samples.data(), GEGL_AUTO_ROWSTRIDE,
                    GEGL_ABYSS_NONE);
    render(operation, pictureOf(samples, extent, format), format);
    gegl_buffer_set(output, &extent, 0, format, samples.data(), GEGL_AUTO_ROWSTRIDE);
  } catch (...) {
    g_warning("radiashafts: not enough memory");
    gegl_buffer_copy(input, region, GEGL_ABYSS_NONE, output, region);
  }
  return TRUE;
}

// Passes on what has no end or no pixels.
gboolean process(GeglOperation* operation, GeglOperationContext* context, const gchar* output,
                 const GeglRectangle* region, gint level) {
  if (isFinite(inputExtent(operation))) {
    return parentClass->process(operation, context, output, region, level);
  }
  GObject* input = gegl_operation_context_get_object(context, "input");
  if (input != nullptr) {
    gegl_operation_context_take_object(context, "output", G_OBJECT(g_object_ref(input)));
  }
  return TRUE;
}

// Without memory GLib ends the program, and what it calls to make types and instances does so too.
void initialize(GTypeInstance* instance, gpointer) noexcept {
  reinterpret_cast<Operation*>(instance)->values = std::make_unique<Values>().release();
}

void finalize(GObject* object) {
  delete &valuesOf(object);
  G_OBJECT_CLASS(parentClass)->finalize(object);
}

void initializeClass(gpointer klass, gpointer) noexcept {
  parentClass = static_cast<GeglOperationClass*>(g_type_class_peek_parent(klass));
  auto* object = static_cast<GObjectClass*>(klass);
  object->set_property = setProperty;
  object->get_property = getProperty;
  object->finalize = finalize;
  guint id = 0;
  for (const Setting& property : properties()) {
    g_object_class_install_property(object, ++id, specificationOf(property));
  }

  auto* operation = static_cast<GeglOperationClass*>(klass);
  operation->prepare = prepare;
  operation->process = process;
  operation->get_required_for_output = requiredForOutput;
  operation->get_invalidated_by_change = invalidatedByChange;
  operation->get_cached_region = cachedRegion;
  operation->cache_policy = GEGL_CACHE_POLICY_ALWAYS;
  operation->threaded = FALSE;  // the filter has threads of its own
  gegl_operation_class_set_keys(
      operation, "name", "halvorsund:radiashafts", "title", "Radiashafts", "categories", "light",
      "description", "Soft rays of light streaming out of a point of the picture", nullptr);
  static_cast<GeglOperationFilterClass*>(klass)->process = processPicture;
}

}  // namespace
}  // namespace radiashafts::hosts::gegl

using namespace radiashafts::hosts::gegl;

extern "C" {

RADIASHAFTS_EXPORT const GeglModuleInfo* gegl_module_query(GTypeModule*) {
  static const GeglModuleInfo info{GEGL_MODULE_ABI_VERSION};
  return &info;
}

RADIASHAFTS_EXPORT gboolean gegl_module_register(GTypeModule* module) noexcept {
  registerEnumerations(module);
  GTypeInfo type{};
  type.class_size = sizeof(GeglOperationFilterClass);
  type.class_init = initializeClass;
  type.instance_size = sizeof(Operation);
  type.instance_init = initialize;
  gegl_module_register_type(module, GEGL_TYPE_OPERATION_FILTER, "HalvorsundRadiashafts", &type,
                            static_cast<GTypeFlags>(0));
  return TRUE;
}
}
