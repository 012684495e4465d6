#include "parameters/vector_parameters.h"

#include <algorithm>

#include "parameters/script_values.h"
#include "parameters/undo.h"

namespace radiashafts {
namespace {

template <std::size_t N>
std::int32_t countKeys(const std::array<std::uint32_t, N>& keys) {
  return static_cast<std::int32_t>(N - std::count(keys.begin(), keys.end(), 0U));
}

template <std::size_t N>
void fillKeys(const std::array<std::uint32_t, N>& keys, std::uint32_t* out) {
  std::remove_copy(keys.begin(), keys.end(), out, 0U);
}

template <std::size_t N>
void writeValues(hostapi::FilterRecord* record, hostapi::Token token,
                 const std::array<std::uint32_t, N>& keys, const std::array<double, N>& values) {
  for (std::size_t i = 0; i < N; ++i) {
    writeScriptNumber(*record, token, keys[i], values[i]);
  }
}

// Returns values with those replaced whose key matches. Unlike for scalars, key 0 matches too.
template <std::size_t N>
std::array<double, N> readValues(hostapi::FilterRecord* record, hostapi::Token token,
                                 std::uint32_t key, const std::array<std::uint32_t, N>& keys,
                                 std::array<double, N> values) {
  for (std::size_t i = 0; i < N; ++i) {
    if (keys[i] != key) continue;
    if (const auto v = readScriptNumber(*record, token)) values[i] = *v;
  }
  return values;
}

template <std::size_t N>
std::array<double, N> randomized(std::array<double, N> values, double amount) {
  for (double& v : values) v = ReflectInto(randomStep() * amount + v, 1);
  return values;
}

}  // namespace

bool pfParameterPosition::SetValue(double newX, double newY) {
  if (value_ == Value{newX, newY}) return false;
  value_ = {newX, newY};
  NotifyWidget();
  return updatesPreview;
}

void pfParameterPosition::WriteScript(hostapi::FilterRecord* record, hostapi::Token token) {
  writeValues(record, token, keys, value_);
}

void pfParameterPosition::ReadScript(hostapi::FilterRecord* record, std::uint32_t key,
                                     hostapi::Token token) {
  Restore(readValues(record, token, key, keys, value_));
}

std::int32_t pfParameterPosition::ScriptKeyCount() const {
  return countKeys(keys);
}

void pfParameterPosition::FillScriptKeys(std::uint32_t* keysOut) const {
  fillKeys(keys, keysOut);
}

std::unique_ptr<pfUndo> pfParameterPosition::CreateUndo() {
  return pfUndoParameterPosition::Create(*this);
}

void pfParameterPosition::Randomize(double amount) {
  if (randomizable) Restore(randomized(value_, amount));
}

void pfParameterPosition::Restore(const Value& v) {
  SetValue(v[0], v[1]);
}

bool pfParameterRGB::SetValue(double red, double green, double blue) {
  if (value_ == Value{red, green, blue}) return false;
  value_ = {red, green, blue};
  NotifyWidget();
  return updatesPreview;
}

void pfParameterRGB::Validate() {
  Value v = value_;
  for (double& channel : v) channel = std::clamp(channel, 0.0, 1.0);
  Restore(v);
}

void pfParameterRGB::WriteScript(hostapi::FilterRecord* record, hostapi::Token token) {
  writeValues(record, token, keys, value_);
}

void pfParameterRGB::ReadScript(hostapi::FilterRecord* record, std::uint32_t key,
                                hostapi::Token token) {
  Restore(readValues(record, token, key, keys, value_));
}

std::int32_t pfParameterRGB::ScriptKeyCount() const {
  return countKeys(keys);
}

void pfParameterRGB::FillScriptKeys(std::uint32_t* keysOut) const {
  fillKeys(keys, keysOut);
}

std::unique_ptr<pfUndo> pfParameterRGB::CreateUndo() {
  return pfUndoParameterRGB::Create(*this);
}

void pfParameterRGB::Randomize(double amount) {
  if (!randomizable) return;
  Restore(randomized(value_, std::min(amount, 2.0)));
  Validate();
}

void pfParameterRGB::Restore(const Value& v) {
  SetValue(v[0], v[1], v[2]);
}

}  // namespace radiashafts
