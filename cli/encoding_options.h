// Command-line options that tell how picture files are read and written.
#pragma once

#include <CLI/CLI.hpp>

#include "standin/picture_file.h"

namespace radiashafts::cli {

// The two structures must outlive app.parse().
void addEncodingOptions(CLI::App& app, standin::ReadingOptions& reading,
                        standin::EncodingOptions& encoding);

}  // namespace radiashafts::cli
