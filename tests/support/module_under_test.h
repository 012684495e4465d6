#pragma once

#include "standin/stand_in_host.h"

namespace radiashafts::test {

// ENTRYPOINT of the built module, loaded once.
standin::EntryPoint moduleEntry();

// One run of the module over the picture.
struct ModuleRun {
  standin::RunResult result;
  standin::Picture output;
};
ModuleRun runModule(const standin::Picture& input, const standin::Mask* mask,
                    const standin::Script& script, const standin::HostTraits& traits = {},
                    const standin::HostFaults& faults = {});

}  // namespace radiashafts::test
