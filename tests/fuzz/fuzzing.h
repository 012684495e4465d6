// What fuzz targets have in common.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

#include "parameters/effect_table.h"
#include "standin/stand_in_host.h"

extern "C" void ENTRYPOINT(std::int16_t, void*, std::intptr_t*, std::int16_t*);

namespace radiashafts::test {

// By an abort, which a fuzzer and a plain program see alike.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

// An input's bytes, taken from the front; zeros behind its end.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  template <class Number = std::uint8_t>
  Number take() {
    Number number{};
    const auto bytes = takeBytes(sizeof number);
    if (!bytes.empty()) std::memcpy(&number, bytes.data(), bytes.size());
    return number;
  }
  std::string takeText(std::size_t length) {
    const auto bytes = takeBytes(length);
    return {bytes.begin(), bytes.end()};
  }
  std::span<const std::uint8_t> rest() const { return rest_; }

 private:
  std::span<const std::uint8_t> takeBytes(std::size_t count) {
    const auto taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  std::span<const std::uint8_t> rest_;
};

// The default of every value that scripts hold.
inline standin::Script defaultScript() {
  standin::Script script;
  for (const ParameterFacts& facts : effectTable) {
    for (int i = 0; i < valueCount(facts.kind) && facts.keys[i].code != nullptr; ++i) {
      standin::ScriptValue value = facts.defaults[i];
      if (facts.kind == ParameterKind::list) value = static_cast<int>(facts.defaults[i]);
      if (facts.kind == ParameterKind::boolean) value = facts.defaults[i] != 0.0;
      script.emplace_back(scriptKey(facts.keys[i]), value);
    }
  }
  return script;
}

// Takes out of the filter what an earlier trial has left in it, by a run that gets no picture.
inline void setFilter(const standin::Script& script) {
  const standin::Picture empty;
  standin::Picture output;
  standin::StandInHost host(empty, nullptr);
  host.faults.fault = {standin::Service::advanceState, 1};
  host.run(ENTRYPOINT, script, output);
}

}  // namespace radiashafts::test
