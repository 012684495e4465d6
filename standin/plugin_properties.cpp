#include "standin/plugin_properties.h"

#include <algorithm>
#include <stdexcept>

#include "hostapi/types.h"
#include "standin/system/module_resource.h"

namespace radiashafts::standin {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int propertyListId = 16000;

class Reader {
 public:
  explicit Reader(const Bytes& bytes) : bytes_(bytes) {}

  std::uint32_t integer(std::size_t width) {
    const Bytes raw = take(width);
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < width; ++i) value |= std::uint32_t{raw[i]} << 8 * i;
    return value;
  }
  Bytes take(std::size_t count) {
    if (count > bytes_.size() - next_) throw std::runtime_error("its property list ends early");
    const auto from = bytes_.begin() + static_cast<std::ptrdiff_t>(next_);
    next_ += count;
    return {from, from + static_cast<std::ptrdiff_t>(count)};
  }

 private:
  const Bytes& bytes_;
  std::size_t next_ = 0;
};

std::string pascalText(const Bytes& data) {
  if (data.empty() || data[0] >= data.size()) return {};
  return {data.begin() + 1, data.begin() + 1 + data[0]};
}

std::string zeroTerminatedText(const Bytes& data) {
  return {data.begin(), std::find(data.begin(), data.end(), std::uint8_t{0})};
}

}  // namespace

PluginProperties parsePluginProperties(const Bytes& resource) {
  Reader reader(resource);
  if (reader.integer(2) != 1 || reader.integer(4) != 0) {
    throw std::runtime_error("its property list has an unknown version");
  }
  PluginProperties properties;
  for (std::uint32_t left = reader.integer(4); left > 0; --left) {
    reader.integer(4);  // vendor
    const std::uint32_t key = reader.integer(4);
    reader.integer(4);  // id
    const Bytes data = reader.take(reader.integer(4));
    switch (key) {
      case hostapi::fourCharacterCode("kind"):
        properties.isFilter = Reader(data).integer(4) == hostapi::fourCharacterCode("8BFM");
        break;
      case hostapi::fourCharacterCode("name"):
        properties.name = pascalText(data);
        break;
      case hostapi::fourCharacterCode("catg"):
        properties.category = pascalText(data);
        break;
      case hostapi::fourCharacterCode("8664"):
        properties.entryPoint = zeroTerminatedText(data);
        break;
      case hostapi::fourCharacterCode("enbl"):
        properties.enabledWhen = zeroTerminatedText(data);
        break;
      case hostapi::fourCharacterCode("mode"):
        if (!data.empty()) properties.modes = data[0];
        break;
      default:
        break;  // hosts ignore unknown properties
    }
  }
  return properties;
}

std::string entryPointOf(const std::filesystem::path& module) {
  if (!standin::modulesHaveResources) return "ENTRYPOINT";
  const auto resource = standin::moduleResource(module, "PIPL", propertyListId);
  if (!resource) throw std::runtime_error("it has no property list");
  const PluginProperties properties = parsePluginProperties(*resource);
  if (!properties.isFilter) throw std::runtime_error("it is no filter");
  if (properties.entryPoint.empty()) {
    throw std::runtime_error("it names no entry for 64-bit Windows");
  }
  return properties.entryPoint;
}

}  // namespace radiashafts::standin
