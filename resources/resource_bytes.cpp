#include "resources/resource_bytes.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "hostapi/types.h"
#include "parameters/effect_table.h"

namespace radiashafts::resources {
namespace {

constexpr char vendor[] = "Halvorsund";
constexpr char menuItem[] = "Radiashafts...";
constexpr char entryPoint[] = "ENTRYPOINT";
constexpr char scope[] = "Halvorsund Radiashafts";
constexpr char suiteCode[] = "HS07";
constexpr char eventClass[] = "HC07";
constexpr char eventId[] = "null";
constexpr std::uint16_t terminologyId = 16000;

constexpr char enabledWhen[] =
    "in (PSHOP_ImageMode, GrayScaleMode, RGBMode, Gray16Mode, RGB48Mode, Gray32Mode, RGB96Mode)";

// Writes little-endian integers. Four-character codes are integers too, so their bytes are reversed
// in the file.
class Writer {
 public:
  Writer& int16(std::uint16_t value) { return integer(value, 2); }
  Writer& int32(std::uint32_t value) { return integer(value, 4); }
  Writer& code(const char (&text)[5]) { return int32(hostapi::fourCharacterCode(text)); }
  Writer& raw(std::initializer_list<std::uint8_t> values) {
    bytes_.insert(bytes_.end(), values);
    return *this;
  }
  Writer& text(std::string_view characters) {
    bytes_.insert(bytes_.end(), characters.begin(), characters.end());
    return *this;
  }
  // A length byte and the characters.
  Writer& pascal(std::string_view characters) {
    bytes_.push_back(static_cast<std::uint8_t>(characters.size()));
    return text(characters);
  }
  Writer& append(const Bytes& other) {
    bytes_.insert(bytes_.end(), other.begin(), other.end());
    return *this;
  }
  Writer& zeros(std::size_t count) {
    bytes_.resize(bytes_.size() + count);
    return *this;
  }
  Writer& padToFour() { return zeros((4 - bytes_.size() % 4) % 4); }

  const Bytes& bytes() const { return bytes_; }

 private:
  Writer& integer(std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> 8 * i));
    return *this;
  }

  Bytes bytes_;
};

// The property's length field includes the padding.
void addProperty(Writer& list, const char (&key)[5], Writer data) {
  data.padToFour();
  list.code("8BIM").code(key).int32(0).int32(static_cast<std::uint32_t>(data.bytes().size()));
  list.append(data.bytes());
}

// One entry per filter case. Protected transparency is not supported. In all other cases the filter
// reads and writes straight (not premultiplied) data, works on blank data, may write outside the
// selection and does not need the source copied to the output.
Writer filterCases() {
  constexpr std::uint8_t cannotFilter = 0;
  constexpr std::uint8_t straightData = 1;
  constexpr std::uint8_t flags = 0x0B;
  constexpr int filteredCases = 5;
  constexpr int protectedCases = 2;
  Writer cases;
  for (int i = 0; i < filteredCases; ++i) cases.raw({straightData, straightData, flags, 0});
  for (int i = 0; i < protectedCases; ++i) cases.raw({cannotFilter, cannotFilter, flags, 0});
  return cases;
}

// The order of the parameters in the terminology, which differs from the parameter table's.
constexpr std::array<std::string_view, 20> terminologyOrder{
    "Origin",          "Intensity",    "RayLength",     "Radius",
    "ColorBalance",    "ColorLow",     "ColorHigh",     "UseImageColor",
    "GammaCorrection", "Contrast",     "Hue",           "Saturation",
    "Lightness",       "SelectionLow", "SelectionHigh", "SelectionSoften",
    "SelectionClimax", "Mode",         "BlendMode",     "SelectionShow"};
static_assert(std::ssize(terminologyOrder) ==
                  std::count_if(effectTable.begin(), effectTable.end(),
                                [](const auto& facts) { return facts.keys[0].code != nullptr; }),
              "scripts can name every parameter that they hold");

const ParameterFacts& factsOf(std::string_view name) {
  for (const ParameterFacts& facts : effectTable) {
    if (facts.name == name) return facts;
  }
  throw std::logic_error("no such parameter: " + std::string(name));
}

void addType(Writer& writer, ParameterKind kind) {
  switch (kind) {
    case ParameterKind::boolean:
      writer.code("bool");
      break;
    case ParameterKind::list:
      writer.code("long");
      break;
    default:
      writer.code("doub");
      break;
  }
}

// Returns the number of values added.
std::uint16_t addParameters(Writer& writer) {
  std::uint16_t count = 0;
  for (const std::string_view name : terminologyOrder) {
    const ParameterFacts& facts = factsOf(name);
    for (const ScriptTerm& term : facts.keys) {
      if (term.code == nullptr) break;
      writer.pascal(term.name).int32(scriptKey(term));
      addType(writer, facts.kind);
      writer.pascal(term.description).int16(0);
      ++count;
    }
  }
  return count;
}

}  // namespace

Bytes makePiPL() {
  Writer properties;
  addProperty(properties, "kind", Writer().code("8BFM"));
  addProperty(properties, "name", Writer().pascal(menuItem));
  addProperty(properties, "catg", Writer().pascal(vendor));
  addProperty(properties, "vers", Writer().int32(0x00010002));
  addProperty(properties, "8664", Writer().text(entryPoint).zeros(1));
  addProperty(properties, "flly", Writer().raw({0x80, 0, 0, 0}));
  addProperty(properties, "mode", Writer().raw({0x50, 0, 0, 0}));  // grey and RGB
  addProperty(
      properties, "hstm",
      Writer().int32(0).code(eventClass).code(eventId).int16(terminologyId).text(scope).zeros(1));
  addProperty(properties, "enbl", Writer().text(enabledWhen).zeros(1));
  addProperty(properties, "fici", filterCases());
  constexpr std::uint32_t propertyCount = 10;
  return Writer().int16(1).int32(0).int32(propertyCount).append(properties.bytes()).bytes();
}

Bytes makeAETE() {
  Writer parameters;
  const std::uint16_t count = addParameters(parameters);
  constexpr std::uint16_t directParameterFlags = 0xB000;
  return Writer()
      .int16(1)  // header
      .int16(1)  // version
      .int16(0)  // language
      .int16(0)  // script
      .int16(1)  // suites
      .pascal(vendor)
      .pascal("Skein package")
      .code(suiteCode)
      .int16(1)  // level
      .int16(1)  // version
      .int16(1)  // events
      .pascal(effectName)
      .pascal("no comment")
      .code(eventClass)
      .code(eventId)
      .code("null")  // reply type
      .pascal("")
      .int16(0)      // reply flags
      .code("#ImR")  // direct parameter
      .pascal("")
      .int16(directParameterFlags)
      .int16(count)
      .append(parameters.bytes())
      .int16(0)  // classes
      .int16(0)  // comparison operators
      .int16(0)  // enumerations
      .bytes();
}

}  // namespace radiashafts::resources
