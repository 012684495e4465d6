// How --help looks.
#pragma once

#include <array>

#include <CLI/CLI.hpp>

#include "parameters/parameter_text.h"

namespace radiashafts::cli {

// The groups of options, in their order; those of parameters come first.
inline constexpr char presetGroup[] = "Presets";
inline constexpr char fileGroup[] = "Files";
inline constexpr char sequenceGroup[] = "Sequences";
inline constexpr char encodingGroup[] = "Formats";
inline constexpr char otherGroup[] = "Other";
inline constexpr std::array usualGroups{lightGroup, colorGroup,    selectionGroup, presetGroup,
                                        fileGroup,  sequenceGroup, encodingGroup,  otherGroup};
inline constexpr char hostGroup[] = "Hosts, for tests";  // in --help-host alone

// What is printed when the program is called without an argument.
extern const char firstSteps[];

class HelpText final : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string name,
                        CLI::AppFormatMode mode) const override;
  std::string make_usage(const CLI::App* app, std::string name) const override;
  std::string make_option(const CLI::Option* option, bool positional) const override;
};

}  // namespace radiashafts::cli
