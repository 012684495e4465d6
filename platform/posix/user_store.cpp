// All values are in one text file, "radiashafts/settings" in the user's configuration folder. Users
// write it by hand: nothing on this system stores settings.
//
//   [KEY\PATH]
//   Name = dword:000000ff
//   Name = text:a backslash is \\, a line feed \n
//   Name = bytes:00ff
//
// Other lines are ignored.

#include "platform/user_store.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string_view>
#include <vector>

#include "platform/whole_file.h"

namespace radiashafts::platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view numberMark = "dword:";
constexpr std::string_view textMark = "text:";
constexpr std::string_view bytesMark = "bytes:";
constexpr std::string_view equals = " = ";

// Empty when neither XDG_CONFIG_HOME nor HOME is an absolute path.
fs::path storeFile() {
  const auto variable = [](const char* name) {
    const char* value = std::getenv(name);
    return fs::path(value == nullptr ? "" : value);
  };
  fs::path folder = variable("XDG_CONFIG_HOME");
  if (!folder.is_absolute()) {
    folder = variable("HOME");
    if (!folder.is_absolute()) return {};
    folder /= ".config";
  }
  return folder / "radiashafts" / "settings";
}

std::optional<std::string> bytesOf(std::string_view text) {
  std::string bytes;
  if (text.size() % 2 != 0) return std::nullopt;
  for (; !text.empty(); text.remove_prefix(2)) {
    unsigned char byte = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + 2, byte, 16);
    if (error != std::errc() || end != text.data() + 2) return std::nullopt;
    bytes += static_cast<char>(byte);
  }
  return bytes;
}

std::string unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) {
      ++i;
      result += text[i] == 'n' ? '\n' : text[i];
    } else {
      result += text[i];
    }
  }
  return result;
}

// Splits the content into lines without their line feeds.
std::vector<std::string> linesOf(const std::string& content) {
  std::vector<std::string> lines;
  std::string_view rest = content;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    lines.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
  return lines;
}

// The key of a "[KEY]" line; none for any other line.
std::optional<std::string_view> keyOf(std::string_view line) {
  if (line.size() < 2 || line.front() != '[' || line.back() != ']') return std::nullopt;
  return line.substr(1, line.size() - 2);
}

}  // namespace

struct UserKey::State {
  // The value's text after its type mark; none when it is of another type.
  std::optional<std::string_view> valueAfterMark(const std::string& name,
                                                 std::string_view mark) const {
    const auto value = values.find(name);
    if (value == values.end() || value->second.rfind(mark, 0) != 0) return std::nullopt;
    return std::string_view(value->second).substr(mark.size());
  }

  std::map<std::string, std::string> values;
};

UserKey::UserKey(std::unique_ptr<State> state) : state_(std::move(state)) {}
UserKey::UserKey(UserKey&& other) noexcept = default;
UserKey& UserKey::operator=(UserKey&& other) noexcept = default;
UserKey::~UserKey() = default;

std::optional<UserKey> UserKey::openForReading(const std::string& path) {
  const fs::path file = storeFile();
  if (file.empty()) return std::nullopt;
  auto state = std::make_unique<State>();
  bool found = false;
  bool inside = false;
  for (const std::string& line : linesOf(readWholeFile(file.string()).content)) {
    if (const auto key = keyOf(line)) {
      inside = *key == path;
      found = found || inside || key->rfind(path + "\\", 0) == 0;
    } else if (const std::size_t end = line.find(equals); inside && end != std::string::npos) {
      state->values.emplace(line.substr(0, end), line.substr(end + equals.size()));
    }
  }
  if (!found) return std::nullopt;
  return UserKey(std::move(state));
}

std::optional<std::uint32_t> UserKey::readNumber(const std::string& name) const {
  const auto text = state_->valueAfterMark(name, numberMark);
  std::uint32_t value = 0;
  if (!text) return std::nullopt;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value, 16);
  if (error != std::errc() || end != text->data() + text->size()) return std::nullopt;
  return value;
}

std::optional<std::uint32_t> UserKey::readAnyFourBytes(const std::string& name) const {
  std::uint32_t value = 0;
  if (readBytes(name, &value, sizeof value)) return value;
  return readNumber(name);
}

std::optional<std::string> UserKey::readText(const std::string& name) const {
  const auto text = state_->valueAfterMark(name, textMark);
  if (!text) return std::nullopt;
  std::string result = unescaped(*text);
  if (result.size() >= maximumUserText) return std::nullopt;
  return result;
}

bool UserKey::readBytes(const std::string& name, void* bytes, std::size_t size) const {
  const auto text = state_->valueAfterMark(name, bytesMark);
  const auto read = text ? bytesOf(*text) : std::nullopt;
  if (!read || read->size() != size) return false;
  std::memcpy(bytes, read->data(), size);
  return true;
}

std::optional<UserKey> UserKey::createForWriting(const std::string&) {
  return std::nullopt;
}

void UserKey::writeNumber(const std::string&, std::uint32_t) {}
void UserKey::writeText(const std::string&, const std::string&) {}
void UserKey::writeBytes(const std::string&, const void*, std::size_t) {}

}  // namespace radiashafts::platform
