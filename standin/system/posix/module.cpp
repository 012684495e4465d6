#include "standin/system/module.h"

#include <dlfcn.h>

namespace radiashafts::standin {

bool Module::load(const std::filesystem::path& path) {
  unload();
  handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) error_ = dlerror();
  return handle_ != nullptr;
}

void Module::unload() {
  if (handle_ != nullptr) dlclose(handle_);
  handle_ = nullptr;
}

void* Module::symbol(const char* name) const {
  return handle_ == nullptr ? nullptr : dlsym(handle_, name);
}

std::filesystem::path executablePath() {
  return std::filesystem::read_symlink("/proc/self/exe");
}

}  // namespace radiashafts::standin
