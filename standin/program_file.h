#pragma once

#include <filesystem>
#include <string>

namespace radiashafts::standin {

// A file that the program brings along. It is beside the program, as built and in the archives; an
// installation keeps libraries and data in folders of their own, and they are found from the
// program's place, wherever that is.
std::filesystem::path programLibrary(const std::string& name);
std::filesystem::path programData(const std::string& name);

// The file in the folder, or else in the other one, which is relative to it.
std::filesystem::path besideOrIn(const std::filesystem::path& folder, const char* installedFolder,
                                 const std::string& name);

}  // namespace radiashafts::standin
