#pragma once

#include <filesystem>

#include "standin/stand_in_host.h"
#include "standin/system/module.h"

namespace radiashafts::hosts {

// The loaded filter module; the destructor unloads it.
class EffectModule {
 public:
  // Reads the entry point's name from the module file before it is loaded, as hosts do. Throws
  // std::runtime_error with one line that names the file when it is missing or refused.
  explicit EffectModule(const std::filesystem::path& file);
  EffectModule(const EffectModule&) = delete;
  EffectModule& operator=(const EffectModule&) = delete;

  standin::EntryPoint entry() const { return entry_; }

 private:
  standin::Module module_;
  standin::EntryPoint entry_ = nullptr;
};

}  // namespace radiashafts::hosts
