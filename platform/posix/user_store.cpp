// All values are stored in one text file, "radiashafts/settings" in the user's configuration
// folder:
//
//   [KEY\PATH]
//   Name = dword:000000ff
//   Name = text:a backslash is \\, a line feed \n
//   Name = bytes:00ff
//
// Other lines are ignored and kept.

#include "platform/user_store.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

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

std::string hexadecimal(std::string_view bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += digits[byte / 16];
    text += digits[byte % 16];
  }
  return text;
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

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\\') {
      result += "\\\\";
    } else if (c == '\n') {
      result += "\\n";
    } else {
      result += c;
    }
  }
  return result;
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

bool isEntryOf(std::string_view line, const std::string& name) {
  return line.substr(0, name.size()) == name && line.substr(name.size(), equals.size()) == equals;
}

using Values = std::map<std::string, std::string>;

void setLine(std::vector<std::string>& lines, const std::string& key, const std::string& name,
             const std::string& value) {
  const std::string line = name + std::string(equals) + value;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (keyOf(lines[i]) != key) continue;
    std::size_t end = i + 1;
    for (; end < lines.size() && !keyOf(lines[end]); ++end) {
      if (!isEntryOf(lines[end], name)) continue;
      lines[end] = line;
      return;
    }
    while (lines[end - 1].empty())
      --end;  // insert before the empty lines that precede the next key
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(end), line);
    return;
  }
}

void ensureKey(std::vector<std::string>& lines, const std::string& key) {
  for (const std::string& line : lines) {
    if (keyOf(line) == key) return;
  }
  if (!lines.empty()) lines.emplace_back();
  lines.push_back("[" + key + "]");
}

// RAII: an exclusive lock on the folder, held while the file is read and replaced, so that writers
// wait for each other.
class StoreLock {
 public:
  explicit StoreLock(const fs::path& folder)
      : folder_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (folder_ >= 0) flock(folder_, LOCK_EX);
  }
  ~StoreLock() {
    if (folder_ >= 0) close(folder_);
  }
  StoreLock(const StoreLock&) = delete;
  StoreLock& operator=(const StoreLock&) = delete;

 private:
  int folder_;
};

void store(const fs::path& file, const std::string& key, const Values& values) {
  const StoreLock lock(file.parent_path());
  changeWholeFile(file.string(), [&](const WholeFile& old) -> std::optional<std::string> {
    if (old.state == FileState::refused || old.state == FileState::unfit) return std::nullopt;
    std::vector<std::string> lines = linesOf(old.content);
    ensureKey(lines, key);
    for (const auto& [name, value] : values) setLine(lines, key, name, value);
    std::string content;
    for (const std::string& line : lines) content += line + "\n";
    return content == old.content ? std::nullopt : std::optional(content);
  });
}

}  // namespace

struct UserKey::State {
  State() = default;
  ~State() {
    if (!file.empty()) store(file, key, values);
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  // The value's text after its type mark; none when it is of another type.
  std::optional<std::string_view> valueAfterMark(const std::string& name,
                                                 std::string_view mark) const {
    const auto value = values.find(name);
    if (value == values.end() || value->second.rfind(mark, 0) != 0) return std::nullopt;
    return std::string_view(value->second).substr(mark.size());
  }

  fs::path file;  // only set when the key was opened for writing
  std::string key;
  Values values;  // those read from the file, or those to write
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

std::optional<UserKey> UserKey::createForWriting(const std::string& path) {
  const fs::path file = storeFile();
  if (file.empty()) return std::nullopt;
  std::error_code error;
  fs::create_directories(file.parent_path(), error);
  if (error || access(file.parent_path().c_str(), W_OK) != 0) return std::nullopt;
  auto state = std::make_unique<State>();
  state->file = file;
  state->key = path;
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

void UserKey::writeNumber(const std::string& name, std::uint32_t value) {
  std::string digits;
  for (int shift = 24; shift >= 0; shift -= 8) digits += static_cast<char>(value >> shift & 0xFF);
  state_->values[name] = std::string(numberMark) + hexadecimal(digits);
}

void UserKey::writeText(const std::string& name, const std::string& text) {
  state_->values[name] = std::string(textMark) + escaped(text.c_str());
}

void UserKey::writeBytes(const std::string& name, const void* bytes, std::size_t size) {
  const std::string_view view(static_cast<const char*>(bytes), size);
  state_->values[name] = std::string(bytesMark) + hexadecimal(view);
}

}  // namespace radiashafts::platform
