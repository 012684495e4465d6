#include "cli/batch.h"

#include <chrono>
#include <future>
#include <iomanip>
#include <iostream>
#include <new>
#include <optional>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "cli/host_window.h"
#include "cli/parameter_options.h"
#include "cli/printable.h"
#include "cli/progress_bar.h"
#include "standin/picture_file.h"
#include "standin/system/interrupt.h"

namespace radiashafts::cli {
namespace {

using namespace std::chrono_literals;

constexpr char interrupted[] = "interrupted";

bool wasInterrupted() {
  return standin::interruptCode() != 0;
}

// On a thread of its own or, if there is none to be had, when the result is asked for. The work
// owns nothing: the library drops what it owned when the thread does not start.
template <class Work>
auto start(const Work& work) {
  static_assert(std::is_trivially_destructible_v<Work>);
  return std::async(std::launch::async | std::launch::deferred, work);
}

template <class Result>
bool isUnfinished(const std::future<Result>& result) {
  return result.valid() && result.wait_for(0s) != std::future_status::ready;
}

std::string writtenMessage(const Job& job, const standin::Picture& picture, double seconds) {
  std::ostringstream message;
  message << printable(job.output.string()) << ": " << picture.width << " x " << picture.height
          << " pixels, " << picture.depth << " bits a channel, rays in " << std::fixed
          << std::setprecision(2) << seconds << " s\n";
  return message.str();
}

void makeDirectory(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw Failure{exitOutput, path.string() + ": " + error.message()};
}

class Batch {
 public:
  Batch(const CommandLine& commandLine, standin::EntryPoint entry, const standin::Mask* mask)
      : commandLine_(commandLine), entry_(entry), mask_(mask) {}
  ~Batch() { awaitReader(); }  // also after any failure, and an interrupt ends even this
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  void run();

 private:
  struct Rendered {
    const Job* job;
    standin::PictureFile file;
    std::string message;  // for a picture that has been written
  };

  template <class Work>
  static std::optional<Failure> failureOf(const Job& job, const Work& work);
  // Prints and remembers a failure, or throws it where no other picture is to be tried.
  void report(const Job& job, const Failure& failure);
  Failure summary() const;
  void startReading(std::size_t index);  // nothing after the last job
  void awaitReader();
  // Returns the filter's run time in seconds.
  double render(const Job& job, standin::Picture& picture);
  double filter(const Job& job, standin::Picture& picture);
  void checkMask(const standin::Picture& picture) const;
  void startWriting();
  void finishWriting();

