// The user's registry as it is, with the filter's key in it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <iosfwd>
#include <string>

namespace radiashafts::test {

struct RegistryValue {
  DWORD type = REG_NONE;  // and no bytes: there is no such value
  std::string bytes;

  bool operator==(const RegistryValue&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const RegistryValue& value);

RegistryValue numberValue(std::int32_t number);
RegistryValue textValue(const std::string& text);
template <class Value>
RegistryValue binaryValue(const Value& value) {
  return {REG_BINARY, std::string(reinterpret_cast<const char*>(&value), sizeof value)};
}

// A value of the filter's key, or of the one with the values of the last confirmed run.
RegistryValue storedValue(const char* name);
RegistryValue lastUsedValue(const char* name);
void storeValue(const char* name, const RegistryValue& value);
void storeLastUsedValue(const char* name, const RegistryValue& value);

}  // namespace radiashafts::test
