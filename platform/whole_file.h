// Files that are read and replaced as a whole. Paths are narrow strings; on Windows they are in the
// ANSI code page.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace radiashafts::platform {

// Empty when the system's narrow encoding cannot represent the path.
std::optional<std::string> narrowPath(const std::filesystem::path& path);

enum class FileState {
  absent,   // no such file
  refused,  // exists but cannot be read
  unfit,    // not a regular file, or larger than maximumWholeFile
  whole     // content holds the file's bytes
};

struct WholeFile {
  FileState state;
  std::string content;
};

inline constexpr std::size_t maximumWholeFile = std::size_t{512} << 20;

WholeFile readWholeFile(const std::string& path);

// The steps of a replacement. There is one write step per replaceBlock bytes.
enum class ReplaceStep { open, write, flush, rename };
inline constexpr std::size_t replaceBlock = std::size_t{64} << 10;

struct ReplaceFailure {
  ReplaceStep step;
  std::string reason;  // the system's error message
};

// Returns the new content for the current file; empty leaves the file unchanged.
using FileChange = std::function<std::optional<std::string>(const WholeFile& old)>;

// Replaces the file atomically with the changed content, or creates it. After an error or a crash
// the path holds either the old bytes or the complete new ones, which have been flushed to disk.
// The content is written to a temporary file in the same folder, named like the file plus "tmp".
// That file is also the lock: it is held from reading to renaming, and other writers wait up to a
// second before they fail. On Linux symbolic links are followed and permissions kept.
std::optional<ReplaceFailure> changeWholeFile(const std::string& path, const FileChange& change);

// For tests: if set, called before each step, including each retry of open. Returning true makes
// the step fail.
extern bool (*replaceFault)(ReplaceStep step);

// The line ending of the system's text files.
extern const char lineEnd[];

}  // namespace radiashafts::platform
