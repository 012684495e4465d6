#include "cli/help_text.h"

#include <sstream>

namespace radiashafts::cli {

#define PROGRAM RADIASHAFTS_PROGRAM_NAME

const char firstSteps[] =
    "To begin:\n"
    "  " PROGRAM
    " photo.jpg rays.jpg --auto\n"
    "finds the light in the photograph, and prints the options that it chose.\n"
    "  " PROGRAM
    " photo.jpg rays.jpg --preset low_warm_sun --origin 0.7,0.2\n"
    "takes a look from a preset. The origin is where the light stands: 0,0 is the upper left "
    "corner\n"
    "and 1,1 the lower right. --list-presets tells the presets, --help all options.\n";

namespace {

constexpr char usage[] =
    "Usage: " PROGRAM
    " [OPTIONS] INPUT OUTPUT\n"
    "       " PROGRAM
    " [OPTIONS] INPUT... --output-dir DIR | --name PATTERN\n"
    "       - stands for standard input and standard output.\n\n"
    "Examples:\n"
    "  " PROGRAM
    " photo.jpg rays.jpg --auto\n"
    "  " PROGRAM
    " photo.jpg rays.jpg --preset low_warm_sun --origin 0.7,0.2\n"
    "  " PROGRAM
    " photo.jpg rays.png --selection-low 180 --intensity 3 --color-high '#ffcc66'\n"
    "  " PROGRAM
    " *.jpg --output-dir rays --name '{stem}-rays{ext}' --skip-existing\n"
    "  " PROGRAM " in.%04d.exr out.%04d.exr --frames 1-2000 --animate light.keys\n";

constexpr std::size_t lineWidth = 100;
constexpr std::size_t textColumn = 30;

// The words from textColumn on, in lines of lineWidth at most where the words are not longer.
std::string wrapped(const std::string& text) {
  std::istringstream words(text);
  std::string result, word;
  std::size_t column = textColumn;
  while (words >> word) {
    if (column > textColumn && column + 1 + word.size() > lineWidth) {
      result += '\n' + std::string(textColumn, ' ');
      column = textColumn;
    } else if (column > textColumn) {
      result += ' ';
      ++column;
    }
    result += word;
    column += word.size();
  }
  return result;
}

}  // namespace

std::string HelpText::make_help(const CLI::App* app, std::string name,
                                CLI::AppFormatMode mode) const {
  // The library's help for everything serves as the help for hosts.
  const bool usual = mode != CLI::AppFormatMode::All;
  const std::vector<std::string> groups =
      usual ? std::vector<std::string>{usualGroups.begin(), usualGroups.end()}
            : std::vector<std::string>{hostGroup};
  std::string text = make_description(app) + make_usage(app, std::move(name));
  for (const std::string& group : groups) {
    text += make_group(group, false, app->get_options([&group](const CLI::Option* option) {
      return option->get_group() == group;
    }));
  }
  return text + '\n' + make_footer(app);
}

std::string HelpText::make_usage(const CLI::App*, std::string) const {
  return usage;
}

std::string HelpText::make_option(const CLI::Option* option, bool) const {
  std::string left = "  " + option->get_name(false, true);
  if (!option->get_option_text().empty()) {
    left += ' ' + option->get_option_text();
  } else if (option->get_type_size() != 0) {
    left += ' ' + option->get_type_name();
  }
  left += left.size() + 1 < textColumn ? std::string(textColumn - left.size(), ' ')
                                       : '\n' + std::string(textColumn, ' ');
  return left + wrapped(option->get_description()) + '\n';
}

}  // namespace radiashafts::cli
