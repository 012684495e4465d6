#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace radiashafts::platform {

// A key of named, typed values that belong to the current user. Keys form paths with "\" between
// their names; a key exists too where one below it does. A value of another type or size than is
// asked for reads as absent. No failure is told: what cannot be written is not kept.
//
// Names hold no line feeds, no " = ", and do not begin with "[".
class UserKey {
 public:
  // Empty when the key does not exist or may not be read.
  static std::optional<UserKey> openForReading(const std::string& path);
  // Made where it does not exist; empty when it may not be written. What is written counts from
  // the key's closing on.
  static std::optional<UserKey> createForWriting(const std::string& path);

  UserKey(UserKey&& other) noexcept;
  UserKey& operator=(UserKey&& other) noexcept;
  ~UserKey();

  std::optional<std::uint32_t> readNumber(const std::string& name) const;
  // Four bytes of any type, for switches that users set by hand.
  std::optional<std::uint32_t> readAnyFourBytes(const std::string& name) const;
  // A text that fits 256 bytes with the zero at its end.
  std::optional<std::string> readText(const std::string& name) const;
  // Exactly so many bytes; leaves them alone when the answer is false.
  bool readBytes(const std::string& name, void* bytes, std::size_t size) const;

  void writeNumber(const std::string& name, std::uint32_t value);
  void writeText(const std::string& name, const std::string& text);
  void writeBytes(const std::string& name, const void* bytes, std::size_t size);

 private:
  struct State;
  explicit UserKey(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

inline constexpr std::size_t maximumUserText = 256;  // bytes, with the zero

}  // namespace radiashafts::platform
