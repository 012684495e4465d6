#include "tests/support/module_under_test.h"

#include <cstdlib>
#include <iostream>

#include "standin/system/module.h"

namespace radiashafts::test {

standin::EntryPoint moduleEntry() {
  static standin::Module module;
  static const auto entry = [] {
    if (!module.load(RADIASHAFTS_MODULE_PATH)) {
      std::cerr << module.error() << '\n';
      std::abort();
    }
    return reinterpret_cast<standin::EntryPoint>(module.symbol("ENTRYPOINT"));
  }();
  return entry;
}

ModuleRun runModule(const standin::Picture& input, const standin::Mask* mask,
                    const standin::Script& script, const standin::HostTraits& traits,
                    const standin::HostFaults& faults) {
  standin::StandInHost host(input, mask, traits);
  host.faults = faults;
  ModuleRun run;
  run.result = host.run(moduleEntry(), script, run.output);
  return run;
}

}  // namespace radiashafts::test
