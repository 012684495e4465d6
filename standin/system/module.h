#pragma once

#include <filesystem>
#include <string>

namespace radiashafts::standin {

// Owns a loaded shared library; the destructor unloads it.
class Module {
 public:
  Module() = default;
  ~Module() { unload(); }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  // False with a reason in error() when the file cannot be loaded.
  bool load(const std::filesystem::path& path);
  void unload();
  // Null when the module exports no such name.
  void* symbol(const char* name) const;
  const std::string& error() const { return error_; }

 private:
  void* handle_ = nullptr;
  std::string error_;
};

// The path of the running program's file.
std::filesystem::path executablePath();

}  // namespace radiashafts::standin
