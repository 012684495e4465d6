#include "cli/option_list.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/help_text.h"
#include "cli/parameter_options.h"

namespace radiashafts::cli {
namespace {

std::string namesOf(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : option.get_snames()) names += '-' + name + '|';
  for (const std::string& name : option.get_lnames()) names += "--" + name + '|';
  names.pop_back();
  return names;
}

// An upper-case letter in the form stands for any value.
std::string wordsOf(const CLI::Option& option, const std::string& form) {
  if (std::string entries = parameterEntries(option); !entries.empty()) return entries;
  const bool isOpen =
      std::any_of(form.begin(), form.end(), [](unsigned char c) { return std::isupper(c) != 0; });
  return isOpen ? "" : form;
}

std::string orNone(const std::string& field) {
  return field.empty() ? "-" : field;
}

void listOption(std::ostream& out, const CLI::Option& option) {
  const std::string form = option.get_type_size() > 0 ? option.get_type_name() : "";
  out << namesOf(option) << '\t' << orNone(form) << '\t' << orNone(wordsOf(option, form)) << '\t'
      << option.get_group() << '\t' << option.get_description() << '\n';
}

}  // namespace

void listOptions(std::ostream& out, const CLI::App& app) {
  std::vector<std::string> groups(usualGroups.begin(), usualGroups.end());
  groups.emplace_back(hostGroup);
  for (const std::string& group : groups) {
    for (const CLI::Option* option : app.get_options()) {
      if (option->get_group() == group) listOption(out, *option);
    }
  }
  out.flush();
}

}  // namespace radiashafts::cli
