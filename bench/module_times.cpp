// Prints the time in seconds of each render of one process, including the first:
// module_times MODULE DEPTH SOFTEN RENDERS. Needs no benchmark library, so it also builds on
// Windows.

#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>

#include "bench/generated_picture.h"
#include "standin/stand_in_host.h"
#include "standin/system/arguments.h"
#include "standin/system/module.h"

namespace radiashafts::bench {
namespace {

void printTimes(standin::EntryPoint entry, int depth, double soften, int renders) {
  const standin::Picture input = makePicture(6000, 4000, depth, 3, false);
  const standin::Script script{{hostapi::fourCharacterCode("SELS"), soften}};
  standin::Picture output = input;
  for (int i = 0; i < renders; ++i) {
    standin::StandInHost host(input, nullptr);
    const auto start = std::chrono::steady_clock::now();
    const std::int16_t status = host.run(entry, script, output).status;
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    if (status != 0) throw std::runtime_error("the filter answered " + std::to_string(status));
    std::printf("%.3f\n", seconds.count());
  }
}

}  // namespace
}  // namespace radiashafts::bench

int main(int argc, char** argv) {
  using namespace radiashafts;
  const std::vector<std::string> arguments = standin::programArguments(argc, argv);
  if (arguments.size() != 4) {
    std::fputs("usage: module_times MODULE DEPTH SOFTEN RENDERS\n", stderr);
    return 2;
  }
  try {
    standin::Module module;
    if (!module.load(arguments[0])) throw std::runtime_error(module.error());
    const auto entry = reinterpret_cast<standin::EntryPoint>(module.symbol("ENTRYPOINT"));
    if (entry == nullptr) throw std::runtime_error(arguments[0] + " exports no ENTRYPOINT");
    bench::printTimes(entry, std::stoi(arguments[1]), std::stod(arguments[2]),
                      std::stoi(arguments[3]));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "module_times: %s\n", error.what());
    return 1;
  }
}
