#pragma once

#include <filesystem>
#include <string>

namespace radiashafts::standin {

// A loaded module of the system, unloaded at the end of its life.
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

// Where the running program stands.
std::filesystem::path executablePath();

}  // namespace radiashafts::standin
