#include "tests/dialogs/user_registry.h"

#include <ostream>
#include <string_view>

namespace radiashafts::test {
namespace {

constexpr char settings[] = R"(SOFTWARE\Halvorsund\Photoshop\Radiashafts)";
constexpr char lastUsed[] = R"(SOFTWARE\Halvorsund\Photoshop\Radiashafts\LastUsed)";

RegistryValue read(const char* key, const char* name) {
  RegistryValue value{REG_NONE, std::string(1024, '\0')};
  auto size = static_cast<DWORD>(value.bytes.size());
  if (RegGetValueA(HKEY_CURRENT_USER, key, name, RRF_RT_ANY, &value.type, value.bytes.data(),
                   &size) != ERROR_SUCCESS) {
    return {};
  }
  value.bytes.resize(size);
  return value;
}

void write(const char* key, const char* name, const RegistryValue& value) {
  RegSetKeyValueA(HKEY_CURRENT_USER, key, name, value.type, value.bytes.data(),
                  static_cast<DWORD>(value.bytes.size()));
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const RegistryValue& value) {
  stream << "type " << value.type << ':';
  for (const unsigned char byte : value.bytes) stream << ' ' << static_cast<int>(byte);
  return value.type == REG_SZ ? stream << " (" << std::string_view(value.bytes.c_str()) << ')'
                              : stream;
}

RegistryValue numberValue(std::int32_t number) {
  return {REG_DWORD, std::string(reinterpret_cast<const char*>(&number), sizeof number)};
}

RegistryValue textValue(const std::string& text) {
  return {REG_SZ, text + '\0'};
}

RegistryValue storedValue(const char* name) {
  return read(settings, name);
}

RegistryValue lastUsedValue(const char* name) {
  return read(lastUsed, name);
}

void storeValue(const char* name, const RegistryValue& value) {
  write(settings, name, value);
}

void storeLastUsedValue(const char* name, const RegistryValue& value) {
  write(lastUsed, name, value);
}

}  // namespace radiashafts::test
