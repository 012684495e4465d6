// Files that are read and replaced as a whole. Paths are in the system's narrow text.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace radiashafts::platform {

// None where the system's narrow text cannot say the path.
std::optional<std::string> narrowPath(const std::filesystem::path& path);

enum class FileState {
  absent,   // there is none
  refused,  // there is one that the system does not let be read
  unfit,    // no plain file, or one beyond maximumWholeFile
  whole
};

struct WholeFile {
  FileState state;
  std::string content;
};

inline constexpr std::size_t maximumWholeFile = std::size_t{512} << 20;

WholeFile readWholeFile(const std::string& path);

// The steps of a replacement. Writing takes one for each block of the content.
enum class ReplaceStep { open, write, flush, rename };
inline constexpr std::size_t replaceBlock = std::size_t{64} << 10;

struct ReplaceFailure {
  ReplaceStep step;
  std::string reason;  // in the system's words
};

// The new content for a file as it stands; none leaves it alone.
using FileChange = std::function<std::optional<std::string>(const WholeFile& old)>;

// Puts a file with the changed content in the path's place in one step, a new one where there is
// none. Whatever fails, or wherever the process ends, the path holds its old bytes or the new ones,
// which have reached the disk. The content is gathered beside it, under its name followed by "tmp".
// Who has that file open is alone at the change, from reading to the end; others wait for a second
// and have failed then. On Linux links are followed and rights kept.
std::optional<ReplaceFailure> changeWholeFile(const std::string& path, const FileChange& change);

// Where set, asked before each step and before each further try to open; a step that it answers
// with true fails. For tests.
extern bool (*replaceFault)(ReplaceStep step);

// What the system's text files end a line with.
extern const char lineEnd[];

}  // namespace radiashafts::platform
