#pragma once

#include <cstddef>
#include <iosfwd>

namespace radiashafts::test {

// What this process holds of the system.
struct ProcessUsage {
  int threads = 0;
  int handles = 0;
  int drawingObjects = 0;
  std::size_t memory = 0;  // bytes committed for this process alone
};
std::ostream& operator<<(std::ostream& out, const ProcessUsage& usage);

ProcessUsage processUsage();

}  // namespace radiashafts::test
