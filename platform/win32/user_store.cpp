#include "platform/user_store.h"
#include <windows.h>

#include <cstring>

namespace radiashafts::platform {

struct UserKey::State {
  explicit State(HKEY opened) : key(opened) {}
  ~State() { RegCloseKey(key); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  struct Answer {
    DWORD type = REG_NONE;
    DWORD size = 0;
  };
  // None when the value does not exist or does not fit the buffer.
  std::optional<Answer> read(const std::string& name, void* bytes, std::size_t size) const {
    Answer answer{REG_NONE, static_cast<DWORD>(size)};
    const LSTATUS status = RegQueryValueExA(key, name.c_str(), nullptr, &answer.type,
                                            static_cast<BYTE*>(bytes), &answer.size);
    return status == ERROR_SUCCESS ? std::optional(answer) : std::nullopt;
  }
  void write(const std::string& name, DWORD type, const void* bytes, std::size_t size) {
    RegSetValueExA(key, name.c_str(), 0, type, static_cast<const BYTE*>(bytes),
                   static_cast<DWORD>(size));
  }

  HKEY key;
};

UserKey::UserKey(std::unique_ptr<State> state) : state_(std::move(state)) {}
UserKey::UserKey(UserKey&& other) noexcept = default;
UserKey& UserKey::operator=(UserKey&& other) noexcept = default;
UserKey::~UserKey() = default;

std::optional<UserKey> UserKey::openForReading(const std::string& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  return UserKey(std::make_unique<State>(key));
}

std::optional<UserKey> UserKey::createForWriting(const std::string& path) {
  HKEY key = nullptr;
  if (RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                      KEY_WRITE, nullptr, &key, nullptr) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  return UserKey(std::make_unique<State>(key));
}

std::optional<std::uint32_t> UserKey::readNumber(const std::string& name) const {
  std::uint32_t value = 0;
  const auto answer = state_->read(name, &value, sizeof value);
  if (!answer || answer->type != REG_DWORD || answer->size != sizeof value) return std::nullopt;
  return value;
}

std::optional<std::uint32_t> UserKey::readAnyFourBytes(const std::string& name) const {
  std::uint32_t value = 0;
  const auto answer = state_->read(name, &value, sizeof value);
  if (!answer || answer->size != sizeof value) return std::nullopt;
  return value;
}

std::optional<std::string> UserKey::readText(const std::string& name) const {
  char text[maximumUserText + 1] = "";
  const auto answer = state_->read(name, text, maximumUserText);
  if (!answer || answer->type != REG_SZ) return std::nullopt;
  // A value written by another program may lack the terminating zero.
  if (std::strlen(text) >= maximumUserText) return std::nullopt;
  return text;
}

bool UserKey::readBytes(const std::string& name, void* bytes, std::size_t size) const {
  std::string read(size, '\0');
  const auto answer = state_->read(name, read.data(), size);
  if (!answer || answer->type != REG_BINARY || answer->size != size) return false;
  std::memcpy(bytes, read.data(), size);
  return true;
}

void UserKey::writeNumber(const std::string& name, std::uint32_t value) {
  state_->write(name, REG_DWORD, &value, sizeof value);
}

void UserKey::writeText(const std::string& name, const std::string& text) {
  state_->write(name, REG_SZ, text.c_str(), std::strlen(text.c_str()) + 1);
}

void UserKey::writeBytes(const std::string& name, const void* bytes, std::size_t size) {
  state_->write(name, REG_BINARY, bytes, size);
}

}  // namespace radiashafts::platform
