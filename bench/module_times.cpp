// Prints times of one process, in milliseconds: module_times MODULE [NAME=NUMBER...]. Names are
// width, height, depth, colors, alpha, renders, copies, rest (milliseconds before each render),
// keeps (whether the host keeps disposed buffers for later ones), and the four letters of a
// script's keys. "render" lines are whole renders, the first of the process first; "copy" lines
// copy as many bytes as the render works on, and "touch" is the first write to fresh ones, all on
// two threads; without copies neither is there. Needs no benchmark library, so it also builds on
// Windows.

#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <stdexcept>
#include <thread>

#include "bench/generated_picture.h"
#include "standin/host_buffer_suite.h"
#include "standin/stand_in_host.h"
#include "standin/system/arguments.h"
#include "standin/system/module.h"

namespace radiashafts::bench {
namespace {

using Numbers = std::map<std::string, double>;

template <class Work>
void printTime(const char* name, const Work& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
  std::printf("%s %.2f\n", name, time.count());
}

// Each thread has a half of the bytes.
template <class Work>
void onTwoThreads(std::size_t bytes, const Work& work) {
  std::thread second([&] { work(bytes / 2, bytes - bytes / 2); });
  work(std::size_t{0}, bytes / 2);
  second.join();
}

void printReferences(std::size_t bytes, int copies) {
  // Without a constructor: the first write is what is measured.
  const std::unique_ptr<char[]> from(new char[bytes]), to(new char[bytes]);
  const auto clear = [&](char* memory) {
    onTwoThreads(bytes,
                 [=](std::size_t at, std::size_t size) { std::memset(memory + at, 1, size); });
  };
  printTime("touch", [&] { clear(from.get()); });
  clear(to.get());
  for (int i = 0; i < copies; ++i) {
    printTime("copy", [&] {
      onTwoThreads(bytes, [&](std::size_t at, std::size_t size) {
        std::memcpy(to.get() + at, from.get() + at, size);
      });
    });
  }
}

void printRenders(standin::EntryPoint entry, const Numbers& numbers) {
  const auto number = [&](const char* name) { return static_cast<int>(numbers.at(name)); };
  const bool alpha = number("alpha") != 0;
  const standin::Picture input =
      makePicture(number("width"), number("height"), number("depth"), number("colors"), alpha);
  // Input and output, the working image, and the sums of the straight rays with their weights.
  const auto planes = static_cast<std::size_t>(input.planes);
  const std::size_t floats = input.sampleCount() / planes * (planes + planes + 1);
  if (number("copies") > 0) {
    printReferences(2 * input.bytes.size() + floats * sizeof(float), number("copies"));
  }

  standin::Script script;
  for (const auto& [name, value] : numbers) {
    if (name.size() != 4 || name[0] < 'A' || name[0] > 'Z') continue;
    const std::uint32_t key =
        hostapi::fourCharacterCode({name[0], name[1], name[2], name[3], '\0'});
    const bool isList = name == "MODE" || name == "BLND" || name == "SHOW";
    script.emplace_back(
        key, isList ? standin::ScriptValue(static_cast<int>(value)) : standin::ScriptValue(value));
  }
  standin::Picture output = input;
  if (number("keeps") != 0) standin::keepDisposedBuffers();
  for (int i = 0; i < number("renders"); ++i) {
    standin::StandInHost host(input, nullptr);
    std::int16_t status = 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(number("rest")));
    printTime("render", [&] { status = host.run(entry, script, output).status; });
    if (status != 0) throw std::runtime_error("the filter answered " + std::to_string(status));
  }
}

}  // namespace
}  // namespace radiashafts::bench

int main(int argc, char** argv) {
  using namespace radiashafts;
  const std::vector<std::string> arguments = standin::programArguments(argc, argv);
  bench::Numbers numbers{{"width", 6000}, {"height", 4000}, {"depth", 8},
                         {"colors", 3},   {"alpha", 0},     {"renders", 3},
                         {"copies", 3},   {"rest", 0},      {"keeps", 0}};
  try {
    if (arguments.empty()) throw std::runtime_error("the path of a module is missing");
    for (std::size_t i = 1; i < arguments.size(); ++i) {
      const std::size_t equals = arguments[i].find('=');
      if (equals == std::string::npos) throw std::runtime_error(arguments[i] + " has no number");
      numbers[arguments[i].substr(0, equals)] = std::stod(arguments[i].substr(equals + 1));
    }
    standin::Module module;
    if (!module.load(arguments[0])) throw std::runtime_error(module.error());
    const auto entry = reinterpret_cast<standin::EntryPoint>(module.symbol("ENTRYPOINT"));
    if (entry == nullptr) throw std::runtime_error(arguments[0] + " exports no ENTRYPOINT");
    bench::printRenders(entry, numbers);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "module_times: %s\n", error.what());
    return 1;
  }
}
