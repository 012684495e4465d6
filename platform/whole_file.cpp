#include "platform/whole_file.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "platform/temporary_file.h"

namespace radiashafts::platform {

bool (*replaceFault)(ReplaceStep step) = nullptr;

std::optional<ReplaceFailure> changeWholeFile(const std::string& path, const FileChange& change) {
  using namespace std::chrono_literals;
  TemporaryFile file(path);
  std::optional<ReplaceFailure> failure;
  const auto step = [&](ReplaceStep which, auto action) {
    failure.reset();
    if (replaceFault != nullptr && replaceFault(which)) {
      failure = {which, "fault on request"};
    } else if (!action()) {
      failure = {which, file.error()};
    }
    return !failure;
  };
  const auto deadline = std::chrono::steady_clock::now() + 1s;
  using OpenResult = TemporaryFile::OpenResult;
  auto result = OpenResult::failed;
  const auto open = [&] { return (result = file.open()) == OpenResult::opened; };
  while (!step(ReplaceStep::open, open)) {
    const bool inUse = std::exchange(result, OpenResult::failed) == OpenResult::inUse;
    if (!inUse || std::chrono::steady_clock::now() >= deadline) return failure;
    std::this_thread::sleep_for(5ms);
  }
  const auto content = change(readWholeFile(path));
  if (!content) return std::nullopt;
  for (std::size_t done = 0; done < content->size(); done += replaceBlock) {
    const std::size_t size = std::min(replaceBlock, content->size() - done);
    const auto write = [&] { return file.write(content->data() + done, size); };
    if (!step(ReplaceStep::write, write)) return failure;
  }
  if (step(ReplaceStep::flush, [&] { return file.flush(); })) {
    step(ReplaceStep::rename, [&] { return file.renameToTarget(); });
  }
  return failure;
}

}  // namespace radiashafts::platform
