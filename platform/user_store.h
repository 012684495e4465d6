#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace radiashafts::platform {

// A key with named, typed values of the current user. Key paths are separated by "\"; a key also
// exists if one of its subkeys does. Reading a value of a different type or size returns none, as
// if it did not exist. Write errors are ignored.
class UserKey {
 public:
  // Empty when the key does not exist or cannot be read.
  static std::optional<UserKey> openForReading(const std::string& path);
  // Creates the key if needed; empty when it cannot be written, as always on systems other than
  // Windows.
  static std::optional<UserKey> createForWriting(const std::string& path);

  UserKey(UserKey&& other) noexcept;
  UserKey& operator=(UserKey&& other) noexcept;
  ~UserKey();

  std::optional<std::uint32_t> readNumber(const std::string& name) const;
  // Any value of four bytes, whatever its type: users set some switches by hand.
  std::optional<std::uint32_t> readAnyFourBytes(const std::string& name) const;
  // Only texts that fit in maximumUserText bytes.
  std::optional<std::string> readText(const std::string& name) const;
  // Reads a value of exactly this size. Returns false and leaves the buffer unchanged otherwise.
  bool readBytes(const std::string& name, void* bytes, std::size_t size) const;

  void writeNumber(const std::string& name, std::uint32_t value);
  void writeText(const std::string& name, const std::string& text);
  void writeBytes(const std::string& name, const void* bytes, std::size_t size);

 private:
  struct State;
  explicit UserKey(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

inline constexpr std::size_t maximumUserText = 256;  // bytes, including the terminating zero

}  // namespace radiashafts::platform
