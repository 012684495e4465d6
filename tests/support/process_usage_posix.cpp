#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/process_usage.h"

namespace radiashafts::test {
namespace {

int entriesIn(const char* folder) {
  return static_cast<int>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

}  // namespace

ProcessUsage processUsage() {
  ProcessUsage usage;
  usage.threads = entriesIn("/proc/self/task");
  usage.handles = entriesIn("/proc/self/fd");
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word == "RssAnon:") status >> usage.memory;
  }
  usage.memory *= 1024;
  return usage;
}

}  // namespace radiashafts::test
