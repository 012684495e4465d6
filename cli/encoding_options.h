// Command-line options that tell how picture files are read and written.
#pragma once

#include "standin/picture_file.h"

namespace CLI {
class App;
}  // namespace CLI

namespace radiashafts::cli {

// The two structures must outlive app.parse().
void addEncodingOptions(CLI::App& app, standin::ReadingOptions& reading,
                        standin::EncodingOptions& encoding);

}  // namespace radiashafts::cli
