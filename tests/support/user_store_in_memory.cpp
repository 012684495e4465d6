// In place of the system's user store: one that lives as long as the program.

#include <cstring>
#include <map>

#include "platform/user_store.h"

namespace radiashafts::platform {
namespace {

using Values = std::map<std::string, std::string>;  // each with a letter of its type in front
std::map<std::string, Values> keys;

}  // namespace

struct UserKey::State {
  explicit State(Values& held) : values(held) {}
  Values& values;
  std::optional<std::string> find(const std::string& name, char type) const {
    const auto found = values.find(name);
    if (found == values.end() || found->second[0] != type) return std::nullopt;
    return found->second.substr(1);
  }
};

UserKey::UserKey(std::unique_ptr<State> state) : state_(std::move(state)) {}
UserKey::UserKey(UserKey&&) noexcept = default;
UserKey& UserKey::operator=(UserKey&&) noexcept = default;
UserKey::~UserKey() = default;

std::optional<UserKey> UserKey::openForReading(const std::string& path) {
  if (!keys.contains(path)) return std::nullopt;
  return createForWriting(path);
}
std::optional<UserKey> UserKey::createForWriting(const std::string& path) {
  return UserKey(std::make_unique<State>(keys[path]));
}
std::optional<std::uint32_t> UserKey::readNumber(const std::string& name) const {
  const auto text = state_->find(name, 'n');
  return text ? std::optional(static_cast<std::uint32_t>(std::stoul(*text))) : std::nullopt;
}
std::optional<std::uint32_t> UserKey::readAnyFourBytes(const std::string& name) const {
  return readNumber(name);
}
std::optional<std::string> UserKey::readText(const std::string& name) const {
  return state_->find(name, 't');
}
bool UserKey::readBytes(const std::string& name, void* bytes, std::size_t size) const {
  const auto found = state_->find(name, 'b');
  if (!found || found->size() != size) return false;
  std::memcpy(bytes, found->data(), size);
  return true;
}
void UserKey::writeNumber(const std::string& name, std::uint32_t value) {
  state_->values[name] = 'n' + std::to_string(value);
}
void UserKey::writeText(const std::string& name, const std::string& text) {
  state_->values[name] = 't' + text;
}
void UserKey::writeBytes(const std::string& name, const void* bytes, std::size_t size) {
  state_->values[name] = 'b' + std::string(static_cast<const char*>(bytes), size);
}

}  // namespace radiashafts::platform
