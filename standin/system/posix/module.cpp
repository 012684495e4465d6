#include "standin/system/module.h"

#include <dlfcn.h>
#include <sys/auxv.h>

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
  std::error_code error;
  std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error) return path;
  // /proc is not mounted: the path by which the program was started, from the working folder.
  const auto* const started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  if (started == nullptr) return {};
  return std::filesystem::weakly_canonical(started, error);
}

}  // namespace radiashafts::standin
