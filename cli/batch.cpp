#include "cli/batch.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <deque>
#include <future>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "cli/host_window.h"
#include "cli/mask_scaling.h"
#include "cli/parameter_options.h"
#include "cli/progress_line.h"
#include "cli/report.h"
#include "cli/run_progress.h"
#include "cli/standard_streams.h"
#include "hosts/library/auto_values.h"
#include "hosts/library/effect_script.h"
#include "standin/picture_file.h"
#include "standin/system/interrupt.h"

namespace radiashafts::cli {
namespace {

using namespace std::chrono_literals;

constexpr char interrupted[] = "interrupted";
constexpr char interruptedOverLine[] = "\r\033[Kradiashafts: interrupted\n";

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
bool isReady(const std::future<Result>& result) {
  return result.wait_for(0s) == std::future_status::ready;
}

// Not when it starts only when the result is asked for.
template <class Result>
bool isRunning(const std::future<Result>& result) {
  return result.wait_for(0s) == std::future_status::timeout;
}

void makeDirectory(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw Failure{exitOutput, path.string() + ": " + error.message()};
}

bool isSequence(const CommandLine& commandLine) {
  return !commandLine.jobs.empty() && commandLine.jobs.front().frame.has_value();
}

class Batch {
 public:
  Batch(const CommandLine& commandLine, standin::EntryPoint entry, const standin::Mask* mask)
      : commandLine_(commandLine),
        entry_(entry),
        mask_(mask),
        line_(!commandLine.quiet && !commandLine.json),
        report_(commandLine, line_),
        progress_(commandLine.jobs.size(), isSequence(commandLine) ? "frame" : "picture") {}
  ~Batch() {  // also after any failure, and an interrupt ends even this
    for (; !reading_.empty(); reading_.pop_front()) {
      if (isRunning(reading_.front())) awaitReader();
    }
  }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  void run();

 private:
  struct Input {
    standin::PictureFile file;
    std::optional<standin::Mask> mask;  // of this picture alone
  };
  struct Output {
    const Job* job;
    standin::PictureFile file;
    PictureReport report;
    std::unique_ptr<TemporaryPicture> standardOutput;
    std::future<standin::WriteResult> result;  // its work uses the members above

    const std::filesystem::path& path() const {
      return standardOutput ? standardOutput->path() : job->output;
    }
    // The text of a message with the name that the user gave.
    std::string named(const std::string& text) const {
      return standardOutput ? standardOutput->named(text) : text;
    }
  };

  template <class Work>
  static std::optional<Failure> failureOf(const Job& job, const Work& work);
  void renderNext(const Job& job);
  // Tells and remembers a failure, or throws it where no other picture is to be tried.
  void report(const Job& job, const Failure& failure);
  Failure summary() const;
  void startReading();  // nothing after the last job
  Input read(const Job& job) const;
  void awaitReader();
  void render(const Job& job, Input& input, Output& output);
  // The mask in the picture's size; null for none.
  const standin::Mask* maskFor(const Job& job, Input& input, const standin::Picture& picture,
                               PictureReport& report) const;
  void renderPage(const Job& job, Input& input, standin::Picture& picture, PictureReport& report);
  // The script with the values of the job's frame and with the origin of pixels.
  standin::Script scriptFor(const Job& job, const standin::Picture& picture,
                            standin::Script script) const;
  void filterWithAutoValues(const Job& job, const standin::Picture& picture,
                            const standin::Mask* mask, standin::Picture& rendered,
                            PictureReport& report);
  // Returns the filter's run time in seconds.
  double filter(const Job& job, const standin::Picture& picture, const standin::Mask* mask,
                const standin::Script& script, standin::Picture& rendered);
  void showProgress(const Job& job, int percent);
  void startWriting(Output& output);
  void finishWriting();  // of the oldest output
  void finishAllWriting() {
    while (!writing_.empty()) finishWriting();
  }

