#include "cli/job_list.h"

#include <map>
#include <set>

#include <CLI/Error.hpp>

#include "cli/command_line.h"
#include "cli/frame_pattern.h"
#include "cli/frame_range.h"

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

// What a call says of one input, or of one frame of a sequence.
struct Source {
  std::string input;
  std::optional<int> frame;
};

// A name that has a place for the frame's number, unless there is a file of just this name.
std::optional<FramePattern> patternOf(const std::string& name) {
  std::error_code error;
  return fs::exists(pathOf(name), error) ? std::nullopt : FramePattern::in(name);
}

// The name of one of several outputs, or of one of several masks.
std::string withFrame(const std::string& name, const std::optional<int>& frame) {
  const auto pattern = frame ? FramePattern::in(name) : std::nullopt;
  return pattern ? pattern->name(*frame) : name;
}

// An input that is no pattern is the same in all frames.
std::vector<Source> sourcesOf(const std::string& input, const FileOptions& options) {
  const auto pattern = patternOf(input);
  if (!pattern && options.frames.empty()) return {{input, std::nullopt}};
  const std::vector<int> frames =
      options.frames.empty() ? pattern->framesOnDisk() : framesIn(options.frames);
  if (frames.empty()) throw Failure{exitInput, input + ": there are no such frames"};
  std::vector<Source> sources;
  sources.reserve(frames.size());
  for (const int frame : frames) {
    sources.push_back({pattern ? pattern->name(frame) : input, frame});
  }
  return sources;
}

fs::path outputOf(const FileOptions& options, const Source& source) {
  const fs::path input = pathOf(source.input);
  fs::path named = input;
  if (!options.format.empty()) named.replace_extension(pathOf(options.format));
  fs::path name = named.filename();
  if (!options.name.empty()) {
    name = expanded("--name", withFrame(options.name, source.frame), named);
    if (name != name.filename()) {
      throw CLI::ValidationError("--name", "'" + options.name + "' is no file's name alone");
    }
  }
  const bool besideInput = options.outputDirectory.empty();
  return (besideInput ? input.parent_path() : pathOf(options.outputDirectory)) / name;
}

Job jobOf(const Source& source, fs::path output) {
  return {pathOf(source.input), std::move(output), {}, source.frame};
}

std::vector<Job> jobsOfTwo(const FileOptions& options) {
  const std::vector<std::string>& paths = options.paths;
  if (paths.size() == 1) throw CLI::RequiredError("OUTPUT, or --output-dir or --name,");
  if (paths.size() > 2) throw CLI::ValidationError("several inputs need --output-dir or --name");
  const std::vector<Source> sources = sourcesOf(paths[0], options);
  const bool isPattern = FramePattern::in(paths[1]).has_value();
  if (isPattern && !sources.front().frame) {
    throw CLI::ValidationError(paths[1] + " has a place for a frame's number; --frames is needed");
  }
  if (!isPattern && sources.size() > 1) {
    throw CLI::ValidationError(paths[1] + " has no place for the frame's number, such as %04d");
  }
  std::vector<Job> jobs;
  jobs.reserve(sources.size());
  for (const Source& source : sources) {
    jobs.push_back(jobOf(source, pathOf(withFrame(paths[1], source.frame))));
  }
  return jobs;
}

std::vector<Job> jobsByName(const FileOptions& options) {
  std::vector<Job> jobs;
  std::map<fs::path, std::string> inputOf;
  for (const std::string& path : options.paths) {
    if (path == standardStream) {
      throw CLI::ValidationError("standard input has no name; it needs an OUTPUT");
    }
    for (const Source& source : sourcesOf(path, options)) {
      const fs::path output = outputOf(options, source);
      const auto [existing, inserted] = inputOf.emplace(output, source.input);
      if (!inserted) {
        throw CLI::ValidationError(existing->second + " and " + source.input +
                                   " would both become " + output.string());
      }
      jobs.push_back(jobOf(source, output));
    }
  }
  return jobs;
}

// A mask of one name is not the jobs' own.
void addMasks(std::vector<Job>& jobs, const std::string& mask) {
  const bool namesInput =
      mask.find("{stem}") != std::string::npos || mask.find("{ext}") != std::string::npos;
  const bool namesFrame = patternOf(mask).has_value();
  for (Job& job : jobs) {
    if (!namesInput && !(namesFrame && job.frame)) continue;
    job.mask = expanded("--mask", namesFrame ? withFrame(mask, job.frame) : mask, job.input);
  }
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

std::string utf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::vector<Job> jobsOf(const FileOptions& options) {
  if (options.paths.empty()) throw CLI::RequiredError("INPUT");
  const bool byName = !options.outputDirectory.empty() || !options.name.empty();
  std::vector<Job> jobs = byName ? jobsByName(options) : jobsOfTwo(options);
  if (!options.overwrite) checkInputsStay(jobs);
  addMasks(jobs, options.mask);
  if (options.chunk.empty()) return jobs;
  const ItemRange range = itemsOf(chunkIn(options.chunk), jobs.size());
  const auto item = [&jobs](std::size_t i) {
    return jobs.begin() + static_cast<std::ptrdiff_t>(i);
  };
  return {item(range.begin), item(range.end)};
}

}  // namespace radiashafts::cli
