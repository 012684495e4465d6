// Any keys and values in a recorded script, then a render. The input is the picture, what fails,
// and the script's entries.

#include <cmath>

#include "tests/fuzz/fuzzing.h"

namespace radiashafts::test {
namespace {

using standin::Service;

standin::Picture takePicture(Input& input) {
  const auto kind = input.take();
  standin::Picture picture;
  picture.colorPlanes = kind % 3 + 1;
  picture.hasAlpha = kind / 3 % 2 != 0;
  picture.planes = picture.colorPlanes + (picture.hasAlpha ? 1 : 0) + kind / 6 % 2;
  picture.depth = 8 << kind / 12 % 3;
  picture.width = input.take() % 12 + 1;
  picture.height = input.take() % 12 + 1;
  picture.allocate();
  const auto pattern = input.take();
  for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
    picture.bytes[i] = static_cast<std::uint8_t>(pattern * (i + 1) >> 2);
  }
  return picture;
}

// A key is one of the filter's own or any other.
standin::Script takeScript(Input& input) {
  const standin::Script known = defaultScript();
  standin::Script script;
  while (!input.rest().empty()) {
    const auto choice = input.take();
    const std::size_t number = choice / 4;
    const auto key = number < known.size() ? known[number].first : input.take<std::uint32_t>();
    if (choice % 4 == 0) {
      script.emplace_back(key, input.take<std::int32_t>());
    } else if (choice % 4 == 1) {
      script.emplace_back(key, input.take() % 2 != 0);
    } else {
      script.emplace_back(key, input.take<double>());
    }
  }
  return script;
}

void tryScript(Input input) {
  setFilter(defaultScript());
  const standin::Picture picture = takePicture(input);
  standin::HostTraits traits;
  traits.guardBytes = 64;
  traits.inputPadding = traits.outputPadding = input.take() % 8;
  traits.playInfo = input.take() % 4;
  standin::StandInHost host(picture, nullptr, traits);
  const auto fault = input.take();
  host.faults.fault = {fault % 2 != 0 ? Service::descriptors : Service::none, fault / 4,
                       fault / 2 % 2 != 0};
  standin::Picture output = picture;
  const standin::RunResult result = host.run(ENTRYPOINT, takeScript(input), output);
  const bool asksForDialogs = traits.playInfo == hostapi::playDisplay;
  require(result.status == (asksForDialogs ? hostapi::userCanceledError : 0), "the stated status");
  require(result.guardsIntact && result.leaked == 0, "nothing is touched or kept");
  for (const auto& [key, value] : result.script) {
    const double* number = std::get_if<double>(&value);
    require(fault % 2 != 0 || number == nullptr || std::isfinite(*number), "values are finite");
  }
}

}  // namespace
}  // namespace radiashafts::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  radiashafts::test::tryScript({data, size});
  return 0;
}
