// Measures whole renders through the module's entry point.

#include <cstdlib>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include "bench/generated_picture.h"
#include "standin/stand_in_host.h"
#include "standin/system/module.h"

namespace radiashafts {
namespace {

standin::EntryPoint moduleEntry() {
  static standin::Module module;
  if (!module.load(RADIASHAFTS_MODULE_PATH)) std::abort();
  return reinterpret_cast<standin::EntryPoint>(module.symbol("ENTRYPOINT"));
}

// Arguments: depth, colour planes, alpha, mode (1 straight, 2 smooth), soften in hundredths.
void render(benchmark::State& state, int width, int height) {
  const auto argument = [&state](int i) { return static_cast<int>(state.range(i)); };
  const standin::Picture input =
      bench::makePicture(width, height, argument(0), argument(1), argument(2) != 0);
  const standin::Script script{
      {hostapi::fourCharacterCode("MODE"), std::int32_t{argument(3)}},
      {hostapi::fourCharacterCode("SELS"), argument(4) / 100.0},
  };
  standin::Picture output = input;
  for ([[maybe_unused]] auto _ : state) {
    standin::StandInHost host(input, nullptr);
    if (host.run(moduleEntry(), script, output).status != 0) state.SkipWithError("render failed");
  }
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) * 1024.0 / 1e6;
}

void BM_Render(benchmark::State& state) {
  render(state, 6000, 4000);
}

// The size of a typical preview.
void BM_SmallRender(benchmark::State& state) {
  render(state, 1000, 667);
}

BENCHMARK(BM_Render)
    ->ArgNames({"depth", "colors", "alpha", "mode", "soften"})
    ->Args({8, 3, 0, 1, 0})
    ->Args({8, 3, 0, 2, 0})
    ->Args({16, 3, 0, 1, 0})
    ->Args({16, 3, 0, 2, 0})
    ->Args({32, 3, 0, 1, 0})
    ->Args({32, 3, 0, 2, 0})
    ->Args({8, 3, 0, 1, 200})
    ->Args({8, 3, 1, 1, 0})
    ->Args({8, 1, 0, 1, 0})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(2.0);

BENCHMARK(BM_SmallRender)
    ->ArgNames({"depth", "colors", "alpha", "mode", "soften"})
    ->Args({8, 3, 0, 1, 0})
    ->Args({8, 3, 0, 2, 0})
    ->Args({16, 3, 0, 1, 0})
    ->Args({32, 3, 0, 1, 0})
    ->Args({8, 3, 1, 1, 0})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
}  // namespace radiashafts

BENCHMARK_MAIN();