  const CommandLine& commandLine_;
  standin::EntryPoint entry_;
  const standin::Mask* mask_;
  ProgressLine line_;
  Report report_;
  RunProgress progress_;
  std::optional<TemporaryPicture> standardInput_;
  std::size_t nextToRead_ = 0;
  std::deque<std::future<Input>> reading_;
  std::deque<Output> writing_;
  std::vector<std::pair<const Job*, int>> failures_;  // with their exit codes
  bool cancelled_ = false;                            // by the user, in the filter's dialog
};

void Batch::run() {
  for (const Job& job : commandLine_.skipped) report_.skipped(job);
  const std::vector<Job>& jobs = commandLine_.jobs;
  if (!jobs.empty() && jobs[0].input == standardStream) {
    standardInput_.emplace("standard input", "", exitInput);
    receive(*standardInput_);
  }
  try {
    for (int i = 0; i < commandLine_.filesAtOnce; ++i) startReading();
    for (const Job& job : jobs) renderNext(job);
    finishAllWriting();
  } catch (...) {
    for (const Output& output : writing_) {
      if (output.result.valid()) output.result.wait();
    }
    throw;
  }
  if (!failures_.empty()) throw summary();
}

void Batch::renderNext(const Job& job) {
  awaitReader();
  Input input;
  Output output{&job, {}, {}, {}, {}};
  std::optional<Failure> failure = failureOf(job, [&] { input = reading_.front().get(); });
  reading_.pop_front();
  startReading();
  if (!failure) failure = failureOf(job, [&] { render(job, input, output); });
  progress_.finishOne();
  if (failure) {
    finishAllWriting();
    return report(job, *failure);
  }
  while (writing_.size() >= static_cast<std::size_t>(commandLine_.filesAtOnce)) finishWriting();
  output.file = std::move(input.file);
  startWriting(output);
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
  if (endsRun || commandLine_.jobs.size() == 1) {
    report_.failedAtLast(job, failure);
    throw Failure(failure);
  }
  report_.failed(job, failure);
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

void Batch::startReading() {
  if (nextToRead_ == commandLine_.jobs.size()) return;
  reading_.push_back(start([this, &job = commandLine_.jobs[nextToRead_]] { return read(job); }));
  ++nextToRead_;
}

Batch::Input Batch::read(const Job& job) const {
  std::optional<standin::Mask> mask;
  if (job.mask) mask = standin::readMaskFile(*job.mask);
  if (!standardInput_)
    return {standin::readPictureFile(job.input, commandLine_.reading), std::move(mask)};
  try {
    return {standin::readPictureFile(standardInput_->path(), commandLine_.reading),
            std::move(mask)};
  } catch (const standin::PictureFileError& error) {
    throw Failure{exitInput, standardInput_->named(error.what())};
  }
}

// An interrupt ends the program here at once, since reading may take forever; but not while there
// are temporary files: before the encoders, which stop by themselves, have removed theirs, and
// where standard input is in one.
void Batch::awaitReader() {
  const auto running = [](const Output& output) { return isRunning(output.result); };
  while (!isReady(reading_.front())) {
    const auto output = std::find_if(writing_.begin(), writing_.end(), running);
    if (output == writing_.end()) break;
    output->result.wait_for(10ms);
  }
  if (isReady(reading_.front()) || standardInput_) return;
  const standin::ExitOnInterrupt exitOnInterrupt(line_.isShown() ? interruptedOverLine
                                                                 : interruptedLine);
  reading_.front().wait();
}

void Batch::render(const Job& job, Input& input, Output& output) {
  standin::Picture& picture = input.file.picture;
  if (job.output == standardStream) {
    output.standardOutput =
        std::make_unique<TemporaryPicture>("standard output", input.file.extension, exitOutput);
  }
  try {
    standin::checkWritable(output.path(), input.file, commandLine_.encoding);
  } catch (const standin::PictureFileError& error) {
    throw Failure{exitOutput, output.named(error.what())};
  }
  renderPage(job, input, picture, output.report);
  for (standin::PictureFile& page : input.file.furtherPages) {
    renderPage(job, input, page.picture, output.report);
  }
  output.report.width = picture.width;
  output.report.height = picture.height;
  output.report.depth = picture.depth;
}

// Replaces the picture with the filtered one.
void Batch::renderPage(const Job& job, Input& input, standin::Picture& picture,
                       PictureReport& report) {
  const standin::Mask* const mask = maskFor(job, input, picture, report);
  standin::Picture rendered;
  if (commandLine_.choosesValues) {
    filterWithAutoValues(job, picture, mask, rendered, report);
  } else {
    const standin::Script script = scriptFor(job, picture, commandLine_.script);
    report.seconds += filter(job, picture, mask, script, rendered);
  }
  picture = std::move(rendered);
}

standin::Script Batch::scriptFor(const Job& job, const standin::Picture& picture,
                                 standin::Script script) const {
  // The middle of the pixel: the filter's product of a side and a quotient may lie below the pixel.
  const auto share = [](double pixel, int side) {
    return (pixel + std::copysign(0.5, pixel)) / side;
  };
  if (const auto& pixels = commandLine_.originInPixels) {
    hosts::setOrigin(script, share((*pixels)[0], picture.width),
                     share((*pixels)[1], picture.height));
  }
  if (commandLine_.keys) commandLine_.keys->apply(script, *job.frame);
  return script;
}

const standin::Mask* Batch::maskFor(const Job& job, Input& input, const standin::Picture& picture,
                                    PictureReport& report) const {
  const standin::Mask* const mask = input.mask ? &*input.mask : mask_;
  if (mask == nullptr || (mask->width == picture.width && mask->height == picture.height)) {
    return mask;
  }
  const std::string text = job.mask.value_or(commandLine_.mask.value_or("")).string() +
                           ": the mask is " + std::to_string(mask->width) + " x " +
                           std::to_string(mask->height) + " and the picture " +
                           std::to_string(picture.width) + " x " + std::to_string(picture.height);
  if (commandLine_.strict) throw Failure{exitInput, text};
  report.notes.push_back(text + "; it is scaled");
  input.mask = scaledMask(*mask, picture.width, picture.height);
  return &*input.mask;
}

std::string causeOf(std::int16_t status) {
  if (status == hostapi::memoryFullError) return "not enough memory";
  return "the filter answered " + std::to_string(status);
}

void Batch::filterWithAutoValues(const Job& job, const standin::Picture& picture,
                                 const standin::Mask* mask, standin::Picture& rendered,
                                 PictureReport& report) {
  hosts::AutoValues values(picture, mask, scriptFor(job, picture, commandLine_.script),
                           scriptFor(job, picture, commandLine_.givenValues), entry_,
                           wasInterrupted);
  std::string text = job.input.string() + ": auto: ";
  if (!values.lightFound()) text += "finds no light";
  if (!values.lightFound() && commandLine_.strict) throw Failure{exitInput, text};
  const bool userDecides = commandLine_.traits.playInfo == hostapi::playDisplay;
  do {
    report.seconds += filter(job, picture, mask, values.script(), rendered);
  } while (!userDecides && values.lowerIntensity(rendered));
  const std::string options = optionsOf(values.chosen());
  if (!values.lightFound() && !options.empty()) text += "; ";
  report.notes.push_back(text + options);
}

double Batch::filter(const Job& job, const standin::Picture& picture, const standin::Mask* mask,
                     const standin::Script& script, standin::Picture& rendered) {
  standin::HostTraits traits = commandLine_.traits;
  std::optional<standin::PictureWindow> window;
  if (traits.playInfo == hostapi::playDisplay && commandLine_.ownWindow) {
    window.emplace(job.input.filename().string(),
                   shownPicture(picture, standin::PictureWindow::maximumSize()));
    traits.ownerWindow = window->handle();
  }
  standin::StandInHost host(picture, mask, traits);
  host.chooseColor = [this](std::array<std::int16_t, 3>& color) {
    if (commandLine_.pickedColor) color = *commandLine_.pickedColor;
    return commandLine_.pickedColor.has_value();
  };
  host.onProgress = [this, &job](std::int32_t done, std::int32_t total) {
    if (total > 0) showProgress(job, static_cast<int>(std::int64_t{done} * 100 / total));
  };
  host.abortWanted = wasInterrupted;
  const auto begin = std::chrono::steady_clock::now();
  const standin::RunResult result = host.run(entry_, script, rendered);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  if (commandLine_.printScript) {
    line_.clear();
    printScript(std::cout, result.script);
  }
  if (wasInterrupted()) throw Failure{standin::interruptCode(), interrupted};
  if (result.status == hostapi::userCanceledError) {
    cancelled_ = true;
    throw Failure{exitRender, job.input.string() + ": the filter was cancelled, status -128"};
  }
  if (result.status != 0) {
    throw Failure{exitRender, job.input.string() + ": " + causeOf(result.status)};
  }
  return seconds.count();
}

void Batch::showProgress(const Job& job, int percent) {
  percent = std::clamp(percent, 0, 100);
  const bool isAlone = commandLine_.jobs.size() == 1;
  line_.show(isAlone ? progressBar(job.input.filename().string(), percent)
                     : progress_.text(percent));
}

void Batch::startWriting(Output& output) {
  Output& kept = writing_.emplace_back(std::move(output));
  kept.result = start([this, &kept] {
    return standin::writePictureFile(kept.path(), std::move(kept.file), commandLine_.encoding,
                                     wasInterrupted);
  });
}

// Tells what is to be said of the written picture.
void Batch::finishWriting() {
  Output& output = writing_.front();
  const Job& job = *output.job;
  const auto finish = [&output] {
    try {
      standin::WriteResult result = output.result.get();
      if (!result.written) throw Failure{standin::interruptCode(), interrupted};
      for (std::string& note : result.notes) output.report.notes.push_back(output.named(note));
    } catch (const standin::PictureFileError& error) {
      throw Failure{exitOutput, output.named(error.what())};
    }
    if (output.standardOutput) send(*output.standardOutput);
  };
  if (const std::optional<Failure> failure = failureOf(job, finish)) {
    report(job, *failure);
  } else {
    report_.made(job, output.report);
  }
  writing_.pop_front();
}

}  // namespace

void runBatch(const CommandLine& commandLine, standin::EntryPoint entry,
              const standin::Mask* mask) {
  if (commandLine.outputDirectory) makeDirectory(*commandLine.outputDirectory);
  Batch(commandLine, entry, mask).run();
}

}  // namespace radiashafts::cli