  const CommandLine& commandLine_;
  standin::EntryPoint entry_;
  const standin::Mask* mask_;
  std::future<standin::PictureFile> reading_;
  std::future<standin::WriteResult> writing_;
  Rendered rendered_{};                               // what is written
  std::vector<std::pair<const Job*, int>> failures_;  // with their exit codes
  bool cancelled_ = false;                            // by the user, in the filter's dialog
};

void Batch::run() {
  const std::vector<Job>& jobs = commandLine_.jobs;
  try {
    startReading(0);
    for (std::size_t i = 0; i < jobs.size(); ++i) {
      awaitReader();
      standin::PictureFile file;
      std::string message;
      const auto render = [&] {
        const auto seconds = this->render(jobs[i], file.picture);
        message = writtenMessage(jobs[i], file.picture, seconds);
      };
      std::optional<Failure> failure = failureOf(jobs[i], [&] { file = reading_.get(); });
      startReading(i + 1);
      if (!failure) failure = failureOf(jobs[i], render);
      finishWriting();
      if (failure) {
        report(jobs[i], *failure);
      } else {
        rendered_ = {&jobs[i], std::move(file), std::move(message)};
        startWriting();
      }
    }
    finishWriting();
  } catch (...) {
    if (writing_.valid()) writing_.wait();
    throw;
  }
  if (!failures_.empty()) throw summary();
}

// What ends the work on a picture, but not always that on the others.
template <class Work>
std::optional<Failure> Batch::failureOf(const Job& job, const Work& work) {
  try {
    work();
  } catch (const Failure& failure) {
    return failure;
  } catch (const standin::PictureFileError& error) {
    return Failure{exitInput, error.what()};
  } catch (const std::bad_alloc&) {
    return Failure{exitRender, job.input.string() + ": not enough memory"};
  }
  return std::nullopt;
}

void Batch::report(const Job& job, const Failure& failure) {
  const bool endsRun = wasInterrupted() || cancelled_ || commandLine_.failFast;
  if (endsRun || commandLine_.jobs.size() == 1) throw failure;
  printMessage("radiashafts: " + failure.text);
  failures_.push_back({&job, failure.exitCode});
}

Failure Batch::summary() const {
  const std::size_t count = commandLine_.jobs.size();
  std::string names;
  for (const auto& [job, exitCode] : failures_) {
    names += (names.empty() ? "" : ", ") + job->input.string();
  }
  const int exitCode = failures_.size() < count ? exitPartial : failures_.front().second;
  return {exitCode, std::to_string(failures_.size()) + " of " + std::to_string(count) +
                        " pictures failed: " + names};
}

void Batch::startReading(std::size_t index) {
  if (index == commandLine_.jobs.size()) return;
  reading_ =
      start([&job = commandLine_.jobs[index]] { return standin::readPictureFile(job.input); });
}

// An interrupt ends the program here at once, since reading may take forever; but not before the
// encoder, which stops by itself, has removed its file.
void Batch::awaitReader() {
  while (isUnfinished(reading_) && isUnfinished(writing_)) writing_.wait_for(10ms);
  if (!isUnfinished(reading_)) return;
  const standin::ExitOnInterrupt exitOnInterrupt(interruptedLine);
  reading_.wait();
}

double Batch::render(const Job& job, standin::Picture& picture) {
  if (mask_ != nullptr) checkMask(picture);
  try {
    standin::checkWritable(job.output, picture);
  } catch (const standin::PictureFileError& error) {
    throw Failure{exitOutput, error.what()};
  }
  return filter(job, picture);
}

void Batch::checkMask(const standin::Picture& picture) const {
  if (mask_->width == picture.width && mask_->height == picture.height) return;
  throw Failure{exitInput,
                commandLine_.mask->string() + ": the mask is " + std::to_string(mask_->width) +
                    " x " + std::to_string(mask_->height) + " and the picture " +
                    std::to_string(picture.width) + " x " + std::to_string(picture.height)};
}

std::string causeOf(std::int16_t status) {
  if (status == hostapi::memoryFullError) return "not enough memory";
  return "the filter answered " + std::to_string(status);
}

// Replaces the picture with the filtered one and returns the filter's run time in seconds.
double Batch::filter(const Job& job, standin::Picture& picture) {
  ProgressBar bar(job.input.filename().string(), !commandLine_.quiet);
  standin::HostTraits traits = commandLine_.traits;
  std::optional<standin::PictureWindow> window;
  if (traits.playInfo == hostapi::playDisplay && commandLine_.ownWindow) {
    window.emplace(job.input.filename().string(),
                   shownPicture(picture, standin::PictureWindow::maximumSize()));
    traits.ownerWindow = window->handle();
  }
  standin::StandInHost host(picture, mask_, traits);
  host.chooseColor = [this](std::array<std::int16_t, 3>& color) {
    if (commandLine_.pickedColor) color = *commandLine_.pickedColor;
    return commandLine_.pickedColor.has_value();
  };
  host.onProgress = [&bar](std::int32_t done, std::int32_t total) { bar.show(done, total); };
  host.abortWanted = wasInterrupted;
  standin::Picture output;
  const auto begin = std::chrono::steady_clock::now();
  const standin::RunResult result = host.run(entry_, commandLine_.script, output);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  if (commandLine_.printScript) printScript(std::cout, result.script);
  if (wasInterrupted()) throw Failure{standin::interruptCode(), interrupted};
  if (result.status == hostapi::userCanceledError) {
    cancelled_ = true;
    throw Failure{exitRender, job.input.string() + ": the filter was cancelled, status -128"};
  }
  if (result.status != 0) {
    throw Failure{exitRender, job.input.string() + ": " + causeOf(result.status)};
  }
  picture = std::move(output);
  return seconds.count();
}

void Batch::startWriting() {
  writing_ = start([this] {
    return standin::writePictureFile(rendered_.job->output, std::move(rendered_.file),
                                     wasInterrupted);
  });
}

// Prints what is to be said of the written picture.
void Batch::finishWriting() {
  if (!writing_.valid()) return;
  const Job& job = *rendered_.job;
  standin::WriteResult result;
  try {
    result = writing_.get();
  } catch (const standin::PictureFileError& error) {
    return report(job, {exitOutput, error.what()});
  } catch (const std::bad_alloc&) {
    return report(job, {exitRender, job.output.string() + ": not enough memory"});
  }
  if (!result.written) throw Failure{standin::interruptCode(), interrupted};
  if (commandLine_.quiet) return;
  for (const std::string& note : result.notes) printMessage("note: " + note);
  std::cout << rendered_.message << std::flush;
}

}  // namespace

void runBatch(const CommandLine& commandLine, standin::EntryPoint entry,
              const standin::Mask* mask) {
  if (commandLine.outputDirectory) makeDirectory(*commandLine.outputDirectory);
  Batch(commandLine, entry, mask).run();
}

}  // namespace radiashafts::cli
