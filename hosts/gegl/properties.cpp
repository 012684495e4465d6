#include "hosts/gegl/properties.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <list>
#include <map>

namespace radiashafts::hosts::gegl {
namespace {

constexpr auto flags =
    static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_CONSTRUCT | GEGL_PARAM_PAD_INPUT);

// An enumeration's values and texts stay where they are as long as the module is loaded.
struct Enumeration {
  std::list<std::string> nicks;
  std::vector<GEnumValue> values;
  GType type = 0;
};

std::map<const radiashafts_parameter*, Enumeration>& enumerations() {
  static std::map<const radiashafts_parameter*, Enumeration> all;
  return all;
}

// "ray-length" becomes "Ray length".
std::string labelOf(const Setting& property) {
  std::string label = property.name;
  std::replace(label.begin(), label.end(), '-', ' ');
  label[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(label[0])));
  return label;
}

// "(none) replace" becomes "none-replace", which needs no quotes.
std::string nickOf(std::string entry) {
  std::erase_if(entry, [](char c) { return c == '(' || c == ')'; });
  std::replace(entry.begin(), entry.end(), ' ', '-');
  return entry;
}

Enumeration entriesOf(const radiashafts_parameter& list) {
  Enumeration made;
  for (int i = 0; i < list.entry_count; ++i) {
    const char* nick = made.nicks.emplace_back(nickOf(list.entries[i])).c_str();
    made.values.push_back({i + 1, list.entries[i], nick});
  }
  made.values.push_back({});  // the end
  return made;
}

GParamSpec* numberSpecification(const Setting& property, double minimum, double maximum) {
  const radiashafts_parameter& parameter = *property.parameter;
  const double range = parameter.maximum - parameter.minimum;
  GParamSpec* spec = gegl_param_spec_double(
      property.name.c_str(), labelOf(property).c_str(), parameter.description, minimum, maximum,
      parameter.defaults[property.axis], parameter.minimum, parameter.maximum, 1.0, flags);
  gegl_param_spec_double_set_steps(GEGL_PARAM_SPEC_DOUBLE(spec), range / 100, range / 10);
  gegl_param_spec_double_set_digits(GEGL_PARAM_SPEC_DOUBLE(spec), range > 10 ? 1 : 3);
  return spec;
}

// GIMP's users pick the position in the picture.
GParamSpec* positionSpecification(const Setting& property) {
  GParamSpec* spec = numberSpecification(property, -G_MAXDOUBLE, G_MAXDOUBLE);
  gegl_param_spec_set_property_key(spec, "unit", "relative-coordinate");
  gegl_param_spec_set_property_key(spec, "axis", property.axis == 0 ? "x" : "y");
  return spec;
}

GParamSpec* colorSpecification(const Setting& property) {
  const double* color = property.parameter->defaults;
  GeglColor* standard = gegl_color_new(nullptr);
  gegl_color_set_pixel(standard, babl_format("R'G'B' double"), color);
  GParamSpec* spec = gegl_param_spec_color(property.name.c_str(), labelOf(property).c_str(),
                                           property.parameter->description, standard, flags);
  g_object_unref(standard);
  return spec;
}

double numberIn(const GValue& value) {
  if (G_VALUE_HOLDS_BOOLEAN(&value)) return g_value_get_boolean(&value);
  if (G_VALUE_HOLDS_ENUM(&value)) return g_value_get_enum(&value);
  return g_value_get_double(&value);
}

// GEGL keeps colors in single precision. An 8-bit value, as in "#ffcc00", is made exact again.
SettingValues colorIn(const GValue& value, const Babl* space) {
  SettingValues color{};
  gegl_color_get_pixel(GEGL_COLOR(g_value_get_object(&value)),
                       babl_format_with_space("R'G'B' double", space), color.data());
  for (double& component : color) {
    const double exact = std::round(component * 255) / 255;
    if (std::abs(component - exact) < 1e-6) component = exact;
  }
  return color;
}

}  // namespace

const std::vector<Setting>& properties() {
  static const std::vector<Setting> all = allSettings();
  return all;
}

void registerEnumerations(GTypeModule* module) {
  for (const Setting& property : properties()) {
    const radiashafts_parameter& list = *property.parameter;
    if (list.kind != RADIASHAFTS_LIST) continue;
    Enumeration& made = enumerations()[&list];
    if (made.values.empty()) made = entriesOf(list);
    const std::string name = std::string("Radiashafts") + list.name;
    made.type = g_type_module_register_enum(module, name.c_str(), made.values.data());
  }
}

GParamSpec* specificationOf(const Setting& property) {
  const radiashafts_parameter& parameter = *property.parameter;
  switch (parameter.kind) {
    case RADIASHAFTS_POSITION:
      return positionSpecification(property);
    case RADIASHAFTS_SWITCH:
      return g_param_spec_boolean(property.name.c_str(), labelOf(property).c_str(),
                                  parameter.description, parameter.defaults[0] != 0.0, flags);
    case RADIASHAFTS_COLOR:
      return colorSpecification(property);
    case RADIASHAFTS_LIST:
      return gegl_param_spec_enum(property.name.c_str(), labelOf(property).c_str(),
                                  parameter.description, enumerations().at(&parameter).type,
                                  static_cast<int>(parameter.defaults[0]), flags);
    default:
      return numberSpecification(property, parameter.minimum,
                                 parameter.has_open_end != 0 ? G_MAXDOUBLE : parameter.maximum);
  }
}

void setAll(radiashafts_session* session, const std::vector<GValue>& values, const Babl* space) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const Setting& property = properties()[i];
    SettingValues numbers = valuesOf(session, property);
    if (property.parameter->kind == RADIASHAFTS_COLOR) {
      numbers = colorIn(values[i], space);
    } else {
      numbers[property.axis] = numberIn(values[i]);
    }
    radiashafts_set(session, property.parameter->name, numbers.data());
  }
}

}  // namespace radiashafts::hosts::gegl
