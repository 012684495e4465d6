#include "hosts/library/session.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <functional>
#include <limits>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include "hosts/library/auto_values.h"
#include "hosts/library/effect_module.h"
#include "hosts/library/effect_script.h"
#include "hosts/library/own_files.h"
#include "hosts/library/picture_copy.h"
#include "hosts/library/suggestion.h"
#include "standin/stand_in_host.h"

namespace radiashafts::hosts {
namespace {

using namespace std::chrono_literals;

// The module that all sessions share. The first render loads it and the end of the last session
// unloads it. It is no static object: a host may end without closing its sessions.
std::mutex moduleMutex;
int openSessions = 0;
EffectModule* sharedModule = nullptr;

// Held while the filter runs, for its state and the stand-in's are one a process.
std::mutex renderMutex;
std::atomic<std::thread::id> renderingThread;

[[noreturn]] void refuse(const std::string& text) {
  throw SessionError(RADIASHAFTS_INVALID_ARGUMENT, text);
}

[[noreturn]] void cancel() {
  throw SessionError(RADIASHAFTS_CANCELLED, "cancelled");
}

standin::EntryPoint moduleEntry() {
  const std::lock_guard lock(moduleMutex);
  if (sharedModule == nullptr) sharedModule = new EffectModule(ownModule());
  return sharedModule->entry();
}

class RenderLock {
 public:
  // Waits for other threads, and asks goesOn meanwhile.
  explicit RenderLock(const std::function<bool()>& goesOn) {
    if (renderingThread == std::this_thread::get_id()) {
      refuse("a progress function must not render");
    }
    while (!renderMutex.try_lock()) {
      if (!goesOn()) cancel();
      std::this_thread::sleep_for(2ms);
    }
    renderingThread = std::this_thread::get_id();
  }
  ~RenderLock() {
    renderingThread = std::thread::id();
    renderMutex.unlock();
  }
  RenderLock(const RenderLock&) = delete;
  RenderLock& operator=(const RenderLock&) = delete;
};

void check(const radiashafts_picture& picture) {
  constexpr int maximumSide = 32767;
  const auto isSide = [](int side) { return side >= 1 && side <= maximumSide; };
  if (!isSide(picture.width) || !isSide(picture.height)) {
    refuse("a picture of " + std::to_string(picture.width) + " x " +
           std::to_string(picture.height) + " pixels: 1 to 32767 a side can be rendered");
  }
  if (picture.depth != 8 && picture.depth != 16 && picture.depth != 32) {
    refuse(std::to_string(picture.depth) + " bits a sample: 8, 16 and 32 can be rendered");
  }
  if (picture.colors != 1 && picture.colors != 3) {
    refuse(std::to_string(picture.colors) + " colors a pixel: 1 and 3 can be rendered");
  }
  if (picture.has_alpha != 0 && picture.has_alpha != 1) refuse("has_alpha is neither 0 nor 1");
  const int planes = picture.colors + picture.has_alpha;
  if (std::any_of(picture.planes, picture.planes + planes,
                  [](const void* plane) { return plane == nullptr; })) {
    refuse("a plane of the picture is null");
  }
}

void checkAlike(const radiashafts_picture& picture, const radiashafts_picture& result) {
  const bool areAlike = picture.width == result.width && picture.height == result.height &&
                        picture.depth == result.depth && picture.colors == result.colors &&
                        picture.has_alpha == result.has_alpha;
  if (!areAlike) refuse("the result differs from the picture in size, depth or planes");
}

void checkStatus(std::int16_t status) {
  if (status == 0) return;
  if (status == hostapi::userCanceledError) cancel();
  if (status == hostapi::memoryFullError) throw std::bad_alloc();
  throw SessionError(RADIASHAFTS_FAILED, "the filter answered " + std::to_string(status));
}

}  // namespace

Session::Session() {
  const std::lock_guard lock(moduleMutex);
  ++openSessions;
}

Session::~Session() {
  const std::lock_guard lock(moduleMutex);
  if (--openSessions > 0) return;
  delete sharedModule;
  sharedModule = nullptr;
}

std::size_t Session::indexOf(const char* name) const {
  if (name == nullptr) refuse("the parameter's name is null");
  std::vector<std::string> names;
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    if (effectTable[i].keys[0].code == nullptr) continue;
    if (std::string_view(effectTable[i].name) == name) return i;
    names.emplace_back(effectTable[i].name);
  }
  refuse("there is no parameter '" + std::string(name) + "'" + suggestion(name, names));
}

