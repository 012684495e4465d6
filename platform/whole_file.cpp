#include "platform/whole_file.h"

#include <algorithm>

#include "platform/temporary_file.h"

namespace radiashafts::platform {

bool (*replaceFault)(ReplaceStep step) = nullptr;

std::optional<ReplaceFailure> replaceWholeFile(const std::string& path,
                                               const std::string& content) {
  TemporaryFile file(path);
  std::optional<ReplaceFailure> failure;
  const auto step = [&](ReplaceStep which, auto action) {
    if (replaceFault != nullptr && replaceFault(which)) {
      failure = {which, "fault on request"};
    } else if (!action()) {
      failure = {which, file.error()};
    }
    return !failure;
  };
  if (!step(ReplaceStep::open, [&] { return file.open(); })) return failure;
  for (std::size_t done = 0; done < content.size(); done += replaceBlock) {
    const std::size_t size = std::min(replaceBlock, content.size() - done);
    const auto write = [&] { return file.write(content.data() + done, size); };
    if (!step(ReplaceStep::write, write)) return failure;
  }
  if (step(ReplaceStep::flush, [&] { return file.flush(); })) {
    step(ReplaceStep::rename, [&] { return file.putInPlace(); });
  }
  return failure;
}

}  // namespace radiashafts::platform
