// Which files a call reads and writes.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace radiashafts::cli {

// A file name that stands for standard input or standard output.
inline constexpr char standardStream[] = "-";

struct Job {
  std::filesystem::path input;
  std::filesystem::path output;
  std::optional<std::filesystem::path> mask;  // of this picture alone
  std::optional<int> frame;                   // of a sequence
};

struct FileOptions {
  std::vector<std::string> paths;
  std::string outputDirectory;
  std::string name;    // pattern of the outputs' names
  std::string format;  // extension of outputs that are called after their inputs
  std::string mask;    // a file, or the pattern of one file for each input
  std::string frames;  // of sequences; empty for those on the disk
  std::string chunk;   // the part of the list to do; empty for all
  bool overwrite = false;
};

// Converts a UTF-8 argument to a path; the system's paths may use another encoding.
std::filesystem::path pathOf(const std::string& text);
std::string utf8(const std::filesystem::path& path);

// Pairs each input, and each frame of sequences, with its output. Throws a CLI::Error when the
// arguments contradict each other, and a Failure when there are no frames.
std::vector<Job> jobsOf(const FileOptions& options);

}  // namespace radiashafts::cli