void Session::set(const char* name, const double* numbers) {
  const std::size_t index = indexOf(name);
  const ParameterFacts& facts = effectTable[index];
  if (numbers == nullptr) refuse(std::string(name) + ": the values are null");
  ParameterNumbers values{};
  for (std::size_t i = 0; i < static_cast<std::size_t>(valueCount(facts.kind)); ++i) {
    if (!std::isfinite(numbers[i])) refuse(std::string(name) + ": a value is not finite");
    values[i] = numbers[i];
  }
  if (facts.kind == ParameterKind::list) {
    values[0] = std::round(std::clamp(values[0], facts.minimum, facts.maximum));
  }
  SetNumbers(*effect_.all[index], values);
  effect_.all[index]->Validate();
}

void Session::get(const char* name, double* numbers) const {
  const std::size_t index = indexOf(name);
  if (numbers == nullptr) refuse(std::string(name) + ": there is no room for the values");
  const ParameterNumbers values = NumbersOf(*effect_.all[index]);
  std::copy_n(values.begin(), valueCount(effectTable[index].kind), numbers);
}

void Session::takePicture(const radiashafts_picture& picture, const radiashafts_mask* mask) {
  check(picture);
  copyIn(picture, picture_);
  if (mask == nullptr) return;
  if (mask->samples == nullptr) refuse("the mask has no samples");
  copyIn(*mask, picture.width, picture.height, mask_);
}

void Session::render(const radiashafts_picture& picture, const radiashafts_mask* mask,
                     const radiashafts_picture& result, radiashafts_progress_function progress,
                     void* context) {
  check(result);
  checkAlike(picture, result);
  takePicture(picture, mask);
  double done = 0;
  const auto goesOn = [&] { return progress == nullptr || progress(context, done) != 0; };
  {
    const RenderLock lock(goesOn);
    standin::StandInHost host(picture_, mask == nullptr ? nullptr : &mask_);
    host.onProgress = [&done](std::int32_t finished, std::int32_t total) {
      done = total > 0 ? static_cast<double>(finished) / total : 0;
    };
    host.abortWanted = [&goesOn] { return !goesOn(); };
    rendered_ = picture_;
    checkStatus(host.run(moduleEntry(), scriptOf(effect_), rendered_).status);
  }
  copyOut(rendered_, result);
}

void Session::findLight(const radiashafts_picture& picture, const radiashafts_mask* mask,
                        radiashafts_progress_function progress, void* context) {
  takePicture(picture, mask);
  const auto goesOn = [&] { return progress == nullptr || progress(context, 0) != 0; };
  const auto abortWanted = [&goesOn] { return !goesOn(); };
  const standin::Mask* const selected = mask == nullptr ? nullptr : &mask_;
  const RenderLock lock(goesOn);
  AutoValues values(picture_, selected, scriptOf(effect_), {}, moduleEntry(), abortWanted);
  if (!values.lightFound()) throw SessionError(RADIASHAFTS_NOT_FOUND, "there is no light to find");
  do {
    standin::StandInHost host(picture_, selected);
    host.abortWanted = abortWanted;
    rendered_ = picture_;
    checkStatus(host.run(moduleEntry(), values.script(), rendered_).status);
  } while (values.lowerIntensity(rendered_));
  apply(values.chosen(), effect_);
}

}  // namespace radiashafts::hosts
