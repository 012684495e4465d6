#include "cli/printable.h"

#include <cstddef>
#include <cstdint>

#include "standin/system/standard_error.h"

namespace radiashafts::cli {
namespace {

// Length in bytes of the UTF-8 character at the start of the text, which is not empty; 0 when the
// bytes are not valid UTF-8.
std::size_t characterSize(std::string_view text) {
  const auto lead = static_cast<std::uint8_t>(text[0]);
  const std::size_t size = lead < 0x80   ? 1
                           : lead < 0xC2 ? 0
                           : lead < 0xE0 ? 2
                           : lead < 0xF0 ? 3
                           : lead < 0xF5 ? 4
                                         : 0;
  if (size > text.size()) return 0;
  for (std::size_t i = 1; i < size; ++i) {
    if ((static_cast<std::uint8_t>(text[i]) & 0xC0) != 0x80) return 0;
  }
  return size;
}

bool isControl(std::string_view character) {
  const auto first = static_cast<std::uint8_t>(character[0]);
  if (character.size() == 1) return first < 0x20 || first == 0x7F;
  return first == 0xC2 && static_cast<std::uint8_t>(character[1]) < 0xA0;
}

std::string escapedByte(char byte) {
  constexpr char digits[] = "0123456789abcdef";
  if (byte == '\n') return "\\n";
  if (byte == '\r') return "\\r";
  if (byte == '\t') return "\\t";
  const auto value = static_cast<std::uint8_t>(byte);
  return {'\\', 'x', digits[value / 16], digits[value % 16]};
}

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::size_t size = characterSize(text);
    const std::string_view character = text.substr(0, size == 0 ? 1 : size);
    if (size == 0 || isControl(character)) {
      for (const char byte : character) result += escapedByte(byte);
    } else {
      result += character;
    }
    text.remove_prefix(character.size());
  }
  return result;
}

void printLine(std::ostream& out, std::string_view text) {
  out << printable(text) << '\n';
}

void printMessage(std::string_view text) {
  standin::writeError(printable(text) + '\n');
}

}  // namespace radiashafts::cli
