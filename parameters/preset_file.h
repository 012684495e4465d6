// Preset files as text: tokens separated by white space. A header names the filter that owns the
// file; entries follow:
//
//   FileOwner Radiashafts
//
//   name Morning
//   Origin 0.500000 0.250000
//   Intensity 2.000000
//
// Any text is accepted. What is not an entry is ignored, and kept when the file is changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace radiashafts {

inline constexpr std::string_view presetOwnerKeyword = "FileOwner";
inline constexpr std::string_view presetNameKeyword = "name";
inline constexpr std::size_t maximumPresetToken = 255;  // bytes; longer ones are cut

// Compares keywords and names. Only the case of ASCII letters is ignored, whatever the locale.
bool equalsIgnoringCase(std::string_view a, std::string_view b);

// Reads tokens one by one. The text is not owned and has to outlive this object.
class PresetTokens {
 public:
  struct Token {
    std::string_view text;  // ends before a zero byte and after maximumPresetToken bytes
    std::size_t begin;      // offsets of the whole token in the file
    std::size_t end;
  };

  explicit PresetTokens(std::string_view file, std::size_t place = 0) : file_(file), next_(place) {}
  std::optional<Token> next();

 private:
  std::string_view file_;
  std::size_t next_;
};

// Offsets of an entry in the file.
struct PresetEntry {
  std::size_t before;   // end of the token before its keyword
  std::size_t nameEnd;  // end of its name
};

// Whether the key ends an entry: the keyword of the next entry or of a header.
bool endsPreset(std::string_view key);

// The filter's name from the header; none without a header.
std::optional<std::string> presetOwner(std::string_view file);
// In the file's order.
std::vector<std::string> presetNames(std::string_view file);
// The first entry with the name.
std::optional<PresetEntry> findPreset(std::string_view file, std::string_view name);

// The text as a name that an entry can store: a single token of at most maximumPresetToken bytes.
std::string presetNameOf(std::string_view text);

// The file with the lines of values stored under the name. An existing entry is replaced in place,
// and its spelling of the name is kept; a new one is appended. lineEnd terminates added lines.
std::string withPreset(const std::string& file, const std::string& name, const std::string& values,
                       std::string_view lineEnd);
std::string withoutPreset(const std::string& file, const PresetEntry& entry,
                          std::string_view lineEnd);

// With six decimals. Values that are not finite become 0; larger ones than a token can hold are
// clamped.
std::string presetNumber(double value);

// The number at the token's start, also hexadecimal or with an exponent, whatever the locale. Never
// fails: returns 0 when there is no number and the largest finite value when it is out of range.
double numberAt(std::string_view token);
std::int32_t integerAt(std::string_view token);

}  // namespace radiashafts
