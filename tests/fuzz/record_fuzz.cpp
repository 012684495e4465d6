// Any values in the host's record, over memory that is exactly as large as the record says. The
// input is what the host lacks and what fails, parameters, edits of the record before the run and
// of every answer to a request, and selectors.

#include <memory>
#include <vector>

#include <sanitizer/asan_interface.h>

#include "standin/descriptors.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/support/fake_interface.h"

namespace radiashafts {
namespace test {
namespace {

using hostapi::FilterRecord;
using standin::Service;

constexpr hostapi::OSErr requestRefused = -30100;

// Bits of a host's traits.
constexpr int noAbort = 1, noProgress = 2, noAdvance = 4, noSuites = 8, noBuffers = 16,
              noHandles = 32, noDescriptors = 64, noTables = 128, strayMask = 256, noMask = 512,
              emptyIsNotNull = 1024, userCancels = 2048;

// The memory behind a rectangle. What lies between rows is fenced like what lies around.
struct Buffer {
  Buffer(const hostapi::Rect& rect, std::int64_t stride, int pixelBytes) : rowBytes(stride) {
    if (rect.top >= rect.bottom || rect.left >= rect.right) return;
    rows = rect.bottom - rect.top;
    used = std::int64_t{rect.right - rect.left} * std::max(pixelBytes, 0);
    size = (rows - 1) * std::abs(rowBytes) + used;
  }

  // The first row, which with a negative stride is the last in memory.
  std::uint8_t* fill(int offset, std::span<const std::uint8_t> pattern) {
    memory = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(size + offset));
    std::uint8_t* const lowest = memory.get() + offset;
    for (std::size_t i = 0; i < static_cast<std::size_t>(size) && !pattern.empty(); ++i) {
      lowest[i] = pattern[i % pattern.size()];
    }
    const std::int64_t step = std::abs(rowBytes);
    for (std::int64_t y = 0; y < rows - 1 && step > used; ++y) {
      ASAN_POISON_MEMORY_REGION(lowest + y * step + used, static_cast<std::size_t>(step - used));
    }
    return rowBytes < 0 && rows > 0 ? lowest + (rows - 1) * step : lowest;
  }

  std::int64_t rowBytes, rows = 0, used = 0, size = 0;
  std::unique_ptr<std::uint8_t[]> memory;
};

class Host {
 public:
  explicit Host(Input& input) {
    host = this;
    traits_ = input.take<std::uint16_t>();
    padding_ = input.take();
    offset_ = input.take() % 8;
    abortAt_ = input.take();
    const auto service = static_cast<Service>(input.take() % 6);
    const int failsAt = input.take();
    setFilter(takeParameters(input));

    record_->imageSize = {9, 12};
    record_->planes = record_->inNonLayerPlanes = 3;
    record_->imageMode = hostapi::modeRGB;
    if (!has(noProgress)) record_->progressProc = [](std::int32_t, std::int32_t) {};
    if (!has(noAbort)) record_->abortProc = [] { return hostapi::Boolean(--host->abortAt_ == 0); };
    basicSuite_.AcquireSuite = acquireSuite;
    basicSuite_.ReleaseSuite = [](const char*, std::int32_t) { return 0; };
    if (!has(noTables)) {
      descriptors_.readDescriptorProcs = standin::readDescriptorProcs();
      descriptors_.writeDescriptorProcs = standin::writeDescriptorProcs();
    }
    descriptors_.playInfo = input.take() % 4;
    edit(takeEdits(input));
    answer_ = takeEdits(input);
    pattern_ = input.rest();
    standin::setFault({service, failsAt % 128, failsAt >= 128});
  }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host() { standin::disposeHandle(descriptors_.descriptor); }

  bool has(int trait) const { return (traits_ & trait) != 0; }

  void call(int selector) {
    std::int16_t result = 0;
    const hostapi::Rect selected = record_->filterRect;
    void* const block = selector == 0 ? static_cast<void*>(about_.get()) : record_.get();
    ENTRYPOINT(static_cast<std::int16_t>(selector), block, nullptr, &result);
    if (selector > hostapi::selectorFinish) return require(result == -1, "it is unknown");
    if (selector != hostapi::selectorStart) return require(result == 0, "nothing can fail");
    const bool isStated = result == 0 || result == requestRefused ||
                          result == hostapi::userCanceledError ||
                          result == hostapi::memoryFullError;
    require(has(noProgress) || has(noAdvance) ? result == 1 : isStated, "a stated status");
    constexpr hostapi::Rect empty{};
    const auto same = [](auto a, auto b) { return std::memcmp(&a, &b, sizeof a) == 0; };
    require(same(record_->filterRect, selected), "the host's rectangle is back");
    require(same(record_->inRect, empty) && same(record_->outRect, empty) &&
                same(record_->maskRect, empty),
            "nothing more is wanted");
    require(standin::liveObjects().tokens == 0, "descriptors are closed");
  }

  static inline Host* host = nullptr;

 private:
  // 16-bit words of a record, behind the procs at its front.
  using Edits = std::vector<std::pair<std::uint8_t, std::int16_t>>;

  static Edits takeEdits(Input& input) {
    Edits edits(input.take() % 32);
    for (auto& [word, value] : edits) word = input.take(), value = input.take<std::int16_t>();
    return edits;
  }

