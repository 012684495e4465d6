#include "standin/system/arguments.h"
#include <windows.h>

#include <shellapi.h>

namespace radiashafts::standin {

// argv is not used: it lost the characters that the ANSI code page cannot represent.
std::vector<std::string> programArguments(int, char**) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; wide != nullptr && i < count; ++i) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size > 0 ? size - 1 : 0), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide[i], -1, text.data(), size, nullptr, nullptr);
    arguments.push_back(text);
  }
  LocalFree(wide);
  return arguments;
}

}  // namespace radiashafts::standin
