// Any bytes read as a plug-in's property list, from memory that ends where they do.

#include <stdexcept>

#include "standin/plugin_properties.h"
#include "tests/fuzz/fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace radiashafts;
  try {
    const auto properties = standin::parsePluginProperties({data, data + size});
    for (const std::string* text : {&properties.name, &properties.category, &properties.entryPoint,
                                    &properties.enabledWhen}) {
      test::require(text->size() < size, "a text is part of the list");
    }
  } catch (const std::runtime_error&) {
  }
  return 0;
}