  standin::Script takeParameters(Input& input) {
    const standin::Script defaults = defaultScript();
    standin::Script script = defaults;
    for (int count = input.take() % 32; count > 0; --count) {
      auto [key, held] = defaults[input.take() % defaults.size()];
      const double value = input.take<std::int16_t>() / 64.0;
      std::visit([=](auto& number) { number = static_cast<std::decay_t<decltype(number)>>(value); },
                 held);
      script.emplace_back(key, held);
      if (key == hostapi::fourCharacterCode("MODE")) isStraight_ = static_cast<int>(value) != 2;
    }
    return script;
  }

  static std::int32_t acquireSuite(const char* name, std::int32_t, const void** suite) {
    static constexpr hostapi::BufferSuite1 buffers{
        [](std::uint32_t*, std::uint32_t size) {
          const bool fails = standin::callFails(Service::buffers) || size > 1U << 26;
          return fails ? nullptr : std::malloc(size);
        },
        [](void** buffer) { std::free(*buffer); }, nullptr, nullptr};
    static constexpr hostapi::HandleSuite2 handles{};
    const bool isBuffers = std::strcmp(name, hostapi::bufferSuiteName) == 0;
    *suite = isBuffers ? static_cast<const void*>(&buffers) : &handles;
    if (host->has(isBuffers ? noBuffers : noHandles)) *suite = nullptr;
    return *suite == nullptr ? -1 : 0;
  }

  // Edits set any number; procs and addresses stay those that a host would give.
  void edit(const Edits& edits) {
    FilterRecord& record = *record_;
    for (const auto& [word, value] : edits) {
      std::memcpy(reinterpret_cast<char*>(&record.imageSize) + 2 * std::size_t{word}, &value,
                  sizeof value);
    }
    record.platformData = nullptr;
    record.displayPixels = nullptr;
    record.colorServices = nullptr;
    record.handleProcs = standin::handleProcs();
    record.advanceState = nullptr;
    if (!has(noAdvance)) record.advanceState = [] { return host->advance(); };
    record.descriptorParameters = has(noDescriptors) ? nullptr : &descriptors_;
    record.sSPBasic = about_->sSPBasic = has(noSuites) ? nullptr : &basicSuite_;
    record.inData = data_[0];
    record.outData = data_[1];
    record.maskData = data_[2];
  }

  // Straight rays take as many steps as the longer side, each of them.
  bool isCostly(const hostapi::Rect& rect) const {
    const std::int64_t width = std::max(rect.right - rect.left, 0);
    const std::int64_t height = std::max(rect.bottom - rect.top, 0);
    return width * height > 1 << 15 ||
           (isStraight_ && (width + height) * std::max(width, height) > 1 << 16);
  }

  hostapi::OSErr advance() {
    if (standin::callFails(Service::advanceState)) return requestRefused;
    FilterRecord& r = *record_;
    const auto pixelBytes = [&r] { return r.planes * (r.depth == 32 ? 4 : r.depth == 16 ? 2 : 1); };
    const auto tight = std::int64_t{r.outRect.right} * pixelBytes() + padding_;
    r.inRowBytes = r.outRowBytes = static_cast<std::int32_t>(tight);
    r.maskRowBytes = r.outRect.right + padding_;
    edit(answer_);
    Buffer asked[] = {{r.inRect, r.inRowBytes, pixelBytes()},
                      {r.outRect, r.outRowBytes, pixelBytes()},
                      {r.maskRect, r.maskRowBytes, 1}};
    for (const Buffer& buffer : asked) {
      if (buffer.size > 1 << 20 || isCostly(r.outRect)) return requestRefused;
    }
    const bool hasMask = !has(noMask) && (r.haveMask != 0 || has(strayMask));
    for (int i = 0; i < 3; ++i) {
      const bool isNull = (i == 2 && !hasMask) || (asked[i].rows == 0 && !has(emptyIsNotNull));
      data_[i] = isNull ? nullptr : asked[i].fill(offset_, pattern_);
      memory_[i] = std::move(asked[i].memory);
    }
    edit({});
    return 0;
  }

  // Of their exact sizes.
  const std::unique_ptr<FilterRecord> record_ = std::make_unique<FilterRecord>();
  const std::unique_ptr<hostapi::AboutRecord> about_ = std::make_unique<hostapi::AboutRecord>();
  hostapi::PIDescriptorParameters descriptors_{};
  hostapi::SPBasicSuite basicSuite_{};
  std::unique_ptr<std::uint8_t[]> memory_[3];
  void* data_[3] = {};
  Edits answer_;
  std::span<const std::uint8_t> pattern_;
  bool isStraight_ = true;
  int traits_, padding_, offset_, abortAt_;
};

}  // namespace
}  // namespace test

// In place of the module's own: a user who looks at the picture, and closer.
std::unique_ptr<pfPreview> MakePreview() {
  return std::make_unique<test::LookingPreview>(
      std::vector<int>{0, -1}, [] { return !test::Host::host->has(test::userCancels); });
}
void ShowAbout(const std::string&) {}

}  // namespace radiashafts

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  radiashafts::test::Input input(data, size);
  radiashafts::test::Host host(input);
  for (int calls = 0; calls < 4 && !input.rest().empty(); ++calls) host.call(input.take() % 8);
  return 0;
}
