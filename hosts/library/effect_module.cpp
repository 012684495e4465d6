#include "hosts/library/effect_module.h"

#include <stdexcept>
#include <string>

#include "standin/plugin_properties.h"

namespace radiashafts::hosts {
namespace {

std::string entryNameOf(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::exists(file, error)) {
    throw std::runtime_error(file.string() + ": no such module");
  }
  try {
    return standin::entryPointOf(file);
  } catch (const std::runtime_error& refusal) {
    throw std::runtime_error(file.string() + ": refused, " + refusal.what());
  }
}

}  // namespace

EffectModule::EffectModule(const std::filesystem::path& file) {
  const std::string entryName = entryNameOf(file);
  if (!module_.load(file)) throw std::runtime_error(module_.error());
  entry_ = reinterpret_cast<standin::EntryPoint>(module_.symbol(entryName.c_str()));
  if (entry_ == nullptr) throw std::runtime_error(file.string() + ": exports no " + entryName);
}

}  // namespace radiashafts::hosts
