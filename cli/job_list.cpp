#include "cli/job_list.h"

#include <map>
#include <set>

#include <CLI/CLI.hpp>

namespace radiashafts::cli {
namespace {

namespace fs = std::filesystem;

// The pattern with an input's name in the place of {stem}, and its extension, with the dot, in that
// of {ext}.
fs::path expanded(const std::string& option, const std::string& pattern, const fs::path& input) {
  fs::path::string_type path;
  const auto append = [&path](const fs::path& part) { path += part.native(); };
  std::size_t at = 0;
  for (std::size_t open = 0; (open = pattern.find('{', at)) != std::string::npos;) {
    append(pathOf(pattern.substr(at, open - at)));
    const std::size_t close = pattern.find('}', open);
    const std::string word = pattern.substr(open, close - open + 1);
    if (word == "{stem}") {
      append(input.stem());
    } else if (word == "{ext}") {
      append(input.extension());
    } else {
      throw CLI::ValidationError(option, "'" + word + "' is neither {stem} nor {ext}");
    }
    at = close + 1;
  }
  append(pathOf(pattern.substr(at)));
  return path;
}

fs::path outputOf(const FileOptions& options, const fs::path& input) {
  fs::path source = input;
  if (!options.format.empty()) source.replace_extension(pathOf(options.format));
  fs::path name = source.filename();
  if (!options.name.empty()) {
    name = expanded("--name", options.name, source);
    if (name != name.filename()) {
      throw CLI::ValidationError("--name", "'" + options.name + "' is no file's name alone");
    }
  }
  const bool besideInput = options.outputDirectory.empty();
  return (besideInput ? input.parent_path() : pathOf(options.outputDirectory)) / name;
}

std::vector<Job> jobOfTwo(const FileOptions& options) {
  const std::vector<std::string>& paths = options.paths;
  if (paths.size() == 1) throw CLI::RequiredError("OUTPUT, or --output-dir or --name,");
  if (paths.size() > 2) throw CLI::ValidationError("several inputs need --output-dir or --name");
  return {{pathOf(paths[0]), pathOf(paths[1]), {}}};
}

std::vector<Job> jobsByName(const FileOptions& options) {
  std::vector<Job> jobs;
  std::map<fs::path, std::string> inputOf;
  for (const std::string& path : options.paths) {
    if (path == standardStream) {
      throw CLI::ValidationError("standard input has no name; it needs an OUTPUT");
    }
    const fs::path output = outputOf(options, pathOf(path));
    const auto [existing, inserted] = inputOf.emplace(output, path);
    if (!inserted) {
      throw CLI::ValidationError(existing->second + " and " + path + " would both become " +
                                 output.string());
    }
    jobs.push_back({pathOf(path), output, {}});
  }
  return jobs;
}

void checkInputsStay(const std::vector<Job>& jobs) {
  std::error_code error;
  std::set<fs::path> inputs;
  for (const Job& job : jobs) inputs.insert(fs::weakly_canonical(job.input, error));
  for (const Job& job : jobs) {
    if (job.output != standardStream && inputs.contains(fs::weakly_canonical(job.output, error))) {
      throw CLI::ValidationError(job.output.string() +
                                 " is an input, too; --overwrite allows to replace it");
    }
  }
}

}  // namespace

fs::path pathOf(const std::string& text) {
  return std::u8string(text.begin(), text.end());
}

bool isPattern(const std::string& text) {
  return text.find("{stem}") != std::string::npos || text.find("{ext}") != std::string::npos;
}

std::vector<Job> jobsOf(const FileOptions& options) {
  if (options.paths.empty()) throw CLI::RequiredError("INPUT");
  const bool byName = !options.outputDirectory.empty() || !options.name.empty();
  std::vector<Job> jobs = byName ? jobsByName(options) : jobOfTwo(options);
  if (!options.overwrite) checkInputsStay(jobs);
  if (isPattern(options.mask)) {
    for (Job& job : jobs) job.mask = expanded("--mask", options.mask, job.input);
  }
  return jobs;
}

}  // namespace radiashafts::cli
