#include "parameters/preset_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace radiashafts {
namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isKeyword(const PresetTokens::Token& token, std::string_view keyword) {
  return equalsIgnoringCase(token.text, keyword);
}

// The file after the entry whose name ends at nameEnd. When it begins with an entry, that entry's
// keyword gets its standard spelling.
std::string contentAfterEntry(const std::string& file, std::size_t nameEnd) {
  PresetTokens tokens(file, nameEnd);
  while (const auto token = tokens.next()) {
    if (!endsPreset(token->text)) continue;
    const bool isHeader = isKeyword(*token, presetOwnerKeyword);
    return isHeader ? file.substr(token->begin)
                    : std::string(presetNameKeyword) + file.substr(token->end);
  }
  return {};
}

// The file without an entry keyword at its end, which would take the next token as its name.
std::string_view withoutTrailingKeyword(std::string_view file) {
  PresetTokens tokens(file);
  while (const auto token = tokens.next()) {
    if (isKeyword(*token, presetNameKeyword) && !tokens.next()) return file.substr(0, token->begin);
  }
  return file;
}

// Removes a leading plus sign, which std::from_chars does not accept.
std::string_view withoutPlus(std::string_view token) {
  const bool plus = token.size() > 1 && token[0] == '+' && token[1] != '-';
  return plus ? token.substr(1) : token;
}

bool isNegative(std::string_view token) {
  return !token.empty() && token[0] == '-';
}

double magnitudeAt(std::string_view digits) {
  if (isNegative(digits)) return 0.0;  // a second sign
  const bool hexadecimal =
      digits.size() > 2 && digits[0] == '0' && lowered(digits[1]) == 'x' && digits[2] != '-';
  const auto format = hexadecimal ? std::chars_format::hex : std::chars_format::general;
  if (hexadecimal) digits.remove_prefix(2);
  double value = 0.0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, format);
  if (error == std::errc::result_out_of_range) {
    const std::string_view number(digits.data(), static_cast<std::size_t>(end - digits.data()));
    const bool tooSmall = number.find('-') != std::string_view::npos;  // the exponent's sign
    return tooSmall ? 0.0 : std::numeric_limits<double>::max();
  }
  if (std::isnan(value)) return 0.0;
  return std::min(value, std::numeric_limits<double>::max());
}

}  // namespace

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lowered(x) == lowered(y); });
}

std::optional<PresetTokens::Token> PresetTokens::next() {
  const std::size_t begin = file_.find_first_not_of(whiteSpace, next_);
  if (begin == std::string_view::npos) {
    next_ = file_.size();
    return std::nullopt;
  }
  next_ = std::min(file_.find_first_of(whiteSpace, begin), file_.size());
  std::string_view text = file_.substr(begin, next_ - begin).substr(0, maximumPresetToken);
  text = text.substr(0, text.find('\0'));
  return Token{text, begin, next_};
}

bool endsPreset(std::string_view key) {
  return equalsIgnoringCase(key, presetNameKeyword) || equalsIgnoringCase(key, presetOwnerKeyword);
}

std::optional<std::string> presetOwner(std::string_view file) {
  PresetTokens tokens(file);
  while (const auto token = tokens.next()) {
    if (isKeyword(*token, presetOwnerKeyword)) {
      const auto owner = tokens.next();
      return owner ? std::optional(std::string(owner->text)) : std::nullopt;
    }
    if (isKeyword(*token, presetNameKeyword)) tokens.next();  // the name may equal a keyword
  }
  return std::nullopt;
}

std::vector<std::string> presetNames(std::string_view file) {
  std::vector<std::string> names;
  PresetTokens tokens(file);
  while (const auto token = tokens.next()) {
    if (!isKeyword(*token, presetNameKeyword)) continue;
    if (const auto name = tokens.next()) names.emplace_back(name->text);
  }
  return names;
}

std::optional<PresetEntry> findPreset(std::string_view file, std::string_view name) {
  PresetTokens tokens(file);
  std::size_t before = 0;
  while (const auto token = tokens.next()) {
    std::size_t end = token->end;
    if (isKeyword(*token, presetNameKeyword)) {
      const auto found = tokens.next();
      if (!found) return std::nullopt;
      if (equalsIgnoringCase(found->text, name)) return PresetEntry{before, found->end};
      end = found->end;
    }
    before = end;
  }
  return std::nullopt;
}

std::string presetNameOf(std::string_view text) {
  std::string name(text.substr(0, text.find('\0')).substr(0, maximumPresetToken));
  for (char& c : name) {
    if (whiteSpace.find(c) != std::string_view::npos) c = '_';
  }
  return name;
}

std::string withPreset(const std::string& file, const std::string& name, const std::string& values,
                       std::string_view lineEnd) {
  std::string result;
  if (const auto entry = findPreset(file, name)) {
    result.append(file, 0, entry->nameEnd).append(lineEnd).append(values);
    return result.append(contentAfterEntry(file, entry->nameEnd));
  }
  result.append(withoutTrailingKeyword(file)).append(lineEnd);
  result.append(presetNameKeyword).append(" ").append(name).append(lineEnd);
  return result.append(values);
}

std::string withoutPreset(const std::string& file, const PresetEntry& entry,
                          std::string_view lineEnd) {
  std::string result = file.substr(0, entry.before);
  if (!result.empty()) result.append(lineEnd);
  const std::string tail = contentAfterEntry(file, entry.nameEnd);
  if (!tail.empty()) result.append(lineEnd).append(tail);
  return result;
}

std::string presetNumber(double value) {
  constexpr int decimals = 6;
  constexpr double largest = 1e240;
  std::array<char, maximumPresetToken> text;
  value = std::isfinite(value) ? std::clamp(value, -largest, largest) : 0.0;
  const auto written = std::to_chars(text.data(), text.data() + text.size(), value,
                                     std::chars_format::fixed, decimals);
  return {text.data(), written.ptr};
}

double numberAt(std::string_view token) {
  token = withoutPlus(token);
  return isNegative(token) ? -magnitudeAt(token.substr(1)) : magnitudeAt(token);
}

std::int32_t integerAt(std::string_view token) {
  token = withoutPlus(token);
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
  if (error == std::errc::result_out_of_range) {
    using Limits = std::numeric_limits<std::int32_t>;
    return isNegative(token) ? Limits::min() : Limits::max();
  }
  return value;
}

}  // namespace radiashafts
