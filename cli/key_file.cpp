#include "cli/key_file.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>

#include "cli/command_line.h"
#include "cli/parameter_options.h"
#include "hosts/library/effect_script.h"
#include "hosts/library/suggestion.h"
#include "parameters/number_text.h"
#include "parameters/preset_file.h"

namespace radiashafts::cli {
namespace {

constexpr std::string_view frameKeyword = "frame";
constexpr std::string_view interpolationKeyword = "interpolation";

std::string contentOf(const std::string& file) {
  const std::filesystem::path path = pathOf(file);
  std::error_code error;
  if (!std::filesystem::exists(path, error)) throw Failure{exitInput, file + ": no such file"};
  std::ifstream stream(path, std::ios::binary);
  if (!stream || std::filesystem::is_directory(path, error)) {
    throw Failure{exitInput, file + ": cannot be read"};
  }
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string quoted(std::string_view word) {
  std::string text = "'";
  return text.append(word).append("'");
}

}  // namespace

// Takes the words of a file one after the other.
class KeyFile::Reader {
 public:
  Reader(KeyFile& keys, std::string_view content)
      : keys_(keys), content_(content), tokens_(content) {}

  void read() {
    while (const auto word = next()) {
      if (equalsIgnoringCase(*word, frameKeyword)) {
        beginKey();
      } else if (equalsIgnoringCase(*word, interpolationKeyword)) {
        readInterpolation();
      } else {
        readValues(*word);
      }
    }
    if (!frame_) fail("has no frame");
  }

 private:
  std::optional<std::string_view> next() {
    const auto token = tokens_.next();
    if (!token) return std::nullopt;
    place_ = token->begin;
    return token->text;
  }

  std::string here() const {
    const std::string_view before = content_.substr(0, place_);
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    return keys_.name_ + ':' + std::to_string(line) + ": ";
  }

  [[noreturn]] void fail(const std::string& cause) const {
    throw Failure{exitInput, here() + cause};
  }

  void beginKey() {
    const std::string_view word = next().value_or("");
    int frame = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), frame);
    if (error != std::errc() || end != word.data() + word.size()) {
      fail(word.empty() ? "the last frame has no number" : quoted(word) + " is no frame's number");
    }
    if (frame_ == frame) fail("frame " + std::to_string(frame) + " is there twice");
    if (frame_ && frame < *frame_) {
      fail("frame " + std::to_string(frame) + " comes after frame " + std::to_string(*frame_));
    }
    frame_ = frame;
  }

  void readInterpolation() {
    if (frame_) fail("interpolation stands before the first frame");
    const std::string_view word = next().value_or("");
    const bool isSmooth = equalsIgnoringCase(word, "smooth");
    if (!isSmooth && !equalsIgnoringCase(word, "linear")) {
      fail("interpolation is linear or smooth, and not " + quoted(word));
    }
    keys_.interpolation_ = isSmooth ? Interpolation::smooth : Interpolation::linear;
  }

  void readValues(std::string_view name) {
    const std::size_t parameter = parameterCalled(name);
    const ParameterFacts& facts = effectTable[parameter];
    if (!frame_) fail(quoted(name) + " stands before the first frame");
    std::vector<Key>& track = keys_.tracks_[parameter];
    if (!track.empty() && track.back().frame == *frame_) {
      fail("frame " + std::to_string(*frame_) + " has " + facts.name + " twice");
    }
    Key key{*frame_, {}};
    for (std::size_t k = 0; k < static_cast<std::size_t>(valueCount(facts.kind)); ++k) {
      key.numbers[k] = numberOf(facts);
    }
    track.push_back(key);
    for (const std::string& note : clampingNotes(facts.name, facts, key.numbers)) {
      keys_.notes_.push_back(here() + note);
    }
  }

  std::size_t parameterCalled(std::string_view name) const {
    std::vector<std::string> names{std::string(frameKeyword), std::string(interpolationKeyword)};
    for (std::size_t i = 0; i < effectTable.size(); ++i) {
      if (!hasOption(effectTable[i])) continue;
      if (equalsIgnoringCase(name, effectTable[i].name)) return i;
      names.emplace_back(effectTable[i].name);
    }
    fail(quoted(name) + " is no parameter" + hosts::suggestion(std::string(name), names));
  }

  double numberOf(const ParameterFacts& facts) {
    const auto word = next();
    const std::string count = std::to_string(valueCount(facts.kind));
    if (!word) fail(std::string(facts.name) + " needs " + count + " numbers, and the file ends");
    const auto number = parseNumber(*word);
    if (!number) {
      fail(quoted(*word) + " is no number; " + facts.name + " needs " + count);
    }
    const bool isChoice = facts.kind == ParameterKind::boolean || facts.kind == ParameterKind::list;
    const bool isOneOfThem =
        *number == static_cast<int>(std::clamp(*number, facts.minimum, facts.maximum));
    if (isChoice && !isOneOfThem) {
      fail(quoted(*word) + " is no value of " + facts.name + ", which is a whole number from " +
           numberText(facts.minimum) + " to " + numberText(facts.maximum));
    }
    return *number;
  }

  KeyFile& keys_;
  std::string_view content_;
  PresetTokens tokens_;
  std::size_t place_ = 0;  // of the last word
  std::optional<int> frame_;
};

KeyFile::KeyFile(const std::string& file) : name_(file) {
  const std::string content = contentOf(file);
  Reader(*this, content).read();
}

void KeyFile::apply(standin::Script& script, int frame) const {
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    if (tracks_[i].empty()) continue;
    const ParameterFacts& facts = effectTable[i];
    hosts::setIn(script, facts, valuesAt(tracks_[i], facts.kind, interpolation_, frame));
  }
}

}  // namespace radiashafts::cli
