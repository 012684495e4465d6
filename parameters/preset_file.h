// Preset files as text: blank-separated tokens. A header tells whose file it is, then come entries:
//
//   FileOwner Radiashafts
//
//   name Morning
//   Origin 0.500000 0.250000
//   Intensity 2.000000
//
// Any text may be offered. What is no entry means nothing and is kept by every change.
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
inline constexpr std::size_t maximumPresetToken = 255;  // bytes that count of a longer one

// Keywords and names are compared like this. Only the letters of ASCII have cases, in every locale.
bool equalsIgnoringCase(std::string_view a, std::string_view b);

// Reads the tokens of a text that outlives it.
class PresetTokens {
 public:
  struct Token {
    std::string_view text;  // up to a zero, and to the longest that counts
    std::size_t begin;      // the whole token's place in the file
    std::size_t end;
  };

  explicit PresetTokens(std::string_view file, std::size_t place = 0) : file_(file), next_(place) {}
  std::optional<Token> next();

 private:
  std::string_view file_;
  std::size_t next_;
};

// Where an entry begins.
struct PresetEntry {
  std::size_t before;   // behind the token in front of its keyword
  std::size_t nameEnd;  // behind its name
};

// Whether an entry ends in front of the key: at the next one, or at a header in their midst.
bool endsPreset(std::string_view key);

// The name of the filter that the header tells; none without a header.
std::optional<std::string> presetOwner(std::string_view file);
// In the file's order.
std::vector<std::string> presetNames(std::string_view file);
// The first entry of the name.
std::optional<PresetEntry> findPreset(std::string_view file, std::string_view name);

// A name as entries can hold it: one token that counts to its end.
std::string presetNameOf(std::string_view text);

// The file with the entry set to the lines of values: in the place of the entry of that name, whose
// spelling stays, or behind all others. lineEnd ends the lines that are added.
std::string withPreset(const std::string& file, const std::string& name, const std::string& values,
                       std::string_view lineEnd);
std::string withoutPreset(const std::string& file, const PresetEntry& entry,
                          std::string_view lineEnd);

// Six decimals. What is not finite becomes 0, and what no token holds the largest that one does.
std::string presetNumber(double value);

// The number at the token's start, whatever the locale: hexadecimal and exponents too. Nothing is
// refused: 0 where there is none, the largest finite number or integer where it is larger.
double numberAt(std::string_view token);
std::int32_t integerAt(std::string_view token);

}  // namespace radiashafts
